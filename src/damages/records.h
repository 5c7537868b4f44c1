// The records of the damage calculation: depth-damage curves, buildings and results grids.
#pragma once

#include "plane/inside_runs.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::damages {

inline constexpr std::size_t kCurveNameWidth = 100;
inline constexpr std::size_t kPropertyWidth = 100; // type and identifier of a property

// The maxima of a run, which its control file may change. They are limits only: memory is taken as it is filled.
struct DmgLimits {
    std::int32_t buildings = 1000;
    std::int32_t vertices = 100; // of one building
    std::int32_t curves = 100;
    std::int32_t curvePoints = 100; // of one curve
    std::int32_t results = 25;
};

// Damage by depth above the floor, as many values of each.
struct DmgCurve {
    std::string name;
    std::vector<float> depth; // rising strictly
    std::vector<float> damage;
};

enum class BuildingKind { point, polygon };

struct DmgBuilding {
    BuildingKind kind = BuildingKind::point;
    std::int32_t curve = 0; // from 1
    std::string Prop_ID;
    float FFL = 0; // floor level
    float multiplier = 0;
    SampledRegion outline;     // of a point its place alone, and no box
    std::vector<float> damage; // by results grid, in the order of the calculation
    float AAD = 0;             // average annual damage: nothing computes it, the outputs show 0 on purpose
};

// A results grid and its annual exceedance probability in percent.
struct DmgRes {
    std::string file;
    float AEP = 0;
};

// How the level of a polygon is made of the cells in it.
enum class RegionLevel { maximum, average };

} // namespace gridforge::damages
