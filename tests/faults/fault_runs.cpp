#include "faults/fault_runs.h"

#include "support/damages_files.h"
#include "support/grids.h"
#include "support/network_layers.h"
#include "support/rainfall_files.h"
#include "support/sanitizers.h"
#include "support/shp_bytes.h"

#include <algorithm>
#include <cstdint>

namespace gridforge::test {
namespace {

constexpr double n = kNull;

// --- Grids -----------------------------------------------------------------------------------------------------------

// Three by four cells with decimals, so that a value which is cut short is another value.
const Cells kFirst = {{1.5, 2.25, n, 4.125}, {5.5, 6.75, 7.375, 8.5}, {9.25, 10.5, 11.75, 12.625}};
const Cells kSecond = {{2.5, 1.25, 3.5, n}, {5.25, 7.75, 6.375, 9.5}, {8.25, 11.5, 10.75, 13.625}};
const Cells kThird = {{3.5, n, 2.5, 4.5}, {1.25, 2.75, 9.375, 0.5}, {7.25, 1.5, 2.75, 3.625}};

void giveAscs(ToolRun& run)
{
    run.give("a.asc", ascGrid(kFirst));
    run.give("b.asc", ascGrid(kSecond));
    run.give("c.asc", ascGrid(kThird));
}

void giveFlts(ToolRun& run)
{
    giveFlt(run, "a", kFirst);
    giveFlt(run, "b", kSecond);
    giveFlt(run, "c", kThird);
}

void giveAscsWithProjections(ToolRun& run)
{
    giveAscs(run);
    run.give("a.prj", "PROJCS[\"Test\"]\n");
    run.give("b.prj", "no system\n");
}

// The answers to two questions for the missing .hdr: none, after a byte order mark, and its name.
void giveFltAndAnswers(ToolRun& run)
{
    run.give("a.flt", fltCells(kFirst));
    run.give("a.prj", "PROJCS[\"Test\"]\n");
    run.give("b.hdr", hdr(kFirst));
    run.type("\xEF\xBB\xBF");
    run.type("b.hdr");
}

// The outputs exist already, of another place and shape but with as many cells.
void giveAscsOverOldOutputs(ToolRun& run)
{
    giveAscs(run);
    const Cells old = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}};
    for (const char* name : {"a", "a_max", "m", "m_src"}) {
        if (std::string(name) != "a") {
            run.give(std::string(name) + ".asc", ascGrid(old, {.xll = 70}));
        }
        giveFlt(run, name, old, {.xll = 70});
    }
}

// For more text than the tool writes at once, in lines of odd lengths.
Cells manyCells(std::size_t rows, std::size_t columns)
{
    Cells cells(rows, std::vector<double>(columns));
    std::uint32_t state = 1;
    for (auto& row : cells) {
        for (double& cell : row) {
            state = state * 1664525U + 1013904223U;
            cell = static_cast<double>(state >> 12U) / 1024;
        }
    }
    return cells;
}

void giveLongAsc(ToolRun& run)
{
    static const std::string text = ascGrid(manyCells(307, 401));
    run.give("a.asc", text);
}

void giveLargeFlts(ToolRun& run)
{
    static const Cells cells = manyCells(1031, 1021);
    static const std::string header = hdr(cells);
    static const std::string bytes = fltCells(cells);
    run.give("a.hdr", header);
    run.give("a.flt", bytes);
}

// So wide that rows of a series are taken from the file of the grid.
void giveWideFlts(ToolRun& run)
{
    const Cells cells = manyCells(5, 17);
    giveFlt(run, "a", cells);
    giveFlt(run, "b", cells);
}

void giveClasses(ToolRun& run)
{
    giveAscs(run);
    run.give("classes.csv", "Value,Name,Red,Green,Blue\n2,Low,0,255,0\n7,\"High, so so\",255,128,0\n10,Top,9,9,9\n");
}

void giveBins(ToolRun& run)
{
    giveAscs(run);
    run.give("bins.csv", "Limit,Label\n5,Low\n10,High\n");
}

void givePoints(ToolRun& run)
{
    run.give("p.xyz", "102 204 12.5\n100 200 11\n104 202 23\n102 200 21\n104 204 -33.25\n100 202 1.5\n");
}

// --- Layers ----------------------------------------------------------------------------------------------------------

