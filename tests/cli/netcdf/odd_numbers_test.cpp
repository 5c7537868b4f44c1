// A whole run of -nc on grids that hold every odd number, against plain loops over the cells.
#include "support/odd_grids.h"
#include "support/read_netcdf.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr float kNulls[] = {-9999, -1, -9999}; // those of the further grids say nothing
constexpr std::size_t kCells = kOddRows * kOddColumns;

// Where the file's values of a grid come from: its place in a .flt, the north row first.
using Place = std::size_t (*)(std::size_t);

std::size_t inRows(std::size_t i)
{
    const std::size_t row = i / kOddColumns; // from the south
    return (kOddRows - 1 - row) * kOddColumns + i % kOddColumns;
}

// The cells column after column, each from the south, which the file then takes for rows.
std::size_t asOneBlock(std::size_t i)
{
    const std::size_t row = i % kOddRows;
    return (kOddRows - 1 - row) * kOddColumns + i / kOddRows;
}

std::vector<Values> gridsOfSeries()
{
    std::vector<Values> grids;
    for (const float null : kNulls) {
        grids.push_back(oddGrid(null, static_cast<std::uint32_t>(grids.size() + 20)));
    }
    return grids;
}

// Of the cells above the null of the first grid; that null where there is none.
Values maximumOf(const std::vector<Values>& grids)
{
    Values maximum(kCells, kNulls[0]);
    for (const Values& grid : grids) {
        for (std::size_t i = 0; i < kCells; ++i) {
            if (grid[i] > kNulls[0] + 0.01F && grid[i] > maximum[i]) {
                maximum[i] = grid[i];
            }
        }
    }
    return maximum;
}

Values placed(const Values& cells, Place place)
{
    Values result;
    for (std::size_t i = 0; i < kCells; ++i) {
        result.push_back(cells[place(i)]);
    }
    return result;
}

Values singles(const std::vector<double>& values)
{
    Values result;
    for (const double value : values) {
        result.push_back(static_cast<float>(value));
    }
    return result;
}

void expectSeries(const std::string& options, Place place)
{
    ToolRun run(("-b -nc" + options + " g1.flt g2.flt g3.flt -out r").c_str());
    for (std::uint32_t k = 0; k < std::size(kNulls); ++k) {
        giveOddGrid(run, "g" + std::to_string(k + 1), kNulls[k], k + 20);
    }
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    const NetcdfReading file(run, "r.nc");
    Values series;
    for (const Values& grid : gridsOfSeries()) {
        const Values step = placed(grid, place);
        series.insert(series.end(), step.begin(), step.end());
    }
    expectSameBits(singles(file.values("data_temporal")), series);
    expectSameBits(singles(file.values("data_max")), placed(maximumOf(gridsOfSeries()), place));
}

TEST(NcOddNumbers, GoIntoTheSeriesByTheirBits)
{
    expectSeries("", asOneBlock);
    expectSeries(" -nc_part1", inRows);
    expectSeries(" -nc_comp0 -nc_shuffle0", asOneBlock);
}

} // namespace
} // namespace gridforge::test
