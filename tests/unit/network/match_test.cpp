#include "network/match.h"

#include "host/console.h"
#include "network/extent_tree.h"
#include "network/records.h"
#include "plane/geometry.h"
#include "support/child_run.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace gridforge::test {
namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kBeyond = std::numeric_limits<double>::infinity();

using Vertices = std::vector<std::pair<double, double>>;

network::NbcBranch branchOf(const std::string& name, const Vertices& vertices)
{
    network::NbcBranch branch;
    branch.name = name;
    for (const auto& [x, y] : vertices) {
        const bool first = branch.x.empty();
        branch.chainage.push_back(first ? 0.0F
                                        : branch.chainage.back() + DISTANCE_8(branch.x.back(), branch.y.back(), x, y));
        branch.x.push_back(x);
        branch.y.push_back(y);
    }
    branch.extent = network::extentOf(branch.x, branch.y);
    return branch;
}

network::NbcSection sectionOf(const Vertices& vertices, bool split = true)
{
    network::NbcSection section;
    for (const auto& [x, y] : vertices) {
        section.x.push_back(x);
        section.y.push_back(y);
    }
    section.extent = network::extentOf(section.x, section.y);
    section.split = split;
    return section;
}

// Without the console lines.
void matchQuietly(network::NbcBranches& branches, network::NbcSections& sections)
{
    flushConsole();
    testing::internal::CaptureStdout();
    network::nbc_match_sections(branches, sections);
    flushConsole();
    testing::internal::GetCapturedStdout();
}

// --- The plain form: every branch, every vertex, every segment -------------------------------------------------------

bool plainSnap(network::NbcBranches& branches, std::size_t b, network::NbcSection& section)
{
    network::NbcBranch& branch = branches.all[b];
    bool here = false;
    for (std::size_t v = 0; v < branch.x.size(); ++v) {
        for (std::size_t w = 1; w < section.x.size(); ++w) {
            if (section.snapped) {
                return here;
            }
            if (std::abs(branch.x[v] - section.x[w]) <= static_cast<double>(0.001F) &&
                std::abs(branch.y[v] - section.y[w]) <= static_cast<double>(0.001F)) {
                here = true;
                section.snapped = true;
                section.branchName = branch.name;
                section.chainage = branch.chainage[v];
                section.meetingX = branch.x[v];
                section.meetingY = branch.y[v];
                section.branch = static_cast<std::int32_t>(b) + 1;
                section.branchVertex = static_cast<std::int32_t>(v) + 1;
                section.sectionVertex = static_cast<std::int32_t>(w) + 1;
                if (section.split) {
                    branch.sections.push_back(
                        {true, branch.chainage[v], branch.x[v], branch.y[v], static_cast<std::int32_t>(v) + 1});
                    ++branches.branchesAndSections;
                }
            }
        }
    }
    return here;
}

void plainCross(network::NbcBranches& branches, std::size_t b, network::NbcSection& section)
{
    network::NbcBranch& branch = branches.all[b];
    for (std::size_t v = 1; v < branch.x.size(); ++v) {
        for (std::size_t w = 1; w < section.x.size(); ++w) {
            if (section.intersected) {
                return;
            }
            if (INTERSECT_LINE_V2_8(branch.x[v - 1], branch.y[v - 1], branch.x[v], branch.y[v], section.x[w - 1],
                                    section.y[w - 1], section.x[w], section.y[w]) != 3) {
                break;
            }
            double x = 0;
            double y = 0;
            if (!INTERSECTION_POINT_8(branch.x[v - 1], branch.y[v - 1], branch.x[v], branch.y[v], section.x[w - 1],
                                      section.y[w - 1], section.x[w], section.y[w], x, y)) {
                continue;
            }
            section.intersected = true;
            section.branchName = branch.name;
            section.chainage = branch.chainage[v - 1] + DISTANCE_8(branch.x[v - 1], branch.y[v - 1], x, y);
            section.meetingX = x;
            section.meetingY = y;
            section.branch = static_cast<std::int32_t>(b) + 1;
            section.branchVertex = static_cast<std::int32_t>(v) + 1;
            section.sectionVertex = static_cast<std::int32_t>(w) + 1;
            if (section.split) {
                branch.sections.push_back({false, section.chainage, x, y, static_cast<std::int32_t>(v) + 1});
                ++branches.branchesAndSections;
            }
        }
    }
}

