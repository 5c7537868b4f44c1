#include "host/units.h"

#include "host/ends.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

namespace gridforge::test {
namespace {

TEST(Opener, ReadsAnInputAndTellsItsUnit)
{
    ScratchFolder folder;
    folder.give("a.txt", "one\r\ntwo\nthree");
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.txt");
        std::string line;
        while (readLine(unit, line)) {
            say("<", line, ">", atEnd(unit) ? " end" : "");
        }
        CLOSER(unit);
        say("unit is ", unit);
        CLOSER(unit); // a closed unit's variable is 0, so this does nothing
    });
    EXPECT_EQ(run.console, "Trying to open file a.txt...OK.\n"
                           "Opened File Unit:1001\n"
                           "<one>\n<two>\n<three> end\n"
                           "...Closed File Unit:1001\n"
                           "unit is 0\n");
}

// What a run shows of a file: each line in brackets, then the state of the unit.
std::string linesOf(const std::string& bytes)
{
    const ScratchFolder folder;
    folder.give("a.txt", bytes);
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.txt");
        std::string line;
        while (readLine(unit, line)) {
            sayOpen("<", line, ">");
        }
        say(atEnd(unit) ? "end" : "more");
    });
    const std::string opened = "Opened File Unit:1001\n";
    return run.console.substr(run.console.find(opened) + opened.size());
}

TEST(Opener, SkipsAByteOrderMarkOfText)
{
    EXPECT_EQ(linesOf("\xEF\xBB\xBFone\ntwo"), "<one>\n<two>\nend\n");
    EXPECT_EQ(linesOf("\xEF\xBB\xBF\r\ntwo"), "<>\n<two>\nend\n");
    // Nothing but the mark is an empty file.
    EXPECT_EQ(linesOf("\xEF\xBB\xBF"), "end\n");
    EXPECT_EQ(linesOf(""), "end\n");
    // Only a whole one at the very start is a mark, and only the first.
    EXPECT_EQ(linesOf("\xEF\xBB"), "<\xEF\xBB>\nend\n");
    EXPECT_EQ(linesOf("\xEF\xBBo\n"), "<\xEF\xBBo>\nend\n");
    EXPECT_EQ(linesOf(" \xEF\xBB\xBFo\n\xEF\xBB\xBFp"), "< \xEF\xBB\xBFo>\n<\xEF\xBB\xBFp>\nend\n");
    EXPECT_EQ(linesOf("\xEF\xBB\xBF\xEF\xBB\xBFo"), "<\xEF\xBB\xBFo>\nend\n");
}

TEST(Opener, ReadsTextWithAByteOrderMarkFromItsStartAgain)
{
    const ScratchFolder folder;
    // Longer than what the unit reads ahead.
    folder.give("a.txt", "\xEF\xBB\xBFone\n" + std::string(3 * kReadAhead, 'x') + "\nlast\n");
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.txt");
        std::string line;
        readLine(unit, line);
        stepBack(unit);
        readLine(unit, line);
        say("<", line, ">");
        while (readLine(unit, line, 4)) {
        }
        seekTo(unit, 0);
        readLine(unit, line);
        say("<", line, ">");
        seekTo(unit, 0);
        say("<", readyBytes(unit).substr(0, 3), ">");
    });
    EXPECT_EQ(run.console, "Trying to open file a.txt...OK.\nOpened File Unit:1001\n<one>\n<one>\n<one>\n");
}

TEST(Opener, TakesAllBytesOfABinaryFile)
{
    const ScratchFolder folder;
    folder.give("a.bin", "\xEF\xBB\xBFrest");
    const ChildRun run = runInChild(folder, [] {
        for (const char* mode : {"BI", "BE"}) {
            Unit unit = 0;
            OPENER(unit, mode, "a.bin");
            say(readyBytes(unit) == "\xEF\xBB\xBFrest" ? "all" : "some");
        }
    });
    EXPECT_EQ(run.console, "Trying to open file a.bin...OK.\nOpened File Unit:1001\nall\n"
                           "Trying to open file a.bin...OK.\nOpened File Unit:1002\nall\n");
}

