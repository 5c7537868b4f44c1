// A made river valley on a small lattice: ground, streams, and how high a flood of a given kind stands.
#pragma once

#include <cstdint>
#include <vector>

namespace catchment {

// Values at the nodes of a lattice, node (0, 0) in the south-west. Between the nodes they are interpolated.
struct Field {
    int columns = 0;
    int rows = 0;
    std::vector<double> values;

    Field() = default;
    Field(int columnCount, int rowCount, double value = 0);
    double& at(int column, int row);
    double at(int column, int row) const;
};

struct Flood {
    double size = 1;         // stage as a share of the 1 % flood
    double criticalArea = 0; // area drained, in nodes, for which the storm is the worst one
    double breadth = 3;      // how many natural logarithms of area away from it the flood is much lower
};

struct Valley {
    Field ground;    // metres
    Field drained;   // nodes that drain through a node
    Field roughness; // Manning's n
    Field riverBed;  // bed of the main river abreast of a node on its flood plain; far below the ground elsewhere
    std::vector<std::int32_t> stream; // the stream node that each node drains to
};

// A main river from west to east with its flood plain, and hills that drain to it.
Valley makeValley(int columns, int rows, std::uint64_t seed);

// The water level where there is a flood; below the ground where it is dry.
Field floodLevel(const Valley& valley, const Flood& flood);

// Area drained at the main river, for Flood::criticalArea.
double mainRiverArea(const Valley& valley);

} // namespace catchment
