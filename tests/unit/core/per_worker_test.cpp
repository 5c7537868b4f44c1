#include "core/per_worker.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(PerWorker, EachHasItsOwnCacheLines)
{
    PerWorker<char> values(3);
    ASSERT_EQ(values.size(), 3U);
    for (std::size_t worker = 0; worker < values.size(); ++worker) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&values[worker]) % kFetchedTogether, 0U) << worker;
        EXPECT_EQ(values[worker], '\0');
    }
    EXPECT_NE(&values[0], &values[1]);
}

TEST(PerWorker, TakesValuesThatCannotBeMadeOfNothing)
{
    struct Named {
        explicit Named(std::string given) : name(std::move(given)) {}
        std::string name;
    };
    PerWorker<Named> values;
    values.add("first");
    values.add("second");
    ASSERT_EQ(values.size(), 2U);
    EXPECT_EQ(values[0].name, "first");
    EXPECT_EQ(values[1].name, "second");
}

} // namespace
} // namespace gridforge
