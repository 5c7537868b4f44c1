// Runs at the limits that a system sets: on memory, files, names and time.
#include "support/consoles.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/network_layers.h"
#include "support/paths.h"
#include "support/process_limits.h"
#include "support/shp_bytes.h"
#include "support/system_failures.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using namespace std::chrono_literals;
using namespace std::string_literals;

const Cells kCells = {{1, 2, kNull}, {4, 5, 6}};

// The tool behind a shell that sets the limits: `$TOOL` stands for it. Its standard input is empty.
struct LimitedRun : ToolRun {
    explicit LimitedRun(const std::string& script)
        : ToolRun(std::vector<std::string>{"-c", "TOOL='" + toolPath() + "'; " + script})
    {
        program("/bin/sh");
    }
};

constexpr std::int64_t kSide = 3000;
constexpr std::int64_t kBytes = kSide * kSide * sizeof(float); // 36 MB

// A grid of zeros, which takes no room on the disk.
void giveLargeFlt(ToolRun& run, const std::string& name, std::int64_t side = kSide)
{
    run.give(name + ".hdr", hdr(side, side));
    run.give(name + ".flt", "");
    std::filesystem::resize_file(run.folder() / (name + ".flt"), static_cast<std::uintmax_t>(side * side) * 4);
}

// The lower left of the cells is within the region.
void giveRegion(ToolRun& run)
{
    run.give("r.mif", mifHeader({"Name Char(8)"}) + "Region 1\n5\n0 0\n2 0\n2 1\n0 1\n0 0\n");
    run.give("r.mid", "\"one\"\n");
}

// Layers, points, tables and control files for runs over a.asc: of layers r has regions, l points and k lines.
void giveOtherInputs(ToolRun& run)
{
    run.give("a.asc", ascGrid(kCells));
    giveFlt(run, "f", kCells);
    giveRegion(run);
    giveShapefile(
        run, "l", 1,
        {.objects = {pointRecord(1.4, 0.4)}, .columns = {{"OBS", 'N', 4}, {"MARK", 'C', 4}}, .values = {"   3left"}});
    giveShapefile(
        run, "k", 3,
        {.objects = {partsRecord(3, {0}, {0.2, 0.2, 2, 1})}, .columns = {{"NAME", 'C', 3}}, .values = {"one"}});
    run.give("c.csv", "Lower,Upper,Class\n0,2,1\n2,9,2\n");
    run.give("p.xyz", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n");
    giveDrawnNetwork(run);
    run.give("net.nbc", "Read GIS Branch == 1d_branches_t.mif\nRead GIS XS == 1d_cut_t.mif\nSet XS dx == 4\n"
                        "Read Grid Z == dem.asc\n");
}

// --- Memory ----------------------------------------------------------------------------------------------------------

struct LargeRun : LimitedRun {
    explicit LargeRun(const std::string& limit)
        : LimitedRun("ulimit " + limit + "; exec $TOOL -b -max a.flt b.flt -out m.flt")
    {
        giveLargeFlt(*this, "a");
        giveLargeFlt(*this, "b");
        environment("GRIDFORGE_THREADS", "2"); // each takes some
    }
};

TEST(LimitsCli, MemoryForPiecesIsEnough)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has taken its memory before";
    }
    for (const char* limit : {"-v 60000", "-d 20000", "-d 3000"}) { // kB
        LargeRun run(limit);
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_TRUE(run.reachedEnd()) << run.console();
        EXPECT_TRUE(run.read("m.flt") == std::string(kBytes, '\0')); // without showing 36 MB
    }
}

TEST(LimitsCli, MemoryForNoPiece)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has taken its memory before";
    }
    LargeRun run("-d 2000");
    run.environment("GRIDFORGE_SCRATCH", "/nowhere"); // so that no file can hold it either
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Could not allocate enough memory (RAM)."));
    EXPECT_NO_OTHER_FILES(run);
}

