// The rules of layers, splitting and form losses on Shapefiles, put together and taken apart byte by byte.
#include "support/consoles.h"
#include "support/network_layers.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr std::int32_t kPolyline = 3;
constexpr std::int32_t kPolygon = 5;

const std::vector<DbfColumn> kBranchFields = {
    {"NAME", 'C', 24}, {"N", 'N', 8}, {"UCS", 'C', 1}, {"LOSS", 'N', 8}, {"TYPE", 'C', 4}};
const std::vector<DbfColumn> kCutFields = {{"NAME", 'C', 12},    {"DIST", 'N', 8},    {"SPLIT", 'C', 12},
                                           {"EXTRACT", 'C', 12}, {"METHOD", 'C', 20}, {"BUFFER", 'C', 20},
                                           {"BDIST", 'N', 8}};

// A value in its column: numbers to the right, text to the left.
std::string field(const std::string& value, char type, std::size_t length)
{
    const std::string blanks(length - std::min(length, value.size()), ' ');
    return type == 'C' ? value + blanks : blanks + value;
}

void giveShpLayer(ToolRun& run, const std::string& name, std::int32_t type, const std::vector<std::string>& objects,
                  const std::vector<DbfColumn>& columns, const std::vector<std::vector<std::string>>& records)
{
    std::vector<std::string> values;
    for (const auto& record : records) {
        values.emplace_back();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            values.back() += field(record[i], columns[i].type, static_cast<std::size_t>(columns[i].length));
        }
    }
    giveShapefile(run, name, type, {.objects = objects, .columns = columns, .values = values});
}

std::string shpLine(const std::vector<double>& xy)
{
    return partsRecord(kPolyline, {0}, xy);
}

std::string shpRectangle(double x1, double y1, double x2, double y2)
{
    return partsRecord(kPolygon, {0}, {x1, y1, x1, y2, x2, y2, x2, y1, x1, y1});
}

// The records of a written .shp behind its header; each object has its extent.
std::string writtenLines(const std::vector<std::vector<double>>& lines)
{
    std::string bytes;
    std::int32_t number = 0;
    for (const std::vector<double>& xy : lines) {
        constexpr double kLargest = std::numeric_limits<double>::max();
        std::vector<double> extent = {kLargest, kLargest, -kLargest, -kLargest};
        for (std::size_t i = 0; i < xy.size(); ++i) {
            const std::size_t axis = i % 2;
            extent[axis] = std::min(extent[axis], xy[i]);
            extent[axis + 2] = std::max(extent[axis + 2], xy[i]);
        }
        const std::string body = little(kPolyline) + reals(extent) + little(1) +
                                 little(static_cast<std::int32_t>(xy.size() / 2)) + little(0) + reals(xy);
        bytes += big(++number) + big(static_cast<std::int32_t>(body.size() / 2)) + body;
    }
    return bytes;
}

std::string objectsOfShp(const ToolRun& run, const std::string& name)
{
    constexpr std::size_t kHeader = 100;
    const std::string bytes = run.read(name);
    return bytes.size() < kHeader ? "no header" : bytes.substr(kHeader);
}

// The records of a written table without its columns.
std::vector<std::string> recordsOf(const ToolRun& run, const std::string& name, std::size_t columns)
{
    std::vector<std::string> table = tableOf(run.read(name));
    table.erase(table.begin(), table.begin() + static_cast<std::ptrdiff_t>(std::min(columns, table.size())));
    return table;
}

std::string nwkFields(const std::string& id, const std::string& type, const std::string& ucs, const std::string& n,
                      const std::string& formLoss)
{
    const auto real = [](const std::string& value) { return field(value, 'N', 16); };
    const auto whole = [](const std::string& value) { return field(value, 'N', 8); };
    const std::string zero = real("0.000");
    return " " + field(id, 'C', 12) + field(type, 'C', 4) + "F" + ucs + zero + real(n) + real("-99999.000") +
           real("-99999.000") + real(formLoss) + zero + field("", 'C', 12) + field("", 'C', 4) + whole("0") + zero +
           zero + whole("0") + zero + zero + zero + zero;
}