// The extents meet or touch.
bool plainOverlap(const Box& a, const Box& b)
{
    return !(a.xmin > b.xmax || a.ymin > b.ymax || a.xmax < b.xmin || a.ymax < b.ymin);
}

void plainMatch(network::NbcBranches& branches, network::NbcSections& sections)
{
    branches.branchesAndSections = static_cast<std::int32_t>(branches.all.size());
    for (auto& section : sections.all) {
        for (std::size_t b = 0; b < branches.all.size(); ++b) {
            if (!plainOverlap(branches.all[b].extent, section.extent)) {
                continue;
            }
            if (!plainSnap(branches, b, section)) {
                plainCross(branches, b, section);
            }
        }
    }
}

using Told = std::tuple<bool, bool, std::string, float, double, double, std::int32_t, std::int32_t, std::int32_t>;

std::vector<Told> toldOf(const network::NbcSections& sections)
{
    std::vector<Told> all;
    for (const network::NbcSection& s : sections.all) {
        all.emplace_back(s.snapped, s.intersected, s.branchName, s.chainage, s.meetingX, s.meetingY, s.branch,
                         s.branchVertex, s.sectionVertex);
    }
    return all;
}

using Listed = std::tuple<bool, float, double, double, std::int32_t>;

std::vector<std::vector<Listed>> listedOn(const network::NbcBranches& branches)
{
    std::vector<std::vector<Listed>> all;
    for (const network::NbcBranch& branch : branches.all) {
        all.emplace_back();
        for (const network::BranchSection& s : branch.sections) {
            all.back().emplace_back(s.snapped, s.chainage, s.x, s.y, s.vertex);
        }
    }
    return all;
}

int countMeetings(const network::NbcSections& sections)
{
    int count = 0;
    for (const network::NbcSection& section : sections.all) {
        count += (section.snapped ? 1 : 0) + (section.intersected ? 1 : 0);
    }
    return count;
}

// Both forms on copies; gives the number of meetings.
int expectSame(const network::NbcBranches& branches, const network::NbcSections& sections)
{
    network::NbcBranches plainBranches = branches;
    network::NbcSections plainSections = sections;
    plainMatch(plainBranches, plainSections);
    network::NbcBranches fastBranches = branches;
    network::NbcSections fastSections = sections;
    matchQuietly(fastBranches, fastSections);
    EXPECT_EQ(toldOf(fastSections), toldOf(plainSections));
    EXPECT_EQ(listedOn(fastBranches), listedOn(plainBranches));
    EXPECT_EQ(fastBranches.branchesAndSections, plainBranches.branchesAndSections);
    return countMeetings(plainSections);
}

// Coordinates on a coarse lattice, so that vertices meet and segments run along each other, some a hair off.
class Drawing {
public:
    explicit Drawing(std::uint32_t seed, double scale = 1, double origin = 0)
        : random_(seed), scale_(scale), origin_(origin)
    {
    }

    double place(int range)
    {
        constexpr std::array<double, 6> kOff = {0, 0, 0, 0.0009, 0.0011, 1e-9};
        const double sign = random_() % 2 == 0 ? 1 : -1;
        return origin_ + scale_ * static_cast<double>(random_() % static_cast<unsigned>(range)) +
               sign * kOff[random_() % kOff.size()];
    }

    Vertices walk(std::size_t count, int range, int step)
    {
        Vertices vertices;
        double x = place(range);
        double y = place(range);
        const int half = step / 2;
        for (std::size_t i = 0; i < count; ++i) {
            vertices.emplace_back(x, y);
            x += place(step) - origin_ - scale_ * half;
            y += place(step) - origin_ - scale_ * half;
        }
        return vertices;
    }

    std::uint32_t number(std::uint32_t below) { return static_cast<std::uint32_t>(random_() % below); }

private:
    std::mt19937 random_;
    double scale_;
    double origin_;
};

