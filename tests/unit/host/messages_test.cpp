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
    say("id ", r.id, " class ", r.messageClass, " counts ", r.errorCount, r.warningCount, r.checkCount);
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
              }),
              "\nERROR 0201 - Reading text line\nid 201 class 1 counts 100\n"
              "\nWARNING 0305 - x\nid 305 class 2 counts 110\n"
              "\nCHECK 12345 - x\nid 12345 class 3 counts 111\n"
              "\nUNSTABLE - x\nid 0 class 4 counts 111\n"
              "\nError 0201 - x\nid 0 class 0 counts 111\n");
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

} // namespace
} // namespace gridforge
