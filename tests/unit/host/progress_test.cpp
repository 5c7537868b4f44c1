#include "host/progress.h"

#include "host/file_stream.h"
#include "host/memory/memory_system.h"
#include "host/system.h"
#include "host/threads.h"
#include "support/environment.h"

#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace gridforge {
namespace {

using test::Environment;

constexpr std::int64_t kSecond = 1'000'000'000;

// A system in memory whose clock stands still until it is set.
std::int64_t& clockNow()
{
    static std::int64_t now = 0;
    return now;
}

const System& clockedSystem()
{
    static const System system = [] {
        System result = memorySystem();
        result.now = [] { return clockNow(); };
        return result;
    }();
    return system;
}

class ProgressTest : public testing::Test {
public:
    ProgressTest(const ProgressTest&) = delete;
    ProgressTest& operator=(const ProgressTest&) = delete;

protected:
    ProgressTest()
    {
        clearMemorySystem();
        useSystem(clockedSystem());
        clockNow() = 7 * kSecond;
    }
    ~ProgressTest() override
    {
        endProgress();
        clearMemorySystem();
        useSystem(nativeSystem());
    }

    static void writeBytes(std::size_t count)
    {
        FileStream out(theSystem().open("out", OpenFor::replacing), Direction::out, "out");
        EXPECT_TRUE(out.write(std::string(count, 'x')) && out.close());
    }

    static void readAll()
    {
        FileStream in(theSystem().open("out", OpenFor::reading), Direction::in, "out");
        while (!in.ready().empty()) {
            in.take(in.ready().size());
        }
    }

    static std::string lines() { return memoryFile("lines").value_or("none"); }
};

TEST_F(ProgressTest, WithoutTheVariableNothingIsPutBetween)
{
    startProgress();
    EXPECT_EQ(&theSystem(), &clockedSystem());
    countObject();
    endProgress();
    EXPECT_EQ(lines(), "none");
}

TEST_F(ProgressTest, LinesComeAtTheFirstBytesAfterEachSecondAndAtTheEnd)
{
    const Environment environment({{"GRIDFORGE_PROGRESS", "lines"}});
    startProgress();
    EXPECT_EQ(lines(), "");
    writeBytes(100);
    std::string expected = "{\"seconds\": 0.0, \"read\": 0, \"written\": 100, \"objects\": 0}\n";
    EXPECT_EQ(lines(), expected);
    clockNow() += kSecond - 1;
    readAll();
    EXPECT_EQ(lines(), expected);
    clockNow() += 1;
    countObject();
    expected += "{\"seconds\": 1.0, \"read\": 100, \"written\": 100, \"objects\": 1}\n";
    EXPECT_EQ(lines(), expected);
    clockNow() += 5 * kSecond / 2;
    readAll();
    countObject();
    expected += "{\"seconds\": 3.5, \"read\": 200, \"written\": 100, \"objects\": 1}\n";
    EXPECT_EQ(lines(), expected);
    endProgress();
    expected += "{\"seconds\": 3.5, \"read\": 200, \"written\": 100, \"objects\": 2}\n";
    EXPECT_EQ(lines(), expected);
    EXPECT_EQ(&theSystem(), &clockedSystem());
}

TEST_F(ProgressTest, AClockThatIsSetBackStopsNoLines)
{
    const Environment environment({{"GRIDFORGE_PROGRESS", "lines"}});
    startProgress();
    countObject();
    clockNow() = kSecond;
    countObject();
    EXPECT_EQ(lines(), "{\"seconds\": 0.0, \"read\": 0, \"written\": 0, \"objects\": 1}\n"
                       "{\"seconds\": 0.0, \"read\": 0, \"written\": 0, \"objects\": 2}\n");
}

TEST_F(ProgressTest, BytesOfSeveralThreadsAreAllCounted)
{
    writeBytes(1000);
    const Environment environment(
        {{"GRIDFORGE_PROGRESS", "lines"}, {"GRIDFORGE_THREADS", "4"}, {"GRIDFORGE_PIECE", "1"}});
    System one = clockedSystem(); // files in memory are for one thread
    one.readAt = [](SystemFile, std::int64_t, std::span<char> target) {
        return static_cast<std::int64_t>(target.size());
    };
    useSystem(one);
    startProgress();
    parallelFor(1000, [](std::size_t, std::size_t) {
        std::array<char, 10> bytes{};
        theSystem().readAt(SystemFile::none, 0, bytes);
        countObject();
    });
    endProgress();
    EXPECT_TRUE(lines().ends_with("\"read\": 10000, \"written\": 0, \"objects\": 1000}\n")) << lines();
}

TEST_F(ProgressTest, WhatCannotBeWrittenEndsTheLines)
{
    const Environment environment({{"GRIDFORGE_PROGRESS", "lines"}});
    static int tries = 0;
    tries = 0;
    System full = clockedSystem();
    full.write = [](SystemFile, std::span<const char>) {
        ++tries;
        return std::int64_t{-1};
    };
    useSystem(full);
    startProgress();
    countObject();
    clockNow() += kSecond;
    countObject();
    endProgress();
    EXPECT_EQ(tries, 1);
}

TEST_F(ProgressTest, PlacesThatCannotBeUsedCountAsNone)
{
    System closed = clockedSystem();
    closed.inherited = [](std::int64_t) { return SystemFile::none; };
    useSystem(closed);
    for (const char* const place :
         {" ", "none/lines", "fd:", "fd:x", "fd:1", "fd:2", "fd:-4", "fd:77", "1", "2", "77"}) {
        const Environment environment({{"GRIDFORGE_PROGRESS", place}});
        startProgress();
        EXPECT_EQ(&theSystem(), &closed) << place;
    }
}

TEST_F(ProgressTest, AnOpenFileIsNamedByItsNumber)
{
    static std::string told;
    System numbered = clockedSystem();
    numbered.inherited = [](std::int64_t number) { return number == 77 ? SystemFile{77} : SystemFile::none; };
    numbered.write = [](SystemFile file, std::span<const char> bytes) {
        EXPECT_EQ(file, SystemFile{77});
        told.append(bytes.begin(), bytes.end());
        return static_cast<std::int64_t>(bytes.size());
    };
    numbered.close = [](SystemFile) { return true; };
    const std::string line = "{\"seconds\": 0.0, \"read\": 0, \"written\": 0, \"objects\": 1}\n";
    for (const char* const place : {"fd:77", "77"}) {
        told.clear();
        useSystem(numbered);
        const Environment environment({{"GRIDFORGE_PROGRESS", place}});
        startProgress();
        countObject();
        endProgress();
        EXPECT_EQ(told, line + line) << place;
    }
}

} // namespace
} // namespace gridforge
