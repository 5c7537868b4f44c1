// Reads a .shp and, after the word "@dbf", its .dbf.
#include "fuzz_run.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace gridforge::fuzz;
    const auto [shp, dbf] = split({reinterpret_cast<const char*>(data), size}, "@dbf");
    give("l.shp", shp);
    give("l.dbf", dbf);
    readLayer("l.shp", true);
    readLayer("l.shp", false);
    return 0;
}
