// Which of many limits a value passes, by one look into a table instead of a comparison with each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::inline core {

// The range of the limits is cut into places of one width. A larger value never has a lower place, so a value is compared only
// with the limits of its own place.
class LimitTable {
public:
    // Limits that never fall.
    explicit LimitTable(std::span<const float> limits);

    // How many limits a place has at most. None where a table does not help: for a few limits, ones that crowd in a place, or
    // ones that are not finite.
    std::size_t mostInAPlace() const { return most_; }
    static constexpr std::size_t kMostInAPlace = 3;

    // How many limits the value passes; one that is not a number passes all. `Most` is at least what mostInAPlace returns.
    template <std::size_t Most>
    std::size_t passed(float value) const
    {
        std::size_t count = before_[placeOf(value)];
        for (std::size_t i = 0; i < Most; ++i) {
            count += value > limits_[count] ? 1 : 0;
        }
        return count;
    }

    // Calls take(i, how many limits cells[i] passes) for all cells.
    template <typename Take>
    void forEach(std::span<const float> cells, const Take& take) const
    {
        if (most_ == 1) {
            walk<1>(cells, take);
        } else {
            walk<kMostInAPlace>(cells, take);
        }
    }

private:
    static constexpr std::size_t kPlaces = 2048; // stay in the nearest cache
    static constexpr auto kTop = static_cast<float>(kPlaces);

    // What is not a number comes above all limits.
    std::size_t placeOf(float value) const
    {
        const float place = (value - lowest_) * scale_;
        const float capped = place < kTop ? place : kTop;
        return static_cast<std::size_t>(static_cast<std::int32_t>(capped > 0.0F ? capped : 0.0F));
    }

    template <std::size_t Most, typename Take>
    void walk(std::span<const float> cells, const Take& take) const
    {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            take(i, passed<Most>(cells[i]));
        }
    }

    float lowest_ = 0;
    float scale_ = 0;
    std::size_t most_ = 0;
    std::vector<float> limits_;                         // and what no value passes after them
    std::array<std::uint8_t, kPlaces + 1> before_ = {}; // limits below each place
};

} // namespace gridforge::inline core