std::string xsFields(const std::string& source, const std::string& distance)
{
    const std::string zero = field("0.000", 'N', 16);
    return " " + field(source, 'C', 250) + std::string(2 + 8 + 6 * 20, ' ') + field(distance, 'N', 16) + zero + zero;
}

//      y
//     30   U====U                     U: 1 to 2, "Upper tributary", without sections
//     14   4     1  2     3
//     10   R=====R=R?=====|==R==x     R: River, vertices at x 0, 20, 40; 1 and 2 snap at 20, 3 crosses at 30, 4 is at the start
//      6   4    2   1     3           x: connectors to 45 and 50
//          0     20      30  40
TEST(NbcShp, BranchesSplitAtTheirSections)
{
    ToolRun run("-b -nbc net.nbc");
    giveShpLayer(run, "1d_br_s", kPolyline,
                 {shpLine({0, 10, 20, 10, 40, 10}), shpLine({40, 10, 45, 10}), shpLine({0, 30, 10, 30}),
                  shpLine({40, 10, 50, 10})},
                 kBranchFields,
                 {{"River", "0.03", "N", "0.6", ""},
                  {"x", "1", "T", "0", "S"},
                  {"Upper tributary", "0", "T", "-0.2", "C"},
                  {"X", "1", "T", "0", ""}});
    giveShpLayer(run, "1d_cut_s", kPolyline,
                 {shpLine({22, 6, 20, 10, 18, 14}), shpLine({18, 6, 20, 10, 22, 14}), shpLine({30, 6, 30, 14}),
                  shpLine({0, 6, 0, 10, 0, 14})},
                 kCutFields,
                 {{"sections/a", "-1", "T", "T", "", "", "0"},
                  {"b.CSV", "-1", "False", "False", "", "", "0"},
                  {"", "-1", "F", "T", "", "", "0"},
                  {"", "-1", "", "", "", "", "0"}});
    run.give("sections/.keep", "");
    run.give("csv/.keep", "");
    run.give("net.nbc", "Read GIS Branch == 1d_br_s.shp\nRead GIS XS == 1d_cut_s.shp\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Polyline 1 with name \"River\"", "Polyline 1 is an \"x\" connector.",
                               "WARNING - Branch Roughness less than or equal to 0 setting to 1.",
                               "Polyline 2 with name \"Upper tributary\"", "Polyline 2 is an \"x\" connector."});
    EXPECT_CONSOLE_HOLDS(run, {"Determining if cross-sections snap or intersect branches...",
                               "Check - Not splitting section", "    Done."});
    // The list is 1, 2 and 4, by chainage 4, 1, 2: 4 ends no line, 1 the one from the start, and 2 one of the single
    // vertex that both share. The river's loss of 0.6 is shared by three.
    EXPECT_EQ(objectsOfShp(run, "1d_nwk_s_L.shp"),
              writtenLines(
                  {{0, 10, 20, 10}, {20, 10}, {20, 10, 40, 10}, {0, 30, 10, 30}, {40, 10, 45, 10}, {40, 10, 50, 10}}));
    EXPECT_THAT(
        recordsOf(run, "1d_nwk_s_L.dbf", 20),
        testing::ElementsAre(
            nwkFields("River_00000", "S", "F", "0.030", "0.200"), nwkFields("River_00020", "S", "F", "0.030", "0.200"),
            nwkFields("River_00020", "S", "F", "0.030", "0.200"), nwkFields("Upper tribut", "C", "T", "1.000", "0.200"),
            nwkFields("", "X", "F", "0.000", "0.000"), nwkFields("", "X", "F", "0.000", "0.000")));
    // The section that splits nothing knows its crossing and its chainage all the same.
    EXPECT_EQ(objectsOfShp(run, "1d_xs_s_L.shp"),
              writtenLines(
                  {{22, 6, 20, 10, 18, 14}, {18, 6, 20, 10, 22, 14}, {30, 6, 30, 10, 30, 14}, {0, 6, 0, 10, 0, 14}}));
    EXPECT_THAT(recordsOf(run, "1d_xs_s_L.dbf", 12),
                testing::ElementsAre(xsFields("sections/a.csv", "-1.000"), xsFields("b.CSV", "-1.000"),
                                     xsFields("csv\\River_30.000.csv", "-1.000"),
                                     xsFields("csv\\River_0.000.csv", "-1.000")));
    EXPECT_TRUE(run.has("sections/a.csv"));
    EXPECT_TRUE(run.has("b.CSV"));
    EXPECT_EQ(run.read("1d_nwk_s_L.prj"), "PROJCS[\"Test\"]\r\n");
}

