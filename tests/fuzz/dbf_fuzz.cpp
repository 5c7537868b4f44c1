// Reads a bare .dbf, record by record.
#include "fuzz_run.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace gridforge;
    fuzz::give("l.dbf", {reinterpret_cast<const char*>(data), size});
    try {
        fuzz::prepare();
        std::int32_t gisID = gisOpenLayer("l.dbf", "", "I ", true);
        gisReadHeader(gisID);
        std::string line;
        while (!gisLayer(gisID).layerEnd) {
            gisReadRecord(gisID, GisO(), line);
        }
        gisCloseLayer(gisID);
    } catch (const fuzz::EndOfRun&) {
        closeAllUnits(false);
    }
    return 0;
}
