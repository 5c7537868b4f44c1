// Writes small sound inputs of every kind for the fuzz target, a folder each: make_seeds <folder>. A fuzzer finds its way
// from these much faster than from nothing.
#include "faults/fault_runs.h"
#include "fuzz/named_files.h"
#include "support/layer_files.h"
#include "support/network_layers.h"
#include "support/rainfall_files.h"
#include "support/shp_bytes.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace gridforge::test;
using Files = std::vector<std::pair<std::string, std::string>>;

// --- What is written -------------------------------------------------------------------------------------------------

class Seeds {
public:
    explicit Seeds(std::filesystem::path folder) : folder_(std::move(folder)) {}

    void add(const std::string& kind, const std::string& line, const Files& files)
    {
        gridforge::fuzz::NamedFiles input{line, {}};
        for (const auto& [name, bytes] : files) {
            input.files.push_back({name, bytes});
        }
        const std::string text = gridforge::fuzz::join(input);
        if (gridforge::fuzz::split(text).files.size() != files.size()) {
            std::fprintf(stderr, "make_seeds: a file of %s has the mark of another one\n", line.c_str());
            std::exit(EXIT_FAILURE);
        }
        std::filesystem::create_directories(folder_ / kind);
        std::ofstream(folder_ / kind / std::to_string(++counts_[kind]), std::ios::binary) << text;
    }

private:
    std::filesystem::path folder_;
    std::map<std::string, int> counts_;
};

// --- Grids -----------------------------------------------------------------------------------------------------------

