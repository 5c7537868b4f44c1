// What -cp finds in its grid around points: before its story comes to the grid where layer and grid are ordinary, else in the whole
// grid, point by point.
#pragma once

#include "gis/point_look.h"
#include "grid/look.h"
#include "run/windows_ahead.h"
#include "sampling/cell_extremes.h"
#include "sampling/cell_search.h"
#include "sampling/cell_tiles.h"
#include "sampling/sampled_layer.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace gridforge::sampling {

// The diameters of the circles that are searched.
struct PointCircles {
    float nearest = 0;
    std::optional<float> extremes; // where these are not wanted there is none
};

class PointFinder {
public:
    // Looks at the layer and the grid.
    PointFinder(const std::string& layer, const std::string& grid, const PointCircles& circles);

    // Says that the grid is loaded, and does so where its cells are still wanted.
    void load(const std::string& grid);

    // The points of the layer one after the other.
    void goTo(double x, double y);
    // Around that point; a window that touches the edge of the grid finds nothing, though the point lies inside.
    std::optional<FoundCell> nearest();
    FoundExtremes extremes();

private:
    struct Found {
        std::optional<FoundCell> nearest;
        FoundExtremes extremes;
    };

    void findAhead();
    Found findIn(const gis::PointPlace& place, const CellPart& cells, EmptyTiles& tiles, ExtremeSearch& extremes) const;
    std::optional<CellWindow> windowAround(const gis::PointPlace& place) const;
    void readLate();
    void searchWhole();

    PointCircles circles_;
    std::optional<grid::GridLook> look_;
    std::vector<gis::PointPlace> places_; // as the look at the layer found them
    std::vector<Found> found_;
    bool ahead_ = false;

    gis::PointPlace at_;
    std::size_t next_ = 0; // of the places
    Terrain terrain_;
    std::optional<EmptyTiles> emptyTiles_;
    std::optional<ExtremeSearch> extremes_;
};

} // namespace gridforge::sampling
