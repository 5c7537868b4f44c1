// Small inputs of damage runs, made so that results can be told by heart: on a grid of cell size 1 cell (row, column) from
// the south-west has the level 10 row + column, and the damage of the curve is 100 a metre up to 100 m.
#pragma once

#include "support/grids.h"
#include "support/layer_files.h"

#include <string>
#include <string_view>

namespace gridforge::test {

inline std::string levels(int rows, int columns, double add = 0)
{
    Cells cells;
    for (int row = rows; row >= 1; --row) {
        cells.emplace_back();
        for (int column = 1; column <= columns; ++column) {
            cells.back().push_back(10 * row + column + add);
        }
    }
    return ascGrid(cells);
}

inline const std::string kHundredAMetre = "Depth,Damage\n0,0\n100,10000\n";

inline std::string buildingsMif(std::string_view objects)
{
    return mifHeader({"Prop_Type Char(20)", "Prop_ID Char(20)", "FFL Float", "Multiplier Float"}, kHundredBounds) +
           std::string(objects);
}

inline std::string pointMif(std::string_view x, std::string_view y)
{
    return "Point " + std::string(x) + " " + std::string(y) + "\n    Symbol (35,0,12)\n";
}

// A rectangle, closed.
inline std::string boxMif(double x1, double y1, double x2, double y2)
{
    const auto corner = [](double x, double y) { return std::to_string(x) + " " + std::to_string(y) + "\n"; };
    return "Region  1\n  5\n" + corner(x1, y1) + corner(x2, y1) + corner(x2, y2) + corner(x1, y2) + corner(x1, y1) +
           "    Pen (1,2,0)\n    Brush (1,0,16777215)\n";
}

// One layer h.mif, one curve and one grid of 1 % a year.
inline const std::string kPlainControl = "Read GIS Building == h.mif\n"
                                         "Read Curve House == house.csv\n"
                                         "Read Result % 1 == wl.asc\n";

// Gives a run or a folder the files of the plain control file; `records` has a line for each object.
template <typename Folder>
void giveDamageFiles(Folder& folder, std::string_view objects, std::string_view records)
{
    folder.give("c.dmg", kPlainControl);
    folder.give("house.csv", kHundredAMetre);
    folder.give("h.mif", buildingsMif(objects));
    folder.give("h.mid", records);
    folder.give("wl.asc", levels(6, 8));
}

} // namespace gridforge::test
