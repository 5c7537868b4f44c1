// Every operation that reads a layer, each with a small layer of its own, so that a rule can be tested in all of them.
#pragma once

#include "support/damages_files.h"
#include "support/layer_files.h"
#include "support/network_layers.h"
#include "support/rainfall_files.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <ostream>
#include <string>
#include <vector>

namespace gridforge::test {

enum class Kind { point, line, region };

struct Column {
    std::string name;
    int width; // of a text; 0: a number
    std::string value;
};

// An operation that reads a layer named "l", with an object that it makes use of.
struct LayerReader {
    std::string name;
    std::string arguments; // with LAYER where the name of the layer stands
    std::string controlName = {};
    std::string control = {}; // text of the control file, likewise
    Kind kind;
    std::vector<double> vertices; // x and y in turn; a region is closed
    std::vector<Column> columns;
    std::vector<std::string> outputs = {}; // some of the files that a good run leaves
    void (*giveOthers)(ToolRun& run);
};

inline void PrintTo(const LayerReader& reader, std::ostream* out)
{
    *out << reader.name;
}

inline std::string withLayer(std::string text, const std::string& layer)
{
    constexpr std::string_view kPlace = "LAYER";
    for (std::size_t at = text.find(kPlace); at != std::string::npos; at = text.find(kPlace)) {
        text.replace(at, kPlace.size(), layer);
    }
    return text;
}

inline const std::vector<double> kReaderPoint = {4.5, 4.5};
inline const std::vector<double> kReaderLine = {2, 4.5, 7, 4.5};
inline const std::vector<double> kReaderSquare = {1.5, 1.5, 1.5, 4.5, 4.5, 4.5, 4.5, 1.5, 1.5, 1.5};
inline const std::vector<double> kReaderRainSquare = {100, 200, 100, 220, 130, 220, 130, 200, 100, 200};
inline const std::vector<double> kReaderRainTriangle = {105, 205, 105, 215, 125, 205, 105, 205};

inline const std::vector<Column> kReaderNodeColumns = {
    {"ID", 20, "tank"}, {"A", 2, "S"}, {"B", 8, "N"}, {"C", 20, ""}, {"D", 20, ""}, {"E", 20, ""},
    {"F", 20, ""},      {"G", 20, ""}, {"H", 20, ""}, {"I", 0, "0"}, {"J", 0, "0"}, {"Skew", 0, "0"}};
inline const std::vector<Column> kReaderRainColumns = {{"Name", 20, "a"}, {"F1", 0, "1"}, {"F2", 0, "1"}};

inline void giveTerrain(ToolRun& run)
{
    run.give("dem.asc", ascGrid(rowColumnCells()));
}

inline void giveCurveAndLevels(ToolRun& run)
{
    run.give("house.csv", kHundredAMetre);
    run.give("wl.asc", levels(9, 9));
}

inline void giveGauges(ToolRun& run)
{
    giveRainfall(run, "");
    giveRainfallLayer(run, "gauges", mifPoint("105 205") + mifPoint("125 205") + mifPoint("105 215"),
                      "a,1,1\nb,1,1\nc,1,1\n");
}

inline void giveBranch(ToolRun& run)
{
    giveLayer(run, "1d_br_a", kBranchColumns, pline({2, 4.5, 7, 4.5}), "\"a\",1,\"T\",0\n");
    giveTerrain(run);
}

inline const std::string kReaderRain = kRainfallGrid + kThreeHyetographs + "RF Interpolation Method == ";

inline const std::vector<LayerReader>& layerReaders()
{
    static const std::vector<LayerReader> readers = {
        {.name = "cp",
         .arguments = "-cp LAYER -cpsd3 dem.asc",
         .kind = Kind::point,
         .vertices = kReaderPoint,
         .columns = {{"Obs", 0, "3"}, {"Label", 20, "a"}},
         .outputs = {"l.csv"},
         .giveOthers = giveTerrain},
        {.name = "lp",
         .arguments = "-lp LAYER -lpmd2 -cpsd3 -check dem.asc",
         .kind = Kind::line,
         .vertices = kReaderLine,
         .columns = {{"Label", 20, "a"}},
         .outputs = {"l_a.csv"},
         .giveOthers = giveTerrain},
        {.name = "brkline",
         .arguments = "-brkline LAYER -check dem.asc",
         .kind = Kind::line,
         .vertices = kReaderLine,
         .columns = {{"Z", 0, "0"}, {"dZ", 0, "2"}, {"Width", 0, "2"}, {"Options", 20, "Max"}},
         .giveOthers = giveTerrain},
        {.name = "na",
         .arguments = "-na LAYER dem.asc",
         .kind = Kind::region,
         .vertices = kReaderSquare,
         .columns = kReaderNodeColumns,
         .outputs = {"tank"},
         .giveOthers = giveTerrain},
        {.name = "trim",
         .arguments = "-trim LAYER dem.asc",
         .kind = Kind::region,
         .vertices = kReaderSquare,
         .columns = {{"Name", 20, "a"}},
         .outputs = {"a_dem.asc"},
         .giveOthers = giveTerrain},
        {.name = "damages",
         .arguments = "-damages c.dmg",
         .controlName = "c.dmg",
         .control = "Read GIS Building == LAYER\nRead Curve House == house.csv\nRead Result % 1 == wl.asc\n",
         .kind = Kind::point,
         .vertices = kReaderPoint,
         .columns = {{"Type", 20, "House"}, {"ID", 20, "a"}, {"FFL", 0, "1"}, {"Mult", 0, "1"}},
         .outputs = {"l_Damages.csv"},
         .giveOthers = giveCurveAndLevels},
        {.name = "branches",
         .arguments = "-nbc net.nbc",
         .controlName = "net.nbc",
         .control = "Read GIS Branch == LAYER\n",
         .kind = Kind::line,
         .vertices = kReaderLine,
         .columns = {{"Name", 20, "a"}, {"n", 0, "1"}, {"UCS", 1, "T"}, {"Loss", 0, "0"}},
         .giveOthers = giveTerrain},
        {.name = "sections",
         .arguments = "-nbc net.nbc",
         .controlName = "net.nbc",
         .control = "Read GIS Branch == 1d_br_a.mif\nRead GIS XS == LAYER\n",
         .kind = Kind::line,
         .vertices = {4, 3, 4, 6},
         .columns = {{"Name", 20, "a"},
                     {"Dist", 0, "0"},
                     {"Split", 12, "T"},
                     {"Extract", 12, "T"},
                     {"Method", 20, ""},
                     {"Buffer", 20, ""},
                     {"BDist", 0, "0"}},
         .giveOthers = giveBranch},
        {.name = "form losses",
         .arguments = "-nbc net.nbc",
         .controlName = "net.nbc",
         .control = "Read GIS Branch == 1d_br_a.mif\nRead GIS FLC == LAYER\n",
         .kind = Kind::region,
         .vertices = kReaderSquare,
         .columns = {{"FLC", 0, "1"}},
         .outputs = {"1d_nwk_a.mid"},
         .giveOthers = giveBranch},
        {.name = "rain points",
         .arguments = "-rf rain.rfc",
         .controlName = "rain.rfc",
         .control = kReaderRain + "IDW\nRead GIS RF Points == gauges.mif\nRead GIS RF Points == LAYER\n",
         .kind = Kind::point,
         .vertices = {115, 215},
         .columns = kReaderRainColumns,
         .outputs = {"rain_total.asc"},
         .giveOthers = giveGauges},
        {.name = "rain polygons",
         .arguments = "-rf rain.rfc",
         .controlName = "rain.rfc",
         .control = kReaderRain + "Polygons\nRead GIS RF Polygon == LAYER\n",
         .kind = Kind::region,
         .vertices = kReaderRainSquare,
         .columns = kReaderRainColumns,
         .outputs = {"rain_total.asc"},
         .giveOthers = giveGauges},
        {.name = "rain triangles",
         .arguments = "-rf rain.rfc",
         .controlName = "rain.rfc",
         .control = kReaderRain + "TIN\nRead GIS RF Points == gauges.mif\nRead GIS RF Triangle == LAYER\n",
         .kind = Kind::region,
         .vertices = kReaderRainTriangle,
         .columns = kReaderRainColumns,
         .outputs = {"rain_total.asc"},
         .giveOthers = giveGauges},
    };
    return readers;
}

inline void giveControl(ToolRun& run, const LayerReader& reader, const std::string& layer)
{
    reader.giveOthers(run);
    if (!reader.control.empty()) {
        run.give(reader.controlName, withLayer(reader.control, layer));
    }
}

// --- Shapefiles ------------------------------------------------------------------------------------------------------

inline const std::string kNullShape = little(0);

inline std::string shpObject(const LayerReader& reader)
{
    switch (reader.kind) {
    case Kind::point: return pointRecord(reader.vertices[0], reader.vertices[1]);
    case Kind::line: return partsRecord(3, {0}, reader.vertices);
    case Kind::region: return partsRecord(5, {0}, reader.vertices);
    }
    return {};
}

inline void giveShpLayer(ToolRun& run, const LayerReader& reader, const std::vector<std::string>& objects, bool endMark)
{
    std::vector<DbfColumn> columns;
    std::string record = " ";
    for (const Column& column : reader.columns) {
        const bool isText = column.width > 0;
        const int width = isText ? column.width : 8;
        columns.push_back({column.name, isText ? 'C' : 'F', width});
        const std::string blanks(static_cast<std::size_t>(width) - column.value.size(), ' ');
        record += isText ? column.value + blanks : blanks + column.value;
    }
    std::string table = dbfHeader(static_cast<std::int32_t>(objects.size()), columns);
    for (std::size_t i = 0; i < objects.size(); ++i) {
        table += record;
    }
    const std::int32_t type = reader.kind == Kind::point ? 1 : reader.kind == Kind::line ? 3 : 5;
    run.give("l.shp", shpBytes(type, objects));
    run.give("l.dbf", table + (endMark ? "\x1A" : ""));
    run.give("l.prj", "PROJCS[\"Test\"]\n");
}

// --- MapInfo ---------------------------------------------------------------------------------------------------------

inline std::string mifObject(const LayerReader& reader)
{
    const std::vector<double>& xy = reader.vertices;
    std::string text;
    if (reader.kind == Kind::point) {
        return "Point " + std::to_string(xy[0]) + " " + std::to_string(xy[1]) + "\n";
    }
    text = (reader.kind == Kind::line ? "Pline " : "Region 1\n") + std::to_string(xy.size() / 2) + "\n";
    for (std::size_t i = 0; i + 1 < xy.size(); i += 2) {
        text += std::to_string(xy[i]) + " " + std::to_string(xy[i + 1]) + "\n";
    }
    return text;
}

inline void giveMifLayer(ToolRun& run, const LayerReader& reader, const std::string& objects, int records)
{
    std::vector<std::string> columns;
    std::string record;
    for (const Column& column : reader.columns) {
        const bool isText = column.width > 0;
        columns.push_back(column.name + (isText ? " Char(" + std::to_string(column.width) + ")" : " Float"));
        record += (record.empty() ? "" : ",") + (isText ? "\"" + column.value + "\"" : column.value);
    }
    run.give("l.mif", mifHeader(columns) + objects);
    std::string mid;
    for (int i = 0; i < records; ++i) {
        mid += record + "\n";
    }
    run.give("l.mid", mid);
}

} // namespace gridforge::test
