#include "host/folder_names.h"

#include "host/system.h"
#include "support/scratch_folder.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

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
    EXPECT_THAT(names.inAnyCase(folder.path().string(), "a.Asc"), UnorderedElementsAre("A.asc", "a.ASC"));
    EXPECT_THAT(names.inAnyCase(folder.path().string(), "AB.ASC"), ElementsAre("ab.asc"));
    EXPECT_THAT(names.inAnyCase(folder.path().string(), "b.asc"), IsEmpty());
    EXPECT_THAT(names.inAnyCase(folder.path().string(), "\xC3\xA4.asc"),
                IsEmpty()); // the small letter of another alphabet
    EXPECT_THAT(names.inAnyCase((folder.path() / "none").string(), "a.asc"), IsEmpty());
}

// The system with a clock that may be ahead by an hour, for which every folder has long been left alone, and a count of the
// listings.
class AheadByAnHour {
public:
    explicit AheadByAnHour(bool ahead)
    {
        static System system;
        system = nativeSystem();
        system.list = [](const std::string& folder, std::vector<std::string>& names) {
            ++listings;
            return nativeSystem().list(folder, names);
        };
        if (ahead) {
            system.now = [] { return nativeSystem().now() + nanoseconds(1h).count(); };
        }
        listings = 0;
        useSystem(system);
    }
    ~AheadByAnHour() { useSystem(nativeSystem()); }
    AheadByAnHour(const AheadByAnHour&) = delete;
    AheadByAnHour& operator=(const AheadByAnHour&) = delete;

    static inline int listings = 0;
};

// Returns once a change gets another time stamp than those before: the stamps of files step by some milliseconds.
void waitForNextStamp()
{
    const ScratchFolder folder;
    const auto stamp = [&] {
        folder.give("file", "");
        return factsOf((folder.path() / "file").string())->lastChange;
    };
    const std::int64_t first = stamp();
    while (stamp() == first) {
    }
}

class KeptListing : public testing::TestWithParam<bool> {};

TEST_P(KeptListing, ShowsEachChange)
{
    const AheadByAnHour system(GetParam());
    const ScratchFolder folder;
    const ScratchFolder other;
    folder.give("a", "");
    FolderNames names(nanoseconds(20ms).count());
    const auto find = [&](const ScratchFolder& in) {
        std::vector<std::string> found = names.inAnyCase(in.path().string(), "A");
        if (GetParam()) {
            waitForNextStamp();
        }
        return found;
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

INSTANTIATE_TEST_SUITE_P(AtOnceAndAfterAWhile, KeptListing, testing::Bool());

TEST(FolderNames, KeepsTheListingOfAFolderThatHasSettled)
{
    const ScratchFolder folder;
    folder.give("file", "");
    const auto listingsOf = [&](bool ahead) {
        const AheadByAnHour system(ahead);
        FolderNames names(nanoseconds(30min).count());
        for (int i = 0; i < 5; ++i) {
            EXPECT_THAT(names.inAnyCase(folder.path().string(), "none"), IsEmpty());
        }
        return AheadByAnHour::listings;
    };
    EXPECT_EQ(listingsOf(true), 1);
    EXPECT_EQ(listingsOf(false), 5); // a listing of a folder that has just changed is never kept
}

} // namespace
} // namespace gridforge
