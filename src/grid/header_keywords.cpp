#include "grid/header_keywords.h"

#include "core/free_form.h"
#include "core/names.h"
#include "core/text.h"

namespace gridforge::grid {

Keyword takeKeyword(const std::string& line, GridHeader& header, Placement& placement)
{
    std::string rest;
    const auto take = [&rest](auto& target) { return readFree(rest, target) ? Keyword::read : Keyword::unreadable; };
    if (FLAGEXISTSRET(line, "ncols", rest)) {
        return take(header.ncols);
    }
    if (FLAGEXISTSRET(line, "nrows", rest)) {
        return take(header.nrows);
    }
    if (FLAGEXISTSRET(line, "xllcorner", rest)) {
        placement.xGiven = true;
        return take(header.xll);
    }
    if (FLAGEXISTSRET(line, "yllcorner", rest)) {
        placement.yGiven = true;
        return take(header.yll);
    }
    if (FLAGEXISTSRET(line, "xllcenter", rest)) {
        placement.xGiven = true;
        placement.xIsCentre = true;
        return take(header.xll);
    }
    if (FLAGEXISTSRET(line, "yllcenter", rest)) {
        placement.yGiven = true;
        placement.yIsCentre = true;
        return take(header.yll);
    }
    if (FLAGEXISTSRET(line, "cellsize", rest)) {
        return take(header.cellsize);
    }
    if (FLAGEXISTSRET(line, "NODATA_value", rest)) {
        return take(header.null);
    }
    return Keyword::none;
}

bool settle(GridHeader& header, const Placement& placement)
{
    // A cell size that is NaN is accepted.
    if (header.ncols <= 0 || header.nrows <= 0 || !placement.xGiven || !placement.yGiven || header.cellsize <= 0.0F) {
        return false;
    }
    header.cellsize8 = static_cast<double>(header.cellsize);
    // A centre moves by a whole cell size, not by half of one, on purpose: users of such grids rely on it.
    if (placement.xIsCentre) {
        header.xll -= header.cellsize8;
    }
    if (placement.yIsCentre) {
        header.yll -= header.cellsize8;
    }
    return true;
}

} // namespace gridforge::grid