// A column of a layer, of texts or numbers.
struct Column {
    std::string name;
    char type; // C or N
    int width;
};

// An object and its values, texts without quotes.
struct Object {
    std::int32_t type; // of the .shp: 1 point, 3 line, 5 region
    std::vector<double> xy;
    std::vector<std::string> values;
};

void giveMifLayer(ToolRun& run, const std::string& name, const std::vector<Column>& columns,
                  const std::vector<Object>& objects)
{
    std::vector<std::string> definitions;
    for (const Column& column : columns) {
        definitions.push_back(column.name +
                              (column.type == 'C' ? " Char(" + std::to_string(column.width) + ")" : " Float"));
    }
    std::string mif;
    std::string mid;
    for (const Object& object : objects) {
        if (object.type == 1) {
            mif += "Point " + shortNumber(object.xy[0]) + " " + shortNumber(object.xy[1]) + "\n";
        } else if (object.type == 3) {
            mif += pline(object.xy);
        } else {
            mif += rectangle(object.xy[0], object.xy[1], object.xy[4], object.xy[5]);
        }
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const std::string quote = columns[i].type == 'C' ? "\"" : "";
            mid += (i == 0 ? "" : ",") + quote + object.values[i] + quote;
        }
        mid += "\n";
    }
    giveLayer(run, name, definitions, mif, mid);
}

void giveShpLayer(ToolRun& run, const std::string& name, const std::vector<Column>& columns,
                  const std::vector<Object>& objects)
{
    std::vector<DbfColumn> definitions;
    for (const Column& column : columns) {
        definitions.push_back({column.name, column.type, column.width});
    }
    std::vector<std::string> shapes;
    std::vector<std::string> records;
    for (const Object& object : objects) {
        shapes.push_back(object.type == 1 ? pointRecord(object.xy[0], object.xy[1])
                                          : partsRecord(object.type, {0}, object.xy));
        records.emplace_back();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const std::string& value = object.values[i];
            const std::string blanks(static_cast<std::size_t>(columns[i].width) - value.size(), ' ');
            records.back() += columns[i].type == 'C' ? value + blanks : blanks + value;
        }
    }
    giveShapefile(run, name, objects[0].type, {.objects = shapes, .columns = definitions, .values = records});
}

using GiveObjects = void (*)(ToolRun&, const std::string&, const std::vector<Column>&, const std::vector<Object>&);

std::vector<double> box(double x1, double y1, double x2, double y2)
{
    return {x1, y1, x1, y2, x2, y2, x2, y1, x1, y1};
}

// Nine by nine cells, 10 row + column.
void giveTerrain(ToolRun& run)
{
    run.give("dem.asc", ascGrid(rowColumnCells()));
}

template <GiveObjects giveObjects>
void giveRegions(ToolRun& run)
{
    giveTerrain(run);
    giveObjects(run, "l", {{"NAME", 'C', 10}},
                {{5, box(1.5, 1.5, 4.5, 3.5), {"first"}}, {5, box(4.5, 2.5, 7.5, 6.5), {"second"}}});
}

// Of most columns, so that much of the grid is named in a hint before parts of it are read.
void giveLargeRegion(ToolRun& run)
{
    giveLargeFlts(run);
    giveMifLayer(run, "l", {{"NAME", 'C', 10}}, {{5, box(101.5, 1.5, 1000.5, 1000.5), {"most"}}});
}

template <GiveObjects giveObjects>
void giveBreaklines(ToolRun& run)
{
    giveTerrain(run);
    giveObjects(
        run, "l", {{"Z", 'N', 4}, {"dZ", 'N', 4}, {"Width", 'N', 4}, {"Options", 'C', 8}},
        {{3, {2, 4.4, 8, 4.4}, {"7", "3", "4", "Min Perp"}}, {3, {4.5, 4.5, 5.5, 4.5}, {"7", "9", "3.8", "Max"}}});
}

template <GiveObjects giveObjects>
void giveMarks(ToolRun& run)
{
    giveTerrain(run);
    giveObjects(run, "l", {{"OBS", 'N', 6}, {"MARK", 'C', 7}},
                {{1, {4.3, 4.4}, {"40.5", "left"}}, {1, {6, 5.25}, {"57", "bridge"}}});
    run.give("c.csv", "Up to,Shape,Colour,Size\n-1,35,255,12\n4,34,0,8\n");
}