// Later the run may have as many files open as it may.
TEST(LimitsCli, AreLookedUpBeforeAnInputIsOpened)
{
    ToolRun run("-b -dif a.flt b.flt -out m.asc");
    giveFlt(run, "a", kCells);
    giveFlt(run, "b", kCells);
    askSystem(run, "watch", "calls");
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    const std::string calls = run.read("calls");
    const std::size_t last = calls.rfind("\tlimits\t");
    const std::size_t firstOpened = calls.find("\topen\t");
    ASSERT_NE(last, std::string::npos);
    ASSERT_NE(firstOpened, std::string::npos);
    EXPECT_LT(last, firstOpened);
}

// The terrain of 100 MB does not fit below the limit, in memory or as a mapped file, but the tool with a small one does.
TEST(LimitsCli, MemoryForNoWholeGrid)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has taken its memory before";
    }
    for (const std::int64_t side : {5000, 50}) {
        LimitedRun run("ulimit -v 90000; exec $TOOL -b -remap -idw_npt4 -wl wl.asc -dem dem.flt"); // kB
        run.environment("GRIDFORGE_THREADS", "2");
        run.give("wl.asc", ascGrid(Cells(10, std::vector<double>(10, 2.5)), {.cellsize = 5}));
        giveLargeFlt(run, "dem", side);
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        if (side == 50) {
            EXPECT_TRUE(run.reachedEnd()) << run.console();
        } else {
            EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Could not allocate enough memory (RAM)."));
            EXPECT_NO_OTHER_FILES(run);
        }
    }
}

// The NetCDF library is loaded when it is needed.
TEST(LimitsCli, MemoryForNoLibrary)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has taken its memory before";
    }
    LimitedRun run("ulimit -v 20000; exec $TOOL -b -nc a.asc");
    run.give("a.asc", ascGrid(kCells));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_THAT(run.console(), HasSubstr("\nERROR - With nectdf call nf90_create\nNetcdf error message: "));
    EXPECT_THAT(run.console(), testing::EndsWith(kExits));
    EXPECT_NO_OTHER_FILES(run);
}

// --- Files -----------------------------------------------------------------------------------------------------------

TEST(LimitsCli, OpenFiles)
{
    LimitedRun run("ulimit -n 32; exec $TOOL -b -max 'g*.asc' -out m.flt");
    for (int i = 1000; i < 3000; ++i) {
        run.give("g" + std::to_string(i) + ".asc", ascGrid(kCells));
    }
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.flt", kCells);
}

// More binary grids than files may be open: they are read group by group, each as large as there is room for.
TEST(LimitsCli, OpenFilesOfBinaryGrids)
{
    LimitedRun run("ulimit -n 64; exec $TOOL -b -max 'g*.flt' -out m.flt");
    for (int i = 1000; i < 3000; ++i) {
        const double value = i;
        giveFlt(run, "g" + std::to_string(i), {{value, -value, i == 1500 ? 5 : kNull}});
    }
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.flt", {{2999, -1000, 5}});
}

TEST(LimitsCli, SizeOfAFile)
{
    const Cells cells(100, std::vector<double>(100, 7)); // 40 kB, and 20 kB as text
    for (const char* file : {"m.flt", "m.asc"}) {
        LimitedRun run(std::string("ulimit -f 8; exec $TOOL -b -max a.flt b.flt -out ") + file);
        giveFlt(run, "a", cells);
        giveFlt(run, "b", cells);
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Could not write to file: " + std::string(file)));
        const std::string left = run.read(file);
        EXPECT_TRUE(std::string(file) == "m.asc" ? left.starts_with('?') : left.size() < fltCells(cells).size());
    }
}

