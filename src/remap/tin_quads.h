// The quads of a TIN along a stretch of one fine row, as arrays.
#pragma once

#include <vector>

namespace gridforge::remap {

// The quad over each fine column, where it lies from west to east. Only columns within the quads are looked at.
struct TinColumns {
    std::vector<double> x; // of the fine column
    std::vector<double> west;
    std::vector<double> east;
    std::vector<double> apex;
    std::vector<double> edgeLength;    // of the northern and southern edge
    std::vector<double> perEdgeLength; // 1 by it
};

// The quads of one coarse row, where they lie from south to north.
struct TinLines {
    double south = 0;
    double north = 0;
    double apex = 0;
    double edgeLength = 0; // of the western and eastern edges
};

// Their levels, for each fine column.
struct TinValues {
    std::vector<float> southWest;
    std::vector<float> northWest;
    std::vector<float> northEast;
    std::vector<float> southEast;
    std::vector<float> apex;
};

} // namespace gridforge::remap