TEST(NbcShp, ASectionAtTheStartLeavesABranchWhole)
{
    ToolRun run("-b -nbc net.nbc");
    giveShpLayer(run, "1d_br_s", kPolyline, {shpLine({0, 10, 20, 10, 40, 10})}, kBranchFields,
                 {{"River", "0.03", "T", "0.6", "S"}});
    giveShpLayer(run, "1d_cut_s", kPolyline, {shpLine({0, 6, 0, 10, 0, 14})}, kCutFields,
                 {{"a", "-1", "T", "T", "", "", "0"}});
    run.give("net.nbc", "Read GIS Branch == 1d_br_s.shp\nRead GIS XS == 1d_cut_s.shp\n");
    run.start();
    EXPECT_EQ(objectsOfShp(run, "1d_nwk_s_L.shp"), writtenLines({{0, 10, 20, 10, 40, 10}}));
    EXPECT_THAT(recordsOf(run, "1d_nwk_s_L.dbf", 20),
                testing::ElementsAre(nwkFields("River", "S", "T", "0.030", "0.600")));
}

TEST(NbcShp, ASourceOfA1dTabLayerKeepsItsName)
{
    ToolRun run("-b -nbc net.nbc");
    std::vector<DbfColumn> columns = {{"SOURCE", 'C', 20}, {"TYPE", 'C', 2}, {"FLAGS", 'C', 8}};
    for (int i = 1; i <= 6; ++i) {
        columns.push_back({"COLUMN_" + std::to_string(i), 'C', 20});
    }
    for (const char* name : {"Z_INC", "Z_MAX", "SKEW"}) {
        columns.push_back({name, 'N', 8});
    }
    giveShpLayer(run, "1d_tab_s", kPolyline, {shpLine({1, 5, 3, 5})}, columns,
                 {{"a.csv", "XZ", "", "", "", "", "", "", "", "-1", "40", "9"}});
    run.give("net.nbc", "Read GIS XS == 1d_tab_s.shp\n");
    run.start();
    EXPECT_TRUE(run.says("Found 12 or more attributes, expecting GIS layer to be in 1d_tab format."));
    const std::vector<std::string> records = recordsOf(run, "1d_xs_s_L.dbf", 12);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0], " " + field("a.csv", 'C', 250) + "XZ" + std::string(8 + 6 * 20, ' ') +
                              field("-1.000", 'N', 16) + field("40.000", 'N', 16) + field("0.000", 'N', 16));
    EXPECT_TRUE(run.has("a.csv"));
}

