#include "host/system.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace gridforge::test {
namespace {

// Both ends of a pipe that does not block: the reader comes too early, and the writer when it is full.
TEST(NativeSystem, WaitsForAConsoleThatIsNotReady)
{
    std::array<int, 2> pipe{};
    ASSERT_EQ(pipe2(pipe.data(), O_NONBLOCK), 0);
    const std::array<int, 2> usual{dup(STDIN_FILENO), dup(STDOUT_FILENO)};
    std::fflush(stdout);
    dup2(pipe[0], STDIN_FILENO);
    dup2(pipe[1], STDOUT_FILENO);
    const std::string text(1'000'000, 'x');
    std::string got;
    {
        const std::jthread reader([&] {
            std::array<char, 4096> some{};
            for (std::int64_t count = 1; count > 0 && got.size() < text.size();) {
                count = nativeSystem().readConsole(some);
                got.append(some.data(), static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
            }
        });
        nativeSystem().wait(50'000'000);
        nativeSystem().writeConsole(text);
    }
    dup2(usual[0], STDIN_FILENO);
    dup2(usual[1], STDOUT_FILENO);
    for (const int descriptor : {pipe[0], pipe[1], usual[0], usual[1]}) {
        close(descriptor);
    }
    EXPECT_EQ(got.size(), text.size());
}

// What an earlier call left behind is no reason to read again.
TEST(NativeSystem, TakesTheEndOfTheConsoleForTheEnd)
{
    const ScratchFolder folder;
    const ChildRun child = runInChild(folder, [] {
        alarm(10); // seconds
        std::array<char, 4> some{};
        errno = EINTR;
        say(nativeSystem().readConsole(some) == 0 ? "the end" : "more");
    });
    EXPECT_EQ(child.console, "the end\n");
}

} // namespace
} // namespace gridforge::test