TEST(LimitsCli, SpaceAndQuota)
{
    for (const int error : {ENOSPC, EDQUOT}) {
        for (const char* out : {"m.flt", "m.asc"}) {
            ToolRun run(std::vector<std::string>{"-b", "-max", "a.flt", "b.flt", "-out", out});
            giveFlt(run, "a", kCells);
            giveFlt(run, "b", kCells);
            askSystem(run, "lack room " + std::to_string(error));
            run.start();
            EXPECT_EQ(run.status(), 0);
            EXPECT_EQ(run.error(), "");
            EXPECT_CONSOLE_HOLDS(
                run, errorEnd("ERROR - Could not write to file: " + std::string(out == "m.asc"s ? out : "m.hdr")));
        }
    }
}

// The last lines of a run that cannot open an output.
Lines unopenedOutput(const std::string& file)
{
    return errorEnd(cannotOpen(file), "", "Can't open: " + file, "", "Another application or user maybe using it,",
                    "   or the file's folder does not exist.", "If so, close the file or create file path.",
                    "Press Enter to Continue");
}

TEST(LimitsCli, AFolderThatCannotBeWrittenTo)
{
    const bool isRoot = geteuid() == 0; // to whom all folders are open
    const std::string asUser = isRoot ? "exec setpriv --reuid=65534 --clear-groups $TOOL" : "exec $TOOL";
    const struct {
        const char* arguments;
        Lines end;
    } cases[] = {
        {"-conv in/a.asc", unopenedOutput("in/a.hdr")},
        {"-cp l.shp a.asc -out in/x.shp", unopenedOutput("in/x.csv")},
        {"-lp k.shp -check a.asc -out in/x.shp", unopenedOutput("in/x_P.shp")},
        {"-nc in/a.asc", errorEnd("ERROR - With nectdf call nf90_create", "Netcdf error message: Permission denied")},
    };
    for (const auto& one : cases) {
        LimitedRun run("chmod 555 in; chmod 755 .; " + asUser + " -b " + one.arguments);
        run.give("in/a.asc", ascGrid(kCells));
        giveOtherInputs(run);
        run.start();
        std::filesystem::permissions(run.folder() / "in", std::filesystem::perms::owner_all);
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(run, one.end);
        EXPECT_THAT(run.changedFiles(), testing::Each("in/")); // it is open again
    }
}

// The second input is a pipe, at which the run waits until the folder of the first is gone.
TEST(LimitsCli, AFolderThatGoesDuringTheRun)
{
    LimitedRun run("mkfifo b.asc; $TOOL -b -max gone/a.asc b.asc > console & exec 3> b.asc; rm -r gone; cat c.asc >&3; "
                   "exec 3>&-; wait; rm b.asc");
    run.give("gone/a.asc", ascGrid(kCells));
    run.give("c.asc", ascGrid(kCells));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_THAT(run.read("console"),
                HasSubstr(cannotOpen("gone/a(maxmax).asc") + "\n\nCan't open: gone/a(maxmax).asc\n"));
    EXPECT_FALSE(run.has("gone"));
}

// The same for a binary grid, whose cells wait in a file without a name in that folder.
TEST(LimitsCli, AFolderThatGoesWhileABinaryGridWaits)
{
    for (const char* memory : {"", "1"}) {
        LimitedRun run("mkfifo b.asc; $TOOL -b -max a.asc b.asc -out gone/m.flt > console & exec 3> b.asc; rm -r gone; "
                       "cat c.asc >&3; exec 3>&-; wait; rm b.asc");
        run.environment("GRIDFORGE_MEMORY", memory);
        run.give("gone/.keep", "");
        run.give("a.asc", ascGrid(kCells));
        run.give("c.asc", ascGrid(kCells));
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_THAT(run.read("console"), HasSubstr(cannotOpen("gone/m.hdr") + "\n\nCan't open: gone/m.hdr\n"));
        EXPECT_FALSE(run.has("gone"));
    }
}

