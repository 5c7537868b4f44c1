#include "run/load.h"

#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "host/console.h"

namespace gridforge {

void readAnnounced(std::string_view name, GridHeader& header, Grid& cells)
{
    say("Reading: ", name);
    readGridCells(name, header, cells);
}

GridHeader readFurtherHeader(std::string_view name, const GridHeader& first)
{
    GridHeader header = readGridHeader(name);
    compareGridDimensions(first, header);
    return header;
}

GridHeader loadInput(const InputFileList& inputs, std::int32_t i, const GridHeader& first, Grid& cells)
{
    GridHeader current = i == 1 ? first : readFurtherHeader(inputs[i], first);
    readGridCells(inputs[i], current, cells);
    return current;
}

} // namespace gridforge
