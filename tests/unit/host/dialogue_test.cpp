#include "host/dialogue.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

TEST(Dialogue, AQuestionTakesOneLineCutAt1000)
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

TEST(Dialogue, AByteOrderMarkBeforeTheFirstAnswerIsNoPartOfIt)
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
    EXPECT_EQ(runInChild(folder, twoAnswers, "\xEF\xBB\xBF").console, "first?\n" + kExits);
}

TEST(Dialogue, APauseAtTheEndOfInputGoesOnAQuestionEndsTheRun)
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
    EXPECT_EQ(run.console, kEnter + "\nmine\nwho?\n" + kExits);
}

TEST(Dialogue, ARetryAtTheEndOfInputEndsTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { pauseForRetry("again?"); });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console, "again?\n" + kExits);
}

} // namespace
} // namespace gridforge::test
