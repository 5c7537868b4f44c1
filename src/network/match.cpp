#include "network/match.h"

#include "host/console.h"
#include "host/ends.h"
#include "network/extent_tree.h"
#include "plane/geometry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

namespace gridforge::network {

namespace {

constexpr double kSnapDistance = 0.001F; // a single-precision value
constexpr std::int32_t kSegmentsCross = 3;

// --- Extents ---------------------------------------------------------------------------------------------------------

bool overlap(const Box& a, const Box& b)
{
    return !(a.xmin > b.xmax || a.ymin > b.ymax || a.xmax < b.xmin || a.ymax < b.ymin);
}

// The extent for a tree, which leaves not-a-number out: such an extent overlaps everything.
Box searchable(const Box& extent)
{
    const double sum = extent.xmin + extent.ymin + extent.xmax + extent.ymax;
    return std::isnan(sum) ? Box{-kBoundless, -kBoundless, kBoundless, kBoundless} : extent;
}

// Finds the branches whose extents overlap that of a section.
class BranchFinder {
public:
    explicit BranchFinder(const std::vector<NbcBranch>& branches) : branches_(branches), order_(branches.size())
    {
        std::iota(order_.begin(), order_.end(), std::size_t{0});
        putNeighboursTogether();
        tree_ = ExtentTree(order_.size(), [this](std::size_t i) { return searchable(branches_[order_[i]].extent); });
    }

    // Their places from 0 in rising order.
    const std::vector<std::size_t>& overlapping(const Box& section)
    {
        found_.clear();
        const Box looked = searchable(section);
        tree_.search([&](const Box& block) { return overlap(block, looked); },
                     [&](std::size_t i) {
                         if (overlap(branches_[order_[i]].extent, section)) {
                             found_.push_back(order_[i]);
                         }
                         return false;
                     });
        std::ranges::sort(found_);
        return found_;
    }

private:
    static double middle(double a, double b)
    {
        const double m = a * 0.5 + b * 0.5;
        return std::isnan(m) ? 0 : m;
    }

    // Strips from west to east, each from south to north.
    void putNeighboursTogether()
    {
        const auto byX = [this](std::size_t i) { return middle(branches_[i].extent.xmin, branches_[i].extent.xmax); };
        const auto byY = [this](std::size_t i) { return middle(branches_[i].extent.ymin, branches_[i].extent.ymax); };
        std::ranges::sort(order_, {}, byX);
        const auto strip = static_cast<std::size_t>(std::sqrt(8.0 * static_cast<double>(order_.size()))) + 1;
        for (std::size_t i = 0; i < order_.size(); i += strip) {
            const auto from = order_.begin() + static_cast<std::ptrdiff_t>(i);
            const auto to = order_.begin() + static_cast<std::ptrdiff_t>(std::min(i + strip, order_.size()));
            std::ranges::sort(from, to, {}, byY);
        }
    }

