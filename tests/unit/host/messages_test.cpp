#include "host/messages.h"

#include "host/console.h"
#include "host/units.h"
#include "support/child_run.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string_view>

namespace gridforge {
namespace {

using test::runInChild;
using test::ScratchFolder;

std::string consoleOf(const std::function<void()>& code)
{
    const ScratchFolder folder;
    return runInChild(folder, code).console;
}

// Fields of text, from the first on.
template <typename Fields>
void fill(Fields& fields, std::initializer_list<std::string_view> texts)
{
    std::ranges::copy(texts, fields.begin());
}

void sayCounts()
{
    const MessageRecord& r = DMESSAGES();
    say("id ", r.id, " class ", r.messageClass, " counts ", r.errorCount, r.warningCount, r.checkCount, " xy ",
        r.xyErrorCount, r.xyWarningCount, r.xyCheckCount);
}

TEST(Dmessage, PrintsBlankLinesThenTheText)
{
    EXPECT_EQ(consoleOf([] {
                  DMESSAGES().line[0] = "text";
                  DMESSAGE(1);
                  DMESSAGES().line[0] = "more";
                  DMESSAGE(-1);
                  DMESSAGES().line[0] = "two";
                  DMESSAGE(2);
              }),
              "\ntext\nmore\n\n\ntwo\n");
}

TEST(Dmessage, CountsByTheWordAtItsHead)
{
    EXPECT_EQ(consoleOf([] {
                  report("ERROR 0201 - Reading text line");
                  sayCounts();
                  report("WARNING 0305 - x");
                  sayCounts();
                  report("CHECK 12345 - x");
                  sayCounts();
                  report("UNSTABLE - x");
                  sayCounts();
                  report("Error 0201 - x");
                  sayCounts();
                  DMESSAGERESETCOUNTERS();
                  sayCounts();
              }),
              "\nERROR 0201 - Reading text line\nid 201 class 1 counts 100 xy 000\n"
              "\nWARNING 0305 - x\nid 305 class 2 counts 110 xy 000\n"
              "\nCHECK 12345 - x\nid 12345 class 3 counts 111 xy 000\n"
              "\nUNSTABLE - x\nid 0 class 4 counts 111 xy 000\n"
              "\nError 0201 - x\nid 0 class 0 counts 111 xy 000\n"
              "id 0 class 0 counts 000 xy 000\n");
}

TEST(Dmessage, JoinsLinesTagsAndPrefix)
{
    const auto fillAll = [] {
        MessageRecord& r = DMESSAGES();
        fill(r.line, {"one", "two", "", "lost"});
        fill(r.tag, {"a", "", "b"});
        r.prefix = "XY:";
    };
    EXPECT_EQ(consoleOf([&] {
                  fillAll();
                  DMESSAGE(0);
                  fillAll();
                  DMESSAGES().messageInline = true;
                  DMESSAGE(0);
                  DMESSAGE(0); // the record is clear again
              }),
              "XY: one\ntwo\na; b\nXY: one  two  a; b\n\n");
}

TEST(Dmessage, WritesTheCsvListAndTheLog)
{
    const ScratchFolder folder;
    runInChild(folder, [] {
        MessageRecord& r = DMESSAGES();
        OPENER(r.messageCsvUnit, "O ", "list.csv");
        OPENER(r.messageLogUnit, "O ", "log.txt");
        fill(r.line, {"ERROR 0012 - say \"x\"", "two", "three", ""});
        fill(r.tag, {"t1", "", ""});
        DMESSAGE(1);
        report("no class");
        r.line[0] = "WARNING 9";
        DMESSAGE(-2);
    });
    EXPECT_EQ(folder.read("list.csv"),
              " 0012, 1,-99999.000,-99999.000, \"ERROR 0012 - say \"\"x\"\"  two  three\", \"t1\", \"\", \"\"\r\n"
              " 0009, 2,-99999.000,-99999.000, \"WARNING 9\", \"\", \"\", \"\"\r\n");
    EXPECT_EQ(folder.read("log.txt"), "\r\nERROR 0012 - say \"x\"\r\ntwo\r\nthree\r\nt1\r\n\r\nno class\r\n");
}

TEST(Dmessagexy, DrawsTheMessageInItsLayer)
{
    const ScratchFolder folder;
    const auto run = runInChild(folder, [] {
        MessageRecord& r = DMESSAGES();
        OPENER(r.mifUnit, "O ", "m.mif");
        OPENER(r.midUnit, "O ", "m.mid");
        OPENER(r.checkMifUnit, "O ", "c.mif");
        OPENER(r.checkMidUnit, "O ", "c.mid");
        r.labelDx = 2;
        r.labelDy = 4;
        fill(r.line, {"ERROR 0001 - \"q\"", "two", "", ""});
        DMESSAGEXY(-1, 10, 20);
        r.line[0] = "CHECK 1";
        r.line[1] = "in";
        r.messageInline = true;
        DMESSAGEXY(-1, 0.5, 0.25);
        r.line[0] = "WARNING 1";
        DMESSAGEXY(-1, 0, 0);
        sayCounts();
    });
    EXPECT_TRUE(run.console.ends_with("XY: ERROR 0001 - \"q\"\ntwo\nXY: CHECK 1  in\nXY: WARNING 1\n"
                                      "id 1 class 2 counts 111 xy 111\n"))
        << run.console;
    // Two lines: the text box reaches 2 * 0.5 * 2 below and above the place.
    EXPECT_EQ(folder.read("m.mif"), "Text\r\n"
                                    "\"ERROR 0001 - \"\"q\"\"\\ntwo\"\r\n"
                                    "              12.000          18.000          16.000          22.000\r\n"
                                    "    Font (\"Arial\",257,0,16711935,0)\r\n"
                                    "    Label Line Arrow           10.000          20.000\r\n"
                                    "Text\r\n"
                                    "\"WARNING 1\"\r\n"
                                    "               2.000          -1.000           6.000           1.000\r\n"
                                    "    Font (\"Arial\",257,0,16776960,0)\r\n"
                                    "    Label Line Arrow            0.000           0.000\r\n");
    EXPECT_EQ(folder.read("m.mid"), "\"ERROR 0001 - \"\"q\"\"  \"two  \"\r\n\"WARNING 1  \"\r\n");
    EXPECT_EQ(folder.read("c.mif"), "Text\r\n"
                                    "\"CHECK 1  in\"\r\n"
                                    "               2.500          -1.750           6.500           2.250\r\n"
                                    "    Font (\"Arial\",257,0,255,16777215)\r\n"
                                    "    Label Line Arrow            0.500           0.250\r\n");
    EXPECT_EQ(folder.read("c.mid"), "\"CHECK 1  \"in  \"\r\n");
}

TEST(Dline, IsEightyUnderscores)
{
    const ScratchFolder folder;
    const auto run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "x");
        DLINE(unit);
        DLINE(0);
    });
    const std::string rule(80, '_');
    EXPECT_TRUE(run.console.ends_with(rule + "\n" + rule + "\n"));
    EXPECT_EQ(folder.read("x"), rule + "\r\n");
}

} // namespace
} // namespace gridforge
