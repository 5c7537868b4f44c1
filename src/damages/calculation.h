// Damages of all buildings on results grids, one grid in memory at a time.
#pragma once

#include "damages/records.h"

#include <cstdint>
#include <span>

namespace gridforge::damages {

// Reads grid `iResult`, from 1, and fills that damage of every building. `level` goes from call to call, 0 at first: a
// polygon whose window begins outside of the grid leaves it, and so takes the level of the building before it.
void dmg_calc_res(std::span<DmgBuilding> buildings, std::span<const DmgCurve> curves, std::span<const DmgRes> results,
                  std::int32_t iResult, RegionLevel method, float& level);

} // namespace gridforge::damages
