// A large array of plain values, zero at first. Its memory comes from the heap unless `usePages` names a better source:
// fresh memory is expensive, and the host has it in huge pages.
#pragma once

#include <cstddef>
#include <span>
#include <type_traits>
#include <utility>

namespace gridforge::inline core {

struct PageSource {
    void* (*take)(std::size_t bytes);
    void (*release)(void* pages, std::size_t bytes);
};
// Call it before the first large array, because each is released to the source in use. Returns true.
bool usePages(PageSource source) noexcept;

// Zeroed bytes, null if out of memory. Release them with the same size.
void* takePages(std::size_t bytes);
void releasePages(void* pages, std::size_t bytes);

template <typename Value>
class HugeArray {
    static_assert(std::is_trivially_copyable_v<Value>);

public:
    HugeArray() = default;
    ~HugeArray() { release(); }
    HugeArray(const HugeArray&) = delete;
    HugeArray& operator=(const HugeArray&) = delete;
    HugeArray(HugeArray&& other) noexcept
        : values_(std::exchange(other.values_, nullptr)), size_(std::exchange(other.size_, 0))
    {
    }
    HugeArray& operator=(HugeArray&& other) noexcept
    {
        std::swap(values_, other.values_);
        std::swap(size_, other.size_);
        return *this;
    }

    // Releases what it held and takes `size` zeros. False, and empty, if out of memory.
    [[nodiscard]] bool allocate(std::size_t size)
    {
        release();
        if (size == 0) {
            return true;
        }
        if (size > static_cast<std::size_t>(-1) / 2 / sizeof(Value)) {
            return false;
        }
        values_ = static_cast<Value*>(takePages(size * sizeof(Value)));
        size_ = values_ == nullptr ? 0 : size;
        return values_ != nullptr;
    }

    void release()
    {
        if (values_ != nullptr) {
            releasePages(values_, size_ * sizeof(Value));
        }
        values_ = nullptr;
        size_ = 0;
    }

    std::size_t size() const { return size_; }
    std::span<Value> all() { return {values_, size_}; }
    std::span<const Value> all() const { return {values_, size_}; }
    Value& operator[](std::size_t i) { return values_[i]; }
    const Value& operator[](std::size_t i) const { return values_[i]; }

private:
    Value* values_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace gridforge::inline core
