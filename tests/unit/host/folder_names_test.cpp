#include "host/folder_names.h"

#include "support/scratch_folder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace gridforge {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using test::ScratchFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(FolderNames, FindsNamesInAnyCase)
{
    const ScratchFolder folder;
    for (const char* name : {"A.asc", "a.ASC", "ab.asc", "\xC3\x84.asc"}) {
        folder.give(name, "");
    }
    FolderNames names;
    EXPECT_THAT(names.inAnyCase(folder.path(), "a.Asc"), UnorderedElementsAre("A.asc", "a.ASC"));
    EXPECT_THAT(names.inAnyCase(folder.path(), "AB.ASC"), ElementsAre("ab.asc"));
    EXPECT_THAT(names.inAnyCase(folder.path(), "b.asc"), IsEmpty());
    EXPECT_THAT(names.inAnyCase(folder.path(), "\xC3\xA4.asc"), IsEmpty()); // the small letter of another alphabet
    EXPECT_THAT(names.inAnyCase(folder.path() / "none", "a.asc"), IsEmpty());
}

// Time stamps step by some milliseconds, so a folder is left alone for longer than that before and after each listing.
class KeptListing : public testing::TestWithParam<std::chrono::milliseconds> {};

TEST_P(KeptListing, ShowsEachChange)
{
    const ScratchFolder folder;
    const ScratchFolder other;
    folder.give("a", "");
    FolderNames names(nanoseconds(20ms).count());
    const auto find = [&](const ScratchFolder& in) {
        std::this_thread::sleep_for(GetParam());
        return names.inAnyCase(in.path(), "A");
    };
    EXPECT_THAT(find(folder), ElementsAre("a"));
    EXPECT_THAT(find(folder), ElementsAre("a"));
    EXPECT_THAT(find(other), IsEmpty());
    EXPECT_THAT(find(folder), ElementsAre("a"));
    std::filesystem::rename(folder.path() / "a", folder.path() / "b");
    EXPECT_THAT(find(folder), IsEmpty());
    folder.give("A", "");
    EXPECT_THAT(find(folder), ElementsAre("A"));
}

INSTANTIATE_TEST_SUITE_P(AtOnceAndAfterAWhile, KeptListing, testing::Values(0ms, 60ms));

// The time of a large folder's listing, at least a hundred times a question of its state: 200 questions about a kept
// listing cost less than 200 listings by far.
TEST(FolderNames, KeepsTheListingOfAFolderThatHasSettled)
{
    const ScratchFolder folder;
    for (int i = 0; i < 1000; ++i) {
        folder.give("file" + std::to_string(i), "");
    }
    std::this_thread::sleep_for(60ms);
    const auto timeOf = [&](nanoseconds settled) {
        FolderNames names(settled.count());
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 200; ++i) {
            EXPECT_THAT(names.inAnyCase(folder.path(), "none"), IsEmpty());
        }
        return std::chrono::steady_clock::now() - start;
    };
    EXPECT_LT(timeOf(20ms) * 5, timeOf(1h)); // a listing that is an hour too young is never kept
}

} // namespace
} // namespace gridforge