    const std::vector<NbcBranch>& branches_;
    std::vector<std::size_t> order_;
    ExtentTree tree_;
    std::vector<std::size_t> found_;
};

// --- One polyline, searched ------------------------------------------------------------------------------------------

Box vertexExtent(const std::vector<double>& x, const std::vector<double>& y, std::size_t v)
{
    return {x[v], y[v], x[v], y[v]};
}

ExtentTree vertexTree(const std::vector<double>& x, const std::vector<double>& y)
{
    return {x.size(), [&](std::size_t v) { return vertexExtent(x, y, v); }};
}

// Item i is the segment from vertex i to vertex i + 1, counted from 0.
ExtentTree segmentTree(const std::vector<double>& x, const std::vector<double>& y)
{
    return {x.empty() ? 0 : x.size() - 1, [&](std::size_t i) {
                return Box{std::min(x[i], x[i + 1]), std::min(y[i], y[i + 1]), std::max(x[i], x[i + 1]),
                           std::max(y[i], y[i + 1])};
            }};
}

struct SearchedBranch {
    ExtentTree vertices;
    ExtentTree segments;
};

struct SearchedSection {
    ExtentTree vertices;
    Box afterFirst = emptyBox(); // of all vertices except the first
};

SearchedSection searchedSection(const NbcSection& section)
{
    SearchedSection searched;
    searched.vertices = vertexTree(section.x, section.y);
    for (std::size_t w = 1; w < section.x.size(); ++w) {
        takeIn(section.x[w], section.y[w], searched.afterFirst);
    }
    return searched;
}

struct Meeting {
    std::size_t branchVertex = 0; // from 0
    std::size_t sectionVertex = 0;
    double x = 0;
    double y = 0;
};

// --- Snapping --------------------------------------------------------------------------------------------------------

bool isNear(double x1, double y1, double x2, double y2)
{
    return std::abs(x1 - x2) <= kSnapDistance && std::abs(y1 - y2) <= kSnapDistance;
}

// May a vertex in the one extent be near one in the other? Differences round in the order of their values, so these are
// no larger than those of the vertices.
bool mayBeNear(const Box& a, const Box& b)
{
    return a.xmin - b.xmax <= kSnapDistance && b.xmin - a.xmax <= kSnapDistance && a.ymin - b.ymax <= kSnapDistance &&
           b.ymin - a.ymax <= kSnapDistance;
}

// The first branch vertex, and then the first section vertex, that are near each other. The first vertex of a section
// is never tried: sections start off the branch, and results rest on it.
std::optional<Meeting> findSnap(const NbcBranch& branch, const SearchedBranch& searched, const NbcSection& section,
                                const SearchedSection& wanted)
{
    std::optional<Meeting> found;
    const auto mayHoldVertices = [&](const Box& block) { return mayBeNear(block, wanted.afterFirst); };
    searched.vertices.search(mayHoldVertices, [&](std::size_t v) {
        const Box vertex = vertexExtent(branch.x, branch.y, v);
        const auto mayHoldVertex = [&](const Box& block) { return mayBeNear(block, vertex); };
        return wanted.vertices.search(mayHoldVertex, [&](std::size_t w) {
            if (w == 0 || !isNear(branch.x[v], branch.y[v], section.x[w], section.y[w])) {
                return false;
            }
            found = {v, w, branch.x[v], branch.y[v]};
            return true;
        });
    });
    return found;
}

// --- Crossing --------------------------------------------------------------------------------------------------------

// Finds extents that lie well to one side of the line through the first segment of a section. No segment within one is
// ever found to cross it, whatever the rounding: the margin is many times what the products may be off.
class SideOfSection {
public:
    explicit SideOfSection(const NbcSection& section)
        : x_(section.x[0]), y_(section.y[0]), dx_(section.x[1] - x_), dy_(section.y[1] - y_)
    {
    }

    bool mayCross(const Box& e) const
    {
        const double along1 = dx_ * (e.ymin - y_);
        const double along2 = dx_ * (e.ymax - y_);
        const double across1 = dy_ * (e.xmin - x_);
        const double across2 = dy_ * (e.xmax - x_);
        const double size = std::abs(along1) + std::abs(along2) + std::abs(across1) + std::abs(across2);
        const double margin = kMargin * size + kTiny;
        const double lowest = std::min(along1, along2) - std::max(across1, across2);
        const double highest = std::max(along1, along2) - std::min(across1, across2);
        return !(lowest > margin || highest < -margin);
    }

private:
    static constexpr double kMargin = 1e-13;
    static constexpr double kTiny = 1e-290;

