#include "exports/messages_for_callers.h"

#include "host/console.h"
#include "host/messages.h"
#include "host/units.h"
#include "support/child_run.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <string_view>

namespace gridforge::exports {
namespace {

using test::runInChild;
using test::ScratchFolder;

void fillLines(MessageRecord& record, std::initializer_list<std::string_view> texts)
{
    std::ranges::copy(texts, record.line.begin());
}

void sayCounts()
{
    const MessageRecord& r = DMESSAGES();
    say("id ", r.id, " class ", r.messageClass, " counts ", r.errorCount, r.warningCount, r.checkCount, " xy ",
        r.xyErrorCount, r.xyWarningCount, r.xyCheckCount);
}

TEST(Dmessagexy, DrawsTheMessageInItsLayerAndCountsIt)
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
        fillLines(r, {"ERROR 0001 - \"q\"", "two", "", ""});
        DMESSAGEXY(-1, 10, 20);
        r.line[0] = "CHECK 1";
        r.line[1] = "in";
        r.messageInline = true;
        DMESSAGEXY(-1, 0.5, 0.25);
        r.line[0] = "WARNING 1";
        DMESSAGEXY(-1, 0, 0);
        sayCounts();
        DMESSAGERESETCOUNTERS();
        sayCounts();
    });
    EXPECT_TRUE(run.console.ends_with("XY: ERROR 0001 - \"q\"\ntwo\nXY: CHECK 1  in\nXY: WARNING 1\n"
                                      "id 1 class 2 counts 111 xy 111\n"
                                      "id 1 class 2 counts 000 xy 000\n"))
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

TEST(Dmessagexy, TakesTheLayerAndTheFontFromTheClass)
{
    const ScratchFolder folder;
    const auto run = runInChild(folder, [] {
        MessageRecord& r = DMESSAGES();
        OPENER(r.mifUnit, "O ", "m.mif");
        OPENER(r.checkMifUnit, "O ", "c.mif");
        r.line[0] = "UNSTABLE 12";
        DMESSAGEXY(-1, 0, 0);
        sayCounts();
        r.line[0] = "note";
        DMESSAGEXY(-1, 0, 0);
        sayCounts();
    });
    EXPECT_TRUE(run.console.ends_with("XY: UNSTABLE 12\nid 12 class 4 counts 000 xy 000\n"
                                      "XY: note\nid 0 class 0 counts 000 xy 000\n"))
        << run.console;
    const auto drawn = [](const std::string& text, const std::string& colours) {
        return "Text\r\n\"" + text +
               "\"\r\n"
               "               0.000           0.000           0.000           0.000\r\n"
               "    Font (\"Arial\",257,0," +
               colours +
               ")\r\n"
               "    Label Line Arrow            0.000           0.000\r\n";
    };
    EXPECT_EQ(folder.read("m.mif"), drawn("UNSTABLE 12", "16711935,0"));
    EXPECT_EQ(folder.read("c.mif"), drawn("note", "53248,16777215"));
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
} // namespace gridforge::exports
