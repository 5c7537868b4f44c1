// Lines about the progress of a run, where GRIDFORGE_PROGRESS names a file. They change nothing else.
#include "support/layer_files.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <string>

namespace gridforge::test {
namespace {

struct Counts {
    long read = 0;
    long written = 0;
    long objects = 0;
};

// Of the last line; every line must have the form of one.
Counts lastCounts(const std::string& text)
{
    static const std::regex form(R"re(\{"seconds": \d+\.\d, "read": (\d+), "written": (\d+), "objects": (\d+)\}\n)re");
    Counts counts;
    std::string left = text;
    for (std::smatch found; std::regex_search(left, found, form) && found.prefix().length() == 0;) {
        counts = {std::stol(found[1]), std::stol(found[2]), std::stol(found[3])};
        left = found.suffix();
    }
    EXPECT_EQ(left, "") << text;
    return counts;
}

const Cells& wideGrid()
{
    static const Cells cells(100, Cells::value_type(100, 1.5));
    return cells;
}

TEST(ProgressCli, BytesOfGrids)
{
    for (const char* const arguments : {"-b -fe a.asc -out o.flt", "-b -xyz points.txt -out o.asc"}) {
        ToolRun run(arguments);
        run.environment("GRIDFORGE_PROGRESS", "lines");
        run.give("a.asc", ascGrid(wideGrid()));
        run.give("points.txt", "1 1 5\n2 1 6\n1 2 7\n2 2 8\n");
        run.start();
        EXPECT_TRUE(run.reachedEnd());
        const Counts counts = lastCounts(run.read("lines"));
        const bool isGrid = run.has("o.flt");
        EXPECT_GE(counts.read, static_cast<long>(run.read(isGrid ? "a.asc" : "points.txt").size())) << arguments;
        EXPECT_GE(counts.written, static_cast<long>(run.read(isGrid ? "o.flt" : "o.asc").size())) << arguments;
        EXPECT_EQ(counts.objects, 0);
    }
}

TEST(ProgressCli, ObjectsOfLayers)
{
    ToolRun run("-b -cp points.mif a.asc");
    run.environment("GRIDFORGE_PROGRESS", "lines");
    run.give("a.asc", ascGrid(wideGrid()));
    run.give("points.mif", mifHeader({"Obs Float", "Mark Char(20)"}) + "Point 4.4 4.4\nPoint 5.4 4.4\nPoint 6.4 4.4\n");
    run.give("points.mid", "5,\"a\"\n6,\"b\"\n7,\"c\"\n");
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    // Three are read; of each the point and the line to its cell are written.
    EXPECT_EQ(lastCounts(run.read("lines")).objects, 9);
}

TEST(ProgressCli, RunsThatEndInAMessageHaveALastLineToo)
{
    ToolRun run("-b -fe a.asc");
    run.environment("GRIDFORGE_PROGRESS", "lines");
    run.give("a.asc", "ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n1\n");
    run.start();
    EXPECT_FALSE(run.reachedEnd());
    EXPECT_GT(lastCounts(run.read("lines")).read, 0);
}

TEST(ProgressCli, NothingElseChanges)
{
    std::map<std::string, std::string> files;
    std::string console;
    for (const char* const place :
         {"", "lines", "none/lines", "fd:1", "fd:2", "fd:77", "1", "77", "99999999999999999999"}) {
        ToolRun run("-b -max a.asc b.flt");
        run.environment("GRIDFORGE_PROGRESS", place);
        run.give("a.asc", ascGrid(wideGrid()));
        run.give("b.flt", fltCells(wideGrid()));
        run.give("b.hdr", hdr(wideGrid()));
        run.start();
        EXPECT_TRUE(run.reachedEnd());
        EXPECT_EQ(run.error(), "");
        std::map<std::string, std::string> left = run.files();
        EXPECT_EQ(left.erase("lines"), place == std::string("lines") ? 1U : 0U);
        if (files.empty()) {
            files = left;
            console = run.console();
        }
        EXPECT_EQ(left, files) << place;
        EXPECT_EQ(run.console(), console) << place;
    }
}

} // namespace
} // namespace gridforge::test
