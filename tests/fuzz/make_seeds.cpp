// Writes small sound inputs of every kind for the fuzz targets, a folder each: make_seeds <folder>. A fuzzer finds its way
// from these much faster than from nothing.
#include "support/layer_files.h"
#include "support/shp_bytes.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace gridforge::test;

void write(const std::filesystem::path& folder, const std::vector<std::string>& seeds)
{
    std::filesystem::create_directories(folder);
    int number = 0;
    for (const std::string& seed : seeds) {
        std::ofstream(folder / std::to_string(++number), std::ios::binary) << seed;
    }
}

std::vector<std::string> mifSeeds()
{
    const std::string square = "5\n0 0\n10 0\n10 10\n0 10\n0 0\n";
    const std::vector<std::string> bodies = {
        "Point 1 2\n    Symbol (35,0,12)\nPoint\n3 4\n",
        "Line 1 2 3 4\n    Pen (1,2,0)\nRect 1 2 3 4\nRoundrect 1 2 3 4\n5\nEllipse 1 2 3 4\nArc 1 2 3 4\n0 90\n",
        "Pline 3\n1 1\n2,2\n3 3\nPLINE 2\n1e3 1d3\n-.5 +4.\n",
        "Pline Multiple 2\n2\n1 1\n2 2\n3\n3 3\n4 4\n5 5\nMultiPoint 2\n1 1\n2 2\n",
        "Region 1\n" + square + "    Center 5 5\nRegion 2\n" + square + "4\n2 2\n4 2\n4 4\n2 2\n    Center 1 1\n",
        "none\nText\n\"label\"\n1 2 3 4\n",
        "Collection 1\nRegion 1\n" + square,
    };
    std::vector<std::string> seeds;
    for (const std::string& body : bodies) {
        seeds.push_back(mifText(body) + std::string(1, '\0') +
                        "\"r1\",1\r\n\"r, 2\",2\n'r3' 3\n,\n\"r5\",5\n\"r6\",6\n");
    }
    return seeds;
}

std::string dbf(int records)
{
    std::string bytes = dbfHeader(records, {{"NAME", 'C', 3}, {"N", 'N', 4}, {"F", 'F', 6}});
    for (int i = 1; i <= records; ++i) {
        bytes += (i == 2 ? "*r0    9   1.5" : " r1   -7******");
    }
    return bytes + '\x1A';
}

std::vector<std::string> shpSeeds()
{
    const std::vector<std::string> layers = {
        shpBytes(1, {pointRecord(1, 2), pointRecord(-3.5, 4), little(0)}),
        shpBytes(3, {partsRecord(3, {0}, {0, 0, 1, 1, 2, 0}), partsRecord(3, {0, 2}, {0, 0, 1, 1, 5, 5, 6, 6, 7, 7})}),
        shpBytes(5, {partsRecord(5, {0}, {0, 0, 0, 6, 10, 6, 0, 0}),
                     partsRecord(5, {0, 4}, {0, 0, 0, 6, 10, 6, 0, 0, 5, 4, 6, 5, 5, 5, 5, 4})}),
        shpBytes(8, {little(8) + reals({0, 0, 1, 1}) + little(1) + reals({1, 1})}),
        shpBytes(11, {little(11) + reals({1, 2, 3, 4})}),
        shpBytes(1, {}),
    };
    std::vector<std::string> seeds;
    for (const std::string& layer : layers) {
        seeds.push_back(layer + "@dbf" + dbf(4));
    }
    return seeds;
}

std::vector<std::string> dbfSeeds()
{
    return {dbf(0), dbf(1), dbf(3), dbf(9) + "behind", dbf(2).substr(0, dbf(2).size() - 1)};
}

std::vector<std::string> gridSeeds()
{
    const std::string corner = "ncols 3\nnrows 2\nxllcorner 1.5\nyllcorner -2\ncellsize 0.5\nNODATA_value -9999\n";
    std::string binary;
    for (const float value : {1.0F, 2.5F, -9999.0F, 0.0F, 5.0F, 6.0F}) {
        binary.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    return {corner + "1 2 3\n4 5 -9999\n", corner + "1,,3\r\n  4.5e1\t-.5 nan\r\n",
            corner + "byteorder LSBFIRST\n" + std::string(1, '\0') + binary};
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_seeds <folder>\n", stderr);
        return 1;
    }
    const std::filesystem::path folder = argv[1];
    write(folder / "mif_fuzz", mifSeeds());
    write(folder / "shp_fuzz", shpSeeds());
    write(folder / "dbf_fuzz", dbfSeeds());
    write(folder / "grid_fuzz", gridSeeds());
    return 0;
}
