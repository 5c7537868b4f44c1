#include "sampling/ground_level.h"

#include "support/odd_cells.h"
#include "support/searched_cells.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

namespace gridforge::test {
namespace {

constexpr float kNullCell = -9999.0F;

// Cell (row, column) is 10 row + column.
struct Numbered {
    GridHeader header;
    Grid cells;

    explicit Numbered(float cellsize = 1.0F, std::int32_t count = 9)
    {
        header.nrows = count;
        header.ncols = count;
        header.xll = 0;
        header.yll = 0;
        header.cellsize = cellsize;
        header.cellsize8 = static_cast<double>(cellsize);
        header.null = kNullCell;
        EXPECT_TRUE(cells.allocate(count, count));
        for (std::int32_t row = 1; row <= count; ++row) {
            for (std::int32_t column = 1; column <= count; ++column) {
                cells(row, column) = static_cast<float>(10 * row + column);
            }
        }
    }
};

TEST(LevelRule, IsToldByWordsAnywhereInTheOptionsAndMaxWins)
{
    EXPECT_EQ(sampling::levelRule(""), sampling::LevelRule::mean);
    EXPECT_EQ(sampling::levelRule("Perp"), sampling::LevelRule::mean);
    EXPECT_EQ(sampling::levelRule("Max"), sampling::LevelRule::highest);
    EXPECT_EQ(sampling::levelRule("perpMAXIMUM"), sampling::LevelRule::highest);
    EXPECT_EQ(sampling::levelRule("Min"), sampling::LevelRule::lowest);
    EXPECT_EQ(sampling::levelRule("administer"), sampling::LevelRule::lowest);
    EXPECT_EQ(sampling::levelRule("Min Max"), sampling::LevelRule::highest);
}

// --- One cell --------------------------------------------------------------------------------------------------------

TEST(LevelOfCell, RoundsFromAHalfMapUnitOn)
{
    const Numbered made;
    const auto level = [&](double x, double y) { return sampling::levelOfCell(made.header, made.cells, x, y).value; };
    EXPECT_EQ(level(4.3, 4.4), 44);
    EXPECT_EQ(level(4.5, 4.5), 44); // a half is not above a half
    EXPECT_EQ(level(4.51, 4.4), 45);
    EXPECT_EQ(level(4.4, 4.51), 54);
    EXPECT_EQ(level(0.6, 1), 11);
    EXPECT_EQ(level(9.5, 9.2), 99);
}

TEST(LevelOfCell, ComparesWithMapUnitsWhateverTheCellSize)
{
    const Numbered large(10.0F);
    // Half of a cell of 10 is 5, yet 0.6 beyond its start goes to the next index.
    EXPECT_EQ(sampling::levelOfCell(large.header, large.cells, 40.4, 40.4).value, 44);
    EXPECT_EQ(sampling::levelOfCell(large.header, large.cells, 40.6, 40.4).value, 45);
    const Numbered small(0.5F);
    // What is left of a cell of 0.5 is never above 0.5.
    EXPECT_EQ(sampling::levelOfCell(small.header, small.cells, 2.49, 2.0).value, 44);
}

TEST(LevelOfCell, OutsideTheGridIs99999)
{
    const Numbered made;
    for (const auto& [x, y] : {std::pair(0.4, 5.0), std::pair(9.6, 5.0), std::pair(5.0, 0.4), std::pair(5.0, 9.6),
                               std::pair(-0.7, 5.0), std::pair(1e300, 5.0), std::pair(5.0, std::nan(""))}) {
        const sampling::GroundLevel level = sampling::levelOfCell(made.header, made.cells, x, y);
        EXPECT_TRUE(level.outside) << x << " " << y;
        EXPECT_EQ(level.value, 99999.0F);
    }
}

TEST(LevelOfCell, GivesNullAsItStands)
{
    Numbered made;
    made.cells(4, 4) = kNullCell;
    const sampling::GroundLevel level = sampling::levelOfCell(made.header, made.cells, 4, 4);
    EXPECT_EQ(level.value, kNullCell);
    EXPECT_FALSE(level.outside);
}

// --- Four cells ------------------------------------------------------------------------------------------------------

float ofFour(const Numbered& made, double x, double y, sampling::LevelRule rule)
{
    return sampling::levelOfFourCells(made.header, made.cells, x, y, rule).value;
}

TEST(LevelOfFourCells, TakesTheCellOfThePointAndItsNorthEastNeighbours)
{
    const Numbered made;
    EXPECT_EQ(ofFour(made, 4.9, 5.1, sampling::LevelRule::highest), 65); // rows 5 and 6, columns 4 and 5
    EXPECT_EQ(ofFour(made, 4.9, 5.1, sampling::LevelRule::lowest), 54);
    EXPECT_EQ(ofFour(made, 4.9, 5.1, sampling::LevelRule::mean), (54 + 55 + 64 + 65) / 4.0F);
}

TEST(LevelOfFourCells, LeavesNullsOutAndIsNullWhereAllAre)
{
    Numbered made;
    made.cells(5, 4) = kNullCell;
    EXPECT_EQ(ofFour(made, 4, 5, sampling::LevelRule::mean), (55 + 64 + 65) / 3.0F);
    EXPECT_EQ(ofFour(made, 4, 5, sampling::LevelRule::lowest), 55);
    made.cells(5, 5) = made.cells(6, 4) = made.cells(6, 5) = kNullCell;
    const sampling::GroundLevel level =
        sampling::levelOfFourCells(made.header, made.cells, 4, 5, sampling::LevelRule::mean);
    EXPECT_EQ(level.value, kNullCell);
    EXPECT_EQ(level.count, 0);
    EXPECT_FALSE(level.outside);
}

TEST(LevelOfFourCells, NeedsAllFourInTheGrid)
{
    const Numbered made;
    EXPECT_EQ(ofFour(made, 1, 1, sampling::LevelRule::lowest), 11);
    EXPECT_EQ(ofFour(made, 8.9, 8.9, sampling::LevelRule::highest), 99);
    for (const auto& [x, y] : {std::pair(0.9, 5.0), std::pair(5.0, 0.9), std::pair(9.0, 5.0), std::pair(5.0, 9.0),
                               std::pair(1e300, 5.0), std::pair(std::nan(""), 5.0)}) {
        EXPECT_TRUE(sampling::levelOfFourCells(made.header, made.cells, x, y, sampling::LevelRule::mean).outside)
            << x << " " << y;
    }
}

TEST(LevelOfFourCells, SumsInSinglePrecisionFromTheSouthWest)
{
    Numbered made;
    made.cells(1, 1) = 16777216.0F;
    made.cells(1, 2) = made.cells(2, 1) = made.cells(2, 2) = 1.0F;
    EXPECT_EQ(ofFour(made, 1, 1, sampling::LevelRule::mean), 4194304.0F); // each 1 is lost in a sum of 2^24
    made.cells(1, 1) = 1.0F;
    made.cells(2, 2) = 16777216.0F;
    EXPECT_EQ(ofFour(made, 1, 1, sampling::LevelRule::mean), 4194305.0F); // 2^24 + 3 becomes 2^24 + 4
}

// --- Across the line -------------------------------------------------------------------------------------------------

TEST(LevelAcross, TakesTheSamplesInTheGridAndTheirCells)
{
    Numbered made;
    const AcrossLine north = acrossLine(made.header, 4, 5, 90.0F);
    const auto level = [&](std::int32_t k, sampling::LevelRule rule) {
        return sampling::levelAcross(north, made.header, made.cells, {-k, k}, rule);
    };
    EXPECT_EQ(level(1, sampling::LevelRule::mean).value, (44 + 54 + 64) / 3.0F);
    EXPECT_EQ(level(1, sampling::LevelRule::mean).count, 3);
    const sampling::GroundLevel highest = level(3, sampling::LevelRule::highest);
    EXPECT_EQ(highest.value, 84);
    EXPECT_EQ(highest.x, 3.5); // the centre of the cell
    EXPECT_EQ(highest.y, 7.5);
    made.cells(1, 4) = kNullCell;
    const sampling::GroundLevel lowest = level(50, sampling::LevelRule::lowest); // to rows 1 and 9
    EXPECT_EQ(lowest.value, 24);
    EXPECT_EQ(lowest.y, 1.5);
    EXPECT_EQ(lowest.count, 8);
}

TEST(LevelAcross, KeepsTheFirstOfEqualCells)
{
    Numbered made;
    for (float& cell : made.cells.cells()) {
        cell = 7;
    }
    const AcrossLine north = acrossLine(made.header, 4, 5, 90.0F);
    EXPECT_EQ(sampling::levelAcross(north, made.header, made.cells, {-2, 2}, sampling::LevelRule::highest).y,
              2.5); // row 3, by k = -2
    EXPECT_EQ(sampling::levelAcross(north, made.header, made.cells, {-2, 2}, sampling::LevelRule::lowest).y, 2.5);
}

TEST(LevelAcross, IsOutsideWhereNoSampleHasAValue)
{
    Numbered made;
    for (float& cell : made.cells.cells()) {
        cell = kNullCell;
    }
    const AcrossLine north = acrossLine(made.header, 4, 5, 90.0F);
    const sampling::GroundLevel level =
        sampling::levelAcross(north, made.header, made.cells, {-2, 2}, sampling::LevelRule::highest);
    EXPECT_TRUE(level.outside);
    EXPECT_EQ(level.value, 99999.0F);
    EXPECT_EQ(level.count, 0);
    const Numbered filled;
    EXPECT_TRUE(sampling::levelAcross(acrossLine(filled.header, 40, 5, 90.0F), filled.header, filled.cells, {-2, 2},
                                      sampling::LevelRule::mean)
                    .outside);
}

// --- In a circle -----------------------------------------------------------------------------------------------------

sampling::GroundLevel inCircle(const GridHeader& header, const Grid& cells, double x, double y, float width,
                               sampling::LevelRule rule)
{
    InsideWalk walk;
    return sampling::levelInCircle(sampling::searchPolygon(x, y, width), searchWindow(header, x, y, width), header,
                                   cells, rule, walk);
}

TEST(LevelInCircle, TakesTheCellsWhoseCentresAreInside)
{
    Numbered made;
    // Around the centre of cell (5, 5) its eight neighbours lie up to 1.42 away; the sides of the polygon lie 1.9 cos 15
    // = 1.83 away, and the next centres 2.
    const auto level = [&](sampling::LevelRule rule) {
        return inCircle(made.header, made.cells, 4.5, 4.5, 3.8F, rule);
    };
    EXPECT_EQ(level(sampling::LevelRule::mean).value, 55);
    EXPECT_EQ(level(sampling::LevelRule::mean).count, 9);
    const sampling::GroundLevel highest = level(sampling::LevelRule::highest);
    EXPECT_EQ(highest.value, 66);
    EXPECT_EQ(highest.x, 5.5);
    EXPECT_EQ(highest.y, 5.5);
    made.cells(4, 4) = kNullCell;
    const sampling::GroundLevel lowest = level(sampling::LevelRule::lowest);
    EXPECT_EQ(lowest.value, 45);
    EXPECT_EQ(lowest.x, 4.5);
    EXPECT_EQ(lowest.y, 3.5);
    EXPECT_EQ(lowest.count, 8);
}

TEST(LevelInCircle, IsOutsideByItsWindowAndNullByItsCells)
{
    Numbered made;
    EXPECT_TRUE(inCircle(made.header, made.cells, 2.8, 4.5, 3.8F, sampling::LevelRule::mean).outside); // column 0.9
    EXPECT_FALSE(inCircle(made.header, made.cells, 2.9, 4.5, 3.8F, sampling::LevelRule::mean).outside);
    EXPECT_FALSE(inCircle(made.header, made.cells, 7.1, 4.5, 3.8F, sampling::LevelRule::mean).outside); // to 9
    EXPECT_TRUE(inCircle(made.header, made.cells, 7.2, 4.5, 3.8F, sampling::LevelRule::mean).outside);  // to 9.1
    for (float& cell : made.cells.cells()) {
        cell = kNullCell;
    }
    const sampling::GroundLevel level = inCircle(made.header, made.cells, 4.5, 4.5, 3.8F, sampling::LevelRule::highest);
    EXPECT_FALSE(level.outside);
    EXPECT_EQ(level.value, kNullCell);
    EXPECT_EQ(level.count, 0);
}

// --- Plain twins -----------------------------------------------------------------------------------------------------

// The cells that count, in the order in which they come.
struct SeenCell {
    float value;
    double x;
    double y;
};

// What is no number is neither higher nor lower than anything, and the extreme only where nothing else is.
sampling::GroundLevel plainLevel(const std::vector<SeenCell>& cells, float null, sampling::LevelRule rule)
{
    sampling::GroundLevel level;
    level.count = static_cast<std::int64_t>(cells.size());
    level.value = null;
    if (cells.empty()) {
        return level;
    }
    SeenCell best = cells.front();
    float sum = 0;
    for (const SeenCell& cell : cells) {
        sum += cell.value;
        const bool better = rule == sampling::LevelRule::highest ? cell.value > best.value : cell.value < best.value;
        if (better || (std::isnan(best.value) && !std::isnan(cell.value))) {
            best = cell;
        }
    }
    if (rule == sampling::LevelRule::mean) {
        level.value = sum / static_cast<float>(cells.size());
    } else {
        level.value = best.value;
        level.x = best.x;
        level.y = best.y;
    }
    return level;
}

// Each cell of the window by itself.
sampling::GroundLevel inCirclePlainly(const GridHeader& h, const Grid& cells, double x, double y, float width,
                                      sampling::LevelRule rule)
{
    const sampling::SearchPolygon polygon = sampling::searchPolygon(x, y, width);
    const CellWindow w = searchWindow(h, x, y, width);
    std::vector<SeenCell> seen;
    for (std::int32_t r = w.firstRow; r <= w.lastRow; ++r) {
        for (std::int32_t c = w.firstColumn; c <= w.lastColumn; ++c) {
            const double px = h.xll + static_cast<double>(static_cast<float>(c)) * h.cellsize8 - 0.5 * h.cellsize8;
            const double py = h.yll + static_cast<double>(static_cast<float>(r)) * h.cellsize8 - 0.5 * h.cellsize8;
            if (sampling::insideSearchPolygon(polygon, px, py) && cells(r, c) != h.null) {
                seen.push_back({cells(r, c), px, py});
            }
        }
    }
    return plainLevel(seen, h.null, rule);
}

sampling::GroundLevel acrossPlainly(const GridHeader& h, const Grid& cells, const AcrossLine& line,
                                    const SampleRange& range, sampling::LevelRule rule)
{
    std::vector<SeenCell> seen;
    for (std::int32_t k = range.first; k <= range.last; ++k) {
        const double column = std::round((line.x + (h.cellsize8 * k) * line.ux - h.xll) / h.cellsize8);
        const double row = std::round((line.y + (h.cellsize8 * k) * line.uy - h.yll) / h.cellsize8);
        if (!(column >= 1 && column <= h.ncols && row >= 1 && row <= h.nrows)) {
            continue;
        }
        const float value = cells(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
        if (value != h.null) {
            seen.push_back({value, h.xll + column * h.cellsize8 - 0.5 * h.cellsize8,
                            h.yll + row * h.cellsize8 - 0.5 * h.cellsize8});
        }
    }
    return plainLevel(seen, h.null, rule);
}

sampling::GroundLevel ofFourPlainly(const GridHeader& h, const Grid& cells, std::int32_t row, std::int32_t column,
                                    sampling::LevelRule rule)
{
    std::vector<SeenCell> seen;
    for (const auto& [r, c] : {std::pair(row, column), {row, column + 1}, {row + 1, column}, {row + 1, column + 1}}) {
        if (cells(r, c) != h.null) {
            seen.push_back({cells(r, c), 0, 0});
        }
    }
    return plainLevel(seen, h.null, rule);
}

constexpr sampling::LevelRule kRules[] = {sampling::LevelRule::mean, sampling::LevelRule::highest,
                                          sampling::LevelRule::lowest};

void expectSameLevel(const sampling::GroundLevel& found, const sampling::GroundLevel& plain, bool withPlace)
{
    EXPECT_EQ(bitsOfValue(found.value), bitsOfValue(plain.value)) << found.value << " in place of " << plain.value;
    EXPECT_EQ(found.count, plain.count);
    if (withPlace && plain.count > 0) {
        EXPECT_EQ(found.x, plain.x);
        EXPECT_EQ(found.y, plain.y);
    }
}

// Calls look(grid, x, y) at places all over grids of odd cells.
template <typename Look>
void atPlacesOfOddGrids(const Look& look)
{
    std::mt19937 random(9);
    for (const float null : kOddNulls) {
        for (std::uint32_t seed = 1; seed <= 6; ++seed) {
            SearchedGrid made;
            makeOdd(made, 30, 40, null, seed);
            for (int vertex = 0; vertex < 150; ++vertex) {
                const double x = placeOn(made.header.xll, made.header.cellsize8, made.header.ncols, random);
                const double y = placeOn(made.header.yll, made.header.cellsize8, made.header.nrows, random);
                look(made, x, y);
                ASSERT_FALSE(testing::Test::HasFailure())
                    << "null " << null << ", grid " << seed << ", vertex " << vertex;
            }
        }
    }
}

TEST(LevelOfFourCells, GivesTheBitsOfThePlainFormForOddCells)
{
    int compared = 0;
    atPlacesOfOddGrids([&](const SearchedGrid& made, double x, double y) {
        const GridHeader& h = made.header;
        const auto column = static_cast<std::int32_t>((x - h.xll) / h.cellsize8);
        const auto row = static_cast<std::int32_t>((y - h.yll) / h.cellsize8);
        if (row < 1 || row >= h.nrows || column < 1 || column >= h.ncols) {
            return;
        }
        ++compared;
        for (const sampling::LevelRule rule : kRules) {
            expectSameLevel(sampling::levelOfFourCells(h, made.cells, x, y, rule),
                            ofFourPlainly(h, made.cells, row, column, rule), false);
        }
    });
    EXPECT_GT(compared, 1000);
}

TEST(LevelAcross, GivesTheBitsOfThePlainLoopForOddCells)
{
    int compared = 0;
    std::mt19937 random(10);
    atPlacesOfOddGrids([&](const SearchedGrid& made, double x, double y) {
        const AcrossLine line = acrossLine(made.header, x, y, static_cast<float>(random() % 360));
        const auto steps = static_cast<std::int32_t>(random() % 5);
        for (const sampling::LevelRule rule : kRules) {
            const sampling::GroundLevel plain = acrossPlainly(made.header, made.cells, line, {-steps, steps}, rule);
            const sampling::GroundLevel found =
                sampling::levelAcross(line, made.header, made.cells, {-steps, steps}, rule);
            EXPECT_EQ(found.outside, plain.count == 0);
            if (plain.count > 0) {
                ++compared;
                expectSameLevel(found, plain, rule != sampling::LevelRule::mean);
            }
        }
    });
    EXPECT_GT(compared, 1000);
}

TEST(LevelInCircle, GivesTheBitsOfThePlainLoopForOddCells)
{
    int compared = 0;
    std::mt19937 random(11);
    atPlacesOfOddGrids([&](const SearchedGrid& made, double x, double y) {
        const float width = made.header.cellsize * (1.5F + static_cast<float>(random() % 40) / 10);
        if (!isWithinGrid(searchWindow(made.header, x, y, width), made.header)) {
            return;
        }
        ++compared;
        for (const sampling::LevelRule rule : kRules) {
            expectSameLevel(inCircle(made.header, made.cells, x, y, width, rule),
                            inCirclePlainly(made.header, made.cells, x, y, width, rule),
                            rule != sampling::LevelRule::mean);
        }
    });
    EXPECT_GT(compared, 1000);
}

TEST(GroundLevel, OfCellsThatAreNoNumberOrInfiniteHasTheirPlace)
{
    Numbered made;
    for (float& cell : made.cells.cells()) {
        cell = -kInfinity;
    }
    const AcrossLine north = acrossLine(made.header, 4, 5, 90.0F);
    const auto highest = [&] {
        return sampling::levelAcross(north, made.header, made.cells, {-1, 1}, sampling::LevelRule::highest);
    };
    EXPECT_EQ(highest().value, -kInfinity);
    EXPECT_EQ(highest().x, 3.5);
    EXPECT_EQ(highest().y, 3.5);
    for (float& cell : made.cells.cells()) {
        cell = kNaN;
    }
    EXPECT_TRUE(std::isnan(highest().value));
    EXPECT_EQ(highest().y, 3.5);
    made.cells(6, 4) = -kInfinity;
    EXPECT_EQ(highest().value, -kInfinity);
    EXPECT_EQ(highest().y, 5.5);
}

TEST(LevelInCircle, GivesTheBitsOfThePlainLoop)
{
    std::mt19937 random(77);
    std::uniform_real_distribution<double> unit(0, 1);
    int compared = 0;
    for (int round = 0; round < 300; ++round) {
        Numbered made(round % 2 == 0 ? 1.0F : 0.99993681F, 40);
        made.header.xll = round % 3 == 0 ? 499403.841857712 : 0;
        made.header.yll = round % 3 == 0 ? 6173739.2532704433 : 0;
        for (float& cell : made.cells.cells()) {
            cell = unit(random) < 0.3 ? kNullCell : static_cast<float>(std::floor(unit(random) * 50) * 0.37);
        }
        const double x = made.header.xll + std::floor(unit(random) * 160) * 0.25;
        const double y = made.header.yll + std::floor(unit(random) * 160) * 0.25;
        const auto width = static_cast<float>(unit(random) * 30);
        if (!isWithinGrid(searchWindow(made.header, x, y, width), made.header)) {
            continue;
        }
        for (const sampling::LevelRule rule : kRules) {
            const sampling::GroundLevel found = inCircle(made.header, made.cells, x, y, width, rule);
            const sampling::GroundLevel plain = inCirclePlainly(made.header, made.cells, x, y, width, rule);
            ASSERT_EQ(found.value, plain.value) << round;
            ASSERT_EQ(found.count, plain.count) << round;
            if (rule != sampling::LevelRule::mean && plain.count > 0) {
                ASSERT_EQ(found.x, plain.x) << round;
                ASSERT_EQ(found.y, plain.y) << round;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 100);
}

} // namespace
} // namespace gridforge::test
