// The symbols of the built executable.
#include "support/consoles.h"
#include "support/paths.h"
#include "support/tool_run.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using Names = std::set<std::string>;

// What the executable is to export, typed a second time from the manual and not from the header.
const Names kExpected = {
    // text
    "ASAME", "ASAMECS", "FLAGEXISTS", "FLAGEXISTSRET", "BLANK", "COMMENTLINE", "NUMBERLINE", "LENSL",
    "POSITIVEINTEGERNUMBER", "CHECKINT", "CHECKINT4", "CHECKINT8", "TRIMF", "UPPERCASE", "LOWERCASE", "REMOVESPACES",
    "REMOVETABS", "SS256", "REMOVEQUOTES", "DOUBLEQUOTE", "ALPHANUMERICONLY", "CLEANATTRIBUTENAME", "REPLACE",
    "REPLACEALL", "SPLITFIRSTWORD", "AINTEGER", "AINTEGER8", "AINTEGERPREC0", "AINTEGER8PREC0", "AREAL", "AREAL8",
    "AREALD", "AREALD8", "NUMBEROFSUBSTRINGS", "SUBSTRING", "NUMBEROFNUMBERS", "NUMBEROFDAYS", "NEXTCOMMA",
    // file names
    "FILEEXT", "FILEEXTKC", "FILENAMEPATH", "FILE___EXT", "FILENAME", "FILENAMEEXT", "FILENAMENO_", "FILENAMEPATHNO_",
    "FILEFOLDERPATH", "ADDFOLDER", "REMOVEDOTDOT", "DRIVEANDURLNAME",
    // plane
    "DISTANCE", "DISTANCE_8", "SAME_POINT", "SAME_POINT_8", "SAME_SIDE", "SAME_SIDE_8", "INTERSECT_POINT",
    "INTERSECT_LINE", "INTERSECT_LINE_8", "INTERSECT_LINE_V2", "INTERSECT_LINE_V2_8", "INTERSECTION_POINT",
    "INTERSECTION_POINT_8", "INSIDE_POLYGON", "INSIDE_POLYGON_8", "INTERPOLATE_TRIANGLE", "INTERPOLATE_TRIANGLE_8",
    "INTERPOLATE_TRIANGLE_NO_CHECKS", "INTERPOLATE_TRIANGLE_NO_CHECKS_8", "INTERPOLATE_ELEMENT_8", "ANGLE2D",
    "VECTOR_MAGNITUDE", "CIRCLE_WIDTH", "POLYGON_AREA", "HYD_PARAM", "HYD_PARAM2", "GEO_SHIFT", "SET_SUB_GRID_AREA",
    "grid_inside_polygon", "gridline",
    // messages
    "DMESSAGES", "DMESSAGE", "DMESSAGEXY", "DMESSAGECLEAR", "DMESSAGERESETCOUNTERS", "DLINE",
    // lines and fields
    "READLINE", "CHECKLINE", "CSVCOLUMN", "CSVVALUE", "EXTRACTSTRING", "EXTRACTSTRINGREM", "EXTRACTINTEGER",
    "EXTRACTREAL",
    // layers
    "gisReadHeader", "gisNumberAttributes", "gisNumberRecords", "gisGotoBeginningOfData",
    "gisGotoBeginningOfAttributes", "gisReadAttributeDefinition", "gisObjectType", "gisReadRecord", "gisReadObject",
    "READGIS", "WRITEGIS", "READROWCOL"};

// The names in a text that the pattern's first group gives.
Names namesIn(const std::string& text, const std::string& pattern)
{
    const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
    Names names;
    std::transform(std::sregex_iterator(text.begin(), text.end(), expression), std::sregex_iterator(),
                   std::inserter(names, names.end()), [](const std::smatch& match) { return match[1].str(); });
    return names;
}

// Sanitizers of either compiler put symbols of their own into the table.
bool isSanitized(const std::string& table)
{
    return table.find("__asan_") != std::string::npos || table.find("__tsan_") != std::string::npos;
}

TEST(Exports, AreAllInTheDynamicSymbolTableAndNothingElseIs)
{
    ToolRun nm(std::vector<std::string>{"--dynamic", "--defined-only", toolPath()});
    nm.program("/usr/bin/nm");
    nm.start();
    ASSERT_EQ(nm.status(), 0) << nm.error();

    Names exported = namesIn(nm.console(), "^[0-9a-f]+ T ([A-Za-z]\\w*)$");
    const Names data = namesIn(nm.console(), "^[0-9a-f]+ [BD] ([A-Za-z]\\w*)$");
    EXPECT_TRUE(data.contains("DMESSAGES"));
    exported.insert(data.begin(), data.end());
    if (isSanitized(nm.console())) {
        EXPECT_TRUE(std::ranges::includes(exported, kExpected));
    } else {
        EXPECT_EQ(exported, kExpected);
    }
}

TEST(Exports, AreDeclaredInTheHeader)
{
    const std::string header = readWhole(sourceFolder() + "/include/gridforge/gridforge.h");
    Names declared = namesIn(header, "^(?:void|int32_t|int64_t|float) (\\w+)\\(");
    declared.merge(namesIn(header, "^extern struct \\w+ (\\w+);"));
    EXPECT_EQ(declared, kExpected);
}

TEST(Exports, AnswerAProgramInC)
{
    std::vector<std::string> arguments = {"LD_PRELOAD=" + preloadedPath(),
                                          // The module comes ahead of the library of a sanitized tool.
                                          "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0", toolPath()};
    arguments.insert(arguments.end(), kExpected.begin(), kExpected.end());
    ToolRun run(arguments);
    run.program("/usr/bin/env");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, errorEnd("done", "CHECK 0007 - from C",
                                 " Could not convert \"x\" in column   1 to a real value for the Size field."));
}

TEST(Exports, NamesThatAreNotThereAreMissed)
{
    ToolRun run(std::vector<std::string>{"LD_PRELOAD=" + preloadedPath(),
                                         "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0", toolPath(),
                                         "NO_SUCH_ROUTINE"});
    run.program("/usr/bin/env");
    run.start();
    EXPECT_TRUE(run.says("missing: NO_SUCH_ROUTINE")) << run.console();
}

} // namespace
} // namespace gridforge::test
