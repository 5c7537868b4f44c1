#include "host/console.h"

#include "host/ends.h"
#include "support/child_run.h"

#include <gtest/gtest.h>

namespace gridforge {
namespace {

using test::ChildRun;
using test::runInChild;
using test::ScratchFolder;

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

TEST(Console, AQuestionTakesOneLineCutAt1000)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(
        folder,
        [] {
            say(ask("first?").size());
            say('<', ask("second?"), '>');
            pause("wait");
            say('<', ask("last?"), '>');
        },
        std::string(1500, 'x') + "\r\n  two  \nenter\nthree");
    EXPECT_EQ(run.console, "first?\n1000\nsecond?\n<  two>\nwait\nlast?\n<three>\n");
}

TEST(Console, AByteOrderMarkBeforeTheFirstAnswerIsNoPartOfIt)
{
    const ScratchFolder folder;
    const auto twoAnswers = [] {
        say('<', ask("first?"), '>');
        say('<', ask("second?"), '>');
    };
    EXPECT_EQ(runInChild(folder, twoAnswers, "\xEF\xBB\xBFY\n\xEF\xBB\xBFN\n").console,
              "first?\n<Y>\nsecond?\n<\xEF\xBB\xBFN>\n");
    EXPECT_EQ(runInChild(folder, twoAnswers, "\n\xEF\n").console, "first?\n<>\nsecond?\n<\xEF>\n");
    EXPECT_EQ(runInChild(folder, twoAnswers, "\xEF\n\xBB\n").console, "first?\n<\xEF>\nsecond?\n<\xBB>\n");
    // Nothing but the mark is no answer.
    EXPECT_EQ(runInChild(folder, twoAnswers, "\xEF\xBB\xBF").console, "first?\n\nPress Enter to Close\n");
}

TEST(Console, APauseAtTheEndOfInputGoesOnAQuestionEndsTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        pauseForEnter();
        pause("mine");
        ask("who?");
        say("not reached");
    });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.console, "Enter command<CR> or <CR> to continue.\nmine\nwho?\n\nPress Enter to Close\n");
}

TEST(Console, ARetryAtTheEndOfInputEndsTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { pauseForRetry("again?"); });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console, "again?\n\nPress Enter to Close\n");
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
    const std::string enter = "Enter command<CR> or <CR> to continue.\n";
    EXPECT_EQ(consoleOf([] { EXITS(); }), "\nPress Enter to Close\n");
    EXPECT_EQ(consoleOf([] { pauseExit(); }), enter);
    EXPECT_EQ(consoleOf([] { endNow(); }), "");
    EXPECT_EQ(consoleOf([] { endFinished(false); }), "Finished.\n" + enter);
    EXPECT_EQ(consoleOf([] { endFinished(true); }), "Finished.\n");
    EXPECT_EQ(consoleOf([] { fail("ERROR - ", 5); }), "ERROR - 5\n\nPress Enter to Close\n");
    EXPECT_EQ(consoleOf([] { refuse("ERROR - ", 6); }), "ERROR - 6\n" + enter);
    EXPECT_EQ(consoleOf([] { shouldNotBeHere("place"); }),
              "Should not be here [place] - please contact SUPPORT_CONTACT.\n\nPress Enter to Close\n");
    EXPECT_EQ(consoleOf([] { failMemory(); }),
              "ERROR - Could not allocate enough memory (RAM).\n\nPress Enter to Close\n");
}

} // namespace
} // namespace gridforge