// The same for a layer, before which the projection comes through the pipe.
TEST(LimitsCli, AFolderThatGoesBeforeALayerIsOpened)
{
    LimitedRun run(
        "mv k.prj d; mkfifo k.prj; $TOOL -b -lp k.shp -check a.asc -out gone/x.shp > console & exec 3> k.prj; "
        "rm -r gone; cat d >&3; exec 3>&-; wait; mv d k.prj");
    run.give("gone/.keep", "");
    giveOtherInputs(run);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_THAT(run.read("console"), HasSubstr(cannotOpen("gone/x_P.shp") + "\n\nCan't open: gone/x_P.shp\n"));
    EXPECT_FALSE(run.has("gone"));
}

// Outputs that are open by then go with it, and the system reports nothing.
TEST(LimitsCli, AFolderThatGoesWithAnOpenOutput)
{
    for (const char* arguments : {"-nc b.asc -out gone/m.nc", "-cp l.shp b.asc -out gone/x.shp"}) {
        LimitedRun run("mkfifo b.asc; $TOOL -b " + std::string(arguments) +
                       " > console & exec 3> b.asc; rm -r gone; cat a.asc >&3; exec 3>&-; wait; rm b.asc");
        run.give("gone/.keep", "");
        giveOtherInputs(run);
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_THAT(run.read("console"), HasSubstr("\nFinished.\n"));
        EXPECT_FALSE(run.has("gone"));
    }
}

// --- Names -----------------------------------------------------------------------------------------------------------

TEST(LimitsCli, ANameOf4000Characters)
{
    const std::string name(4000, 'n');
    ToolRun input(std::vector<std::string>{"-b", "-conv", name});
    input.start();
    EXPECT_EQ(input.status(), 0);
    EXPECT_CONSOLE_HOLDS(input, errorEnd(" ERROR - Invalid file or pathname specified"));
    ToolRun output(std::vector<std::string>{"-b", "-conv", "a.asc", "-out", name});
    output.give("a.asc", ascGrid(kCells));
    output.start();
    EXPECT_EQ(output.status(), 0);
    EXPECT_EQ(output.error(), "");
    EXPECT_THAT(output.console(), HasSubstr("...Can't Open\n\nCan't open: nnnn"));
    EXPECT_NO_OTHER_FILES(output);
}

// The name of a layer that no file can have is asked for again, as that of one that is missing. A name, and a line of a control
// file, counts up to its 1000th character, so a longer name has no ending.
TEST(LimitsCli, LongNamesOfLayers)
{
    const std::string command = "Read GIS Building == ";
    for (const std::size_t length : {300U, 4000U}) {
        const std::string layer = std::string(length, 'n') + ".mif";
        ToolRun named(std::vector<std::string>{"-b", "-trim", layer, "a.asc"});
        ToolRun read("-b -damages c.dmg");
        read.give("c.dmg", command + layer + "\n");
        for (ToolRun* run : {&named, &read}) {
            run->give("a.asc", ascGrid(kCells));
            run->start();
            EXPECT_EQ(run->status(), 0);
            EXPECT_EQ(run->error(), "");
            const std::string shown = layer.substr(0, run == &read ? 1000 - command.size() : 1000);
            EXPECT_CONSOLE_HOLDS(
                *run,
                length == 300
                    ? errorEnd("CHECK 0008 - \"" + layer + "\" cannot be found",
                               "Check file exists and press enter or enter another file name: ")
                    : errorEnd("ERROR - Unable to determine gis file type, expecting .mif or .shp. File: " + shown));
            EXPECT_NO_OTHER_FILES(*run);
        }
    }
}

TEST(LimitsCli, AWildcardAmong10000Files)
{
    LimitedRun run("mkdir in; cd in; seq 10000 | xargs touch; cp ../a.asc x1.asc; cp ../a.asc x2.asc; cd ..; "
                   "exec $TOOL -b -max 'in/x*.asc' -out m.asc");
    run.give("a.asc", ascGrid(kCells));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_TRUE(run.says("   File  1: in/x1.asc"));
    EXPECT_TRUE(run.says("   File  2: in/x2.asc"));
    EXPECT_GRID(run, "m.asc", kCells);
}