TEST(NbcShp, QuotesInNamesStayInTablesAndAreDoubledInLines)
{
    const auto giveBranch = [](ToolRun& run) {
        giveShpLayer(run, "1d_br_s", kPolyline, {shpLine({0, 10, 40, 10})}, kBranchFields,
                     {{R"("R", up)", "0.5", "T", "0", R"(a"b)"}});
    };
    ToolRun tables("-b -nbc net.nbc");
    giveBranch(tables);
    giveShpLayer(tables, "1d_cut_s", kPolyline, {shpLine({20, 6, 20, 14})}, kCutFields,
                 {{R"("s")", "-1", "T", "T", "", "", "0"}});
    tables.give("net.nbc", "Read GIS Branch == 1d_br_s.shp\nRead GIS XS == 1d_cut_s.shp\n");
    tables.start();
    EXPECT_TRUE(tables.says(R"(Polyline 1 with name ""R", up")"));
    EXPECT_THAT(recordsOf(tables, "1d_nwk_s_L.dbf", 20),
                testing::ElementsAre(nwkFields(R"("R", up)", R"(a"b)", "T", "0.500", "0.000")));
    EXPECT_THAT(recordsOf(tables, "1d_xs_s_L.dbf", 12), testing::ElementsAre(xsFields(R"("s".csv)", "-1.000")));
    EXPECT_TRUE(tables.has(R"("s".csv)"));

    ToolRun lines("-b -nbc net.nbc");
    giveBranch(lines);
    giveLayer(lines, "1d_tab_s", kTabColumns, pline({20, 6, 20, 14}),
              R"("""s""","""X","f""","c""1",,,,,"""""6",-1,0,0)"
              "\n");
    lines.give("net.nbc", "Read GIS Branch == 1d_br_s.shp\nRead GIS XS == 1d_tab_s.mif\nOutput NWK == n.mif\n");
    lines.start();
    EXPECT_EQ(lines.read("n.mid"), nwkRecord(R"(""R"", up)", R"(a""b)", "T", "0.500", "0.000"));
    EXPECT_EQ(lines.read("1d_xs_s.mid"), R"("""s"".csv","""X","f""","c""1","","","","","""""6",-1.000,0.000,0.000)"
                                         "\r\n");
}

TEST(NbcShp, CombinedPolylinesAreRefused)
{
    const std::string parts = partsRecord(kPolyline, {0, 2}, {0, 0, 1, 1, 2, 2, 3, 3});
    {
        ToolRun run("-b -nbc net.nbc");
        giveShpLayer(run, "1d_br_s", kPolyline, {parts}, kBranchFields, {{"a", "1", "T", "0", ""}});
        run.give("net.nbc", "Read GIS Branch == 1d_br_s.shp\n");
        run.start();
        EXPECT_CONSOLE_HOLDS(run, errorEnd("Searching for Lines and Polylines...",
                                           "ERROR - Combined polylines not yet supported.  Please disaggregate."));
    }
    ToolRun run("-b -nbc net.nbc");
    giveShpLayer(run, "1d_cut_s", kPolyline, {parts}, kCutFields, {{"a", "-1", "T", "T", "", "", "0"}});
    run.give("net.nbc", "Read GIS XS == 1d_cut_s.shp\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Searching for Lines and Polylines...",
                                       "ERROR - Combined polylines not yet supported.  Please disaggregate."));
}

TEST(NbcShp, RecordsThatCannotBeRead)
{
    {
        // A text where the roughness should be.
        ToolRun run("-b -nbc net.nbc");
        giveShpLayer(run, "1d_br_s", kPolyline, {shpLine({0, 0, 1, 1})},
                     {{"NAME", 'C', 4}, {"N", 'C', 5}, {"UCS", 'C', 1}, {"LOSS", 'N', 3}}, {{"a", "rough", "T", "0"}});
        run.give("net.nbc", "Read GIS Branch == 1d_br_s.shp\n");
        run.start();
        EXPECT_CONSOLE_HOLDS(
            run, errorEnd("ERROR - Extracting attribute data for GIS object.  Data: \"a\",\"rough\",\"T\",  0"));
    }
    // A column too few.
    ToolRun run("-b -nbc net.nbc");
    giveShpLayer(run, "1d_cut_s", kPolyline, {shpLine({0, 0, 1, 1})},
                 {{"NAME", 'C', 4}, {"DIST", 'N', 2}, {"SPLIT", 'C', 1}}, {{"a", "-1", "T"}});
    run.give("net.nbc", "Read GIS XS == 1d_cut_s.shp\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Reading following line in 1d_xs file:", "\"a\",-1,\"T\""));
}

TEST(NbcShp, LayersWithoutAProjectionEndTheRun)
{
    ToolRun run("-b -nbc net.nbc");
    run.give("in/1d_br_s.shp", shpBytes(kPolyline, {}));
    run.give("net.nbc", "Read GIS Branch == in/1d_br_s.shp\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, errorEnd("Getting Projection...", "ERROR - Projection file does not exist in folder: in/1d_br_s.prj"));
}

// --- Form losses of regions ------------------------------------------------------------------------------------------

// Three branches from x = 10 at y = 10, 20 and 30.
void runFlc(ToolRun& run, const std::vector<std::string>& regions, const std::vector<std::vector<std::string>>& values)
{
    giveShpLayer(run, "1d_br_s", kPolyline,
                 {shpLine({10, 10, 20, 10}), shpLine({10, 20, 20, 20}), shpLine({10, 30, 20, 30})}, kBranchFields,
                 {{"a", "1", "T", "0.2", ""}, {"b", "1", "T", "0", ""}, {"c", "1", "T", "0", ""}});
    giveShpLayer(run, "flc", kPolygon, regions, {{"FLC", 'N', 8}}, values);
    run.give("net.nbc", "Read GIS Branch == 1d_br_s.shp\nRead GIS FLC == flc.shp\n");
    run.start();
}

void expectLosses(const ToolRun& run, const std::string& a, const std::string& b, const std::string& c)
{
    EXPECT_THAT(recordsOf(run, "1d_nwk_s_L.dbf", 20),
                testing::ElementsAre(nwkFields("a", "S", "T", "1.000", a), nwkFields("b", "S", "T", "1.000", b),
                                     nwkFields("c", "S", "T", "1.000", c)));
}

TEST(NbcShp, SharesTheLossOfARegionOverItsLines)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, {shpRectangle(5, 5, 15, 25)}, {{"0.5"}});
    EXPECT_CONSOLE_HOLDS(run, {"Searching for region objects...", "Region 1 with 6 nodes..."});
    expectLosses(run, "0.450", "0.250", "0.000");
}

TEST(NbcShp, LossesOfOverlappingRegionsAddAndThoseBelow0CountInFull)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, {shpRectangle(5, 5, 15, 25), shpRectangle(5, 15, 15, 35)}, {{"-0.5"}, {"1"}});
    expectLosses(run, "0.700", "1.000", "0.500");
}

TEST(NbcShp, ARegionWithoutAValueEndsTheRunAfterItsWarning)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, {shpRectangle(15.5, 5, 18, 12.25)}, {{"0"}});
    EXPECT_CONSOLE_HOLDS(
        run, errorEnd("Region 1 with 6 nodes...", "WARNING - No network lines start within region object.",
                      "  XY of first polygon vertex is: 15.5, 5.", "ERROR - No FLC value specified on region."));
    EXPECT_FALSE(run.has("1d_nwk_s_L.shp"));
}

TEST(NbcShp, ARegionOfTwoRingsEndsTheRun)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, {partsRecord(kPolygon, {0, 4}, {1, 1, 1, 9, 9, 1, 1, 1, 2, 2, 3, 2, 2, 3, 2, 2})}, {{"1"}});
    EXPECT_CONSOLE_HOLDS(
        run, errorEnd("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes."));
}

TEST(NbcShp, AnUnreadableLossEndsTheRun)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, {shpRectangle(5, 5, 15, 25)}, {{"high"}});
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Reading following line in 1d_FLC file:", "    high"));
}

} // namespace
} // namespace gridforge::test
