#include "exports/boundary.h"
#include "host/messages.h"
#include "host/units.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/exported_calls.h"

#include <cstdint>
#include <cstring>
#include <functional>
#include <gridforge/gridforge.h>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <string_view>

namespace gridforge::test {
namespace {

std::string consoleOf(const std::function<void()>& code)
{
    const ScratchFolder folder;
    return runInChild(folder, code).console;
}

// The console of code that must end the run by itself.
std::string endOf(const std::function<void()>& code)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, code);
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 0);
    return run.console;
}

void write(char* target, std::string_view text)
{
    std::memcpy(target, text.data(), text.size());
}

// --- Messages --------------------------------------------------------------------------------------------------------

TEST(ExportedMessages, StartBlankAndWithoutAPlace)
{
    EXPECT_EQ(::DMESSAGES.x, -99999.0);
    EXPECT_EQ(::DMESSAGES.y, -99999.0);
    EXPECT_EQ(std::string_view(::DMESSAGES.line[3], sizeof ::DMESSAGES.line[3]), std::string(10000, ' '));
    EXPECT_EQ(std::string_view(::DMESSAGES.prefix, 4), "    ");
    EXPECT_EQ(std::string_view(::DMESSAGES.tag[2], sizeof ::DMESSAGES.tag[2]), std::string(10000, ' '));
    EXPECT_EQ(::DMESSAGES.errorCount, 0);
    EXPECT_EQ(::DMESSAGES.messageCsvUnit, 0);
}

TEST(ExportedMessages, AreTakenFromTheRecordAndCounted)
{
    EXPECT_EQ(consoleOf([] {
                  write(::DMESSAGES.line[0], "ERROR 0201 - one");
                  write(::DMESSAGES.line[1], "two");
                  write(::DMESSAGES.prefix, "P:");
                  write(::DMESSAGES.tag[0], "a");
                  write(::DMESSAGES.tag[2], "b");
                  ::DMESSAGE(1);
                  EXPECT_EQ(::DMESSAGES.id, 201);
                  EXPECT_EQ(::DMESSAGES.messageClass, 1);
                  EXPECT_EQ(::DMESSAGES.errorCount, 1);
                  EXPECT_EQ(::DMESSAGES.line[0][0], ' ');
                  ::DMESSAGES.messageInline = 1;
                  std::strcpy(::DMESSAGES.line[0], "WARNING 7"); // the closing zero byte is padding
                  write(::DMESSAGES.line[1], "three");
                  ::DMESSAGEXY(-1, 2, 3);
                  EXPECT_EQ(::DMESSAGES.xyWarningCount, 1);
                  EXPECT_EQ(::DMESSAGES.warningCount, 1);
                  EXPECT_EQ(::DMESSAGES.x, -99999.0);
                  EXPECT_EQ(::DMESSAGES.messageInline, 0);
                  ::DMESSAGERESETCOUNTERS();
                  EXPECT_EQ(::DMESSAGES.xyWarningCount + ::DMESSAGES.errorCount, 0);
              }),
              "\nP: ERROR 0201 - one\ntwo\na; b\nXY: WARNING 7  three\n");
}

TEST(ExportedMessages, ClearBlanksTheRecord)
{
    write(::DMESSAGES.line[0], "x");
    write(::DMESSAGES.tag[0], "x");
    ::DMESSAGES.y = 5;
    ::DMESSAGECLEAR();
    EXPECT_EQ(::DMESSAGES.line[0][0], ' ');
    EXPECT_EQ(::DMESSAGES.tag[0][0], ' ');
    EXPECT_EQ(::DMESSAGES.y, -99999.0);
}

TEST(ExportedMessages, OfTheToolShowInTheRecord)
{
    consoleOf([] {
        report("CHECK 0042 - from inside");
        EXPECT_EQ(::DMESSAGES.checkCount, 1);
        EXPECT_EQ(::DMESSAGES.id, 42);
        EXPECT_EQ(::DMESSAGES.messageClass, 3);
    });
}

TEST(ExportedDline, IsEightyUnderscores)
{
    EXPECT_EQ(consoleOf([] { ::DLINE(0); }), std::string(80, '_') + "\n");
}

TEST(ExportedMessages, ALogThatIsNotOpenEndsTheRun)
{
    EXPECT_EQ(endOf([] {
                  write(::DMESSAGES.line[0], "ERROR 0201 - one");
                  ::DMESSAGES.messageLogUnit = 9999;
                  ::DMESSAGE(-1);
              }),
              "ERROR 0201 - one\nShould not be here [file unit] - please contact SUPPORT_CONTACT.\n\nPress Enter to "
              "Close\n");
}

// --- Lines and fields ------------------------------------------------------------------------------------------------

