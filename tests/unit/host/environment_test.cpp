#include "host/environment.h"

#include "support/environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

using test::Environment;

TEST(EnvironmentNumber, IsAWholeNumberAboveNothing)
{
    EXPECT_EQ(environmentNumber("GRIDFORGE_THREADS"), std::nullopt);
    for (const char* const value : {"", " ", "0", "-1", "1.5", "two", "2 ", "99999999999999999999"}) {
        const Environment environment({{"GRIDFORGE_THREADS", value}});
        EXPECT_EQ(environmentNumber("GRIDFORGE_THREADS"), std::nullopt) << '"' << value << '"';
    }
    const Environment environment({{"GRIDFORGE_THREADS", "12"}});
    EXPECT_EQ(environmentNumber("GRIDFORGE_THREADS"), 12U);
}

TEST(EnvironmentText, IsNotBlank)
{
    EXPECT_EQ(environmentText("GRIDFORGE_SCRATCH"), std::nullopt);
    const Environment blank({{"GRIDFORGE_SCRATCH", "  "}});
    EXPECT_EQ(environmentText("GRIDFORGE_SCRATCH"), std::nullopt);
    const Environment given({{"GRIDFORGE_SCRATCH", "/a b"}});
    EXPECT_EQ(environmentText("GRIDFORGE_SCRATCH"), "/a b");
}

TEST(ScratchFolders, AreTheNamedOneAloneOrElseTheGivenAndTheTemporaryOne)
{
    System system;
    system.temporaryFolder = [] { return std::string("/temporary"); };
    EXPECT_THAT(scratchFolders(system, "beside"), testing::ElementsAre("beside", "/temporary"));
    const Environment environment({{"GRIDFORGE_SCRATCH", "/named"}});
    EXPECT_THAT(scratchFolders(system, "beside"), testing::ElementsAre("/named"));
}

} // namespace
} // namespace gridforge
