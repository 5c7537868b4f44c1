#include "support/consoles.h"
#include "support/netcdf_failures.h"
#include "support/paths.h"
#include "support/read_netcdf.h"
#include "support/sanitizers.h"
#include "support/system_failures.h"

#include <gmock/gmock.h>
#include <random>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

using Packing = NetcdfReading::Packing;

// What the console shows of the parts of a run, each grid of two rows by three columns in text.
Lines startOfSeries(const std::string& name, int inputs)
{
    return {"Converting grid into netcdf format.", "Using NetCDF Compression Level: 1", "Using NetCDF Shuffle == T",
            "Opening output netcdf file: " + name, "Processing " + std::to_string(inputs) + " input grids."};
}

const Lines kDefinition = {"Processing 1st file - defining netcdf output file.",
                           "Defining dimensions in netcdf file:",
                           "   Finished defining dimensions.",
                           "Defining variables in netcdf file:",
                           "   Finished defining variables.",
                           "Writing coordinates to netcdf file..."};

const Lines kTime = {"Writing time to netcdf file...", "   Done", "Allocating 0Kb memory for external grid..."};
const Lines kData = {"Writing data to netcdf file...", "   Done", "Deallocating memory...", "   Done."};
const Lines kClosing = {"Closing netcdf file...", "   Done."};

Lines firstGrid(const std::string& name)
{
    return joined({{"Processing File: 1: " + name},
                   headerOf(name, "2 rows by 3 columns"),
                   kDefinition,
                   {"   Done."},
                   kTime,
                   ascCells(),
                   kData});
}

Lines furtherGrid(int number, const std::string& name)
{
    return joined({{"Processing File: " + std::to_string(number) + ": " + name},
                   headerOf(name, "2 rows by 3 columns"),
                   kTime,
                   ascCells(),
                   kData});
}

// Digits: grid, row from the south, column.
const Cells kFirst{{121, 122, 123}, {111, 112, 113}};
const Cells kSecond{{221, kNull, 223}, {kNull, 12, 13}};

// --- The file --------------------------------------------------------------------------------------------------------

