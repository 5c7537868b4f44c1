// Rainfall depths over time at named locations (`rf_hyetographs`).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::rainfall {

inline constexpr std::size_t kRfNameWidth = 100;

struct RfHyetograph {
    std::string name;
    std::vector<float> time;  // rising; hours in NetCDF files
    std::vector<float> depth; // of the time step, as given
};

struct RfHyetographs {
    std::int32_t maxLocations = 0;
    std::int32_t maxPoints = 0; // in one hyetograph
    std::vector<RfHyetograph> records;

    std::int32_t count() const { return static_cast<std::int32_t>(records.size()); }
};

// One more record with this name; past the maximum the run ends.
void addHyetograph(const std::string& name, RfHyetographs& hyetographs);
// Fills the last record from a file of lines `time, depth` below a heading. Lines that cannot be read, fewer than 2,
// more than the maximum and times that do not rise end the run.
void rf_read_hyetograph(const std::string& fileName, RfHyetographs& hyetographs);

// Ends the run unless there are two hyetographs or more and all have the times of the first.
void requireSameTimes(const RfHyetographs& hyetographs);

// The number from 1 of the first hyetograph with this name, 0 if none has it.
std::int32_t findHyetograph(const std::string& name, const RfHyetographs& hyetographs);

// Ends the run over more hyetographs or more points than there may be.
[[noreturn]] void failTooManyLocations(std::int32_t maximum);

} // namespace gridforge::rainfall
