// A value for each of several workers, on cache lines of its own: where two shared one, each write of the first would make
// the other fetch it again.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace gridforge::inline core {

inline constexpr std::size_t kFetchedTogether = 128; // bytes; processors fetch lines of 64 by pairs

template <typename Value>
class PerWorker {
public:
    PerWorker() = default;
    explicit PerWorker(std::size_t workers) : places_(workers) {}

    template <typename... From>
    void add(From&&... from)
    {
        places_.push_back(OwnLines{Value(std::forward<From>(from)...)});
    }

    std::size_t size() const { return places_.size(); }
    Value& operator[](std::size_t worker) { return places_[worker].value; }
    const Value& operator[](std::size_t worker) const { return places_[worker].value; }

private:
    struct alignas(kFetchedTogether) OwnLines {
        Value value;
    };

    std::vector<OwnLines> places_;
};

} // namespace gridforge::inline core