TEST(MatchSections, AgreesWithThePlainFormOnRandomNetworks)
{
    int meetings = 0;
    for (std::uint32_t seed = 0; seed < 150; ++seed) {
        Drawing drawing(seed, seed % 3 == 0 ? 0.1 : 1, seed % 4 == 0 ? 300000.7 : 0);
        const int range = 5 + static_cast<int>(drawing.number(60));
        network::NbcBranches branches;
        const std::size_t branchCount = drawing.number(40);
        for (std::size_t b = 0; b < branchCount; ++b) {
            branches.all.push_back(branchOf("b" + std::to_string(b), drawing.walk(1 + drawing.number(60), range, 5)));
        }
        network::NbcSections sections;
        for (std::size_t s = 0; s < 40; ++s) {
            sections.all.push_back(
                sectionOf(drawing.walk(1 + drawing.number(seed % 5 == 0 ? 100 : 4), range, 7), s % 5 != 0));
        }
        meetings += expectSame(branches, sections);
    }
    EXPECT_GT(meetings, 1000);
}

TEST(MatchSections, AgreesWithThePlainFormWhereLinesRunAlongEachOther)
{
    // Vertices on one slanted line, rounded: which pairs the products call crossing is a matter of their last bits.
    int meetings = 0;
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        const auto along = [&](std::size_t count) {
            Vertices vertices;
            for (std::size_t i = 0; i < count; ++i) {
                const double t = static_cast<double>(random() % 1000) / 7;
                vertices.emplace_back(0.1 + t * 0.3, 0.7 + t * 0.9);
            }
            return vertices;
        };
        network::NbcBranches branches;
        network::NbcSections sections;
        for (int i = 0; i < 5; ++i) {
            branches.all.push_back(branchOf("b", along(100)));
        }
        for (int i = 0; i < 30; ++i) {
            sections.all.push_back(sectionOf(along(2 + random() % 4)));
        }
        meetings += expectSame(branches, sections);
    }
    EXPECT_GT(meetings, 0);
}

TEST(MatchSections, AgreesWithThePlainFormOnCoordinatesThatAreNoPlace)
{
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        Drawing drawing(seed);
        const auto spoil = [&](Vertices vertices) {
            constexpr std::array<double, 5> kOdd = {kNotANumber, kBeyond, -kBeyond, 1e300, 1e-310};
            for (auto& [x, y] : vertices) {
                if (drawing.number(6) == 0) {
                    (drawing.number(2) == 0 ? x : y) = kOdd[drawing.number(kOdd.size())];
                }
            }
            return vertices;
        };
        network::NbcBranches branches;
        network::NbcSections sections;
        for (int b = 0; b < 20; ++b) {
            branches.all.push_back(branchOf("b", spoil(drawing.walk(20, 10, 5))));
            // A chainage that is no number equals nothing, itself included.
            for (float& chainage : branches.all.back().chainage) {
                chainage = 1;
            }
        }
        for (int s = 0; s < 30; ++s) {
            sections.all.push_back(sectionOf(spoil(drawing.walk(3, 10, 5))));
        }
        network::NbcBranches plainBranches = branches;
        network::NbcSections plainSections = sections;
        plainMatch(plainBranches, plainSections);
        matchQuietly(branches, sections);
        ASSERT_EQ(sections.all.size(), plainSections.all.size());
        for (std::size_t i = 0; i < sections.all.size(); ++i) {
            EXPECT_EQ(sections.all[i].branch, plainSections.all[i].branch) << seed << " " << i;
            EXPECT_EQ(sections.all[i].branchVertex, plainSections.all[i].branchVertex);
            EXPECT_EQ(sections.all[i].sectionVertex, plainSections.all[i].sectionVertex);
        }
    }
}

// --- By hand ---------------------------------------------------------------------------------------------------------

network::NbcSection matchOne(const Vertices& branch, const Vertices& section)
{
    network::NbcBranches branches;
    branches.all.push_back(branchOf("b", branch));
    network::NbcSections sections;
    sections.all.push_back(sectionOf(section));
    matchQuietly(branches, sections);
    return sections.all[0];
}

TEST(MatchSections, SnapsWithinAThousandthOnBothAxes)
{
    const Vertices branch = {{0, 0}, {10, 0}, {20, 0}};
    EXPECT_TRUE(matchOne(branch, {{10, 5}, {10.0005, 0.0009}, {9, -5}}).snapped);
    EXPECT_FALSE(matchOne(branch, {{10, 5}, {10.0011, 0}}).snapped);
    // Extents that do not even touch are not looked at.
    EXPECT_FALSE(matchOne(branch, {{10, 5}, {10, 0.0009}}).snapped);
    EXPECT_FALSE(matchOne(branch, {{10, 5}, {10, 0.0011}, {9, -5}}).snapped);
}

