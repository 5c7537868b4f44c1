#include "sampling/ground_level.h"

#include "core/rounding.h"
#include "core/text.h"

#include <cmath>

namespace gridforge::sampling {

namespace {

GroundLevel outsideLevel()
{
    GroundLevel level;
    level.value = kNoGround;
    level.outside = true;
    return level;
}

// The row or column of a coordinate. What is compared with a half is the distance from the cell's start in map units,
// whatever the cell size: it rounds on cells of 1 only, and results of old models rest on that.
std::int32_t roundedIndex(double coordinate, double origin, double dx)
{
    constexpr double kHalf = 0.5;
    const double index = (coordinate - origin) / dx;
    const double beyond = std::fmod(coordinate - origin, dx);
    return beyond > kHalf ? truncateToInt(index + 1.0) : truncateToInt(index);
}

// The cells of one search in the order in which they come. Sums are single precision, so their order counts.
class LevelTally {
public:
    LevelTally(LevelRule rule, float null) : rule_(rule), null_(null) {}

    void add(float value, std::int32_t row, std::int32_t column)
    {
        if (value == null_) {
            return;
        }
        ++count_;
        if (rule_ == LevelRule::mean) {
            sum_ += value;
        } else if (count_ == 1 || isBetter(value)) {
            extreme_ = value;
            row_ = row;
            column_ = column;
        }
    }

    std::int64_t count() const { return count_; }
    // The row and column of the extreme; 0 for none.
    std::int32_t row() const { return row_; }
    std::int32_t column() const { return column_; }

    // Null where there was no value. The place is left to the caller.
    GroundLevel level() const
    {
        GroundLevel level;
        level.count = count_;
        if (count_ == 0) {
            level.value = null_;
        } else {
            level.value = rule_ == LevelRule::mean ? sum_ / static_cast<float>(count_) : extreme_;
        }
        return level;
    }

private:
    // What is no number is neither higher nor lower than anything: it stays only where nothing else comes.
    bool isBetter(float value) const
    {
        return std::isnan(extreme_)          ? !std::isnan(value)
               : rule_ == LevelRule::highest ? value > extreme_
                                             : value < extreme_;
    }

    LevelRule rule_;
    float null_;
    float sum_ = 0;
    float extreme_ = 0;
    std::int64_t count_ = 0;
    std::int32_t row_ = 0;
    std::int32_t column_ = 0;
};

} // namespace

LevelRule levelRule(std::string_view options)
{
    if (FLAGEXISTS(options, "Max")) {
        return LevelRule::highest;
    }
    return FLAGEXISTS(options, "Min") ? LevelRule::lowest : LevelRule::mean;
}

GroundLevel levelOfCell(const GridHeader& header, const Grid& cells, double x, double y)
{
    const std::int32_t row = roundedIndex(y, header.yll, header.cellsize8);
    const std::int32_t column = roundedIndex(x, header.xll, header.cellsize8);
    if (row < 1 || row > header.nrows || column < 1 || column > header.ncols) {
        return outsideLevel();
    }
    GroundLevel level;
    level.value = cells(row, column);
    return level;
}

GroundLevel levelOfFourCells(const GridHeader& header, const Grid& cells, double x, double y, LevelRule rule)
{
    const std::int32_t column = truncateToInt((x - header.xll) / header.cellsize8);
    const std::int32_t row = truncateToInt((y - header.yll) / header.cellsize8);
    if (row <= 0 || row >= header.nrows || column <= 0 || column >= header.ncols) {
        return outsideLevel();
    }
    LevelTally tally(rule, header.null);
    for (std::int32_t r = row; r <= row + 1; ++r) {
        for (std::int32_t c = column; c <= column + 1; ++c) {
            tally.add(cells(r, c), r, c);
        }
    }
    return tally.level();
}

GroundLevel levelAcross(const AcrossLine& line, const GridHeader& header, const Grid& cells, const SampleRange& range,
                        LevelRule rule)
{
    LevelTally tally(rule, header.null);
    forEachSample(line, header, range, [&](std::int32_t /*k*/, const SampleCell& cell) {
        tally.add(cells(cell.row, cell.column), cell.row, cell.column);
    });
    if (tally.count() == 0) {
        return outsideLevel();
    }
    GroundLevel level = tally.level();
    level.x = sampleCellX(header, tally.column());
    level.y = sampleCellY(header, tally.row());
    return level;
}

GroundLevel levelInCircle(const SearchPolygon& polygon, const CellWindow& window, const GridHeader& header,
                          const Grid& cells, LevelRule rule, InsideWalk& walk)
{
    if (!isWithinGrid(window, header)) {
        return outsideLevel();
    }
    prepareWalk(polygon, walk);
    LevelTally tally(rule, header.null);
    forEachInsideRun(header, window, CellPlace::centre, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         std::int32_t column = first;
                         for (const float value : cellsOfRun(cells, row, first, count)) {
                             tally.add(value, row, column++);
                         }
                     });
    GroundLevel level = tally.level();
    level.x = centreX(header, tally.column());
    level.y = centreY(header, tally.row());
    return level;
}

} // namespace gridforge::sampling
