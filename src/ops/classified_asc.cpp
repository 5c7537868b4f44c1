#include "ops/classified_asc.h"

#include "core/number_text.h"
#include "core/text.h"
#include "grid/allocate.h"
#include "grid/asc_write.h"
#include "host/console.h"
#include "run/rows.h"

#include <algorithm>
#include <array>
#include <span>

namespace gridforge::ops {

namespace {

constexpr std::size_t kNumberWidth = 4;

// The text of each class number in a classified grid: 0 stands for null.
class NumberTexts {
public:
    NumberTexts()
    {
        for (std::size_t i = 0; i < texts_.size(); ++i) {
            const std::string text = integerField(static_cast<std::int64_t>(i), static_cast<int>(kNumberWidth));
            std::ranges::copy(text, texts_[i].begin());
        }
    }
    const std::array<char, kNumberWidth>& operator[](std::int32_t number) const
    {
        return texts_[static_cast<std::size_t>(number)];
    }

private:
    std::array<std::array<char, kNumberWidth>, kMaxClasses + 2> texts_{};
};

std::string classLine(std::size_t number, const ClassRow& row)
{
    constexpr int kIndexWidth = 3;
    constexpr int kColourWidth = 4;
    return join(integerField(static_cast<std::int64_t>(number), kIndexWidth), ' ', quoted(trim(row.name)), ' ',
                integerField(row.red, kColourWidth), integerField(row.green, kColourWidth),
                integerField(row.blue, kColourWidth));
}

void writeClassLines(Unit unit, const ClassTable& table)
{
    constexpr int kCountWidth = 3;
    const std::size_t above = table.size() + 1;
    writeLine(unit, join("nClasses", integerField(static_cast<std::int64_t>(above), kCountWidth)));
    for (std::size_t i = 0; i < table.size(); ++i) {
        writeLine(unit, classLine(i + 1, table[i]));
    }
    writeLine(unit, classLine(above, {.limit = 0, .name = "Above", .red = 255, .green = 0, .blue = 0}));
}

// The numbers come from the classified cells, so a class whose number is the grid's null is written 0 too, on purpose.
void formatNumbers(std::span<const float> cells, float null, const NumberTexts& texts, char* out)
{
    for (const float cell : cells) {
        out = std::ranges::copy(texts[cell == null ? 0 : static_cast<std::int32_t>(cell)], out).out;
    }
}

} // namespace

void writeAscHeaderText(Unit unit, std::string_view displayName, std::int32_t nrows, std::int32_t ncols, double xll,
                        double yll, double cellsize)
{
    constexpr int kColumns = 10;
    constexpr int kCornerColumns = 16;
    constexpr int kCornerDecimals = 3;
    constexpr int kCellColumns = 8;
    constexpr int kCellDecimals = 2;
    say("Writing Header for: ", displayName);
    writeLine(unit, join("ncols", integerField(ncols, kColumns)));
    writeLine(unit, join("nrows", integerField(nrows, kColumns)));
    writeLine(unit, join("xllcorner", realField(xll, kCornerColumns, kCornerDecimals)));
    writeLine(unit, join("yllcorner", realField(yll, kCornerColumns, kCornerDecimals)));
    writeLine(unit, join("cellsize", realField(cellsize, kCellColumns, kCellDecimals)));
}

void writeClassifiedAsc(const std::string& name, const GridHeader& header, const grid::CellSource& classes,
                        const ClassTable& table)
{
    say("Writting .asc in classified format.");
    Unit unit = 0;
    OPENER(unit, "O ", name);
    markUnfinished(unit);
    writeAscHeaderText(unit, name, header.nrows, header.ncols, header.xll, header.yll, header.cellsize8);
    writeClassLines(unit, table);
    say("Allocating ", grid::gridKilobytes(header.nrows, header.ncols), "Kb memory for conversion to integer grid...");
    const NumberTexts texts;
    const auto format = [&texts, null = header.null](std::span<const float> row, char* out) {
        formatNumbers(row, null, texts, out);
    };
    grid::RowWriter rows(unit, classes, {kNumberWidth, format});
    for (std::int32_t row = header.nrows; row >= 1; --row) {
        rows.write(row);
        if (row % run::kProgressRows == 0) {
            progress(row);
        }
    }
    endLine();
    markFinished(unit);
    CLOSER(unit);
}

} // namespace gridforge::ops