TEST(MatchSections, ExtentsThatTouchInACornerAreLookedAt)
{
    EXPECT_TRUE(matchOne({{0, 0}, {10, 10}}, {{12, 12}, {10, 10}}).snapped);
}

TEST(MatchSections, TheThousandthIsASinglePrecisionOne)
{
    // It is 0.00100000004749..., a little more than in double precision.
    const Vertices branch = {{0, 0}, {10, 0}};
    EXPECT_TRUE(matchOne(branch, {{5, 5}, {0.00100000004, 0}, {5, -5}}).snapped);
    EXPECT_FALSE(matchOne(branch, {{5, 5}, {0.00100000005, 0}, {5, -5}}).snapped);
}

TEST(MatchSections, TheFirstVertexOfASectionIsNeverTried)
{
    const network::NbcSection section = matchOne({{0, 0}, {10, 0}, {20, 0}}, {{10, 0}, {10, 5}});
    EXPECT_FALSE(section.snapped);
    // Its start is no part of a segment either.
    EXPECT_FALSE(section.intersected);
}

TEST(MatchSections, TheFirstVertexOfTheBranchCountsBeforeThatOfTheSection)
{
    // The section passes vertex 3 before vertex 1.
    const network::NbcSection section = matchOne({{0, 0}, {10, 0}, {20, 0}}, {{25, 0}, {20, 0}, {0, 0}});
    EXPECT_EQ(section.branchVertex, 1);
    EXPECT_EQ(section.sectionVertex, 3);
    EXPECT_EQ(section.chainage, 0.0F);
}

TEST(MatchSections, ACrossingKnowsItsChainageAndPlace)
{
    const network::NbcSection section = matchOne({{0, 0}, {3, 4}, {13, 4}}, {{7, 10}, {7, 0}});
    EXPECT_TRUE(section.intersected);
    EXPECT_EQ(section.meetingX, 7.0);
    EXPECT_EQ(section.meetingY, 4.0);
    EXPECT_EQ(section.chainage, 5.0F + 4.0F);
    EXPECT_EQ(section.branchVertex, 3);
    EXPECT_EQ(section.sectionVertex, 2);
}

TEST(MatchSections, SegmentsHoldTheirEndButNotTheirStart)
{
    const Vertices branch = {{0, 0}, {10, 0}};
    EXPECT_TRUE(matchOne(branch, {{5, 5}, {5, 0}}).intersected);
    EXPECT_FALSE(matchOne(branch, {{5, 0}, {5, 5}}).intersected);
    EXPECT_TRUE(matchOne(branch, {{10, 5}, {10, -5}}).intersected);
    EXPECT_FALSE(matchOne(branch, {{0, 5}, {0, -5}}).intersected);
}

TEST(MatchSections, MoreSectionsOnABranchThanTheLimitEndTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        network::NbcBranches branches;
        branches.all.push_back(branchOf("long", {{0, 0}, {10, 0}}));
        network::NbcSections sections;
        sections.all.assign(10001, sectionOf({{5, 5}, {5, -5}}));
        network::nbc_match_sections(branches, sections);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console, testing::HasSubstr("ERROR - More than 10000 sections in branch: long\n"));
}

// --- The tree --------------------------------------------------------------------------------------------------------

TEST(ExtentTree, MeetsTheItemsInTheirOrderAndStops)
{
    for (const std::size_t count : {0U, 1U, 8U, 9U, 64U, 65U, 600U}) {
        const network::ExtentTree tree(count, [](std::size_t i) {
            const auto place = static_cast<double>(i);
            return Box{place, 0, place, 0};
        });
        std::vector<std::size_t> met;
        EXPECT_FALSE(tree.search([](const Box&) { return true; },
                                 [&](std::size_t i) {
                                     met.push_back(i);
                                     return false;
                                 }));
        ASSERT_EQ(met.size(), count);
        EXPECT_TRUE(std::is_sorted(met.begin(), met.end()));

        // Of those from 70 on, the blocks before are never met, and the search ends with the first found.
        std::size_t first = 0;
        const bool found = tree.search([](const Box& block) { return block.xmax >= 70; },
                                       [&](std::size_t i) {
                                           EXPECT_GE(i, 64U);
                                           first = i;
                                           return i >= 70;
                                       });
        EXPECT_EQ(found, count > 70);
        if (found) {
            EXPECT_EQ(first, 70U);
        }
    }
}

} // namespace
} // namespace gridforge::test
