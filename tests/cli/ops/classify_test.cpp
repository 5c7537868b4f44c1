#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

const std::string kClasses = "Limit,Name\n10,Low\n20,\"Medium hazard\"\n30,High\n";

Lines readClasses(const std::string& heading, int count)
{
    return {"Getting classifications from: c.csv",
            "Maximum number of classes: 100",
            openedInput("c.csv"),
            openedUnit(1001),
            "Skipping first line: " + heading,
            "Number of classes found: " + std::to_string(count),
            closedUnit(1001)};
}

Lines loadedAsc(const std::string& shape)
{
    return joined({{"Loading grid data..."},
                   headerOf("a.asc", shape),
                   {"Allocating 0Kb memory for storing input grid...",
                    "Allocating 0Kb memory for storing output grid...", "Reading data..."},
                   ascCells(),
                   {"   Done."}});
}

// A run on a small grid with these lines as the class file.
struct ClassRun {
    ToolRun run;

    explicit ClassRun(const std::string& classes, const char* arguments = "-classify c.csv a.asc") : run(arguments)
    {
        run.give("c.csv", classes);
        run.give("a.asc", ascGrid({{5, 15}}));
        run.start();
    }
};

std::string manyClasses(int count)
{
    std::string text = "head\n";
    for (int i = 1; i <= count; ++i) {
        text += std::to_string(i) + ",c" + std::to_string(i) + "\n";
    }
    return text;
}

