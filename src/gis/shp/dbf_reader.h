// .dbf tables, given record by record as the comma-separated line that a .mid holds.
#pragma once

#include "gis/shp/records.h"

#include <cstddef>
#include <string>

namespace gridforge::gis::shp {

// Rewinds, reads the field list with its console lines, and stops at the first record.
void dbfReadHeader(DbfTable& dbf);

// Reads the next record that is not deleted into the caller's reused text, as one line cut at `width`. At the byte that ends
// the table `endOfData` becomes true and the line blank; otherwise it becomes false, and the caller asks atEnd(dbfUnit).
void dbfReadRecord(DbfTable& dbf, bool& endOfData, std::string& line, std::size_t width);

} // namespace gridforge::gis::shp