void addGrids(Seeds& seeds)
{
    const std::string corner = "ncols 3\nnrows 2\nxllcorner 1.5\nyllcorner -2\ncellsize 0.5\nNODATA_value -9999\n";
    std::string binary;
    for (const float value : {1.0F, 2.5F, -9999.0F, 0.0F, 5.0F, 6.0F}) {
        binary.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    seeds.add("asc", "plain", {{"g.asc", corner + "1 2 3\n4 5 -9999\n"}});
    seeds.add("asc", "odd numbers", {{"g.asc", corner + "1,,3\r\n  4.5e1\t-.5 nan\r\n"}, {"g.prj", "PROJCS[\"a\"]\n"}});
    seeds.add("asc", "rows over lines", {{"g.asc", corner + "1 2\n3\n4 5 6 7\n"}});
    seeds.add(
        "asc", "centres",
        {{"g.asc", "NCOLS 1\nNROWS 3\nxllcenter 0\nyllcenter 0\ndx 1\ndy 1\n-12345.678\n+1E-3\n0.1234567890123\n"}});
    seeds.add("flt", "plain", {{"g.flt", binary}, {"g.hdr", corner + "byteorder LSBFIRST\n"}});
    seeds.add("flt", "other order",
              {{"g.flt", binary}, {"g.hdr", corner + "BYTEORDER MSBFIRST\n"}, {"g.prj", "none\n"}});
}

// --- Layers ----------------------------------------------------------------------------------------------------------

void addMifs(Seeds& seeds)
{
    const std::string square = "5\n0 0\n10 0\n10 10\n0 10\n0 0\n";
    const std::vector<std::pair<std::string, std::string>> bodies = {
        {"points", "Point 1 2\n    Symbol (35,0,12)\nPoint\n3 4\n"},
        {"boxes",
         "Line 1 2 3 4\n    Pen (1,2,0)\nRect 1 2 3 4\nRoundrect 1 2 3 4\n5\nEllipse 1 2 3 4\nArc 1 2 3 4\n0 90\n"},
        {"lines", "Pline 3\n1 1\n2,2\n3 3\nPLINE 2\n1e3 1d3\n-.5 +4.\n"},
        {"multiple", "Pline Multiple 2\n2\n1 1\n2 2\n3\n3 3\n4 4\n5 5\nMultiPoint 2\n1 1\n2 2\n"},
        {"regions",
         "Region 1\n" + square + "    Center 5 5\nRegion 2\n" + square + "4\n2 2\n4 2\n4 4\n2 2\n    Center 1 1\n"},
        {"text", "none\nText\n\"label\"\n1 2 3 4\n"},
        {"collection", "Collection 1\nRegion 1\n" + square},
    };
    for (const auto& [title, body] : bodies) {
        seeds.add("mif", title,
                  {{"l.mif", mifText(body)}, {"l.mid", "\"r1\",1\r\n\"r, 2\",2\n'r3' 3\n,\n\"r5\",5\n\"r6\",6\n"}});
    }
}

std::string dbf(int records)
{
    std::string bytes = dbfHeader(records, {{"NAME", 'C', 3}, {"N", 'N', 4}, {"F", 'F', 6}});
    for (int i = 1; i <= records; ++i) {
        bytes += (i == 2 ? "*r0    9   1.5" : " r1   -7******");
    }
    return bytes + '\x1A';
}

void addShps(Seeds& seeds)
{
    const std::vector<std::pair<std::string, std::string>> layers = {
        {"points", shpBytes(1, {pointRecord(1, 2), pointRecord(-3.5, 4), little(0)})},
        {"lines", shpBytes(3, {partsRecord(3, {0}, {0, 0, 1, 1, 2, 0}),
                               partsRecord(3, {0, 2}, {0, 0, 1, 1, 5, 5, 6, 6, 7, 7})})},
        {"regions", shpBytes(5, {partsRecord(5, {0}, {0, 0, 0, 6, 10, 6, 0, 0}),
                                 partsRecord(5, {0, 4}, {0, 0, 0, 6, 10, 6, 0, 0, 5, 4, 6, 5, 5, 5, 5, 4})})},
        {"points in one", shpBytes(8, {little(8) + reals({0, 0, 1, 1}) + little(1) + reals({1, 1})})},
        {"points with z", shpBytes(11, {little(11) + reals({1, 2, 3, 4})})},
        {"nothing", shpBytes(1, {})},
    };
    int records = 0;
    for (const auto& [title, shp] : layers) {
        seeds.add("shp", title, {{"l.shp", shp}, {"l.dbf", dbf(records++ % 4 + 1)}, {"l.prj", "PROJCS[\"a\"]\n"}});
    }
}

// --- Tables and control files ----------------------------------------------------------------------------------------

void addTables(Seeds& seeds)
{
    seeds.add("prj", "of a layer", {{"l.prj", "\nPROJCS[\"Some\",GEOGCS[\"Other\"]]\nmore\n"}});
    seeds.add("classes", "with colours",
              {{"c.csv", "Value,Name,Red,Green,Blue\n2,Low,0,255,0\n7,\"High, so so\",255,128,0\n10,Top,9,9,9\n"}});
    seeds.add("classes", "bins", {{"c.csv", "Limit,Label\r\n5,Low\r\n\r\n1e1 'High'\r\n-3.5,\n"}});
    seeds.add("symbols", "three", {{"c.csv", "Up to,Shape,Colour,Size\n-1,35,255,12\n4,34,0,8\n4,1,2,3\n"}});
    seeds.add("curve", "of a house", {{"c.csv", "Depth,Damage\n0,0\n0.5,1e3\n100,10000\n"}});
    seeds.add("hyetograph", "three times", {{"h.csv", "Time,Depth\n0,2\n0.5,4\n1.5 0\n"}});
    seeds.add("xyz", "plain",
              {{"p.xyz", "102 204 12.5\n100 200 11\n104 202 23\n102 200 21\n104 204 -33.25\n100 202 1.5\n"}});
    seeds.add("xyz", "odd", {{"p.xyz", "1,2,3\r\n,,4 more\r\n1d2\t2e0 -.5\n  6 7 8\n9 9 9\n"}});
}

void addControlFiles(Seeds& seeds)
{
    const std::string branches = mifHead(kTypedColumns) + pline({0, 10, 20, 10, 40, 10});
    const std::string sections = mifHead(kCutColumns) + pline({22, 6, 20, 10, 18, 14}) + "Line 30 6 30 14\n";
    const std::string losses = mifHead({"FLC Float"}) + rectangle(-5, -5, 15, 25);
    const std::string terrain = "ncols 4\nnrows 3\nxllcorner 0\nyllcorner 0\ncellsize 10\nNODATA_value -9\n"
                                "1 2 3 4\n5 6 7 8\n9 10 11 12\n";
    seeds.add(
        "nbc", "all commands",
        {{"net.nbc", "Read GIS Branch == 1d_br_t.mif ! the branches\nRead GIS XS == 1d_cut_t.mif\nSet XS dx == 4\n"
                     "Read Grid Z == dem.asc\nRead GIS FLC == flc.mif\nWrite Check == On\nBranch Bendiness == On\n"},
         {"1d_br_t.mif", branches},
         {"1d_br_t.mid", "\"River\",0.03,\"N\",0.6,\"S\"\n"},
         {"1d_cut_t.mif", sections},
         {"1d_cut_t.mid", "\"a\",2,\"T\",\"T\",\"\",\"\",0\n\"\",2,\"T\",\"T\",\"Max\",\"\",3\n"},
         {"flc.mif", losses},
         {"flc.mid", "0.5\n"},
         {"csv/.keep", ""},
         {"dem.asc", terrain}});
    seeds.add("losses", "one region", {{"flc.mif", losses}, {"flc.mid", "0.5\n"}});
    seeds.add("losses", "of a Shapefile",
              {{"flc.shp", shpBytes(5, {partsRecord(5, {0}, {0, 0, 0, 6, 10, 6, 0, 0})})},
               {"flc.dbf", dbfHeader(1, {{"FLC", 'N', 4}}) + " -0.5\x1A"}});
    seeds.add("dmg", "limits, curves and results",
              {{"c.dmg", "Maximum Building == 10\nMaximum Vertex == 20\nMaximum Damage Curve == 3\n"
                         "Maximum Point in Curve == 9\nMaximum Results == 4\n"
                         "Read GIS Building == h.mif\nRead Curve House == house.csv\nRead Result % 1 == wl.asc\n"
                         "Read Result 0.002 == rare.flt\nRegion Inspection Method == Avg\n"},
               {"h.mif", mifText("Point 1 2\n")},
               {"h.mid", "\"House\",1,2,3\n"},
               {"house.csv", "Depth,Damage\n0,0\n100,10000\n"}});
    const std::string gauges =
        mifHead({"Name Char(8)", "F1 Float", "F2 Float"}) + mifPoint("95 205") + mifPoint("135 205");
    seeds.add("rfc", "grid, hyetographs and points",
              {{"rain.rfc", "Maximum RF Locations == 9\nMaximum Points in Hyetograph == 9\n" + kRainfallGrid +
                                kTwoHyetographs +
                                "RF Interpolation Method == IDW\nIDW Max Point == 2\nIDW Exponent == 2\n"
                                "IDW Max Distance == 100\nRead GIS RF Points == gauges.mif\nRF GRID FORMAT == FLT\n"},
               {"a.csv", "Time,Depth\n0,2\n0.5,4\n"},
               {"b.csv", "Time,Depth\n0,10\n0.5,20\n"},
               {"gauges.mif", gauges},
               {"gauges.mid", "\"a\",1,1\n\"b\",1.5,2\n"}});
}

void addCommandLines(Seeds& seeds)
{
    const std::vector<std::string> lines = {
        "-b\n-max\na*.asc\nb?.flt\n-out\nmost.asc\n",
        "-remap\n-idw_npt2\n-bd3\n-fb0.5\n-wl\na1.asc\n-dem\nb1.flt\n",
        "-dif\n-change\na1.asc\nfolder/c d.asc\nname of it\n",
        "-trans_m2\n-trans_c-1.5\n-decimal3\n-flt\n-asc\na1.asc\n",
        "-statRank3\n-statMax\n*\n",
        "-nc\n-nc_comp5\n-nc_part1\n-nc_start2000-01-01\nA1.ASC\n",
        "-cp\np.mif\n-cpsd4\n-cpmm5\n-config\nc.csv\nfolder\\*.asc\n",
        "-classify\nc.csv\n-RGB\n-grc\n./a1.asc\n",
    };
    for (const std::string& line : lines) {
        seeds.add("command_line", "words, and names",
                  {{"words", line}, {"a1.asc", ""}, {"a22.asc", ""}, {"b1.flt", ""}, {"folder/c d.asc", ""}});
    }
}

// --- Whole runs ------------------------------------------------------------------------------------------------------

std::string kindOf(const FaultRun& fault)
{
    const std::vector<std::pair<std::string, std::string>> kinds = {
        {"Network", "run_network"}, {"Sections", "run_network"}, {"Damages", "run_damages"},   {"Rain", "run_rainfall"},
        {"Remap", "run_remap"},     {"Trim", "run_layers"},      {"Breaklines", "run_layers"}, {"Marks", "run_layers"},
        {"Profiles", "run_layers"}, {"Nodes", "run_layers"}};
    for (const auto& [start, kind] : kinds) {
        if (fault.name.starts_with(start)) {
            return kind;
        }
    }
    return "run_grids";
}

Files filesBelow(const std::filesystem::path& folder)
{
    Files files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.emplace_back(entry.path().lexically_relative(folder).string(), readWhole(entry.path()));
        }
    }
    return files;
}

// Those on small grids that the tests of faults run.
void addRuns(Seeds& seeds)
{
    for (const FaultRun& fault : faultRuns()) {
        if (fault.name.ends_with("Large") || fault.name.ends_with("Long")) {
            continue;
        }
        ToolRun run(fault.arguments.c_str());
        fault.give(run);
        seeds.add(kindOf(fault), fault.arguments, filesBelow(run.folder()));
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_seeds <folder>\n", stderr);
        return EXIT_FAILURE;
    }
    Seeds seeds(argv[1]);
    addGrids(seeds);
    addMifs(seeds);
    addShps(seeds);
    addTables(seeds);
    addControlFiles(seeds);
    addCommandLines(seeds);
    addRuns(seeds);
    return EXIT_SUCCESS;
}