TEST(ClassifyCli, GivesTheClassOfEachCell)
{
    ToolRun run("-classify c.csv a.asc");
    run.give("c.csv", kClasses);
    run.give("a.asc", ascGrid({{-100, 10, 10.5}, {20, 30, 30.1}, {kNull, 25, 1e6}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run,
                   joined({startOf({"a.asc"}),
                           {"Classifying  grid."},
                           loadedAsc("3 rows by 3 columns"),
                           readClasses("Limit,Name", 3),
                           {"Processing Row:", "   Done.", kFormatOfInputs, "Writing clssified grid to: a_classified"},
                           writtenAsc("a_classified"),
                           normalEnd()}));
    EXPECT_GRID(run, "a_classified.asc", {{1, 1, 2}, {2, 3, 4}, {kNull, 3, 4}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassifyCli, WritesAClassifiedAscWithComputedColours)
{
    ToolRun run("-classify c.csv a.asc -grc");
    run.give("c.csv", kClasses);
    run.give("a.asc", ascGrid({{5, kNull}, {35, 20}}, {.xll = 100.5, .yll = -3, .lineEnd = "\n"}));
    run.start();
    EXPECT_CONSOLE(run, joined({startOf({"a.asc"}),
                                {"Classifying  grid."},
                                loadedAsc("2 rows by 2 columns"),
                                readClasses("Limit,Name", 3),
                                {"Processing Row:", "   Done.", kFormatOfInputs, "Writting .asc in classified format.",
                                 openedOutput("a_classified.asc", 1001), "Writing Header for: a_classified.asc",
                                 "Allocating 0Kb memory for conversion to integer grid...", closedUnit(1001)},
                                normalEnd()}));
    // Four classes with the one above: red is 250, 500 and 750 thousandths of 255, cut.
    EXPECT_EQ(run.read("a_classified.asc"), "ncols         2\r\n"
                                            "nrows         2\r\n"
                                            "xllcorner         100.500\r\n"
                                            "yllcorner          -3.000\r\n"
                                            "cellsize    1.00\r\n"
                                            "nClasses  4\r\n"
                                            "  1 \"Low\"   63   0   0\r\n"
                                            "  2 \"Medium hazard\"  127   0   0\r\n"
                                            "  3 \"High\"  191   0   0\r\n"
                                            "  4 \"Above\"  255   0   0\r\n"
                                            "   1   0\r\n"
                                            "   4   2\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassifyCli, TakesColoursFromTheFile)
{
    ToolRun run("-classify c.csv a.flt -RGB -grc -asc");
    run.give("c.csv", "Value,Name,Red,Green,Blue\r\n10, Low hazard ,0,255,0\r\n20,\"Medium, so so\",255,128,0,9\r\n"
                      "30,High,300,-1,10000\r\n31,Short,7\r\n");
    run.give("a.flt", fltCells({{10, 20, 30, 31, 32}}));
    run.give("a.hdr", hdr(5, 1));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, readClasses("Value,Name,Red,Green,Blue", 4));
    EXPECT_CONSOLE_HOLDS(run, {"Using output format .asc as specified.", "Writting .asc in classified format."});
    EXPECT_EQ(run.read("a_classified.asc"), "ncols         5\r\n"
                                            "nrows         1\r\n"
                                            "xllcorner           0.000\r\n"
                                            "yllcorner           0.000\r\n"
                                            "cellsize    1.00\r\n"
                                            "nClasses  5\r\n"
                                            "  1 \"Low hazard\"    0 255   0\r\n"
                                            "  2 \"Medium, so so\"  255 128   0\r\n"
                                            "  3 \"High\"  300  -1****\r\n"
                                            "  4 \"Short\"    7   0   0\r\n"
                                            "  5 \"Above\"  255   0   0\r\n"
                                            "   1   2   3   4   5\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassifyCli, RgbAloneWritesFlt)
{
    ToolRun run("-classify c.csv a.asc -RGB");
    run.give("c.csv", "h\n10,Low,1,2,3\n20,High,4,5,6\n");
    run.give("a.asc", ascGrid({{5, 15}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Classifying  grid.", "WARNING - Must specify \"-grc\" to get classified .asc grid.",
                               "Loading grid data..."});
    EXPECT_CONSOLE_HOLDS(
        run, {"   Done.", "Using output format .flt as specified.", "Writing clssified grid to: a_classified"});
    EXPECT_GRID(run, "a_classified.flt", {{1, 2}});
    EXPECT_TRUE(run.has("a_classified.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassifyCli, RgbWithAscWritesAPlainAsc)
{
    ToolRun run("-classify c.csv a.flt -RGB -asc");
    run.give("c.csv", "h\n10,Low,1,2,3\n20,High,4,5,6\n");
    run.give("a.flt", fltCells({{5, 15}}));
    run.give("a.hdr", hdr(2, 1));
    run.start();
    EXPECT_TRUE(run.says("Using output format .asc as specified."));
    EXPECT_GRID(run, "a_classified.asc", {{1, 2}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassifyCli, GrcNeedsAnAscOutput)
{
    ToolRun run("-classify c.csv a.asc -grc -flt");
    run.give("c.csv", kClasses);
    run.give("a.asc", ascGrid({{5}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"   Done.", "Using output format .flt as specified."},
                                      errorEnd("ERROR - \"-grc\" option only valid, if outputting to a .asc grid.")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassifyCli, OutNamesBothForms)
{
    ToolRun plain("-classify c.csv a.asc -out x");
    plain.give("c.csv", kClasses);
    plain.give("a.asc", ascGrid({{5}}));
    plain.start();
    EXPECT_CONSOLE_HOLDS(plain, {"Using output file name specified with -out switch: \"x\"", kFormatOfInputs,
                                 "Writing clssified grid to: x"});
    EXPECT_GRID(plain, "x.asc", {{1}});
    EXPECT_NO_OTHER_FILES(plain);

    // The extension is cut once before, and one that is left is not doubled.
    ToolRun classified("-classify c.csv a.asc -grc -out x.ASC.asc");
    classified.give("c.csv", kClasses);
    classified.give("a.asc", ascGrid({{5}}));
    classified.start();
    EXPECT_TRUE(classified.says("Using output file name specified with -out switch: \"x.ASC\""));
    EXPECT_TRUE(classified.read("x.ASC").ends_with("\r\n   1\r\n"));
    EXPECT_NO_OTHER_FILES(classified);
}

TEST(ClassifyCli, AClassWhoseNumberIsTheNullIsWrittenZero)
{
    ToolRun run("-classify c.csv a.asc -grc");
    run.give("c.csv", kClasses);
    run.give("a.asc", ascGrid({{5, 2, 15, 25}}, {.null = 2, .lineEnd = "\n"}));
    run.start();
    EXPECT_TRUE(run.read("a_classified.asc").ends_with("\r\n   1   0   0   3\r\n"));
}

TEST(ClassifyCli, ShowsRowsInBothWalks)
{
    ToolRun run("-classify c.csv a.asc -grc");
    run.give("c.csv", kClasses);
    run.give("a.asc", ascGrid(Cells(201, {5})));
    run.start();
    EXPECT_TRUE(run.says("Processing Row:     100     200"));
    EXPECT_TRUE(run.says("     200     100")); // written from the north
}

TEST(ClassifyCli, ARowWiderThanTheWritersBuffer)
{
    constexpr std::size_t kColumns = 300000;
    ToolRun run("-classify c.csv a.flt -grc -asc");
    run.give("c.csv", kClasses);
    std::vector<double> row(kColumns, 5);
    row.back() = 25;
    run.give("a.flt", fltCells({row}));
    run.give("a.hdr", hdr(kColumns, 1));
    run.start();
    const std::string text = run.read("a_classified.asc");
    const std::string cells = text.substr(text.find("255   0   0\r\n") + 13);
    ASSERT_EQ(cells.size(), kColumns * 4 + 2);
    EXPECT_EQ(cells.substr(0, 8), "   1   1");
    EXPECT_EQ(cells.substr(cells.size() - 10), "   1   3\r\n");
}

TEST(ClassifyCli, RefusesMoreThanOneGrid)
{
    ToolRun run("-classify c.csv a.asc b.asc");
    run.give("c.csv", kClasses);
    run.give("a.asc", ascGrid({{5}}));
    run.give("b.asc", ascGrid({{5}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"Classifying  grid."},
                                      errorEnd("ERROR - Only a single grid file accepted for \"-classify\" option.")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassFile, EqualLimitsPassAndTheFirstIsTaken)
{
    ClassRun c("h\n10,a\n15,b\n15,c\n20,d\n");
    EXPECT_GRID(c.run, "a_classified.asc", {{1, 2}});
}

TEST(ClassFile, LimitsMustNotFall)
{
    for (const char* classes : {"h\n10,a\n9.999,b\n", "h\n10,a\nNaN,b\n", "h\n1,a\n3,b\n2,c\n"}) {
        ClassRun c(classes);
        EXPECT_CONSOLE_HOLDS(c.run, joined({{closedUnit(1001)}, errorEnd("ERROR - Classes not in increasing order.")}));
        EXPECT_NO_OTHER_FILES(c.run);
    }
}

TEST(ClassFile, NeedsTwoClasses)
{
    for (const auto& [classes, heading, count] : std::vector<std::tuple<std::string, std::string, int>>{
             {"", "", 0}, {"head", "head", 0}, {"head\n", "head", 0}, {"head\n10,only\n", "head", 1}}) {
        ClassRun c(classes);
        // A heading of nothing leaves the trailing blank of its message.
        EXPECT_CONSOLE_HOLDS(c.run, joined({{"Skipping first line: " + heading,
                                             "Number of classes found: " + std::to_string(count), closedUnit(1001)},
                                            errorEnd("ERROR - Less than two classes found.")}));
        EXPECT_NO_OTHER_FILES(c.run);
    }
}

TEST(ClassFile, AHundredClassesPass)
{
    ClassRun c(manyClasses(100));
    EXPECT_TRUE(c.run.says("Number of classes found: 100"));
    EXPECT_GRID(c.run, "a_classified.asc", {{5, 15}});
}

TEST(ClassFile, AHundredAndOneEndTheRunWhateverTheLastSays)
{
    for (const std::string& last : {std::string("101,c\n"), std::string("no number\n"), std::string("\n")}) {
        ClassRun c(manyClasses(100) + last);
        EXPECT_CONSOLE_HOLDS(
            c.run, joined({{"Skipping first line: head"}, errorEnd("ERROR - Number of classes exceeds maximum.")}));
        EXPECT_NO_OTHER_FILES(c.run);
    }
}

TEST(ClassFile, ALineThatCannotBeReadEndsTheRun)
{
    for (const std::string& line : {std::string("low,10"), std::string("10"), std::string(""), std::string("10,"),
                                    std::string("# 10,a"), std::string("'10',a"), std::string("1e99,a")}) {
        ClassRun c("h\n5,first\n" + line + "\n20,last\n");
        EXPECT_CONSOLE_HOLDS(
            c.run,
            joined({{"Skipping first line: h", "ERROR - Reading following line in classes file:"}, errorEnd(line)}));
        EXPECT_NO_OTHER_FILES(c.run);
    }
}

TEST(ClassFile, ABlankLineAtTheEndCannotBeReadEither)
{
    ClassRun c("h\n10,a\n20,b\n\n");
    EXPECT_CONSOLE_HOLDS(c.run, errorEnd("ERROR - Reading following line in classes file:", ""));
    EXPECT_NO_OTHER_FILES(c.run);
}

TEST(ClassFile, NamesTakeQuotesAndBlanks)
{
    ClassRun c("h\n10 'it''s low'\n 20 , \"a \"\"b\"\", c\" \n30,plain word\n40,,\n50;x,y\n",
               "-classify c.csv a.asc -grc");
    // A name ends at a blank where it is not quoted; one left empty between commas is blank; ";" belongs to no number.
    EXPECT_CONSOLE_HOLDS(c.run, {"ERROR - Reading following line in classes file:", "50;x,y"});

    ClassRun good("h\n10 'it''s low'\n 20 , \"a \"\"b\"\", c\" \n30,plain word\n40,,\n", "-classify c.csv a.asc -grc");
    const std::string text = good.run.read("a_classified.asc");
    EXPECT_NE(text.find("nClasses  5\r\n"
                        "  1 \"it's low\"   51   0   0\r\n"
                        "  2 \"a \"b\", c\"  102   0   0\r\n"
                        "  3 \"plain\"  153   0   0\r\n"
                        "  4 \"\"  204   0   0\r\n"
                        "  5 \"Above\"  255   0   0\r\n"),
              std::string::npos)
        << text;
}

TEST(ClassFile, ALongNameIsCut)
{
    ClassRun c("h\n10,a\n20," + std::string(150, 'x') + "\n", "-classify c.csv a.asc -grc");
    EXPECT_NE(c.run.read("a_classified.asc").find("  2 \"" + std::string(100, 'x') + "\""), std::string::npos);
}

TEST(ClassFile, AnEmptyLimitReadsAsZero)
{
    ClassRun c("h\n,zero\n10,a\n");
    EXPECT_GRID(c.run, "a_classified.asc", {{2, 3}});
}

TEST(ClassFile, ColouredLinesMayLackAnything)
{
    // A blank line is a class with the limit -9999 and no name.
    ClassRun c("h\n\n10\n20,b,,5\n", "-classify c.csv a.asc -RGB -grc");
    EXPECT_NE(c.run.read("a_classified.asc")
                  .find("nClasses  4\r\n"
                        "  1 \"\"    0   0   0\r\n"
                        "  2 \"\"    0   0   0\r\n"
                        "  3 \"b\"    0   5   0\r\n"),
              std::string::npos);
}

TEST(ClassFile, ColouredLinesThatCannotBeConvertedEndTheRun)
{
    for (const auto& [line, message] : std::vector<std::pair<std::string, std::string>>{
             {"low,a,1,2,3", " Could not convert \"low\" in column   1 to a real value for the Value field."},
             {"20,a,red,2,3", " Could not convert \"red\" in column   3 to an integer value for the Red field."},
             {"20,a,1,2.5,3", " Could not convert \"2.5\" in column   4 to an integer value for the Green field."},
             {"20,a,1,2,x", " Could not convert \"x\" in column   5 to an integer value for the Blue field."}}) {
        ClassRun c("h\n5,first,1,1,1\n" + line + "\n", "-classify c.csv a.asc -RGB -grc");
        EXPECT_TRUE(c.run.says(message)) << c.run.console();
        EXPECT_NO_OTHER_FILES(c.run);
    }
}

TEST(ClassFile, ABlankNameEndsTheRun)
{
    ToolRun run("a.asc -classify");
    run.give("a.asc", ascGrid({{5}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Getting classifications from: ", "Maximum number of classes: 100",
                               "Empty filename specified.  Bailing out.  Please contact SUPPORT_CONTACT.", kClose});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ClassFile, AMissingFileIsAskedFor)
{
    ToolRun run("-classify none.csv a.asc");
    run.give("a.asc", ascGrid({{5, 15}}));
    run.give("c.csv", kClasses);
    run.type("c.csv");
    run.start();
    EXPECT_TRUE(run.says("CHECK 0008 - \"none.csv\" cannot be found"));
    EXPECT_GRID(run, "a_classified.asc", {{1, 2}});
}

TEST(ClassifyCli, ItsFlagsWithoutItGetTheWarningsOfTheScan)
{
    ToolRun run("-fe a.asc -RGB -grc");
    run.give("a.asc", ascGrid({{5}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {kBanner, "WARNING - RGB option only valid for classify operation. Flag ignored.", kEnter,
                          "WARNING - \"-grc\" option only used with \"classify\". Flag ignored.", kEnter, kWildcards});
    EXPECT_GRID(run, "a_extent.asc", {{1}});
}

} // namespace
} // namespace gridforge::test
