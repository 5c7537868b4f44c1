// A stretch of memory for each of several workers, allocated once for all of their work.
#pragma once

#include "core/huge_array.h"

#include <cstddef>
#include <span>

namespace gridforge::inline core {

template <typename Value>
class WorkerRooms {
public:
    // False if out of memory.
    [[nodiscard]] bool take(std::size_t workers, std::size_t each)
    {
        // A cache line apart, so that two workers never write to the same one.
        each_ = each;
        stride_ = each + kApart / sizeof(Value);
        return values_.allocate(each == 0 ? 0 : workers * stride_);
    }
    std::span<Value> of(std::size_t worker)
    {
        return each_ == 0 ? std::span<Value>() : values_.all().subspan(worker * stride_, each_);
    }

private:
    static constexpr std::size_t kApart = 64;

    HugeArray<Value> values_;
    std::size_t each_ = 0;
    std::size_t stride_ = 0;
};

} // namespace gridforge::inline core
