#include "network/split.h"

#include "host/console.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

// A branch along the x axis; its chainages are its x.
network::NbcBranch branchAlong(const std::vector<double>& x, const std::vector<network::BranchSection>& sections,
                               float formLoss = 0)
{
    network::NbcBranch branch;
    branch.name = "b";
    branch.type = "R";
    branch.flag = 'T';
    branch.roughness = 0.05F;
    branch.formLoss = formLoss;
    branch.layer = 3;
    branch.x = x;
    branch.y.assign(x.size(), 0);
    branch.chainage.assign(x.begin(), x.end());
    branch.sections = sections;
    return branch;
}

network::BranchSection snapAt(const network::NbcBranch& branch, std::int32_t vertex)
{
    const double x = branch.x[static_cast<std::size_t>(vertex - 1)];
    return {true, static_cast<float>(x), x, 0, vertex};
}

network::BranchSection crossAt(double x, std::int32_t vertex)
{
    return {false, static_cast<float>(x), x, 0, vertex};
}

network::NbcLines splitQuietly(network::NbcBranches& branches, const network::NbcConnectors& connectors = {})
{
    network::NbcLines lines;
    testing::internal::CaptureStdout();
    network::nbc_split_branches(branches, lines, connectors);
    flushConsole();
    testing::internal::GetCapturedStdout();
    return lines;
}

network::NbcLines linesOf(network::NbcBranch branch)
{
    network::NbcBranches branches;
    branches.all.push_back(std::move(branch));
    return splitQuietly(branches);
}

std::vector<std::string> idsOf(const network::NbcLines& lines)
{
    std::vector<std::string> ids;
    for (const network::NbcLine& line : lines) {
        ids.push_back(line.id);
    }
    return ids;
}

TEST(SplitBranches, ABranchWithoutSectionsIsOneLine)
{
    const network::NbcLines lines = linesOf(branchAlong({0, 10, 20}, {}, -2));
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].id, "b");
    EXPECT_EQ(lines[0].type, "R");
    EXPECT_EQ(lines[0].ucs, 'T');
    EXPECT_EQ(lines[0].n, 0.05F);
    EXPECT_EQ(lines[0].layer, 3);
    EXPECT_EQ(lines[0].ignore, 'F');
    EXPECT_EQ(lines[0].upstreamInvert, -99999.0F);
    EXPECT_EQ(lines[0].downstreamInvert, -99999.0F);
    EXPECT_EQ(lines[0].formLoss, 2.0F);
    EXPECT_THAT(lines[0].x, ElementsAre(0, 10, 20));
}

TEST(SplitBranches, AWholeBranchHasItsNameCutToTheId)
{
    network::NbcBranch branch = branchAlong({0, 10, 20}, {});
    branch.name = "Upper tributary";
    EXPECT_THAT(idsOf(linesOf(branch)), ElementsAre("Upper tribut"));
    branch.name = "Twelve chars";
    EXPECT_THAT(idsOf(linesOf(branch)), ElementsAre("Twelve chars"));
}

TEST(SplitBranches, OneSectionSplitsOnlyWhereItsVertexNumberPicksIt)
{
    // At vertex 2, whose place in a list of one is empty: whole.
    const network::NbcBranch bare = branchAlong({0, 10, 20}, {});
    EXPECT_EQ(linesOf(branchAlong({0, 10, 20}, {snapAt(bare, 2)})).size(), 1U);
    // The numbers of two sections, 2 and 3, pick the second place, at the end, and the empty third: whole.
    EXPECT_EQ(linesOf(branchAlong({0, 10, 20}, {snapAt(bare, 2), snapAt(bare, 3)})).size(), 1U);
    // In the other order the second place is at 10: split.
    EXPECT_THAT(idsOf(linesOf(branchAlong({0, 10, 20}, {snapAt(bare, 3), snapAt(bare, 2)}))),
                ElementsAre("b_0", "b_00020"));
}

TEST(SplitBranches, AVertexNumberOf0IsPassedOver)
{
    network::BranchSection odd = crossAt(5, 0);
    EXPECT_EQ(linesOf(branchAlong({0, 10, 20}, {odd, odd})).size(), 1U);
}

