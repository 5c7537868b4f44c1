// A small rainfall case: two rows by three columns of 10 m from (100, 200), so the cell centres stand at x 105, 115, 125
// and y 205, 215; hyetographs a, b and c with the times 0 and 0.5.
#pragma once

#include "support/consoles.h"
#include "support/expect_run.h"
#include "support/layer_files.h"
#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <string>
#include <string_view>

namespace gridforge::test {

inline const std::string kRainfallGrid = "RF GRID Cell Size == 10\n"
                                         "RF GRID Size (X,Y) == 20, 30\n"
                                         "RF GRID Origin == 100 200\n";
inline const std::string kTwoHyetographs = "Rainfall Hyetograph a == a.csv\n"
                                           "Rainfall Hyetograph b == b.csv\n";
inline const std::string kThreeHyetographs = kTwoHyetographs + "Rainfall Hyetograph c == c.csv\n";

// rain.rfc of these commands, and the hyetographs: a 2 and 4, b 10 and 20, c 6 and 30.
inline void giveRainfall(ToolRun& run, const std::string& commands)
{
    run.give("rain.rfc", commands);
    run.give("a.csv", "Time,Depth\n0,2\n0.5,4\n");
    run.give("b.csv", "Time,Depth\n0,10\n0.5,20\n");
    run.give("c.csv", "Time,Depth\n0,6\n0.5,30\n");
}

inline std::string mifPoint(std::string_view at)
{
    return "Point " + std::string(at) + "\n    Symbol (35,0,12)\n";
}

// A region of one ring; `vertices` are lines of x and y.
inline std::string mifRegion(int count, std::string_view vertices)
{
    return "Region  1\n  " + std::to_string(count) + "\n" + std::string(vertices) +
           "    Pen (1,2,0)\n    Brush (2,16777215,16777215)\n";
}

inline std::string mifRectangle(const std::string& x1, const std::string& y1, const std::string& x2,
                                const std::string& y2)
{
    return mifRegion(5, x1 + " " + y1 + "\n" + x2 + " " + y1 + "\n" + x2 + " " + y2 + "\n" + x1 + " " + y2 + "\n" + x1 +
                            " " + y1 + "\n");
}

// <name>.mif with the columns Name, F1 and F2, and its .mid.
inline void giveRainfallLayer(ToolRun& run, const std::string& name, const std::string& objects,
                              const std::string& records)
{
    run.give(name + ".mif", mifHeader({"Name Char(40)", "F1 Float", "F2 Float"}) + objects);
    run.give(name + ".mid", records);
}

// Expects that the run ends with this message before it writes anything.
inline void expectRefusal(ToolRun& run, const Lines& message)
{
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE_HOLDS(run, joined({message, errorEnd()}));
    EXPECT_EQ(run.read("rain_index.csv"), "");
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace gridforge::test
