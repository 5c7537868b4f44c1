// Cases that scripts/run-cases is tried on. SAMPLE names what goes wrong: nothing, fail, crash, exit, wait or end.
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

bool asked(std::string_view what)
{
    const char* set = std::getenv("SAMPLE");
    return set != nullptr && set == what;
}

class Numbers : public testing::TestWithParam<int> {};
TEST_P(Numbers, Case) {}
INSTANTIATE_TEST_SUITE_P(Some, Numbers, testing::Range(0, 20));

TEST(Sample, Skipped)
{
    GTEST_SKIP() << "nothing to look at";
}

TEST(Sample, DISABLED_Case) {}

TEST(Sample, Talks)
{
    std::fputs("a line without an end", stdout);
}

TEST(Sample, Fails)
{
    if (asked("fail")) {
        EXPECT_EQ(std::string("\xC3\x28\x01"), "other bytes");
    }
}

TEST(Sample, Crashes)
{
    if (asked("crash")) {
        std::abort();
    }
}

TEST(Sample, Exits)
{
    if (asked("exit")) {
        std::exit(EXIT_SUCCESS);
    }
}

TEST(Sample, Waits)
{
    if (asked("wait")) {
        // The pipe shows by a byte that the case waits, and by its end that the program has been stopped.
        if (const char* const pipe = std::getenv("SAMPLE_PIPE"); pipe != nullptr) {
            EXPECT_EQ(write(open(pipe, O_WRONLY), ".", 1), 1);
        }
        pause();
    }
}

// As a search for leaks ends a program whose cases have all passed.
TEST(Sample, ComplainsAtTheEnd)
{
    if (asked("end")) {
        std::atexit([] {
            std::puts("something was left");
            std::fflush(stdout);
            _exit(23);
        });
    }
}

} // namespace