TEST(SplitBranches, ManyCrossingsOfOneSegmentFollowEachOther)
{
    const network::NbcLines lines =
        linesOf(branchAlong({0, 10, 20, 30, 40}, {crossAt(18, 3), crossAt(12, 3), crossAt(15, 3)}, 0.4F));
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_THAT(lines[0].x, ElementsAre(0, 10, 12));
    EXPECT_THAT(lines[1].x, ElementsAre(12, 15));
    EXPECT_THAT(lines[2].x, ElementsAre(15, 18));
    EXPECT_THAT(lines[3].x, ElementsAre(18, 20, 30, 40));
    EXPECT_THAT(idsOf(lines), ElementsAre("b_0", "b_00012", "b_00015", "b_00018"));
    EXPECT_EQ(lines[3].formLoss, 0.4F / 4.0F);
}

TEST(SplitBranches, FormLossesCloseTo0)
{
    EXPECT_EQ(linesOf(branchAlong({0, 10}, {}, 0.00005F))[0].formLoss, 0.00005F);
    // Just at the limit it is neither above nor below.
    EXPECT_EQ(linesOf(branchAlong({0, 10}, {}, 0.0001F))[0].formLoss, 0.0F);
    EXPECT_EQ(linesOf(branchAlong({0, 10}, {}, 0.00011F))[0].formLoss, 0.00011F);
}

TEST(SplitBranches, EachBranchSharesItsFormLossOutOverItsOwnLines)
{
    const std::vector<double> x = {0, 10, 20, 30, 40};
    const std::vector<network::BranchSection> three = {crossAt(12, 3), crossAt(15, 3), crossAt(18, 3)};
    network::NbcBranches branches;
    branches.all = {branchAlong(x, three, 0.4F), branchAlong(x, three, 0.8F)};
    const network::NbcLines lines = splitQuietly(branches);
    ASSERT_EQ(lines.size(), 8U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(lines[i].formLoss, 0.1F);
        EXPECT_EQ(lines[4 + i].formLoss, 0.2F);
    }
}

TEST(SplitBranches, WritesConnectorsBehindAllBranches)
{
    network::NbcBranches branches;
    branches.all = {branchAlong({0, 10}, {})};
    const network::NbcLines lines = splitQuietly(branches, {{7, {1, 2, 3}, {4, 5, 6}}});
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1].type, "X");
    EXPECT_EQ(lines[1].id, "");
    EXPECT_EQ(lines[1].ucs, 'F');
    EXPECT_EQ(lines[1].n, 0.0F);
    EXPECT_EQ(lines[1].layer, 7);
    EXPECT_THAT(lines[1].x, ElementsAre(1, 2, 3));
    EXPECT_THAT(lines[1].y, ElementsAre(4, 5, 6));
}

TEST(SplitBranches, OrderThatVerticesDoNotFollowStaysWithinBounds)
{
    // Vertices so close that their chainages are equal: a snap to a later vertex may come before a crossing ahead of it.
    network::NbcBranch branch = branchAlong({0, 10, 10, 10, 20, 30}, {});
    branch.sections = {snapAt(branch, 4), crossAt(10, 2), crossAt(10, 2), snapAt(branch, 3), crossAt(10, 3)};
    const network::NbcLines lines = linesOf(branch);
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_THAT(lines[0].x, ElementsAre(0, 10, 10, 10));
    EXPECT_TRUE(lines[1].x.empty()); // from vertex 4 to 2
    EXPECT_THAT(lines[2].x, ElementsAre(10, 10));
}

TEST(SplitBranches, LargeChainagesFillTheId)
{
    const network::NbcBranch bare = branchAlong({0, 99000, 99998}, {});
    EXPECT_THAT(idsOf(linesOf(branchAlong({0, 99000, 99998}, {crossAt(98765.9, 2), snapAt(bare, 2), crossAt(5, 2)}))),
                ElementsAre("b_0", "b_00005", "b_98765", "b_99000"));
    // The highest chainage that a section may have.
    EXPECT_THAT(idsOf(linesOf(branchAlong({0, 99000, 99998}, {snapAt(bare, 3), crossAt(5, 2), crossAt(6, 2)}))),
                ElementsAre("b_0", "b_00005", "b_99998"));
}

} // namespace
} // namespace gridforge::test
