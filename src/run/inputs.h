// The input files of a run after the directory search, counted from 1.
#pragma once

#include <cassert>
#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::run {

inline constexpr std::int32_t kMaxInputs = 2000;

class InputFileList {
public:
    std::int32_t count() const { return static_cast<std::int32_t>(names_.size()); }
    const std::string& operator[](std::int32_t i) const
    {
        assert(i >= 1 && i <= count());
        return names_[static_cast<std::size_t>(i - 1)];
    }
    void add(std::string name) { names_.push_back(std::move(name)); }
    // The last input named the output, so it is no input.
    void dropLast() { names_.pop_back(); }
    // The first `count` of them, and input `i` alone.
    InputFileList first(std::int32_t count) const
    {
        InputFileList some;
        some.names_.assign(names_.begin(), names_.begin() + count);
        return some;
    }
    InputFileList only(std::int32_t i) const
    {
        InputFileList one;
        one.add((*this)[i]);
        return one;
    }

private:
    std::vector<std::string> names_;
};

// Proves each name by the directory search, wildcards and plain names alike; a name that gives no file ends the run.
InputFileList expandInputs(const std::vector<std::string>& rawInputList);

// Ends the run of more than kMaxInputs names, typed or found.
[[noreturn]] void failTooManyInputs();

} // namespace gridforge::run
