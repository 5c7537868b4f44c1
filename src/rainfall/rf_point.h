// Rainfall points as they are kept.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::rainfall {

// The name of a hyetograph and the factors of its depths: what the record of a point or polygon holds.
struct RfRecord {
    std::string name;
    float f1 = 0;
    float f2 = 0;
};

struct RfPoint {
    RfRecord record;
    double x = 0;
    double y = 0;
    std::int32_t hyetograph = 0; // from 1, once matched
};

struct RfPoints {
    std::int32_t maxLocations = 0;
    std::vector<RfPoint> records;

    std::int32_t count() const { return static_cast<std::int32_t>(records.size()); }
};

} // namespace gridforge::rainfall
