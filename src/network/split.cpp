#include "network/split.h"

#include "core/number_text.h"
#include "core/rounding.h"
#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge::network {

namespace {

constexpr float kLastChainage = 99998.0F;
constexpr float kLeastFormLoss = 0.0001F;
constexpr std::int32_t kChainageDigits = 5;

// The chainage at a place of the list from 1; 0 where the list holds nothing.
float listedChainage(const NbcBranch& branch, std::int32_t place)
{
    const auto at = static_cast<std::size_t>(place - 1);
    return at < branch.sections.size() ? branch.sections[at].chainage : 0.0F;
}

// With one or two sections a branch is split where one of them lies inside. It is the list's entry at the place of the
// section's vertex number that is looked at, not the section's own, and past the list that is 0, the branch's start. So
// a branch with one section in its middle stays whole unless the numbers happen to agree. On purpose: networks of
// earlier models rest on it.
bool isSplit(const NbcBranch& branch)
{
    constexpr std::size_t kFew = 2;
    if (branch.sections.size() > kFew) {
        return true;
    }
    return std::ranges::any_of(branch.sections, [&](const BranchSection& section) {
        if (section.vertex <= 0) {
            return false;
        }
        const float chainage = listedChainage(branch, section.vertex);
        return chainage != branch.chainage.front() && chainage != branch.chainage.back();
    });
}

// A line with the branch's vertices from number `first` to number `last`; none where the last comes before the first.
NbcLine lineOf(const NbcBranch& branch, std::string_view id, std::int32_t first, std::int32_t last)
{
    NbcLine line;
    line.id = cut(id, kLineIdWidth);
    line.type = branch.type;
    line.ucs = branch.flag;
    line.n = branch.roughness;
    line.layer = branch.layer;
    if (first <= last) {
        line.x.assign(branch.x.begin() + (first - 1), branch.x.begin() + last);
        line.y.assign(branch.y.begin() + (first - 1), branch.y.begin() + last);
    }
    return line;
}

// The ID of a line that begins at the section of this chainage.
std::string idAfter(const NbcBranch& branch, float chainage)
{
    return join(branch.name, "_", AINTEGERPREC0(truncateToInt(static_cast<double>(chainage)), kChainageDigits));
}

// The places from 0 of the branch's sections by rising chainage, the first listed first.
std::vector<std::size_t> byChainage(const NbcBranch& branch)
{
    std::vector<std::size_t> order(branch.sections.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto key = [&](std::size_t i) {
        const float chainage = branch.sections[i].chainage;
        return std::isnan(chainage) ? std::numeric_limits<float>::infinity() : chainage;
    };
    std::ranges::stable_sort(order, {}, key);
    if (key(order.back()) > kLastChainage) {
        fail("ERROR  Should not be here, determining next chainage.");
    }
    return order;
}

void splitBranch(NbcBranch& branch, NbcLines& lines)
{
    const std::int32_t last = branch.vertices();
    std::int32_t start = 1;
    std::string id = join(branch.name, "_0");
    std::size_t place = 0;
    for (const std::size_t next : byChainage(branch)) {
        place = next;
        const BranchSection& section = branch.sections[place];
        const std::int32_t v = section.vertex;
        if (section.snapped && v == 1) {
            start = 1;
        } else if (section.snapped && v == last) {
            // The last line reaches to here anyway.
        } else if (section.snapped) {
            lines.push_back(lineOf(branch, id, start, v));
            start = v;
        } else {
            NbcLine line = lineOf(branch, id, start, v);
            if (!line.x.empty()) {
                line.x.back() = section.x;
                line.y.back() = section.y;
            }
            lines.push_back(std::move(line));
            // The next line begins at the crossing, which takes the place of the vertex before it.
            start = v - 1;
            const auto before = static_cast<std::size_t>(v - 2);
            branch.x[before] = section.x;
            branch.y[before] = section.y;
        }
        id = idAfter(branch, section.chainage);
    }
    // A place in the list set against a number of vertices: a branch whose last section happens to be listed at that
    // place loses its end. On purpose, as above.
    if (static_cast<std::int32_t>(place + 1) != last) {
        lines.push_back(lineOf(branch, id, start, last));
    }
}

// Shares a form loss out over the lines from place `first` on; a negative one goes to each in full.
void giveFormLoss(float formLoss, std::size_t first, NbcLines& lines)
{
    const auto count = static_cast<float>(lines.size() - first);
    for (std::size_t i = first; i < lines.size(); ++i) {
        if (formLoss > kLeastFormLoss) {
            lines[i].formLoss = formLoss / count;
        } else if (formLoss < kLeastFormLoss) {
            lines[i].formLoss = std::abs(formLoss);
        }
    }
}

NbcLine lineOf(const NbcConnector& connector)
{
    NbcLine line;
    line.type = "X";
    line.ucs = 'F';
    line.layer = connector.layer;
    line.x = connector.x;
    line.y = connector.y;
    return line;
}

} // namespace

void nbc_split_branches(NbcBranches& branches, NbcLines& lines, const NbcConnectors& connectors)
{
    say("Splitting branch data into network...");
    for (NbcBranch& branch : branches.all) {
        const std::size_t first = lines.size();
        if (isSplit(branch)) {
            splitBranch(branch, lines);
        } else {
            lines.push_back(lineOf(branch, branch.name, 1, branch.vertices()));
        }
        giveFormLoss(branch.formLoss, first, lines);
    }
    say("    Finished splitting branch data into network.");
    say("Writing \"X\" connectors.");
    for (const NbcConnector& connector : connectors) {
        lines.push_back(lineOf(connector));
    }
    say("    Finished writing connectors");
}

NbcLines createLines(NbcBranches& branches, const NbcConnectors& connectors)
{
    NbcLines lines;
    say("Allocating memory for storing 1d_nwk data...");
    lines.reserve(static_cast<std::size_t>(branches.branchesAndSections) + connectors.size());
    say("    Done.");
    say("Allocating memory for storing 1d_nwk coordinates...");
    say("    Done.");
    nbc_split_branches(branches, lines, connectors);
    return lines;
}

} // namespace gridforge::network
