// Layers and grids for tests of the network builder, and one network drawn by hand.
#pragma once

#include "support/layer_files.h"
#include "support/tool_run.h"

#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {

// A whole number or fraction as short as it is.
inline std::string shortNumber(double value)
{
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

// A polyline object of these coordinates, x and y in turn.
inline std::string pline(const std::vector<double>& xy)
{
    std::string text = "Pline " + std::to_string(xy.size() / 2) + "\n";
    for (std::size_t i = 0; i + 1 < xy.size(); i += 2) {
        text += shortNumber(xy[i]) + " " + shortNumber(xy[i + 1]) + "\n";
    }
    return text + "    Pen (1,2,0)\n";
}

// A rectangular region of one ring.
inline std::string rectangle(double x1, double y1, double x2, double y2)
{
    std::string text = "Region  1\n  5\n";
    for (const auto& [x, y] : {std::pair(x1, y1), {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}) {
        text += shortNumber(x) + " " + shortNumber(y) + "\n";
    }
    return text + "    Pen (1,2,0)\n    Brush (1,0,16777215)\n";
}

inline std::string mifHead(const std::vector<std::string>& columns)
{
    return mifHeader(columns, kHundredBounds);
}

inline const std::vector<std::string> kBranchColumns = {"Name Char(30)", "n Float", "UCS Char(1)", "Form_Loss Float"};
inline const std::vector<std::string> kTypedColumns = {"Name Char(30)", "n Float", "UCS Char(1)", "Form_Loss Float",
                                                       "Type Char(4)"};
inline const std::vector<std::string> kCutColumns = {"Name Char(50)",       "Distance Float",     "Split_TF Char(12)",
                                                     "Extract_TF Char(12)", "Ex_Method Char(20)", "Buf_Method Char(20)",
                                                     "Buf_Dist Float"};
inline const std::vector<std::string> kTabColumns = {"Source Char(50)",   "Type Char(2)",      "Flags Char(8)",
                                                     "Column_1 Char(20)", "Column_2 Char(20)", "Column_3 Char(20)",
                                                     "Column_4 Char(20)", "Column_5 Char(20)", "Column_6 Char(20)",
                                                     "Z_Increment Float", "Z_Maximum Float",   "Skew Float"};

// <name>.mif and <name>.mid.
inline void giveLayer(ToolRun& run, const std::string& name, const std::vector<std::string>& columns,
                      const std::string& objects, const std::string& records)
{
    run.give(name + ".mif", mifHead(columns) + objects);
    run.give(name + ".mid", records);
}

// Cell (row, column) from the south-west is row + column / 100 + `add`. Sections see it at (column, row).
inline Cells sectionTerrain(int rows = 30, int columns = 60, double add = 0)
{
    Cells cells;
    for (int row = rows; row >= 1; --row) {
        cells.emplace_back();
        for (int column = 1; column <= columns; ++column) {
            cells.back().push_back(row + column / 100.0 + add);
        }
    }
    return cells;
}

//      y
//     30                                    T
//     25                                  9-T-9
//     20                                    T            10--10
//     14   4    1          2 7    .         .      8          5
//     10   M====|====m====M==|====X-X-------.-=====|=M========M     Main: vertices at x 0, 10, 20, 40, 50
//      6   4    1    3    2  7                     8          5     sections 3 and 6 too: at 10, and across at 20
//          0    5    10   20 25   30             35  40       50  x
//
// Trib comes down at x = 30 from y = 30 by 20 to 10. The connector leads from (30, 10) to (31, 10).
inline const std::string kDrawnBranches = pline({0, 10, 10, 10, 20, 10, 40, 10, 50, 10}) + "Point 3 3\n" +
                                          pline({30, 30, 30, 20, 30, 10}) + "Line 30 10 31 10\n    Pen (1,2,0)\n";
inline const std::string kDrawnBranchRecords =
    "\"Main\",0.03,\"T\",0.6\n\"no line\",1,\"T\",0\n\"Trib\",0,\"N\",-0.2\n\"X\",1,\"T\",0\n";

inline const std::string kDrawnSections =
    "Line 5 6 5 14\n" + pline({20, 6, 20, 10, 20, 14}) + pline({10, 6, 10, 10, 10, 14}) + pline({0, 6, 0, 10, 0, 14}) +
    pline({50, 6, 50, 10, 50, 14}) + pline({18, 8, 20, 10, 22, 12}) + "Line 25 14 25 6\n" + "Line 35 6 35 14\n" +
    "Line 28 25 32 25\n" + rectangle(1, 1, 2, 2) + "Line 55 20 58 20\n";
inline const std::string kDrawnSectionRecords = "\"\",0,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"\",0,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"\",0,\"F\",\"T\",\"\",\"\",0\n"
                                                "\"\",0,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"\",0,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"twin\",0,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"\",0,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"\",0,\"T\",\"n\",\"\",\"\",0\n"
                                                "\"\",1,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"no line\",0,\"T\",\"T\",\"\",\"\",0\n"
                                                "\"apart.CSV\",-1,\"False\",\"False\",\"\",\"\",0\n";

// 1d_branches_t and 1d_cut_t, the terrain and a folder for the tables.
inline void giveDrawnNetwork(ToolRun& run)
{
    giveLayer(run, "1d_branches_t", kBranchColumns, kDrawnBranches, kDrawnBranchRecords);
    giveLayer(run, "1d_cut_t", kCutColumns, kDrawnSections, kDrawnSectionRecords);
    run.give("dem.asc", ascGrid(sectionTerrain()));
    run.give("csv/.keep", "");
}

// The lines of a written .mif after its "Data" line and the empty line that follows.
inline std::string objectsOf(const ToolRun& run, std::string_view name)
{
    const std::string text = run.read(name);
    const std::size_t data = text.find("Data\r\n\r\n");
    return data == std::string::npos ? "no data" : text.substr(data + 8);
}

// A polyline as the tool writes it.
inline std::string writtenPline(const std::vector<double>& xy, const std::string& pen = "")
{
    std::string text = "Pline " + std::to_string(xy.size() / 2) + "\r\n";
    for (std::size_t i = 0; i + 1 < xy.size(); i += 2) {
        char line[64];
        std::snprintf(line, sizeof line, "%16.6f%16.6f\r\n", xy[i], xy[i + 1]);
        text += line;
    }
    return pen.empty() ? text : text + pen + "\r\n";
}

inline const std::string kChannelPen = "   Pen (2,59,255)";
inline const std::string kConnectorPen = "   Pen (2,3,16711680)";

// A record of a 1d_nwk layer.
inline std::string nwkRecord(const std::string& id, const std::string& type, const std::string& ucs,
                             const std::string& n, const std::string& formLoss, const std::string& exitLoss = "0.000")
{
    return "\"" + id + "\",\"" + type + "\",\"F\",\"" + ucs + "\",0.000," + n + ",-99999.000,-99999.000," + formLoss +
           ",0.000,\"\",\"\",0,0.000,0.000,0,0.000,0.000,0.000," + exitLoss + "\r\n";
}

// A record of a 1d_xs layer without columns.
inline std::string xsRecord(const std::string& source, const std::string& type, const std::string& flags,
                            const std::string& distance)
{
    return "\"" + source + "\",\"" + type + "\",\"" + flags + "\",\"\",\"\",\"\",\"\",\"\",\"\"," + distance +
           ",0.000,0.000\r\n";
}

} // namespace gridforge::test
