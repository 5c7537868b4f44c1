// The text of an .xyz file in memory: points out of it by the fast path and line by line, beside the cell parser on the
// same text.
#include "grid/asc_parse.h"
#include "ops/xyz_cells.h"
#include "ops/xyz_parse.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge {
namespace {

constexpr std::size_t kColumns = 1000;
constexpr std::size_t kPoints = 1'000'000;

// Ground heights on a lattice of 2, a row after the other.
std::string textOf(const char* form)
{
    std::mt19937 random(1);
    std::string text;
    std::vector<char> line(128);
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double x = 293000.0 + 2.0 * static_cast<double>(i % kColumns);
        const std::size_t row = i / kColumns;
        const double y = 6178000.0 + 2.0 * static_cast<double>(row);
        const double z = static_cast<double>(random() % 200000) / 1000 - 20;
        text.append(line.data(), static_cast<std::size_t>(std::snprintf(line.data(), line.size(), form, x, y, z)));
    }
    return text;
}

struct Points {
    std::vector<double> x = std::vector<double>(kPoints);
    std::vector<double> y = std::vector<double>(kPoints);
    std::vector<float> z = std::vector<float>(kPoints);
};

void setRate(benchmark::State& state, const std::string& text)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

void plainPoints(benchmark::State& state, const std::string& text)
{
    const std::string window = text + std::string(64, ' ');
    Points points;
    for (auto _ : state) {
        if (ops::parsePlainPoints(window, points.x, points.y, points.z).count != kPoints) {
            state.SkipWithError("point refused");
        }
        benchmark::DoNotOptimize(points.z.data());
    }
    setRate(state, text);
}

void linePoints(benchmark::State& state, const std::string& text)
{
    Points points;
    for (auto _ : state) {
        std::string_view rest = text;
        for (std::size_t i = 0; i < kPoints; ++i) {
            const std::size_t end = rest.find('\n');
            const std::size_t width = rest[end - 1] == '\r' ? end - 1 : end;
            if (!ops::parsePoint(rest.substr(0, width), points.x[i], points.y[i], points.z[i])) {
                state.SkipWithError("point refused");
            }
            rest.remove_prefix(end + 1);
        }
        benchmark::DoNotOptimize(points.z.data());
    }
    setRate(state, text);
}

void cellParser(benchmark::State& state, const std::string& text)
{
    std::vector<float> row(3 * kColumns);
    for (auto _ : state) {
        std::string_view rest = text;
        for (std::size_t i = 0; i < kPoints / kColumns; ++i) {
            grid::AscRowState rowState;
            std::size_t consumed = 0;
            if (parseAscRow(rowState, rest, true, consumed, row) != grid::AscRow::done) {
                state.SkipWithError("row refused");
            }
            rest.remove_prefix(consumed);
        }
        benchmark::DoNotOptimize(row.data());
    }
    setRate(state, text);
}

void lineEnds(benchmark::State& state, const std::string& text)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(ops::countLineEnds(text));
    }
    setRate(state, text);
}

void intoCells(benchmark::State& state, const std::string& text)
{
    Points points;
    ops::parsePlainPoints(text + std::string(64, ' '), points.x, points.y, points.z);
    Grid cells;
    if (!cells.allocate(kPoints / kColumns, kColumns)) {
        state.SkipWithError("no memory");
    }
    for (auto _ : state) {
        const ops::PointExtents extents = ops::findExtents(points.x, points.y, 0.5F, 0.5F);
        sortIntoCells(points.x, points.y, points.z, extents, cells);
        benchmark::DoNotOptimize(cells.cells().data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(kPoints));
}

const std::string kBlanks = textOf("%.2f %.2f %.3f\n");
const std::string kCommas = textOf("%.3f,%.3f,%.3f\r\n");

BENCHMARK_CAPTURE(plainPoints, blanks, kBlanks);
BENCHMARK_CAPTURE(cellParser, blanks, kBlanks);
BENCHMARK_CAPTURE(linePoints, blanks, kBlanks);
BENCHMARK_CAPTURE(plainPoints, commas, kCommas);
BENCHMARK_CAPTURE(cellParser, commas, kCommas);
BENCHMARK_CAPTURE(linePoints, commas, kCommas);
BENCHMARK_CAPTURE(lineEnds, blanks, kBlanks);
BENCHMARK_CAPTURE(intoCells, blanks, kBlanks);

} // namespace
} // namespace gridforge