TEST(ExportedReadline, FillsItsText)
{
    const ScratchFolder folder;
    folder.give("f", "\tRead == x ! note\n# only\nlonger than the text\n");
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "I ", "f");
        std::string text(10, '~');
        EXPECT_EQ(call(::READLINE, unit, text), 1);
        EXPECT_EQ(text, "Read == x ");
        EXPECT_EQ(call(::READLINE, unit, text), 0);
        EXPECT_EQ(text, "          ");
        EXPECT_EQ(call(::READLINE, unit, text), 1);
        EXPECT_EQ(text, "longer tha");
        call(::READLINE, unit, text);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_NE(
        run.console.find("\n\nERROR 0202 - End-of-file encountered reading text line from file unit number 1001\n"),
        std::string::npos)
        << run.console;
}

TEST(ExportedCheckline, FillsBothSides)
{
    std::string right(8, '~');
    std::string left(10, '~');
    EXPECT_EQ(call(::CHECKLINE, "Read GIS == file.mif   ", "*", "==", std::int32_t{0}, right, left), 1);
    EXPECT_EQ(left, "Read GIS  ");
    EXPECT_EQ(right, " file.mi");
    EXPECT_EQ(call(::CHECKLINE, "Read", "write", "==", std::int32_t{0}, right, left), 0);
    EXPECT_EQ(left, "Read      ");
    EXPECT_EQ(right, "        ");
    EXPECT_EQ(call(::CHECKLINE, "abcdef", "*", "==", std::int32_t{2}, right, left), 1);
    EXPECT_EQ(left, field("ab", 10));
    EXPECT_EQ(right, field("cdef", 8));
    EXPECT_EQ(call(::CHECKLINE, "  == x", "*", "==", std::int32_t{0}, right, left), 0);
}

TEST(ExportedCsv, ColumnsCountFromOne)
{
    EXPECT_EQ(call(::CSVCOLUMN, "Time, Flow ,Level", "flow  ", std::int32_t{9}), 2);
    EXPECT_EQ(call(::CSVCOLUMN, "Time,Flow", "Stage", std::int32_t{9}), 9);
    float value = 5;
    EXPECT_EQ(call(::CSVVALUE, "1,2.5  ", std::int32_t{2}, &value), 1);
    EXPECT_EQ(value, 2.5F);
    EXPECT_EQ(call(::CSVVALUE, "1,2", std::int32_t{3}, &value), 0);
    EXPECT_EQ(value, 0.0F);
}

TEST(ExportedExtract, TakesTheColumn)
{
    constexpr std::string_view kLine = "a, \"b,c\" ,7,2.5";
    EXPECT_EQ(textOf(6, ::EXTRACTSTRING, kLine, kLine, "key", std::int32_t{2}), "b,c   ");
    EXPECT_EQ(textOf(2, ::EXTRACTSTRING, kLine, kLine, "key", std::int32_t{2}), "b,");
    EXPECT_EQ(textOf(6, ::EXTRACTSTRINGREM, kLine, kLine, "key", std::int32_t{9}), "      ");
    EXPECT_EQ(call(::EXTRACTINTEGER, kLine, kLine, "key", std::int32_t{3}, std::int32_t{-1}), 7);
    EXPECT_EQ(call(::EXTRACTINTEGER, kLine, kLine, "key", std::int32_t{0}, std::int32_t{-1}), -1);
    EXPECT_EQ(call(::EXTRACTREAL, kLine, kLine, "key", std::int32_t{4}, -1.0F), 2.5F);
    EXPECT_EQ(call(::EXTRACTREAL, kLine, kLine, "key", std::int32_t{5}, -1.0F), -1.0F);
}

TEST(ExportedExtract, WhatIsNoNumberEndsTheRun)
{
    EXPECT_EQ(endOf([] { call(::EXTRACTINTEGER, "a,b", "a,b", "Rows", std::int32_t{2}, std::int32_t{0}); }),
              " Could not convert \"b\" in column   2 to an integer value for the Rows field.\n" + kExits);
    EXPECT_EQ(endOf([] { call(::EXTRACTREAL, "a,b", "a,b", "Size", std::int32_t{1}, 0.0F); }),
              " Could not convert \"a\" in column   1 to a real value for the Size field.\n" + kExits);
}

// The padding of the line counts: only in a line of the work width is a key looked for, with all its blanks.
TEST(ExportedExtract, AKeyInALineOfTheWorkWidthWantsItsSign)
{
    const std::string line = field("key", 100000);
    EXPECT_EQ(endOf([&] { textOf(6, ::EXTRACTSTRING, line, line, "KEY", std::int32_t{1}); }),
              "\nERROR 0203 - No \"=\" sign found after keyword \"KEY\".\n" + kExits);
}

TEST(ExportedRoutines, LackOfMemoryEndsTheRun)
{
    const auto fails = [] { exports::answer([]() -> std::int32_t { throw std::bad_alloc(); }); };
    EXPECT_EQ(endOf(fails), "ERROR - Could not allocate enough memory (RAM).\n" + kExits);
    const auto isTooLong = [] { exports::answer([] { std::string().resize(std::string().max_size() + 1); }); };
    EXPECT_EQ(endOf(isTooLong), "ERROR - Could not allocate enough memory (RAM).\n" + kExits);
}

} // namespace
} // namespace gridforge::test