TEST(Opener, WritesLinesWithCrLf)
{
    ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "b.txt");
        writeLine(unit, "first");
        writeText(unit, "second");
        CLOSER(unit);
    });
    EXPECT_EQ(run.console, "Trying to open file b.txt...OK.  File Unit:1001\n...Closed File Unit:1001\n");
    EXPECT_EQ(folder.read("b.txt"), "first\r\nsecond");
}

TEST(Opener, OpensInPlace)
{
    ScratchFolder folder;
    folder.give("s.bin", "12345");
    runInChild(folder, [] {
        Unit s = 0;
        OPENER(s, "SB", "s.bin");
        writeText(s, "ab");
        seekTo(s, 3);
        writeText(s, "c");
        truncateHere(s);
    });
    EXPECT_EQ(folder.read("s.bin"), "ab3c");
}

TEST(Opener, AsksForAnotherNameOfAMissingInput)
{
    ScratchFolder folder;
    folder.give("b.txt", "x");
    const ChildRun run = runInChild(
        folder,
        [] {
            Unit unit = 0;
            OPENER(unit, "I ", "a.txt");
            say(unitName(unit));
        },
        "\n   b.txt\n");
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(run.console, "Trying to open file a.txt...\n"
                           "CHECK 0008 - \"a.txt\" cannot be found\n"
                           "Check file exists and press enter or enter another file name: \n"
                           "No file name entered.  Trying file again...\n"
                           "Trying to open file a.txt...\n"
                           "CHECK 0008 - \"a.txt\" cannot be found\n"
                           "Check file exists and press enter or enter another file name: \n"
                           "Trying to open file b.txt...OK.\n"
                           "Opened File Unit:1001\n"
                           "b.txt\n");
}

TEST(Opener, FindsAnInputInOtherCaseAndKeepsTheNameAskedFor)
{
    ScratchFolder folder;
    folder.give("A.TXT", "capitals");
    for (const char* mode : {"I ", "BI", "BE"}) {
        const ChildRun run = runInChild(folder, [mode] {
            Unit unit = 0;
            OPENER(unit, mode, "a.txt");
            std::string line;
            readLine(unit, line);
            say(unitName(unit), " holds ", line);
        });
        EXPECT_EQ(run.console, "Trying to open file a.txt...OK.\nOpened File Unit:1001\na.txt holds capitals\n")
            << mode;
    }
}

TEST(Opener, WritesAnOutputUnderItsOwnName)
{
    ScratchFolder folder;
    folder.give("A.TXT", "capitals");
    for (const char* mode : {"O ", "BO", "SB", "SE"}) {
        runInChild(folder, [mode] {
            Unit unit = 0;
            OPENER(unit, mode, "a.txt");
            writeText(unit, "small");
        });
        EXPECT_EQ(folder.read("a.txt"), "small") << mode;
        std::filesystem::remove(folder.path() / "a.txt");
    }
    EXPECT_EQ(folder.read("A.TXT"), "capitals");
}

TEST(Opener, TakesAFolderForAMissingInput)
{
    ScratchFolder folder;
    folder.give("d/x", "");
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "d");
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.console, "Trying to open file d...\n"
                           "CHECK 0008 - \"d\" cannot be found\n"
                           "Check file exists and press enter or enter another file name: \n" +
                               kExits);
}

TEST(Opener, WaitsWhereAnOutputCannotBeOpened)
{
    const std::string block = "\n"
                              "Can't open: no\\x.txt\n"
                              "\n"
                              "Another application or user maybe using it,\n"
                              "   or the file's folder does not exist.\n"
                              "If so, close the file or create file path.\n"
                              "Press Enter to Continue\n";
    ScratchFolder folder;
    const ChildRun run = runInChild(
        folder,
        [] {
            Unit unit = 0;
            OPENER(unit, "O ", "no\\x.txt");
        },
        "\n");
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console, "Trying to open file no\\x.txt...Can't Open\n" + block + "Can't Open\n" + block + kExits);
}

