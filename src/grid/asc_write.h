// Writes rows of cells as the text of an .asc grid.
#pragma once

#include "grid/asc_format.h"
#include "grid/cell_source.h"
#include "host/units.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace gridforge::grid {

// The lowest and the highest of all cells. None if cells cannot be had.
std::optional<ValueRange> extremesOf(const CellSource& cells);

// The width of a field that all cells fit in: room for the largest magnitude, the decimals, the sign and a blank.
std::int32_t ascFieldWidth(const CellSource& cells, std::int32_t decimals);

// How a row becomes text: fields of one length, and a line end.
struct RowText {
    std::size_t fieldBytes = 1;
    std::function<void(std::span<const float> row, char* out)> format;
};

// Writes rows to an open text unit. Where the file has positions several threads format and write all of them at once.
class RowWriter {
public:
    RowWriter(Unit unit, const CellSource& cells, RowText text);
    // Rows are written from the north; does nothing for one that has been written with the others.
    void write(std::int32_t row);

private:
    Unit unit_;
    CellSource cells_;
    RowText text_;
    bool isWritten_;
    std::vector<float> room_;
};

// Writes all rows to an open text unit, with the number of each thousandth row on the console.
void writeAscRows(Unit unit, const CellSource& cells, std::int32_t width, std::int32_t decimals);

} // namespace gridforge::grid
