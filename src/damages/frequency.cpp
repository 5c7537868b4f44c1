#include "damages/frequency.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace gridforge::damages {

namespace {

constexpr float kLowestAEP = -9999.0F; // what the search for the largest starts from
constexpr float kTaken = -1.0F;        // marks a grid as taken

// The place of the largest AEP of the grids that are below the mark of those taken; their count if none is above the lowest.
std::size_t largestBelowMark(std::span<const DmgRes> listed)
{
    std::size_t place = listed.size();
    float best = kLowestAEP;
    for (std::size_t j = 0; j < listed.size(); ++j) {
        if (listed[j].AEP > best) {
            best = listed[j].AEP;
            place = j;
        }
    }
    return place;
}

} // namespace

// The rule that it follows: the largest AEP is searched anew for each place, and a grid taken gets -1. So what is not
// above -1 never has its turn once a grid was taken: in its place the first grid with the mark is taken once more, with
// the mark as its AEP. On purpose: an AEP is never negative.
std::optional<std::vector<DmgRes>> sortByFrequency(std::span<const DmgRes> listed)
{
    const auto isAboveMark = [](const DmgRes& result) { return result.AEP > kTaken; };
    std::vector<DmgRes> sorted;
    std::ranges::copy_if(listed, std::back_inserter(sorted), isAboveMark);
    std::ranges::stable_sort(sorted, std::greater<>(), &DmgRes::AEP);
    if (sorted.size() == listed.size()) {
        return sorted;
    }

    auto marked = std::ranges::find_if(listed, [](const DmgRes& result) { return result.AEP >= kTaken; });
    if (marked == listed.end()) {
        marked = listed.begin() + static_cast<std::ptrdiff_t>(largestBelowMark(listed));
        if (marked == listed.end()) {
            return std::nullopt;
        }
        sorted.push_back(*marked);
    }
    sorted.resize(listed.size(), {marked->file, kTaken});
    return sorted;
}

} // namespace gridforge::damages