template <GiveObjects giveObjects>
void giveProfiles(ToolRun& run)
{
    giveTerrain(run);
    giveObjects(run, "l", {{"LABEL", 'C', 6}}, {{3, {2, 5, 8, 5}, {"main"}}, {3, {3, 3, 3, 8}, {"side"}}});
}

template <GiveObjects giveObjects>
void giveNodes(ToolRun& run)
{
    run.give("dem.asc", ascGrid(Cells(9, {1, 1.05, 1.1, 1.08, 1.15, 1.19, 1.19, 1.25, 1.25})));
    std::vector<Column> columns = {{"ID", 'C', 8}};
    for (const char* name : {"A", "B", "C", "D", "E", "F", "G", "H"}) {
        columns.push_back({name, 'C', 1});
    }
    columns.insert(columns.end(), {{"I", 'N', 3}, {"J", 'N', 3}, {"SKEW", 'N', 4}});
    giveObjects(run, "l", columns,
                {{5, box(1.5, 1.5, 4.5, 4.5), {"pond.csv", "a", "b", "c", "d", "e", "f", "g", "h", "1", "2", "0"}}});
}

// --- Networks --------------------------------------------------------------------------------------------------------

const std::vector<Column> kBranches = {
    {"NAME", 'C', 24}, {"N", 'N', 8}, {"UCS", 'C', 1}, {"LOSS", 'N', 8}, {"TYPE", 'C', 4}};
const std::vector<Column> kCuts = {{"NAME", 'C', 12},   {"DIST", 'N', 8},    {"SPLIT", 'C', 12}, {"EXTRACT", 'C', 12},
                                   {"METHOD", 'C', 20}, {"BUFFER", 'C', 20}, {"BDIST", 'N', 8}};

template <GiveObjects giveObjects>
void giveNetwork(ToolRun& run)
{
    giveObjects(run, "1d_br_t", kBranches,
                {{3, {0, 10, 20, 10, 40, 10}, {"River", "0.03", "N", "0.6", "S"}},
                 {3, {40, 10, 45, 10}, {"x", "1", "T", "0", "S"}}});
    giveObjects(run, "1d_cut_t", kCuts,
                {{3, {22, 6, 20, 10, 18, 14}, {"a", "2", "T", "T", "", "", "0"}},
                 {3, {30, 6, 30, 14}, {"", "2", "T", "T", "Max", "", "3"}}});
    giveObjects(run, "flc", {{"FLC", 'N', 8}}, {{5, box(-5, 5, 15, 25), {"0.5"}}});
    run.give("dem.asc", ascGrid(sectionTerrain()));
    run.give("csv/.keep", "");
    giveFlt(run, "land", {{1.5, 2.5, 3.5}}, {.xll = 15, .cellsize = 10});
}

std::string networkCommands(const std::string& extension)
{
    return "Read GIS Branch == 1d_br_t" + extension + "\nRead GIS XS == 1d_cut_t" + extension +
           "\nSet XS dx == 4\nRead Grid Z == dem.asc\nRead Grid Mat == land.flt\nRead GIS FLC == flc" + extension +
           "\nWrite Check == On\nBranch Bendiness == On\n";
}

void giveMifNetwork(ToolRun& run)
{
    giveNetwork<giveMifLayer>(run);
    run.give("net.nbc", networkCommands(".mif"));
}

void giveShpNetwork(ToolRun& run)
{
    giveNetwork<giveShpLayer>(run);
    run.give("net.nbc", networkCommands(".shp"));
}

// --- Damages ---------------------------------------------------------------------------------------------------------

template <GiveObjects giveObjects>
void giveBuildings(ToolRun& run, const std::string& extension)
{
    giveObjects(run, "h", {{"PROP_TYPE", 'C', 8}, {"PROP_ID", 'C', 4}, {"FFL", 'N', 6}, {"MULT", 'N', 4}},
                {{5, box(2.5, 2.5, 4.5, 4.5), {"House", "1", "20.5", "2"}},
                 {5, box(5.5, 2.5, 6.5, 4.5), {"House", "2", "30", "1"}}});
    run.give("house.csv", kHundredAMetre);
    run.give("wl.asc", levels(6, 8));
    giveFlt(run, "rare",
            {{11, 12, 13, 14, 15, 16, 17, 18}, {60, 60, 60, 60, 60, 60, 60, 60}, {1, 2, 3, 4, 5, 6, 7, 8}});
    run.give("c.dmg", "Read GIS Building == h" + extension +
                          "\nRead Curve House == house.csv\nRead Result % 1 == wl.asc\nRead Result 0.002 == rare.flt\n"
                          "Region Inspection Method == Avg\n");
}