TEST(NcCli, PartPutsTheRowsOfEachGridInTheirPlaces)
{
    ToolRun run("-nc d/a.asc d/b.asc -nc_part1");
    run.give("d/a.asc", ascGrid(kFirst));
    run.give("d/b.asc", ascGrid(kSecond));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"d/a.asc", "d/b.asc"}), startOfSeries("d/a.nc", 2), firstGrid("d/a.asc"),
                                furtherGrid(2, "d/b.asc"), kClosing, normalEnd()}));
    const NetcdfReading file(run, "d/a.nc");
    EXPECT_THAT(file.values("time"), ElementsAre(1, 2));
    EXPECT_THAT(file.values("data_temporal"), ElementsAre(111, 112, 113, 121, 122, 123,     //
                                                          kNull, 12, 13, 221, kNull, 223)); // the south row first
    EXPECT_THAT(file.values("data_max"), ElementsAre(111, 112, 113, 221, 122, 223));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NcCli, AsABlockTheColumnsOfEachGridFillTheRowsOfTheFile)
{
    ToolRun run("-nc d/a.asc d/b.asc");
    run.give("d/a.asc", ascGrid(kFirst));
    run.give("d/b.asc", ascGrid(kSecond));
    run.start();
    EXPECT_CONSOLE(run, joined({startOf({"d/a.asc", "d/b.asc"}), startOfSeries("d/a.nc", 2), firstGrid("d/a.asc"),
                                furtherGrid(2, "d/b.asc"), kClosing, normalEnd()}));
    const NetcdfReading file(run, "d/a.nc");
    EXPECT_THAT(file.values("data_temporal"), ElementsAre(111, 121, 112, 122, 113, 123, //
                                                          kNull, 221, 12, kNull, 13, 223));
    EXPECT_THAT(file.values("data_max"), ElementsAre(111, 221, 112, 122, 113, 223));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NcCli, TheFileAndItsFolderMayHaveLettersOfAnyLanguage)
{
    ToolRun run("-b -nc größe/höhe.asc -nc_part1 -out größe/水位.nc");
    run.give("größe/höhe.asc", ascGrid(kFirst));
    run.start();
    EXPECT_TRUE(run.says("Opening output netcdf file: größe/水位.nc"));
    EXPECT_THAT(NetcdfReading(run, "größe/水位.nc").values("data_max"), ElementsAre(111, 112, 113, 121, 122, 123));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NcCli, TheFileMayBeNamedFromTheRoot)
{
    const ScratchFolder folder;
    const std::string name = (folder.path() / "a.nc").string();
    ToolRun run({"-b", "-nc", "a.asc", "-out", name});
    run.give("a.asc", ascGrid(kFirst));
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_EQ(run.error(), "");
    EXPECT_TRUE(folder.has("a.nc"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NcCli, TheFileIsDefinedAsPromised)
{
    ToolRun run("-nc a.asc");
    run.give("a.asc", ascGrid(kFirst, {.xll = 293000.5, .yll = -40, .cellsize = 2.5}));
    run.start();
    const NetcdfReading file(run, "a.nc");
    int form = 0;
    nc_inq_format(file.id(), &form);
    EXPECT_EQ(form, NC_FORMAT_NETCDF4);
    EXPECT_THAT(file.texts(NC_GLOBAL),
                ElementsAre(Pair("Conventions", "CF-1.6"), Pair("title", "Dummy Title"), Pair("institution", "ORVANE"),
                            Pair("source", "Exported from KESTOR utility (gridforge)"),
                            Pair("history", "to be implemented"),
                            Pair("references", "To be compliant with FORECAST_SYSTEM_URL")));

    const char* const dimensions[] = {"x", "y", "time"};
    for (int i = 0; i < 3; ++i) {
        char name[NC_MAX_NAME + 1] = {};
        nc_inq_dimname(file.id(), i, name);
        EXPECT_STREQ(name, dimensions[i]);
    }
    int unlimited = -1;
    nc_inq_unlimdim(file.id(), &unlimited);
    EXPECT_EQ(unlimited, 2);

    EXPECT_THAT(file.variables(), ElementsAre("time", "y", "x", "data_temporal", "data_max"));
    EXPECT_THAT(file.shape("time"), ElementsAre(Pair("time", 1)));
    EXPECT_THAT(file.shape("y"), ElementsAre(Pair("y", 2)));
    EXPECT_THAT(file.shape("x"), ElementsAre(Pair("x", 3)));
    EXPECT_THAT(file.shape("data_temporal"), ElementsAre(Pair("time", 1), Pair("y", 2), Pair("x", 3)));
    EXPECT_THAT(file.shape("data_max"), ElementsAre(Pair("y", 2), Pair("x", 3)));
    for (const char* name : {"time", "y", "x"}) {
        nc_type type = NC_NAT;
        nc_inq_vartype(file.id(), file.variable(name), &type);
        EXPECT_EQ(type, NC_DOUBLE) << name;
    }
    for (const char* name : {"data_temporal", "data_max"}) {
        nc_type type = NC_NAT;
        nc_inq_vartype(file.id(), file.variable(name), &type);
        EXPECT_EQ(type, NC_FLOAT) << name;
        EXPECT_THAT(file.texts(file.variable(name)), ElementsAre(Pair("_FillValue", "")));
        EXPECT_EQ(file.fill(name), kNull);
    }
    EXPECT_THAT(file.texts(file.variable("time")),
                ElementsAre(Pair("standard_name", "time"), Pair("long_name", "time"),
                            Pair("units", "hours since 2011-03-01 10:00:00"), Pair("axis", "T")));
    EXPECT_THAT(file.texts(file.variable("y")),
                ElementsAre(Pair("standard_name", "Y"), Pair("long_name", "y-coordinate in Cartesian system"),
                            Pair("units", "m"), Pair("axis", "Y")));
    EXPECT_THAT(file.texts(file.variable("x")),
                ElementsAre(Pair("standard_name", "X"), Pair("long_name", "x-coordinate in Cartesian system"),
                            Pair("units", "m"), Pair("axis", "X")));
    // The north-east corners of the cells.
    EXPECT_THAT(file.values("x"), ElementsAre(293003, 293005.5, 293008));
    EXPECT_THAT(file.values("y"), ElementsAre(-37.5, -35));
}

TEST(NcCli, OneGridIsASeriesOfOneAndItsOwnMaximum)
{
    for (const char* arguments : {"-nc a.asc", "-nc a.asc -nc_part1"}) {
        ToolRun run(arguments);
        run.give("a.asc", ascGrid({{5, kNull, 7}}));
        run.start();
        EXPECT_TRUE(run.says("Processing 1 input grids."));
        const NetcdfReading file(run, "a.nc");
        EXPECT_THAT(file.values("time"), ElementsAre(1));
        EXPECT_THAT(file.values("data_temporal"), ElementsAre(5, kNull, 7));
        EXPECT_THAT(file.values("data_max"), ElementsAre(5, kNull, 7));
    }
}

TEST(NcCli, OneCellIsEnough)
{
    for (const char* arguments : {"-nc a.asc", "-nc a.asc -nc_part1"}) {
        ToolRun run(arguments);
        run.give("a.asc", ascGrid({{5}}));
        run.start();
        const NetcdfReading file(run, "a.nc");
        EXPECT_THAT(file.values("data_temporal"), ElementsAre(5));
        EXPECT_THAT(file.values("data_max"), ElementsAre(5));
    }
}

TEST(NcCli, TheFirstGridsNullCountsAndLaterNullsAreValues)
{
    ToolRun run("-nc a.asc b.asc");
    run.give("a.asc", ascGrid({{1, -9999, 3}}));
    run.give("b.asc", ascGrid({{-1, -1, 4}}, {.null = -1}));
    run.start();
    const NetcdfReading file(run, "a.nc");
    EXPECT_EQ(file.fill("data_temporal"), -9999);
    EXPECT_EQ(file.fill("data_max"), -9999);
    EXPECT_THAT(file.values("data_temporal"), ElementsAre(1, -9999, 3, -1, -1, 4));
    EXPECT_THAT(file.values("data_max"), ElementsAre(1, -1, 4));
}

TEST(NcCli, ACellAtTheNullAndAHundredthTakesNoPartInTheMaximum)
{
    ToolRun run("-nc a.asc");
    run.give("a.asc", ascGrid({{0, 0.01, 0.0101, -5}}, {.null = 0}));
    run.start();
    const NetcdfReading file(run, "a.nc");
    EXPECT_THAT(file.values("data_temporal"),
                ElementsAre(0, static_cast<double>(0.01F), static_cast<double>(0.0101F), -5));
    EXPECT_THAT(file.values("data_max"), ElementsAre(0, 0, static_cast<double>(0.0101F), 0));
}

TEST(NcCli, AnEmptyValueIsZeroInEveryGrid)
{
    ToolRun run("-nc a.asc b.asc");
    run.give("a.asc", ascGrid({{5, 6}}));
    run.give("b.asc", "ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n,7\n");
    run.start();
    const NetcdfReading file(run, "a.nc");
    EXPECT_THAT(file.values("data_temporal"), ElementsAre(5, 6, 0, 7));
    EXPECT_THAT(file.values("data_max"), ElementsAre(5, 7));
}

TEST(NcCli, GridsAreStackedInTheOrderOfTheList)
{
    ToolRun run({"-b", "-nc", "z.asc", "a*.asc"});
    run.give("a2.asc", ascGrid({{2}}));
    run.give("a1.asc", ascGrid({{1}}));
    run.give("z.asc", ascGrid({{26}}));
    run.start();
    const NetcdfReading file(run, "z.nc");
    EXPECT_THAT(file.values("data_temporal"), ElementsAre(26, 1, 2));
    EXPECT_THAT(file.values("time"), ElementsAre(1, 2, 3));
    EXPECT_FALSE(run.says(kEnter));
    EXPECT_NO_OTHER_FILES(run);
}

// More cells than go to the library at a time, neither side a multiple of anything.
TEST(NcCli, LargeGridsArriveWholeInBothLayouts)
{
    constexpr std::size_t kRows = 701;
    constexpr std::size_t kColumns = 523;
    std::mt19937 random(8);
    Cells cells(kRows, std::vector<double>(kColumns));
    for (auto& row : cells) {
        for (double& cell : row) {
            cell = random() % 5 == 0 ? kNull : static_cast<double>(random() % 4096) / 16;
        }
    }
    std::vector<double> byRows;
    for (std::size_t row = kRows; row-- > 0;) {
        byRows.insert(byRows.end(), cells[row].begin(), cells[row].end());
    }
    std::vector<double> byColumns;
    for (std::size_t column = 0; column < kColumns; ++column) {
        for (std::size_t row = kRows; row-- > 0;) {
            byColumns.push_back(cells[row][column]);
        }
    }
    for (const bool part : {false, true}) {
        ToolRun run({"-b", "-nc", "a.flt", part ? "-nc_part1" : "-nc_part0"});
        run.give("a.flt", fltCells(cells));
        run.give("a.hdr", hdr(cells));
        run.start();
        EXPECT_TRUE(run.says("Allocating 1466Kb memory for external grid...")); // 701 * 523 * 4 / 1000
        const NetcdfReading file(run, "a.nc");
        EXPECT_TRUE(file.values("data_temporal") == (part ? byRows : byColumns));
        EXPECT_TRUE(file.values("data_max") == (part ? byRows : byColumns));
    }
}

Cells randomCells(std::size_t rows, std::size_t columns, std::uint32_t seed)
{
    std::mt19937 random(seed);
    Cells cells(rows, std::vector<double>(columns));
    for (auto& row : cells) {
        for (double& cell : row) {
            cell = random() % 4 == 0 ? kNull : static_cast<double>(random() % 4096) / 16;
        }
    }
    return cells;
}

struct Means {
    const char* threads;
    const char* memory;
    const char* piece;
};

void use(ToolRun& run, const Means& means)
{
    run.environment("GRIDFORGE_THREADS", means.threads);
    run.environment("GRIDFORGE_MEMORY", means.memory);
    run.environment("GRIDFORGE_PIECE", means.piece);
}

TEST(NcCli, FilesAreTheSameWhateverTheThreadsTheMemoryAndThePieces)
{
    const Means allMeans[] = {
        {"1", "1000000", "100000"}, {"2", "1000000", "10"}, {"7", "1000000", "100"}, {"7", "1", "100"}};
    const Cells cells = randomCells(31, 17, 9);
    std::string wrapped = ascGrid(cells);
    wrapped[wrapped.find(' ', wrapped.size() / 2)] = '\n'; // a row on two lines: the grid is read step by step
    for (const char* part : {"-nc_part0", "-nc_part1"}) {
        std::string file;
        for (const Means& means : allMeans) {
            ToolRun run({"-b", "-nc", "a.flt", "b.asc", "c.flt", "d.asc", "a.flt", "b.asc", part});
            giveFlt(run, "a", randomCells(31, 17, 7));
            run.give("b.asc", ascGrid(randomCells(31, 17, 8)));
            giveFlt(run, "c", cells);
            run.give("d.asc", wrapped);
            use(run, means);
            run.start();
            ASSERT_TRUE(run.reachedEnd()) << run.console();
            file = file.empty() ? run.read("a.nc") : file;
            EXPECT_TRUE(run.read("a.nc") == file) << part << ' ' << means.threads << ' ' << means.memory;
        }
    }
}

TEST(NcCli, SoAreFilesOfSeveralChunksAGrid)
{
    const Cells cells = randomCells(2017, 2203, 9); // 17.8 MB, a chunk has 16
    std::string file;
    for (const Means& means : {Means{"1", "100000000", "1000000"}, Means{"7", "1", "100000"}}) {
        ToolRun run({"-b", "-nc", "a.flt"});
        giveFlt(run, "a", cells);
        use(run, means);
        run.start();
        ASSERT_TRUE(run.reachedEnd()) << run.console();
        file = file.empty() ? run.read("a.nc") : file;
        EXPECT_TRUE(run.read("a.nc") == file);
    }
}

// --- Flags -----------------------------------------------------------------------------------------------------------

struct PackingCase {
    const char* flags;
    const char* level;
    const char* shuffle;
    Packing packing;
};

TEST(NcCli, EveryVariableIsPackedAsTheFlagsSay)
{
    const PackingCase cases[] = {
        {"", "1", "T", {1, 1, 1}},
        {"-nc_comp9 -nc_shuffle0", "9", "F", {0, 1, 9}},
        {"-nc_comp0", "0", "T", {1, 0, 0}}, // the library takes this level for no deflate
        {"-nc_comp0 -nc_shuffle0", "0", "F", {0, 0, 0}},
        {"-nc_shuffle-3", "1", "T", {1, 1, 1}},
    };
    for (const PackingCase& packing : cases) {
        ToolRun run(("-nc a.asc " + std::string(packing.flags)).c_str());
        run.give("a.asc", ascGrid(kFirst));
        run.start();
        EXPECT_CONSOLE_HOLDS(run, {"Using NetCDF Compression Level: " + std::string(packing.level),
                                   "Using NetCDF Shuffle == " + std::string(packing.shuffle),
                                   "Opening output netcdf file: a.nc"});
        const NetcdfReading file(run, "a.nc");
        for (const std::string& name : file.variables()) {
            EXPECT_TRUE(file.packing(name.c_str()) == packing.packing) << packing.flags << ' ' << name;
        }
        EXPECT_THAT(file.values("data_max"), ElementsAre(111, 121, 112, 122, 113, 123));
    }
}

TEST(NcCli, CellsOfEveryLevelAreReadBack)
{
    for (int level = 0; level <= 9; ++level) {
        for (const char* shuffle : {"-nc_shuffle0", "-nc_shuffle1"}) {
            ToolRun run({"-b", "-nc", "a.asc", "b.asc", "-nc_part1", "-nc_comp" + std::to_string(level), shuffle});
            run.give("a.asc", ascGrid(kFirst));
            run.give("b.asc", ascGrid(kSecond));
            run.start();
            const NetcdfReading file(run, "a.nc");
            EXPECT_EQ(file.packing("data_temporal").level, level);
            EXPECT_THAT(file.values("data_temporal"), ElementsAre(111, 112, 113, 121, 122, 123,     //
                                                                  kNull, 12, 13, 221, kNull, 223)); // south row first
            EXPECT_THAT(file.values("data_max"), ElementsAre(111, 112, 113, 221, 122, 223));
        }
    }
}

TEST(NcCli, ALevelThatTheLibraryRefusesEndsTheRun)
{
    for (const char* level : {"10", "-1"}) {
        ToolRun run(("-nc a.asc -nc_comp" + std::string(level)).c_str());
        run.give("a.asc", ascGrid(kFirst));
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(run, joined({{"Defining variables in netcdf file:"},
                                          {"ERROR - With nectdf call nf90_def_var(time)"},
                                          errorEnd("Netcdf error message: " + std::string(nc_strerror(NC_EINVAL)))}));
    }
}

// --- Names -----------------------------------------------------------------------------------------------------------

TEST(NcCli, OutNamesTheFileAndGetsTheExtensionWhereItHasAnother)
{
    const std::pair<const char*, const char*> names[] = {
        {"x", "x.nc"},         {"x.nc", "x.nc"}, {"x.NC", "x.NC"}, {"x.txt", "x.txt.nc"}, {"x.nc.old", "x.nc.old.nc"},
        {"n.c/x", "n.c/x.nc"},
    };
    for (const auto& [given, made] : names) {
        ToolRun run({"-nc", "a.asc", "-out", given});
        run.give("a.asc", ascGrid(kFirst));
        run.give("n.c/keep", "");
        run.start();
        EXPECT_CONSOLE_HOLDS(run, {"Converting grid into netcdf format.",
                                   "Using output file name specified with -out switch: \"" + std::string(given) + "\"",
                                   "Using NetCDF Compression Level: 1"});
        EXPECT_TRUE(run.says("Opening output netcdf file: " + std::string(made)));
        EXPECT_TRUE(run.has(made));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(NcCli, AGridExtensionOfOutMakesWayForNc)
{
    ToolRun run("-nc a.asc -out x.asc");
    run.give("a.asc", ascGrid(kFirst));
    run.start();
    EXPECT_TRUE(run.says("Using output file name specified with -out switch: \"x\""));
    EXPECT_TRUE(run.has("x.nc"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NcCli, BackslashesLeadToFoldersAndStayInTheText)
{
    ToolRun run({"-nc", "d\\a.v1.asc", "-b"});
    run.give("d/a.v1.asc", ascGrid(kFirst));
    run.start();
    EXPECT_TRUE(run.says("Opening output netcdf file: d\\a.v1.nc"));
    EXPECT_TRUE(run.has("d/a.v1.nc"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NcCli, AFileThatIsThereIsReplaced)
{
    ToolRun run("-nc a.asc");
    run.give("a.asc", ascGrid({{5}}));
    run.give("a.nc", std::string(100000, 'x'));
    run.start();
    EXPECT_THAT(NetcdfReading(run, "a.nc").values("data_max"), ElementsAre(5));
}

// --- Refusals --------------------------------------------------------------------------------------------------------

TEST(NcCli, AFileThatCannotBeMadeEndsTheRunAheadOfTheGrids)
{
    for (const char* name : {"none/x.nc", "folder.nc"}) {
        ToolRun run({"-nc", "a.asc", "-out", name});
        run.give("a.asc", ascGrid(kFirst));
        run.give("folder.nc/keep", "");
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(
            run, {"Opening output netcdf file: " + std::string(name), "ERROR - With nectdf call nf90_create"});
        const Lines lines = run.consoleLines();
        ASSERT_GE(lines.size(), 3U);
        EXPECT_EQ(lines[lines.size() - 3].find("Netcdf error message: "), 0U) << run.console();
        EXPECT_EQ(lines.back(), kClose);
        EXPECT_NO_OTHER_FILES(run);
    }
}

struct OtherGrid {
    Cells cells;
    GridOptions options;
    std::string message;
};

TEST(NcCli, AGridOfAnotherLatticeEndsTheRunAndTheSeriesSoFarStays)
{
    const OtherGrid others[] = {
        {{{1, 2, 3}}, {}, "ERROR - number of rows for input grids do not match. Rows = 2 and 1"},
        {{{1}, {2}}, {}, "ERROR - number of columns for input grids do not match. Columns = 3 and 1"},
        {kSecond, {.xll = 0.5}, "ERROR - x coordinates of input grids do not match. xll = 0. and 0.5"},
        {kSecond, {.yll = -2}, "ERROR - y coordinates of input grids do not match. yll = 0. and -2."},
        {kSecond, {.cellsize = 2.5}, "ERROR - cell size of input grids do not match. cell sizes = 1. and 2.5"},
    };
    for (const OtherGrid& other : others) {
        ToolRun run("-nc a.asc b.asc c.asc");
        run.give("a.asc", ascGrid(kFirst));
        run.give("b.asc", ascGrid(other.cells, other.options));
        run.give("c.asc", ascGrid(kFirst));
        run.start();
        EXPECT_CONSOLE_HOLDS(
            run,
            joined({{other.message}, errorEnd("ERROR - dimensions of grids do not match (see above for details).")}));
        const NetcdfReading file(run, "a.nc");
        EXPECT_THAT(file.values("time"), ElementsAre(1));
        EXPECT_THAT(file.values("data_temporal"), ElementsAre(111, 121, 112, 122, 113, 123));
        EXPECT_THAT(file.values("data_max"), testing::Each(kNull)); // never written before the last grid
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(NcCli, ACornerThatDiffersLittlePasses)
{
    ToolRun run("-nc a.asc b.asc");
    run.give("a.asc", ascGrid({{1}}, {.xll = 10}));
    run.give("b.asc", ascGrid({{2}}, {.xll = 10.005}));
    run.start();
    const NetcdfReading file(run, "a.nc");
    EXPECT_THAT(file.values("x"), ElementsAre(11));
    EXPECT_THAT(file.values("data_max"), ElementsAre(2));
}

TEST(NcCli, AGridCutShortEndsTheRunAndTheSeriesSoFarStays)
{
    ToolRun run("-nc a.asc b.asc");
    run.give("a.asc", ascGrid(kFirst));
    run.give("b.asc", "ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\n1 2 3\n4\n");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_TRUE(run.says("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS."));
    const NetcdfReading file(run, "a.nc");
    const std::vector<double> series = file.values("data_temporal");
    ASSERT_GE(series.size(), 6U);
    EXPECT_THAT(std::vector(series.begin(), series.begin() + 6), ElementsAre(111, 121, 112, 122, 113, 123));
    EXPECT_THAT(file.values("data_max"), testing::Each(kNull));
}

TEST(NcCli, MoreThanAMillionColumnsOrRowsAreRefused)
{
    ToolRun wide("-nc a.flt");
    wide.give("a.flt", "");
    wide.give("a.hdr", hdr(1'000'001, 1));
    wide.start();
    EXPECT_CONSOLE_HOLDS(wide, joined({kDefinition, errorEnd("ERROR - Greater than 1000000 columns in grid.  "
                                                             "Contact SUPPORT_CONTACT")}));

    ToolRun tall("-nc a.flt");
    tall.give("a.flt", "");
    tall.give("a.hdr", hdr(2, 1'000'001));
    tall.start();
    EXPECT_CONSOLE_HOLDS(tall, joined({kDefinition, errorEnd("ERROR - Greater than 1000000 rows in grid.  "
                                                             "Contact SUPPORT_CONTACT")}));

    ToolRun both("-nc a.flt");
    both.give("a.flt", "");
    both.give("a.hdr", hdr(2'147'483'647, 2'147'483'647));
    both.start();
    EXPECT_EQ(both.status(), 0);
    EXPECT_TRUE(both.says("ERROR - Greater than 1000000 columns in grid.  Contact SUPPORT_CONTACT"));
}

TEST(NcCli, AMillionColumnsPass)
{
    constexpr std::size_t kColumns = 1'000'000;
    std::vector<double> row(kColumns);
    for (std::size_t i = 0; i < kColumns; ++i) {
        row[i] = static_cast<double>(i);
    }
    ToolRun run("-nc a.flt -nc_part1");
    run.give("a.flt", fltCells({row}));
    run.give("a.hdr", hdr(kColumns, 1));
    run.start();
    const NetcdfReading file(run, "a.nc");
    EXPECT_TRUE(file.values("data_max") == row);
    EXPECT_EQ(file.values("x").back(), 1e6);
}

TEST(NcCli, AGridThatNoMemoryHoldsEndsTheRun)
{
    if (kSanitized) {
        GTEST_SKIP() << "the sanitizer ends the process over such a size";
    }
    ToolRun run("-nc a.flt");
    run.give("a.flt", "");
    run.give("a.hdr", hdr(1'000'000, 1'000'000));
    run.start();
    EXPECT_EQ(run.status(), 0);
    // 4e12 bytes are 1385447424 in 32 bits.
    EXPECT_CONSOLE_HOLDS(run, joined({{"Allocating 1385447Kb memory for external grid..."},
                                      errorEnd("ERROR - Could not allocate enough memory (RAM).")}));
}

TEST(NcCli, EveryCallThatFailsIsNamed)
{
    std::vector<NetcdfFailure> failures = {
        {"nc_put_att_text 1", "nf90_put_att"}, // of the file
        {"nc_put_att_text 6", "nf90_put_att"},
        {"nc_def_dim 1", "nf90_def_dim"},
        {"nc_def_dim 2", "nf90_def_dim"},
        {"nc_def_dim 3", "nf90_def_dim"},
        {"nc_put_att_text 7", "nf90_put_att"},
        {"nc_put_att_text 11", "nf90_put_att"},
        {"nc_put_att_text 18", "nf90_put_att"},
        {"nc_put_var1_double 2", "nf90_put_var (time)"},
        {"H5Dwrite_chunk 1", "nf90_put_var (rg2)", NC_EHDFERR},
        {"nc_sync 1", "nf90_sync (rg)"},
        {"H5Dwrite_chunk 2", "nf90_put_var (rg2)", NC_EHDFERR},
        {"H5Dwrite_chunk 3", "nf90_put_var (rg2)", NC_EHDFERR}, // of the maximum
        {"nc_sync 3", "nf90_sync (rg)"},
    };
    failures.insert(failures.end(), kCallsOfEveryFile.begin(), kCallsOfEveryFile.end());
    const auto expectNamed = [](const NetcdfFailure& failure, const std::vector<std::string>& flags) {
        std::vector<std::string> arguments = {"-nc", "a.asc", "b.asc"};
        arguments.insert(arguments.end(), flags.begin(), flags.end());
        ToolRun run(failingNetcdfArguments(failure, arguments));
        run.give("a.asc", ascGrid(kFirst));
        run.give("b.asc", ascGrid(kSecond));
        expectNetcdfFailure(run, failure);
    };
    for (const NetcdfFailure& failure : failures) {
        expectNamed(failure, {});
    }
    expectNamed({"H5Dwrite_chunk 1", "nf90_put_var (rg)", NC_EHDFERR}, {"-nc_part1"});
    expectNamed({"H5Dwrite_chunk 3", "nf90_put_var (rg)", NC_EHDFERR}, {"-nc_part1"});
    // The series grows: the library lets it do so for the time and for the cells.
    expectNamed({"H5Dset_extent 1", "nf90_put_var (time)", NC_EHDFERR}, {});
    expectNamed({"H5Dset_extent 2", "nf90_put_var (rg2)", NC_EHDFERR}, {});
    // A maximum that is not packed in any way is not cut into chunks either.
    expectNamed({"nc_put_vara_float 1", "nf90_put_var (rg2)"}, {"-nc_comp0", "-nc_shuffle0"});
    expectNamed({"nc_put_vara_float 1", "nf90_put_var (rg)"}, {"-nc_comp0", "-nc_shuffle0", "-nc_part1"});
}

// A limit on the size of files stands for the full disk: 512-byte or 1024-byte units, as the shell counts.
TEST(NcCli, AFullDiskIsNeverSilent)
{
    std::mt19937 random(8);
    Cells cells(300, std::vector<double>(400));
    for (auto& row : cells) {
        for (double& cell : row) {
            cell = static_cast<double>(random()); // does not pack well
        }
    }
    struct Limit {
        const char* size;
        const char* part;
        const char* call;
    };
    const Limit limits[] = {{"4", "-nc_part0", "nf90_enddef"},
                            {"4", "-nc_part1", "nf90_enddef"},
                            {"200", "-nc_part0", "nf90_put_var (rg2)"},
                            {"200", "-nc_part1", "nf90_put_var (rg)"}};
    for (const Limit& limit : limits) {
        ToolRun run({"-c", "ulimit -f " + std::string(limit.size) + "; exec \"$0\" \"$@\"", toolPath(), "-nc", "a.flt",
                     limit.part});
        run.program("/bin/sh");
        run.give("a.flt", fltCells(cells));
        run.give("a.hdr", hdr(cells));
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(run, joined({{"ERROR - With nectdf call " + std::string(limit.call)},
                                          errorEnd("Netcdf error message: " + std::string(nc_strerror(NC_EHDFERR)))}));
    }
}

TEST(NcCli, AFailedCloseOfTheFileEndsTheRun)
{
    ToolRun run("-b -nc a.asc");
    run.give("a.asc", ascGrid(kFirst));
    askSystem(run, "fail close 4 5"); // the grid and what it is read through come first; 5 is the error of a device
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Closing netcdf file...", "ERROR - With nectdf call nf90_close",
                                       "Netcdf error message: NetCDF: HDF error"));
}

} // namespace
} // namespace gridforge::test
