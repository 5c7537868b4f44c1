// Which files are pure: the lower rooms, and those of kernels.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace gridforge::test {

// The rooms that print nothing, open nothing and end nothing.
inline const std::set<std::string> kPureRooms{"core", "plane"};

// Files of kernels that are named by their subject.
inline const std::set<std::string> kNamedKernels{
    "rainfall/point_search", "rainfall/rf_point",   "remap/cell_state",      "remap/extent_flags",
    "remap/growth",          "remap/places",        "remap/tin_places",      "remap/tin_places_avx2",
    "remap/tin_quads",       "remap/tin_row",       "remap/wet_search",      "sampling/cell_extremes",
    "sampling/cell_search",  "sampling/cell_tiles", "sampling/ground_level", "sampling/search_polygon"};

// Kernels without a test of their name, and where they are tested instead.
inline const std::map<std::string, std::string> kTestedElsewhere{
    {"rainfall/rf_point", "rainfall/point_search"}, // records alone
    {"remap/tin_places", "remap/tin_row"}, // the loops of tin_row, in a header for both forms of its instructions
    {"remap/tin_places_avx2", "remap/tin_row"},
    {"remap/tin_quads", "remap/tin_cells"}, // records alone
};

// Files of kernels, by their place in src/.
inline bool holdsKernels(const std::filesystem::path& file)
{
    const std::string name = std::filesystem::path(file).replace_extension().generic_string();
    return name.ends_with("_cells") || name.ends_with("_cells_avx2") || kNamedKernels.contains(name);
}

} // namespace gridforge::test
