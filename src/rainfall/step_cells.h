// The rain of one time step in cells: it is set in `step` and, where there is rain, added to `total`. All spans are of one
// length, except what is looked up.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::rainfall {

// The depth of the cell's hyetograph, `depths` by number, times its factor; null where the number is not above 0.
void rainByHyetograph(std::span<const float> depths, std::span<const std::int32_t> hyetographs,
                      std::span<const float> factors, float null, std::span<float> step, std::span<float> total);

// A place in a triangle, from 1: null without one, which leaves the total.
struct TrianglePlaces {
    std::span<const std::int32_t> triangle;
    std::span<const float> ratioA; // along the edge from vertex 1 to vertex 2
    std::span<const float> ratioB; // from vertex 3 to that edge
};
// `corners` holds the rain at the vertices of each triangle.
void rainByTriangle(std::span<const std::array<float, 3>> corners, const TrianglePlaces& places, float null,
                    std::span<float> step, std::span<float> total);

// Adds value times weight over one row, the weights point by point. Each cell adds in the order of the points.
void addWeighted(std::span<const float> values, std::span<const float> weights, std::span<double> sums);

// Lists of the nearest points of a row of cells, each `length` places long, of which the first `counts` are filled.
struct PointLists {
    std::size_t length = 0;
    std::span<const std::int32_t> counts;
    std::span<const std::int32_t> points; // places in the values
    std::span<const float> weights;
};
// Sets the sums of value times weight over each list.
void sumListed(std::span<const float> values, const PointLists& lists, std::span<double> sums);

// The sum of what is weighted over that of the weights: not-a-number without weights, and so is the total.
void rainByWeights(std::span<const double> sums, std::span<const double> weightSums, std::span<float> step,
                   std::span<float> total);

} // namespace gridforge::rainfall
