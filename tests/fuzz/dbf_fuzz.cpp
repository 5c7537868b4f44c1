// Reads a bare .dbf, record by record.
#include "fuzz_run.h"

#include "gis/shp/dbf_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace gridforge;
    fuzz::give("l.dbf", {reinterpret_cast<const char*>(data), size});
    try {
        fuzz::prepare();
        gis::shp::DbfTable dbf;
        OPENER(dbf.dbfUnit, "BI", "l.dbf");
        gis::shp::dbfReadHeader(dbf);
        std::string line;
        for (bool end = false; !end; end = end || atEnd(dbf.dbfUnit)) {
            gis::shp::dbfReadRecord(dbf, end, line, gis::kRecordWidth);
        }
        CLOSER(dbf.dbfUnit);
    } catch (const fuzz::EndOfRun&) {
        closeAllUnits();
    }
    return 0;
}