// --- Inputs and outputs that are no plain files ----------------------------------------------------------------------

TEST(LimitsCli, InputsFromPipes)
{
    LimitedRun run("mkfifo p.asc; cat b.asc > p.asc & $TOOL -b -max a.asc p.asc -out m.asc > console; wait; rm p.asc");
    run.give("a.asc", ascGrid(kCells));
    run.give("b.asc", ascGrid({{2, 1, 3}, {3, 6, kNull}}));
    run.start(20s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.asc", {{2, 2, 3}, {4, 6, 6}});
}

TEST(LimitsCli, BinaryCellsFromPipes)
{
    LimitedRun run("mkfifo p.flt; cat b.flt > p.flt & $TOOL -b -max a.asc p.flt -out m.asc > console; wait; rm p.flt");
    run.give("a.asc", ascGrid(kCells));
    const Cells other = {{2, 1, 3}, {3, 6, kNull}};
    run.give("p.hdr", hdr(other));
    run.give("b.flt", fltCells(other));
    run.start(20s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.asc", {{2, 2, 3}, {4, 6, 6}});
}

// What is read once and from the first byte to the last.
TEST(LimitsCli, OtherInputsFromPipes)
{
    const struct {
        const char* name;
        const char* arguments;
    } cases[] = {
        {"r.mid", "-trim r.mif a.asc"},     {"l.dbf", "-cp l.shp a.asc"}, {"l.prj", "-cp l.shp a.asc"},
        {"c.csv", "-classify c.csv a.asc"}, {"net.nbc", "-nbc net.nbc"},  {"f.hdr", "-max a.asc f.flt -out m.asc"},
    };
    for (const auto& one : cases) {
        const std::string name = one.name;
        LimitedRun plain(std::string("exec $TOOL -b ") + one.arguments);
        LimitedRun piped("mv " + name + " d; mkfifo " + name + "; cat d > " + name + " & $TOOL -b " + one.arguments +
                         "; wait; mv d " + name);
        for (LimitedRun* run : {&plain, &piped}) {
            giveOtherInputs(*run);
            run->start(20s);
            EXPECT_EQ(run->status(), 0);
            EXPECT_EQ(run->error(), "");
            EXPECT_TRUE(run->reachedEnd()) << run->console();
        }
        EXPECT_FALSE(plain.changedFiles().empty()) << name;
        EXPECT_EQ(piped.console(), plain.console());
        EXPECT_EQ(piped.files(), plain.files());
    }
}

// Points are read from the start a second time.
TEST(LimitsCli, PointsCannotComeFromAPipe)
{
    LimitedRun run("mv p.xyz d; mkfifo p.xyz; cat d > p.xyz & $TOOL -b -xyz p.xyz; wait; mv d p.xyz");
    giveOtherInputs(run);
    run.start(20s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Reading following line in classes file:", ""));
    EXPECT_NO_OTHER_FILES(run);
}

constexpr const char* kDevices[] = {"/dev/null", "/dev/zero", "/dev/full"};

TEST(LimitsCli, InputsFromDevices)
{
    for (const char* device : kDevices) {
        LimitedRun run(std::string("ln -s ") + device + " d.asc; exec $TOOL -b -max a.asc d.asc -out m.asc");
        run.give("a.asc", ascGrid(kCells));
        run.start(60s);
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR 2334 - Reading Grid file header information.", "Line = "));
        EXPECT_FALSE(run.has("m.asc"));
    }
}

// A device without end gives as many bytes as are asked for.
TEST(LimitsCli, BinaryCellsFromDevices)
{
    for (const char* device : kDevices) {
        LimitedRun run(std::string("ln -s ") + device + " d.flt; exec $TOOL -b -max a.asc d.flt -out m.asc");
        run.give("a.asc", ascGrid({{1, -2, kNull}, {4, 5, 6}}));
        run.give("d.hdr", hdr(kCells));
        run.start(60s);
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        if (std::string(device) == "/dev/null") {
            EXPECT_CONSOLE_HOLDS(
                run,
                errorEnd("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS."));
            EXPECT_FALSE(run.has("m.asc"));
        } else {
            EXPECT_GRID(run, "m.asc", {{1, 0, 0}, {4, 5, 6}});
        }
    }
}

struct DeviceInput {
    const char* name;
    const char* arguments;
    Lines empty;   // the last lines of the console where the device is empty
    Lines endless; // and where it has no end
};

std::vector<DeviceInput> deviceInputs()
{
    const std::string shown(1000, '\0'); // as much as is shown of a line
    const Lines noRecord =
        errorEnd("ERROR 0254 - Failed to read object attribute data record for a REGION object in GIS layer.");
    const Lines noLine = errorEnd("ERROR 0201 - Reading text line from file unit number 1001");
    const Lines noHeader = errorEnd("ERROR 2334 - Reading Grid file header information.", "Line = ");
    return {
        {"r.mif", "-trim r.mif a.asc", errorEnd("ERROR - Unable to find CoordSys line in r.mif"),
         errorEnd("ERROR - Reading following line in projection file:", shown)},
        {"r.mid", "-trim r.mif a.asc", noRecord, noRecord},
        {"c.csv", "-classify c.csv a.asc", errorEnd("ERROR - Less than two classes found."),
         errorEnd("ERROR - Reading following line in classes file:", shown)},
        {"c.dmg", "-damages c.dmg", {kFinished}, noLine},
        {"c.nbc", "-nbc c.nbc", {kFinished}, noLine},
        {"c.rfc", "-rf c.rfc",
         errorEnd("ERROR - Rainfall Interpolation method not specified.  Please use \"RF Interpolation Method == \""),
         noLine},
        {"n.csv", "-cp l.shp -config n.csv a.asc", errorEnd("ERROR - Less than two thresholds found."),
         errorEnd("ERROR - Reading following line in classes file:", "")},
        {"f.hdr", "-max a.asc f.flt -out m.asc", noHeader, noHeader},
        {"l.shp",
         "-cp l.shp a.asc",
         errorEnd("ERROR 0428 - End of .shp file encountered whilst reading header."),
         {kFinished}}, // zeros are the header of an empty layer
        {"l.dbf", "-cp l.shp a.asc", errorEnd("ERROR 0404 - End of .dbf file encountered whilst reading header."),
         errorEnd("ERROR 0402 - dbf field length of 0 is outside allowable range of 1 to 255.")},
        {"a.prj", "-conv a.asc", {kFinished}, errorEnd("ERROR - Reading projection file information.", "Line = ")},
    };
}

// Layers, tables and control files.
TEST(LimitsCli, OtherInputsFromDevices)
{
    for (const DeviceInput& input : deviceInputs()) {
        for (const char* device : kDevices) {
            const std::string name = input.name;
            LimitedRun run("rm -f " + name + "; ln -s " + device + " " + name + "; exec $TOOL -b " + input.arguments);
            giveOtherInputs(run);
            run.start(60s);
            EXPECT_EQ(run.status(), 0);
            EXPECT_EQ(run.error(), "");
            const Lines& end = device == "/dev/null"s ? input.empty : input.endless;
            EXPECT_CONSOLE_HOLDS(run, end);
            EXPECT_EQ(run.reachedEnd(), end == Lines{kFinished});
        }
    }
}

// That a pipe is full is no event that its reader could wait for.
TEST(LimitsCli, AConsoleThatNobodyReadsForAWhile)
{
    LimitedRun run("yes a.asc | head -n 1500 | xargs $TOOL -b -change | { sleep 1; tail -n 1; }"); // some 100 kB
    run.give("a.asc", ascGrid(kCells));
    run.start(20s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, {kFinished});
}

TEST(LimitsCli, AConsoleOnAFullDisk)
{
    LimitedRun run("$TOOL -b -max a.asc b.asc -out m.asc > /dev/full; echo $?");
    run.give("a.asc", ascGrid(kCells));
    run.give("b.asc", ascGrid(kCells));
    run.start(20s);
    EXPECT_CONSOLE(run, {"0"});
    EXPECT_GRID(run, "m.asc", kCells);
}

TEST(LimitsCli, AConsoleThatIsTheGrid)
{
    for (const char* grid : {"m.asc", "m.flt"}) {
        LimitedRun run(std::string("$TOOL -b -max a.asc b.asc -out ") + grid + " > " + grid + "; echo $?");
        run.give("a.asc", ascGrid(kCells));
        run.give("b.asc", ascGrid(kCells));
        run.start(20s);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE(run, {"0"});
        EXPECT_EQ(run.read("a.asc"), ascGrid(kCells));
        EXPECT_GRID(run, grid, kCells);
    }
}

// The grid gets the name, as a file of its own; the console goes on in the old one.
TEST(LimitsCli, AConsoleThatIsTheGridUnderAnotherName)
{
    for (const char* const made : {"ln -s console.txt m.flt", "ln console.txt m.flt"}) {
        LimitedRun run(std::string("touch console.txt; ") + made +
                       "; $TOOL -b -max a.asc b.asc -out m.flt >> console.txt; echo $?");
        run.give("a.asc", ascGrid(kCells));
        run.give("b.asc", ascGrid(kCells));
        run.start(20s);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE(run, {"0"});
        EXPECT_GRID(run, "m.flt", kCells);
        EXPECT_THAT(run.read("console.txt"), HasSubstr(kFinished)) << made;
    }
}

TEST(LimitsCli, AConsoleThatIsAGridOfPoints)
{
    LimitedRun run("$TOOL -b -xyz p.xyz -flt > p_xyz_to_grid.flt; echo $?");
    run.give("p.xyz", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n");
    run.start(20s);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, {"0"});
    EXPECT_GRID(run, "p_xyz_to_grid.flt", {{3, 4}, {1, 2}});
}

// The library writes by itself, so that its file is refused.
TEST(LimitsCli, AConsoleThatIsTheNetcdfFile)
{
    LimitedRun run("$TOOL -b -nc a.asc -out m.nc >> m.nc; echo $?");
    run.give("a.asc", ascGrid(kCells));
    run.start(20s);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, {"0"});
    EXPECT_THAT(run.read("m.nc"), HasSubstr(errorEndText("ERROR - With nectdf call nf90_create\n"
                                                         "Netcdf error message: Permission denied")));
}

// --- Time and company ------------------------------------------------------------------------------------------------

TEST(LimitsCli, FilesFromBefore1970)
{
    LimitedRun run("touch -d 1960-05-04 a.asc b.asc .; exec $TOOL -b -max a.asc b.asc -out m.asc");
    run.give("a.asc", ascGrid(kCells));
    run.give("b.asc", ascGrid({{2, 1, 3}, {3, 6, kNull}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.asc", {{2, 2, 3}, {4, 6, 6}});
}

// A .dbf has the years since 1900 in a byte.
TEST(LimitsCli, AClockFrom1900To2155)
{
    const struct {
        const char* seconds;
        std::string date;
    } clocks[] = {
        {"-2208945600", "\0\1\1"s},      // noon of 1 January 1900, UTC
        {"-302184000", "\x3C\x06\x04"s}, // of 4 June 1960
        {"5869540800", "\xFF\x0C\x1F"s}, // of 31 December 2155
    };
    for (const auto& clock : clocks) {
        ToolRun run("-b -cp points.shp a.asc");
        run.give("a.asc", ascGrid(Cells(5, {1, 2, 3, 4, 5})));
        run.give("points.shp", shpBytes(1, {pointRecord(2.4, 2.4)}));
        run.give("points.dbf", dbfHeader(1, {{"OBS", 'N', 4}, {"MARK", 'C', 4}}) + "    3left");
        run.give("points.prj", "PROJCS[\"Test\"]\n");
        run.environment("GRIDFORGE_PROGRESS", "lines");
        run.environment("GRIDFORGE_SYSTEM_TIME", clock.seconds);
        run.environment("TZ", "UTC");
        askSystem(run, "watch");
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_TRUE(run.reachedEnd()) << run.console();
        int tables = 0;
        for (const auto& [name, bytes] : run.files()) {
            if (name.ends_with(".dbf") && name != "points.dbf") {
                ++tables;
                EXPECT_EQ(bytes.substr(1, 3), clock.date) << name;
            }
        }
        EXPECT_EQ(tables, 2);
        EXPECT_THAT(run.read("lines"), testing::StartsWith("{\"seconds\": 0.0, "));
    }
}

// Each run leaves what it leaves alone, and nothing else is left.
TEST(LimitsCli, RunsThatShareAFolder)
{
    LimitedRun run("for i in 1 2 3 4 5 6 7 8; do $TOOL -b -max a.flt b.flt -out x$i.flt > console$i & "
                   "$TOOL -b -min a.flt b.flt -out y$i.asc > log$i & done; wait; rm console* log*");
    giveFlt(run, "a", kCells);
    giveFlt(run, "b", {{2, 1, 3}, {3, 6, kNull}});
    run.start();
    EXPECT_EQ(run.error(), "");
    for (int i = 1; i <= 8; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_GRID(run, "x" + number + ".flt", {{2, 2, 3}, {4, 6, 6}});
        EXPECT_GRID(run, "y" + number + ".asc", {{1, 1, 3}, {3, 5, 6}});
    }
}

// Pairs of runs side by side leave what each leaves by itself: layers and tables, and cells that wait in files.
TEST(LimitsCli, RunsOfOtherOperationsThatShareAFolder)
{
    const struct {
        const char* first;
        const char* second;
        const char* memory;
    } pairs[] = {
        {"-trim r.mif a.asc -out x$i.asc", "-fe a.asc -out y$i.asc", ""},
        {"-cp points.mif -out x$i.mif a.asc", "-cp points.mif -out y$i.mif a.asc", ""},
        {"-max a.asc b.asc -out x$i.flt", "-trim r.mif b.asc -out y$i.flt", "1"},
    };
    for (const auto& pair : pairs) {
        const std::string commands[] = {"$TOOL -b " + std::string(pair.first) + " > /dev/null",
                                        "$TOOL -b " + std::string(pair.second) + " > /dev/null"};
        LimitedRun alone("for i in 1 2 3 4; do " + commands[0] + "; " + commands[1] + "; done");
        LimitedRun together("for i in 1 2 3 4; do " + commands[0] + " & " + commands[1] + " & done; wait");
        for (LimitedRun* run : {&alone, &together}) {
            run->environment("GRIDFORGE_MEMORY", pair.memory);
            run->give("a.asc", ascGrid(rowColumnCells()));
            run->give("b.asc", ascGrid(Cells(9, Cells::value_type(9, 50))));
            giveRegion(*run);
            run->give("points.mif", mifHeader({"Obs Float", "Mark Char(20)"}) + "Point 4.4 4.4\nPoint 6.4 4.4\n");
            run->give("points.mid", "5,\"a\"\n7,\"c\"\n");
            run->start();
            EXPECT_EQ(run->error(), "");
        }
        EXPECT_GE(together.changedFiles().size(), 8U) << pair.first;
        EXPECT_EQ(together.files(), alone.files());
    }
}

} // namespace
} // namespace gridforge::test