TEST(Opener, RefusesABlankName)
{
    ScratchFolder folder;
    const ChildRun blank = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "   ");
    });
    EXPECT_TRUE(blank.ended);
    EXPECT_EQ(blank.console, "Empty filename specified.  Bailing out.  Please contact SUPPORT_CONTACT." + kExits);
}

TEST(Opener, ReadsOrChangesAFileThatIsOpenWithoutAQuestion)
{
    for (const std::string first : {"O ", "SB", "I "}) {
        for (const std::string second : {"I ", "BI", "BE", "SB", "SE"}) {
            const ScratchFolder folder;
            folder.give("a.txt", "line");
            const ChildRun run = runInChild(folder, [&] {
                Unit unit = 0;
                Unit other = 0;
                OPENER(unit, first, "a.txt");
                OPENER(other, second, "a.txt");
            });
            EXPECT_FALSE(run.ended) << first << second;
            EXPECT_EQ(run.console.find("already open"), std::string::npos) << first << second << run.console;
            EXPECT_TRUE(run.console.ends_with("File Unit:1002\n")) << first << second << run.console;
        }
    }
}

TEST(Opener, AsksBeforeItTakesAFileThatIsOpen)
{
    const auto openTwice = [] {
        Unit first = 0;
        Unit second = 0;
        OPENER(first, "O ", "a.txt");
        OPENER(second, "O ", "a.txt");
        writeText(second, "second");
    };
    const std::string head = "Trying to open file a.txt...OK.  File Unit:1001\n"
                             "Trying to open file a.txt...\n"
                             "\n"
                             "a.txt is already open, close it? \n";
    ScratchFolder folder;
    const ChildRun yes = runInChild(folder, openTwice, "y\n");
    EXPECT_EQ(yes.console, head + "OK.  File Unit:1002\n");
    EXPECT_EQ(folder.read("a.txt"), "second");

    // Any other answer tries the same name again.
    const std::string again = "Trying to open file a.txt...\n"
                              "\n"
                              "a.txt is already open, close it? \n";
    const ChildRun no = runInChild(folder, openTwice, "n\nb.txt\nY\n");
    EXPECT_EQ(no.console, head + again + again + "OK.  File Unit:1002\n");
    EXPECT_EQ(folder.read("a.txt"), "second");
    EXPECT_FALSE(folder.has("b.txt"));

    const ChildRun never = runInChild(folder, openTwice, "n\n");
    EXPECT_TRUE(never.ended);
    EXPECT_EQ(never.console, head + again + kExits);
}

const std::string kReplaced = "WARNING - Output file was already written in this run and is replaced: ";

// Opens each name in turn in its mode, and closes it at once.
std::string openInTurn(const ScratchFolder& folder, const std::vector<std::pair<const char*, const char*>>& files)
{
    return runInChild(folder,
                      [&] {
                          for (const auto& [mode, name] : files) {
                              Unit unit = 0;
                              OPENER(unit, mode, name);
                              CLOSER(unit);
                          }
                      })
        .console;
}

const std::string kWritten = "OK.  File Unit:1001\n...Closed File Unit:1001\n";

TEST(Opener, WarnsEachTimeItReplacesAFileOfThisRun)
{
    const ScratchFolder folder;
    for (const char* mode : {"O ", "BO", "SB", "SE"}) {
        const std::string again = kReplaced + "./a.txt\nTrying to open file ./a.txt..." + kWritten;
        EXPECT_EQ(openInTurn(folder, {{"O ", "a.txt"}, {mode, ".//a.txt"}, {mode, ".//a.txt"}}),
                  "Trying to open file a.txt..." + kWritten + again + again)
            << mode;
    }
}

