// .dbf tables, given record by record as the comma-separated line that a .mid holds.
#pragma once

#include "gis/shp/records.h"

#include <cstddef>
#include <string>

namespace gridforge::gis::shp {

// Rewinds, reads the field list with its console lines, and stands at the first record.
void dbfReadHeader(DbfTable& dbf);

// The next record that is not deleted as one line, cut at `width`, in the caller's reused text. `endOfData` becomes
// true, and the line blank, on the byte that ends the table, and is false otherwise; the caller then asks
// atEnd(dbfUnit).
void dbfReadRecord(DbfTable& dbf, bool& endOfData, std::string& line, std::size_t width);

} // namespace gridforge::gis::shp
