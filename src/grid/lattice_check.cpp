#include "grid/lattice_check.h"

#include "core/number_text.h"
#include "host/ends.h"

#include <cmath>
#include <string>
#include <string_view>

namespace gridforge::grid {

namespace {

// How much corners and cell sizes of the grids of one operation may differ: 0.01 in single precision, widened.
constexpr double kGridTolerance = static_cast<double>(0.01F);

bool isApart(double first, double second)
{
    return std::fabs(first - second) > kGridTolerance;
}

} // namespace

bool isSameLattice(const GridHeader& first, const GridHeader& second)
{
    return first.nrows == second.nrows && first.ncols == second.ncols && !isApart(first.xll, second.xll) &&
           !isApart(first.yll, second.yll) && !isApart(first.cellsize8, second.cellsize8);
}

void compareGridDimensions(const GridHeader& first, const GridHeader& second)
{
    bool match = true;
    const auto report = [&match](std::string_view message, const std::string& a, const std::string& b) {
        match = false;
        say(message, a, " and ", b);
    };
    if (first.nrows != second.nrows) {
        report("ERROR - number of rows for input grids do not match. Rows = ", AINTEGER(first.nrows),
               AINTEGER(second.nrows));
    }
    if (first.ncols != second.ncols) {
        report("ERROR - number of columns for input grids do not match. Columns = ", AINTEGER(first.ncols),
               AINTEGER(second.ncols));
    }
    if (isApart(first.xll, second.xll)) {
        report("ERROR - x coordinates of input grids do not match. xll = ", AREAL8(first.xll), AREAL8(second.xll));
    }
    if (isApart(first.yll, second.yll)) {
        report("ERROR - y coordinates of input grids do not match. yll = ", AREAL8(first.yll), AREAL8(second.yll));
    }
    if (isApart(first.cellsize8, second.cellsize8)) {
        report("ERROR - cell size of input grids do not match. cell sizes = ", AREAL8(first.cellsize8),
               AREAL8(second.cellsize8));
    }
    if (!match) {
        fail("ERROR - dimensions of grids do not match (see above for details).");
    }
}

} // namespace gridforge::grid
