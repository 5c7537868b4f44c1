// Inputs whose names on the disk differ from the names asked for in the case of their letters.
#include "support/consoles.h"
#include "support/damages_files.h"
#include "support/expect_run.h"
#include "support/layer_files.h"
#include "support/network_layers.h"
#include "support/rainfall_files.h"
#include "support/shp_bytes.h"

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

std::string inCapitals(std::string name)
{
    for (char& c : name) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return name;
}

// All files of the folder, except those in `kept`, get names in capitals; folders keep theirs.
void capitalise(const fs::path& folder, const Names& kept)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && !kept.contains(entry.path().filename().string())) {
            files.push_back(entry.path());
        }
    }
    for (const fs::path& file : files) {
        fs::rename(file, file.parent_path() / inCapitals(file.filename().string()));
    }
}

// The bytes of a written file. The head of a .dbf holds the date, which may change between two runs.
std::string written(const ToolRun& run, const std::string& name)
{
    std::string bytes = run.read(name);
    if (name.ends_with(".dbf")) {
        bytes.replace(1, 3, 3, '\0');
    }
    return bytes;
}

// The run goes well, and with the names of its files in capitals it says and writes the same. `kept` are the names that
// the directory search must find, which is exact.
void expectSameInCapitals(const char* arguments, const Names& kept, const std::function<void(ToolRun&)>& give)
{
    ToolRun plain(arguments);
    give(plain);
    plain.start();
    EXPECT_TRUE(plain.reachedEnd()) << plain.console();

    ToolRun capitals(arguments);
    give(capitals);
    capitalise(capitals.folder(), kept);
    capitals.start();
    EXPECT_EQ(capitals.console(), plain.console());
    ASSERT_EQ(capitals.changedFiles(), plain.changedFiles());
    for (const std::string& name : plain.changedFiles()) {
        EXPECT_EQ(written(capitals, name), written(plain, name)) << name;
    }
}

const std::string kProjcs = "PROJCS[\"Test\"]\n";

TEST(LetterCaseCli, GridsFindTheirHeaderAndProjection)
{
    expectSameInCapitals("-b -conv d/g.flt", {"g.flt"}, [](ToolRun& run) {
        run.give("d/g.flt", fltCells({{1, 2}}));
        run.give("d/g.hdr", hdr(2, 1));
        run.give("g.prj", kProjcs);
    });
}

TEST(LetterCaseCli, NamesBehindFlagsAreFound)
{
    expectSameInCapitals("-b -classify c.csv a.asc", {"a.asc"}, [](ToolRun& run) {
        run.give("c.csv", "head\n10,low\n20,high\n");
        run.give("a.asc", ascGrid({{5, 15}}));
    });
    expectSameInCapitals("-b -remap -wl wl.asc -dem dem.asc -ext ext.asc", {"wl.asc"}, [](ToolRun& run) {
        const Cells coarse(3, std::vector<double>(3, 7));
        run.give("wl.asc", ascGrid(coarse, {.cellsize = 2}));
        run.give("ext.asc", ascGrid(coarse, {.cellsize = 2}));
        run.give("dem.asc", ascGrid(Cells(6, std::vector<double>(6, 1))));
    });
    expectSameInCapitals("-b -xs 1d_cut_t.mif -branch 1d_branches_t.mif -mat mat.asc dem.asc", {"dem.asc", ".keep"},
                         [](ToolRun& run) {
                             giveDrawnNetwork(run);
                             run.give("mat.asc", ascGrid(sectionTerrain()));
                         });
}

TEST(LetterCaseCli, LayersFindTheirFiles)
{
    expectSameInCapitals("-b -cp p.mif -cpsd4 -config c.csv dem.asc", {"dem.asc"}, [](ToolRun& run) {
        run.give("dem.asc", ascGrid(rowColumnCells()));
        run.give("p.mif", mifHeader({"Obs Float", "Mark Char(20)"}) + "Point 4.3 4.4\n");
        run.give("p.mid", "40,a\n");
        run.give("c.csv", "head\n10,35,255,12\n20,36,0,12\n");
    });
    expectSameInCapitals("-b -cp p.shp -cpsd4 dem.asc", {"dem.asc"}, [](ToolRun& run) {
        run.give("dem.asc", ascGrid(rowColumnCells()));
        giveShapefile(run, "p", 1,
                      {.objects = {pointRecord(4.3, 4.4)},
                       .columns = {{"OBS", 'N', 4}, {"MARK", 'C', 2}},
                       .values = {"  40a "},
                       .projection = kProjcs});
    });
}

TEST(LetterCaseCli, ControlFilesFindWhatTheyName)
{
    expectSameInCapitals("-b -damages c.dmg", {"c.dmg"},
                         [](ToolRun& run) { giveDamageFiles(run, pointMif("3.2", "1.6"), "\"House\",\"A\",3,1\n"); });
    expectSameInCapitals("-b -rf rain.rfc", {"rain.rfc"}, [](ToolRun& run) {
        giveRainfall(run, kRainfallGrid + kTwoHyetographs +
                              "RF Interpolation Method == Poly\nRead GIS RF Polygon == areas.mif\n");
        giveRainfallLayer(run, "areas", mifRectangle("110", "200", "130", "220"), "b,1,1\n");
    });
    expectSameInCapitals("-b -nbc net.nbc", {"net.nbc", ".keep"}, [](ToolRun& run) {
        giveDrawnNetwork(run);
        run.give("net.nbc", "Read GIS Branch == 1d_branches_t.mif\nRead GIS XS == 1d_cut_t.mif\nSet XS dx == 1\n"
                            "Read Grid Z == dem.asc\n");
    });
}

TEST(LetterCaseCli, TheDirectorySearchIsExact)
{
    ToolRun run("-conv A.asc");
    run.give("a.asc", ascGrid({{1}}));
    expectRun(run, failed({kWildcards, "Input File  1: A.asc", "ERROR - No valid file found for input: A.asc"}));
}

TEST(LetterCaseCli, OfTwoThatFitNoneIsTaken)
{
    ToolRun run("-conv g.flt");
    run.give("g.flt", fltCells({{1, 2}}));
    run.give("G.hdr", hdr(2, 1));
    run.give("g.HDR", hdr(2, 1));
    run.give("G.prj", kProjcs);
    run.give("g.PRJ", kProjcs);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Proecsing File:  1: g.flt", opening("g.hdr"),
                                       "CHECK 0008 - \"g.hdr\" cannot be found",
                                       "Check file exists and press enter or enter another file name: "));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LetterCaseCli, AnswersOfTheUserAreFoundToo)
{
    ToolRun run("-b -conv g.flt");
    run.give("g.flt", fltCells({{1, 2}}));
    run.give("OTHER.HDR", hdr(2, 1));
    run.type("other.hdr");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {openedInput("other.hdr"), openedUnit(1001)});
    EXPECT_GRID(run, "g.asc", {{1, 2}});
}

TEST(LetterCaseCli, OutputsGetTheirOwnNames)
{
    ToolRun run("-b -conv a.asc");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.give("A.FLT", "an older file");
    run.start();
    EXPECT_EQ(run.read("a.flt"), fltCells({{1, 2}}));
    run.expectFile("a.hdr");
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace
} // namespace gridforge::test
