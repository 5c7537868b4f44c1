// The inverse distance method on the coarse lattice and from it to the fine one: levels past the wet edge, the level at
// each fine cell, and the fine cells from which the wet area grows.
#pragma once

#include "remap/cell_state.h"
#include "remap/places.h"
#include "remap/tin_cells.h"
#include "remap/wet_search.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::remap {

inline constexpr std::int32_t kDefaultIdwPoints = 12;

// One row of levels after the extension: wet cells keep theirs, flagged ones take idwPoint, the rest is left. False
// where a search cannot find its points.
[[nodiscard]] bool extendByIdwRow(std::int32_t row, std::int32_t points, const WetIndex& wet,
                                  const CellFlags& extentFlags, const Grid& levels, ListedCells& listed,
                                  Grid& extended);

// A point on one axis of the coarse lattice, as sampling sees it. Lengths are from the lattice's origin.
struct SamplePlace {
    bool inside = false;
    std::int32_t cell = 0;  // that contains the point
    std::int32_t lower = 0; // corners of its quad, held on the lattice
    std::int32_t upper = 0;
    double at = 0;
    double centre = 0; // of the quad's lower corner, which may lie off the lattice
    double fromLower = 0;
    double fromUpper = 0;
};
SamplePlace samplePlace(double at, const Axis& coarse);

// A corner within this of null counts as null.
inline constexpr float kNullWidth = 0.001F;

// The level of the surface at a point, or null: in the triangle of the quad of coarse centres around it, with null
// corners made good by their neighbours where an edge has one value at least.
float sampleCoarseLevel(const SamplePlace& x, const SamplePlace& y, double dx, double dy, const Grid& levels,
                        float null);
float sampleCoarseLevel(double x, double y, const Axis& columns, const Axis& rows, const Grid& levels, float null);

// Where the rows and columns of the terrain fall, for sampling and for the seeds.
struct IdwPlaces {
    std::vector<SamplePlace> sampleColumns;
    std::vector<SamplePlace> sampleRows;
    std::vector<NearestCell> columns;
    std::vector<NearestCell> rows;
};
IdwPlaces idwPlaces(const CoarseLevels& coarse, const Axis& fineColumns, const Axis& fineRows);

// One fine row: levels not below the ground, else null, and the cells over a wet coarse cell made wet, whatever their
// level. `states` holds the start state on entry.
void interpolateIdwRow(const CoarseLevels& coarse, const IdwPlaces& places, std::int32_t fineRow,
                       std::span<const float> ground, std::span<float> levels, std::span<CellState> states);

// The level of cells that are not wet becomes null.
void dropDryLevels(std::span<const CellState> states, float null, std::span<float> levels);

// The ground becomes the depth: level less ground where the cell is wet and the level not below the ground, else null.
void depthsOfWetCells(std::span<const CellState> states, std::span<const float> levels, float null,
                      std::span<float> ground);

} // namespace gridforge::remap
