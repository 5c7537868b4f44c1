#include "sampling/lp_cells.h"

namespace gridforge::sampling {

FoundSample lowestSample(const AcrossLine& line, const GridHeader& header, const Grid& cells, const SampleRange& range)
{
    FoundSample found{kNoLowest, 0, 0};
    forEachSample(line, header, range, [&](std::int32_t /*k*/, const SampleCell& cell) {
        const float value = cells(cell.row, cell.column);
        if (value != header.null && value < found.value) {
            found = {value, sampleCellX(header, cell.column), sampleCellY(header, cell.row)};
        }
    });
    return found;
}

FoundSample highestSample(const AcrossLine& line, const GridHeader& header, const Grid& cells, const SampleRange& range)
{
    FoundSample found{kNoHighest, 0, 0};
    forEachSample(line, header, range, [&](std::int32_t k, const SampleCell& cell) {
        const float value = cells(cell.row, cell.column);
        if (value != header.null && value > found.value) {
            found = {value, line.sampleX(k), line.sampleY(k)};
        }
    });
    return found;
}

} // namespace gridforge::sampling