void giveMifBuildings(ToolRun& run)
{
    giveBuildings<giveMifLayer>(run, ".mif");
}

void giveShpBuildings(ToolRun& run)
{
    giveBuildings<giveShpLayer>(run, ".shp");
}

// --- Rainfall --------------------------------------------------------------------------------------------------------

const std::vector<Column> kRainColumns = {{"NAME", 'C', 8}, {"F1", 'N', 4}, {"F2", 'N', 4}};

template <GiveObjects giveObjects>
void giveRain(ToolRun& run, const std::string& commands)
{
    giveRainfall(run, kRainfallGrid + kThreeHyetographs + commands);
    giveObjects(run, "areas", kRainColumns,
                {{5, box(90, 190, 120, 230), {"a", "1.5", "2"}}, {5, box(120, 190, 140, 230), {"b", "1", "1"}}});
    giveObjects(run, "gauges", kRainColumns,
                {{1, {95, 205}, {"a", "1", "1"}}, {1, {135, 205}, {"b", "1", "1"}}, {1, {95, 245}, {"c", "1", "1"}}});
    if (giveObjects == GiveObjects(giveMifLayer)) {
        run.give("triangles.mif",
                 mifHead({"NAME Char(8)", "F1 Float", "F2 Float"}) + mifRegion(4, "95 205\n135 205\n95 245\n95 205\n"));
        run.give("triangles.mid", "\"x\",1,1\n");
    } else {
        giveShpLayer(run, "triangles", kRainColumns, {{5, {95, 205, 95, 245, 135, 205, 95, 205}, {"x", "1", "1"}}});
    }
}

template <GiveObjects giveObjects>
void givePolygonRain(ToolRun& run, const std::string& extension, const std::string& format)
{
    giveRain<giveObjects>(run, "RF Interpolation Method == Polygons\nRead GIS RF Polygon == areas" + extension +
                                   "\nRF GRID FORMAT == " + format + "\n");
}

template <GiveObjects giveObjects>
void giveTinRain(ToolRun& run, const std::string& extension, const std::string& format)
{
    giveRain<giveObjects>(run, "RF Interpolation Method == TIN\nRead GIS RF Points == gauges" + extension +
                                   "\nRead GIS RF Triangle == triangles" + extension + "\nRF GRID FORMAT == " + format +
                                   "\n");
}

template <GiveObjects giveObjects>
void giveIdwRain(ToolRun& run, const std::string& extension, const std::string& format)
{
    giveRain<giveObjects>(run, "RF Interpolation Method == IDW\nIDW Max Point == 2\nRead GIS RF Points == gauges" +
                                   extension + "\nRF GRID FORMAT == " + format + "\n");
}

// --- Remapping -------------------------------------------------------------------------------------------------------

Cells remapLevels()
{
    return {{51.5, 53.5, 55.5}, {31.5, 33.5, n}, {11.5, 13.5, 15.5}};
}

void giveRemap(ToolRun& run)
{
    run.give("wl.asc", ascGrid(remapLevels(), {.cellsize = 2}));
    run.give("dem.asc", ascGrid(Cells(6, {0, 0, 1, 0, 2, 0})));
    run.give("haz.asc", ascGrid({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {.cellsize = 2}));
    run.give("ext.asc", ascGrid(Cells(3, {1, 1, 1}), {.cellsize = 2}));
}

void giveRemapFlts(ToolRun& run)
{
    giveFlt(run, "wl", remapLevels(), {.cellsize = 2});
    giveFlt(run, "dem", Cells(6, {0, 0, 1, 0, 2, 0}));
    giveFlt(run, "haz", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {.cellsize = 2});
}

} // namespace