TEST(Opener, DoesNotWarnOfWhatIsNotReplaced)
{
    const ScratchFolder folder;
    folder.give("older.txt", "");
    const auto opened = [](const std::string& name) { return "Trying to open file " + name + "..." + kWritten; };
    EXPECT_EQ(openInTurn(folder, {{"O ", "older.txt"}}), opened("older.txt"));
    EXPECT_EQ(openInTurn(folder, {{"O ", "a.PRJ"}, {"O ", "a.PRJ"}}), opened("a.PRJ") + opened("a.PRJ"));
    EXPECT_EQ(openInTurn(folder, {{"O ", "/dev/null"}, {"O ", "/dev/null"}}),
              opened("/dev/null") + opened("/dev/null"));
    folder.give("a.txt", "");
    EXPECT_EQ(openInTurn(folder, {{"I ", "a.txt"}, {"O ", "a.txt"}}),
              "Trying to open file a.txt...OK.\nOpened File Unit:1001\n...Closed File Unit:1001\n" + opened("a.txt"));
}

TEST(Opener, WarnsOnceWhereTwoUnitsWriteOneFile)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "a.shp");
        CLOSER(unit);
        Unit little = 0;
        Unit big = 0;
        OPENER(little, "SB", "a.shp");
        OPENER(big, "SE", "a.shp");
    });
    EXPECT_EQ(run.console, "Trying to open file a.shp..." + kWritten + kReplaced +
                               "a.shp\n"
                               "Trying to open file a.shp...OK.  File Unit:1001\n"
                               "Trying to open file a.shp...OK.  File Unit:1002\n");
}

TEST(Opener, StopsAtThe1001stFile)
{
    ScratchFolder folder;
    folder.give("a", "");
    const ChildRun run = runInChild(folder, [] {
        std::array<Unit, 1001> units{};
        for (Unit& unit : units) {
            OPENER(unit, "I ", "a");
        }
    });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.console.ends_with("\nOpened File Unit:2000\nNo free file numbers.\n"));
}

TEST(Units, ReadsLinesCutAtTheirWidth)
{
    ScratchFolder folder;
    folder.give("a.txt", "12345\r\n123456\r\n12   \n" + std::string(3 << 20, 'x') + "\nlast\n");
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.txt");
        std::string line;
        while (readLine(unit, line, 5)) {
            say("<", line, ">");
        }
    });
    EXPECT_EQ(run.console, "Trying to open file a.txt...OK.\nOpened File Unit:1001\n"
                           "<12345>\n<12345>\n<12>\n<xxxxx>\n<last>\n");
}

TEST(Units, StepsBackOneLineHoweverLong)
{
    ScratchFolder folder;
    folder.give("a.txt", "head\n" + std::string(3 << 20, 'x') + "\nlast\n");
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.txt");
        std::string line;
        readLine(unit, line);
        stepBack(unit);
        readLine(unit, line);
        say(line);
        readLine(unit, line, 3);
        stepBack(unit);
        readLine(unit, line, 4);
        say(line);
        readLine(unit, line);
        say(line);
    });
    EXPECT_EQ(run.console, "Trying to open file a.txt...OK.\nOpened File Unit:1001\nhead\nxxxx\nlast\n");
}

