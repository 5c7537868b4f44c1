#include "host/console.h"

#include "host/ends.h"
#include "host/system.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <span>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

TEST(Console, AMessageEndsAnOpenLine)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        say("count ", 3, ' ', std::string("text"));
        sayOpen("Processing Row:");
        progress(100);
        progress(200);
        say("next");
        sayOpen("Trying...");
        sayOn("OK", '.');
        sayOpen("left open");
        sayOpen("another");
        endLine();
        endLine();
    });
    EXPECT_EQ(run.console, "count 3 text\n"
                           "Processing Row:     100     200\n"
                           "next\n"
                           "Trying...OK.\n"
                           "left open\n"
                           "another\n");
}

TEST(Console, AnAnswerIsOneLineCutAt1000AndNothingAtTheEndOfInput)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(
        folder,
        [] {
            say(readAnswer("first?")->size());
            pause("wait");
            say('<', readAnswer("second?").value(), '>');
            say(readAnswer("third?").has_value() ? "answered" : "not answered");
            pauseForEnter();
            pause("mine");
        },
        std::string(1500, 'x') + "\r\nenter\n  two  ");
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(run.console, "first?\n1000\nwait\nsecond?\n<  two>\nthird?\nnot answered\n" + kEnter + "\nmine\n");
}

// The end that a person types on a terminal: what is typed after it is input again.
TEST(Console, TheEndOfInputBehindAByteOrderMarkIsTypedOnce)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        static System terminal = nativeSystem();
        terminal.readConsole = [](std::span<char> target) {
            static std::vector<std::string> typed = {"later\n", "", "\xEF\xBB\xBF"}; // the last one first
            const std::string now = typed.back();
            typed.pop_back();
            std::ranges::copy(now, target.begin());
            return static_cast<std::int64_t>(now.size());
        };
        useSystem(terminal);
        say(readAnswer("first?").has_value() ? "answered" : "not answered");
        say('<', readAnswer("second?").value(), '>');
    });
    EXPECT_EQ(run.console, "first?\nnot answered\nsecond?\n<later>\n");
}

TEST(Console, AnAnswerIsWithoutItsCarriageReturn)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(
        folder,
        [] {
            const std::string name = readAnswer("name?").value();
            say('<', name, '>', readAnswer("again?").value().size());
        },
        "one\r\n\r\n");
    EXPECT_EQ(run.console, "name?\nagain?\n<one>0\n");
}

// --- Ends ------------------------------------------------------------------------------------------------------------

std::string consoleOf(const std::function<void()>& end)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, end, "\n\n\n");
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    return run.console;
}

TEST(Ends, EachSaysItsOwnAndGivesStatusZero)
{
    const std::string enter = kEnter + "\n";
    EXPECT_EQ(consoleOf([] { EXITS(); }), kExits);
    EXPECT_EQ(consoleOf([] { pauseExit(); }), enter);
    EXPECT_EQ(consoleOf([] { endNow(); }), "");
    EXPECT_EQ(consoleOf([] { endFinished(false); }), "Finished.\n" + enter);
    EXPECT_EQ(consoleOf([] { endFinished(true); }), "Finished.\n");
    EXPECT_EQ(consoleOf([] { fail("ERROR - ", 5); }), "ERROR - 5\n" + kExits);
    EXPECT_EQ(consoleOf([] { refuse("ERROR - ", 6); }), "ERROR - 6\n" + enter);
    EXPECT_EQ(consoleOf([] { shouldNotBeHere("place"); }),
              "Should not be here [place] - please contact SUPPORT_CONTACT.\n" + kExits);
    EXPECT_EQ(consoleOf([] { failMemory(); }), "ERROR - Could not allocate enough memory (RAM).\n" + kExits);
}

TEST(Ends, AnExceptionOutOfARunIsAMessage)
{
    const std::string noMemory = "ERROR - Could not allocate enough memory (RAM).\n" + kExits;
    EXPECT_EQ(consoleOf([] { runToItsEnd([] { throw std::bad_alloc(); }); }), noMemory);
    EXPECT_EQ(consoleOf([] { runToItsEnd([] { std::string().resize(std::string::npos); }); }), noMemory);
    EXPECT_EQ(consoleOf([] { runToItsEnd([] { static_cast<void>(std::string().at(1)); }); }),
              "Should not be here [main] - please contact SUPPORT_CONTACT.\n" + kExits);
    const ScratchFolder folder;
    EXPECT_EQ(runInChild(folder, [] { runToItsEnd([] { say("done"); }); }).console, "done\n");
}

} // namespace
} // namespace gridforge::test