const std::vector<FaultRun>& faultRuns()
{
    static const std::vector<FaultRun> runs = {
        {"Usage", "", [](ToolRun&) {}, false},
        {"ConvAsc", "-b -conv a.asc", giveAscs, true},
        {"ConvFlt", "-b -conv a.flt", giveFlts, true},
        {"ConvAll", "-b -conv *.asc", giveAscsWithProjections, true},
        {"ConvOverOld", "-b -conv a.asc -decimal1", giveAscsOverOldOutputs, true},
        {"ConvLong", "-b -conv a.asc -out d.flt", giveLongAsc, true},
        {"ConvLarge", "-b -max -src a.flt -out d.flt", giveLargeFlts, true},
        {"TransformLong", "-b -trans_m2 a.asc", giveLongAsc, true},
        {"MaxAsc", "-b -max a.asc b.asc c.asc", giveAscs, true},
        {"MaxFlt", "-b -max a.flt b.flt c.flt", giveFlts, true},
        {"MaxOverOldAsc", "-b -max a.asc b.asc -out m.asc", giveAscsOverOldOutputs, true},
        {"MaxOverOldFlt", "-b -max a.asc b.asc -out m.flt", giveAscsOverOldOutputs, true},
        {"MinMixed", "-min -src a.asc b.asc -flt -out m", giveAscs, true},
        {"ConvAsked", "-conv a.flt", giveFltAndAnswers, true},
        {"DifAsc", "-b -dif a.asc b.asc", giveAscsWithProjections, true},
        {"DifFlt", "-b -dif a.flt b.flt", giveFlts, true},
        {"DifChange", "-b -dif -change a.asc b.asc", giveAscs, true},
        {"Cutoff", "-b -cd5 a.asc", giveAscs, true},
        {"CutoffTwo", "-b -cd5 a.flt b.flt", giveFlts, true},
        {"ResizeAverage", "-b -resize2 a.asc", giveAscs, true},
        {"ResizeLarge", "-b -resize1 a.flt -out d.flt", giveLargeFlts, true},
        {"ResizeMaximum", "-b -resize2 -rm_max a.flt", giveFlts, true},
        {"Classify", "-b -classify classes.csv a.asc", giveClasses, true},
        {"ClassifyColours", "-b -classify classes.csv -RGB -grc a.asc", giveClasses, true},
        {"Count", "-b -count a.asc", giveAscs, false},
        {"CountCutoff", "-b -count -cd5 a.flt b.flt", giveFlts, false},
        {"FloodExtent", "-b -fe a.asc", giveAscs, true},
        {"FuzzyAsc", "-b -fuzzy a.asc b.asc c.asc", giveAscs, true},
        {"FuzzyFlt", "-b -fuzzy a.flt b.flt c.flt", giveFlts, true},
        {"Multiply", "-b -multiply a.asc b.asc", giveAscs, true},
        {"Histogram", "-b -histogram bins.csv a.asc", giveBins, false},
        {"Transform", "-b -trans_m2 -trans_c1 a.flt", giveFlts, true},
        {"StatAll", "-b -statAll a.asc b.asc c.asc", giveAscs, true},
        {"StatRanks", "-b -statRankAll a.flt b.flt c.flt", giveFlts, true},
        {"XyzAsc", "-b -xyz p.xyz", givePoints, true},
        {"XyzFlt", "-b -xyz p.xyz -flt", givePoints, true},
        {"TrimMif", "-b -trim l.mif dem.asc", giveRegions<giveMifLayer>, true},
        {"TrimShp", "-b -trim l.shp dem.asc -flt", giveRegions<giveShpLayer>, true},
        {"TrimLarge", "-b -trim l.mif a.flt", giveLargeRegion, true},
        {"TrimWaiting", "-b -trim l.mif dem.asc", giveRegions<giveMifLayer>, true, {{"GRIDFORGE_MEMORY", "1"}}},
        {"BreaklinesMif", "-b -brkline l.mif -check dem.asc", giveBreaklines<giveMifLayer>, false},
        {"BreaklinesShp", "-b -brkline l.shp -check dem.asc", giveBreaklines<giveShpLayer>, false},
        {"MarksMif", "-b -cp l.mif -cpsd4 -config c.csv dem.asc", giveMarks<giveMifLayer>, false},
        {"MarksShp", "-b -cp l.shp -cpsd4 -cpmm5 dem.asc", giveMarks<giveShpLayer>, false},
        {"ProfilesMif", "-b -lp l.mif -lpmd3 -cpsd4 -check dem.asc", giveProfiles<giveMifLayer>, false},
        {"ProfilesShp", "-b -lp l.shp -lpmd3 -cpsd4 -check dem.asc", giveProfiles<giveShpLayer>, false},
        {"NodesMif", "-b -na l.mif dem.asc", giveNodes<giveMifLayer>, false},
        {"NodesShp", "-b -na l.shp dem.asc", giveNodes<giveShpLayer>, false},
        {"SectionsMif", "-b -xs 1d_cut_t.mif -branch 1d_br_t.mif dem.asc", giveNetwork<giveMifLayer>, false},
        {"SectionsShp", "-b -xs 1d_cut_t.shp -branch 1d_br_t.shp -mat land.flt dem.asc", giveNetwork<giveShpLayer>,
         false},
        {"NetworkMif", "-b -nbc net.nbc", giveMifNetwork, false},
        {"NetworkShp", "-b -nbc net.nbc", giveShpNetwork, false},
        {"DamagesMif", "-b -damages c.dmg", giveMifBuildings, false},
        {"DamagesShp", "-b -damages c.dmg -out d.shp", giveShpBuildings, false},
        {"SeriesBlock", "-b -nc a.asc b.asc", giveAscs, false},
        {"SeriesWide", "-b -nc a.flt b.flt -nc_part1 -out s.nc", giveWideFlts, false},
        {"SeriesParts", "-b -nc a.flt b.flt -nc_part1 -nc_comp5 -out s.nc", giveFlts, false},
        {"RainPolygonsAsc", "-b -rf rain.rfc", [](ToolRun& r) { givePolygonRain<giveMifLayer>(r, ".mif", "ASC"); },
         true},
        {"RainPolygonsNc", "-b -rf rain.rfc", [](ToolRun& r) { givePolygonRain<giveShpLayer>(r, ".shp", "NC"); }, true},
        {"RainTinFlt", "-b -rf rain.rfc", [](ToolRun& r) { giveTinRain<giveShpLayer>(r, ".shp", "FLT"); }, true},
        {"RainTinNc", "-b -rf rain.rfc", [](ToolRun& r) { giveTinRain<giveMifLayer>(r, ".mif", "NC"); }, true},
        {"RainIdwAsc", "-b -rf rain.rfc", [](ToolRun& r) { giveIdwRain<giveMifLayer>(r, ".mif", "ASC"); }, true},
        {"RainIdwNc", "-b -rf rain.rfc", [](ToolRun& r) { giveIdwRain<giveMifLayer>(r, ".mif", "NC"); }, false},
        {"RemapTin", "-b -remap -wl wl.asc -dem dem.asc", giveRemap, true},
        {"RemapIdw", "-b -remap -idw_npt2 -bd3 -wl wl.asc -dem dem.asc", giveRemap, true},
        {"RemapExtent", "-b -remap -idw_npt2 -wl wl.asc -dem dem.asc -ext ext.asc", giveRemap, true},
        {"RemapExtra", "-b -remap -wl wl.asc -dem dem.asc haz.asc", giveRemap, true},
        {"RemapFlt", "-b -remap -wl wl.flt -dem dem.flt haz.flt", giveRemapFlts, true},
        {"RemapFreeboard", "-b -remap -fb0.5 -bd3 -idw_npt2 -wl wl.asc -dem dem.asc", giveRemap, true},
    };
    return runs;
}

FaultRun withThreads(FaultRun run, int threads)
{
    const bool isLarge = run.name.ends_with("Large") || run.name.ends_with("Long");
    run.settings = {{"GRIDFORGE_THREADS", std::to_string(threads)}, {"GRIDFORGE_PIECE", isLarge ? "50000" : "2"}};
    return run;
}

int threadsOf(std::size_t turn)
{
    return kThreadsTried[turn % std::size(kThreadsTried)];
}

std::size_t numberOf(const FaultRun& run)
{
    const auto found = std::ranges::find(faultRuns(), run.name, &FaultRun::name);
    return static_cast<std::size_t>(found - faultRuns().begin());
}

std::vector<FaultRun> startedRuns()
{
    constexpr std::size_t kOneOf = kSanitized ? 7 : 1;
    std::vector<FaultRun> runs;
    for (std::size_t i = 0; i < faultRuns().size(); i += kOneOf) {
        runs.push_back(faultRuns()[i]);
    }
    return runs;
}

} // namespace gridforge::test
