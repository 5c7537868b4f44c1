// Items in a fixed order, in blocks of eight and blocks of blocks, each with the extent of what it holds. A search passes
// over blocks that cannot hold what is looked for, and meets the others' items in their order.
#pragma once

#include "plane/box.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace gridforge::network {

class ExtentTree {
public:
    ExtentTree() = default;
    // `extentAt(i)` is the extent of item i from 0. Not-a-number does not count in it.
    template <typename ExtentAt>
    ExtentTree(std::size_t count, ExtentAt extentAt) : count_(count)
    {
        addLevel(count, extentAt);
        while (levels_.back().size() > 1) {
            const std::size_t below = levels_.size() - 1;
            addLevel(levels_[below].size(), [this, below](std::size_t i) { return levels_[below][i]; });
        }
    }

    // Calls `visit(i)` for the items of blocks whose extent `passes`, in rising order, until one gives true. Was there one?
    template <typename Passes, typename Visit>
    bool search(Passes passes, Visit visit) const
    {
        return count_ > 0 && searchBlock(levels_.size() - 1, 0, passes, visit);
    }

private:
    static constexpr std::size_t kFan = 8;

    template <typename ExtentAt>
    void addLevel(std::size_t count, ExtentAt extentAt)
    {
        std::vector<Box> blocks((count + kFan - 1) / kFan, emptyBox());
        for (std::size_t i = 0; i < count; ++i) {
            takeIn(extentAt(i), blocks[i / kFan]);
        }
        levels_.push_back(std::move(blocks));
    }

    template <typename Passes, typename Visit>
    bool searchBlock(std::size_t level, std::size_t block, Passes& passes, Visit& visit) const
    {
        if (!passes(levels_[level][block])) {
            return false;
        }
        const std::size_t items = level > 0 ? levels_[level - 1].size() : count_;
        const std::size_t end = std::min(items, (block + 1) * kFan);
        for (std::size_t i = block * kFan; i < end; ++i) {
            if (level > 0 ? searchBlock(level - 1, i, passes, visit) : visit(i)) {
                return true;
            }
        }
        return false;
    }

    std::size_t count_ = 0;
    std::vector<std::vector<Box>> levels_; // level 0: blocks of items
};

} // namespace gridforge::network