    double x_;
    double y_;
    double dx_;
    double dy_;
};

// Branch segment i from 0 against the section's segments. The first that it does not cross ends the search: a section
// crosses by its first segment, unless that runs along the branch. On purpose: users draw sections so.
std::optional<Meeting> crossingOf(const NbcBranch& branch, std::size_t i, const NbcSection& section)
{
    const double x1 = branch.x[i];
    const double y1 = branch.y[i];
    const double x2 = branch.x[i + 1];
    const double y2 = branch.y[i + 1];
    for (std::size_t w = 1; w < section.x.size(); ++w) {
        const double x3 = section.x[w - 1];
        const double y3 = section.y[w - 1];
        const double x4 = section.x[w];
        const double y4 = section.y[w];
        if (INTERSECT_LINE_V2_8(x1, y1, x2, y2, x3, y3, x4, y4) != kSegmentsCross) {
            return std::nullopt;
        }
        Meeting meeting{i + 1, w, 0, 0};
        if (INTERSECTION_POINT_8(x1, y1, x2, y2, x3, y3, x4, y4, meeting.x, meeting.y)) {
            return meeting;
        }
    }
    return std::nullopt;
}

std::optional<Meeting> findCrossing(const NbcBranch& branch, const SearchedBranch& searched, const NbcSection& section)
{
    std::optional<Meeting> found;
    if (section.x.size() < 2) {
        return found;
    }
    const SideOfSection side(section);
    searched.segments.search([&](const Box& block) { return side.mayCross(block); },
                             [&](std::size_t i) {
                                 found = crossingOf(branch, i, section);
                                 return found.has_value();
                             });
    return found;
}

// --- What a meeting leaves -------------------------------------------------------------------------------------------

// Lists the section on its branch, if it is to split it.
void listOnBranch(const NbcSection& section, bool snapped, NbcBranches& branches, NbcBranch& branch)
{
    if (!section.split) {
        say("Check - Not splitting section");
        return;
    }
    ++branches.branchesAndSections;
    if (branch.sections.size() == static_cast<std::size_t>(kMaxBranchSections)) {
        fail("ERROR - More than ", kMaxBranchSections, " sections in branch: ", branch.name);
    }
    branch.sections.push_back({snapped, section.chainage, section.meetingX, section.meetingY, section.branchVertex});
}

// A later meeting takes the place of an earlier one on another branch.
void keepMeeting(const Meeting& meeting, float chainage, const NbcBranch& branch, std::size_t b, NbcSection& section)
{
    section.branchName = branch.name;
    section.chainage = chainage;
    section.meetingX = meeting.x;
    section.meetingY = meeting.y;
    section.branch = static_cast<std::int32_t>(b + 1);
    section.branchVertex = static_cast<std::int32_t>(meeting.branchVertex + 1);
    section.sectionVertex = static_cast<std::int32_t>(meeting.sectionVertex + 1);
}

float chainageAt(const NbcBranch& branch, const Meeting& meeting)
{
    const std::size_t before = meeting.branchVertex - 1;
    return branch.chainage[before] + DISTANCE_8(branch.x[before], branch.y[before], meeting.x, meeting.y);
}

} // namespace

void nbc_match_sections(NbcBranches& branches, NbcSections& sections)
{
    say("Determining if cross-sections snap or intersect branches...");
    branches.branchesAndSections = static_cast<std::int32_t>(branches.all.size());
    std::vector<SearchedBranch> searched;
    for (const NbcBranch& branch : branches.all) {
        searched.push_back({vertexTree(branch.x, branch.y), segmentTree(branch.x, branch.y)});
    }
    BranchFinder finder(branches.all);

    for (NbcSection& section : sections.all) {
        section.snapped = false;
        section.intersected = false;
        const SearchedSection searchedVertices = searchedSection(section);
        for (const std::size_t b : finder.overlapping(section.extent)) {
            NbcBranch& branch = branches.all[b];
            // A section may snap to one branch and cross another, but does neither twice.
            if (!section.snapped) {
                if (const auto snap = findSnap(branch, searched[b], section, searchedVertices)) {
                    section.snapped = true;
                    keepMeeting(*snap, branch.chainage[snap->branchVertex], branch, b, section);
                    listOnBranch(section, true, branches, branch);
                    continue;
                }
            }
            if (!section.intersected) {
                if (const auto crossing = findCrossing(branch, searched[b], section)) {
                    section.intersected = true;
                    keepMeeting(*crossing, chainageAt(branch, *crossing), branch, b, section);
                    listOnBranch(section, false, branches, branch);
                }
            }
        }
    }
    say("    Done.");
}

} // namespace gridforge::network