TEST(Units, ReadsBytesAcrossTheBuffer)
{
    ScratchFolder folder;
    std::string bytes;
    for (int i = 0; i < 3'000'000; ++i) {
        bytes += static_cast<char>(i % 251);
    }
    folder.give("a.bin", bytes);
    const ChildRun run = runInChild(folder, [&] {
        Unit unit = 0;
        OPENER(unit, "BI", "a.bin");
        std::array<std::byte, 10> head{};
        std::vector<std::byte> body(2'900'000);
        std::vector<std::byte> tail(100'000);
        const bool good = readBytes(unit, head) && readBytes(unit, body);
        say(good ? "good" : "bad", " at ", position(unit));
        say(std::memcmp(body.data(), bytes.data() + 10, body.size()) == 0 ? "same" : "other");
        say(readBytes(unit, tail) ? "too much" : "short");
        seekTo(unit, 251);
        readBytes(unit, head);
        say(static_cast<int>(head[1]));
    });
    EXPECT_EQ(run.console, "Trying to open file a.bin...OK.\nOpened File Unit:1001\n"
                           "good at 2900010\nsame\nshort\n1\n");
}

TEST(Units, AFullDiskEndsTheRunWithAMessage)
{
    ScratchFolder folder;
    std::filesystem::create_symlink("/dev/full", folder.path() / "full.txt");
    const ChildRun atClose = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "full.txt");
        writeLine(unit, "x");
        CLOSER(unit);
        say("not reached");
    });
    EXPECT_TRUE(atClose.ended);
    EXPECT_EQ(atClose.console, "Trying to open file full.txt...OK.  File Unit:1001\n"
                               "ERROR - Could not write to file: full.txt\n" +
                                   kExits);

    const ChildRun atWrite = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "full.txt");
        writeText(unit, std::string(3 << 20, 'x'));
        say("not reached");
    });
    EXPECT_EQ(atWrite.console, atClose.console);

    const ChildRun atAFullBuffer = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "full.txt");
        for (int line = 0; line < 5000; ++line) {
            writeLine(unit, std::string(1000, 'x'));
        }
        say("not reached");
    });
    EXPECT_EQ(atAFullBuffer.console, atClose.console);

    const ChildRun atTheEnd = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "full.txt");
        writeText(unit, "x");
        endFinished(true);
    });
    EXPECT_EQ(atTheEnd.console, atClose.console);

    const ChildRun atANewTable = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "full.txt");
        writeLine(unit, "x");
        startUnits(2000);
        say("not reached");
    });
    EXPECT_EQ(atANewTable.console, atClose.console);
}

TEST(Units, ExitsClosesAllOutputsBeforeItWaits)
{
    ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        Unit a = 0;
        Unit b = 0;
        Unit c = 0;
        OPENER(a, "O ", "a");
        OPENER(b, "O ", "b");
        OPENER(c, "O ", "c");
        writeText(a, "1");
        writeText(b, "2");
        writeText(c, "3");
        fail("ERROR - so it is");
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.console.ends_with("ERROR - so it is\n" + kExits)) << run.console;
    EXPECT_EQ(folder.read("a") + folder.read("b") + folder.read("c"), "123");
}

TEST(Units, ARefusedReadIsAFailedOne)
{
    ScratchFolder folder;
    std::filesystem::create_symlink("/proc/self/mem", folder.path() / "a.txt");
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "a.txt");
        std::string line;
        const bool readable = !atEnd(unit);
        const bool read = readLine(unit, line);
        say(readable ? "goes on, " : "at its end, ", read ? "read" : "not read",
            readFailed(unit) ? ", failed" : ", ended");
    });
    EXPECT_TRUE(run.console.ends_with("goes on, not read, failed\n")) << run.console;
}

TEST(Units, MoreBytesThanTheBufferHoldsAreReadWholeOrNotAtAll)
{
    ScratchFolder folder;
    folder.give("short.bin", "some bytes");
    std::filesystem::create_symlink("/proc/self/mem", folder.path() / "refused.bin");
    const ChildRun run = runInChild(folder, [] {
        std::vector<std::byte> bytes(4'000'000);
        for (const char* const name : {"short.bin", "refused.bin"}) {
            Unit unit = 0;
            OPENER(unit, "BI", name);
            const bool first = readBytes(unit, bytes);
            const bool again = readBytes(unit, bytes);
            say(name, first || again ? " read" : " not read", readFailed(unit) ? ", failed" : ", ended");
        }
    });
    EXPECT_NE(run.console.find("\nshort.bin not read, ended\n"), std::string::npos) << run.console;
    EXPECT_TRUE(run.console.ends_with("\nrefused.bin not read, failed\n")) << run.console;
}

} // namespace
} // namespace gridforge::test
