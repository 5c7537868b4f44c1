// Reads a .mif and, after a zero byte, its .mid.
#include "fuzz_run.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace gridforge::fuzz;
    const auto [mif, mid] = split({reinterpret_cast<const char*>(data), size}, std::string_view("\0", 1));
    give("l.mif", mif);
    give("l.mid", mid);
    readLayer("l.mif", true);
    readLayer("l.mif", false);
    return 0;
}
