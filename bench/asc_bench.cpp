// The text of .asc grids in memory: cells out of text and into text, beside plain loops over the standard library's
// conversions, and the extremes that the writer looks for first.
#include "grid/asc_format.h"
#include "grid/asc_parse.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace gridforge {
namespace {

constexpr std::size_t kColumns = 2000;
constexpr std::size_t kRows = 500;
constexpr int kWidth = 10;
constexpr int kDecimals = 3;

// Ground heights between -20 and 180 with a slope and some noise; a fifth of the cells, in runs, is null.
std::vector<float> heights()
{
    std::mt19937 random(1);
    std::vector<float> cells(kColumns * kRows);
    bool null = false;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (random() % 64 == 0) {
            null = random() % 5 == 0;
        }
        const double slope = 80 + 100 * std::sin(static_cast<double>(i) / 3000);
        cells[i] = null ? -9999.0F : static_cast<float>(slope + static_cast<double>(random() % 10000) / 7000);
    }
    return cells;
}

// Every cell its own size and sign, in no order: the worst case for what guesses the next length.
std::vector<float> jumble()
{
    std::mt19937 random(2);
    std::vector<float> cells(kColumns * kRows);
    for (float& cell : cells) {
        const double size = std::pow(10.0, static_cast<double>(random() % 5));
        cell = static_cast<float>((static_cast<double>(random()) / 4294967296.0 - 0.5) * size);
    }
    return cells;
}

std::string textOf(const std::vector<float>& cells, int width, int decimals)
{
    std::string text;
    std::vector<char> field(64);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        text.append(field.data(), static_cast<std::size_t>(std::snprintf(field.data(), field.size(), "%*.*f", width,
                                                                         decimals, static_cast<double>(cells[i]))));
        text += (i + 1) % kColumns == 0 ? "\r\n" : width == 0 ? "," : "";
    }
    return text;
}

void parse(benchmark::State& state, const std::string& text)
{
    std::vector<float> row(kColumns);
    for (auto _ : state) {
        std::string_view rest = text;
        for (std::size_t i = 0; i < kRows; ++i) {
            grid::AscRowState rowState;
            std::size_t consumed = 0;
            if (parseAscRow(rowState, rest, true, consumed, row) != grid::AscRow::done) {
                state.SkipWithError("row refused");
            }
            rest.remove_prefix(consumed);
        }
        benchmark::DoNotOptimize(row.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

void parseStandard(benchmark::State& state, const std::string& text)
{
    std::vector<float> row(kColumns);
    for (auto _ : state) {
        const char* at = text.data();
        const char* const end = at + text.size();
        for (std::size_t i = 0; i < kColumns * kRows; ++i) {
            while (*at == ' ' || *at == ',' || *at == '\r' || *at == '\n') {
                ++at;
            }
            at = std::from_chars(at, end, row[i % kColumns]).ptr;
        }
        benchmark::DoNotOptimize(row.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

void format(benchmark::State& state, const std::vector<float>& cells, int width, int decimals)
{
    std::vector<char> text(kColumns * static_cast<std::size_t>(width));
    for (auto _ : state) {
        for (std::size_t i = 0; i < kRows; ++i) {
            grid::formatAscRow(std::span(cells).subspan(i * kColumns, kColumns), width, decimals, text.data());
            benchmark::DoNotOptimize(text.data());
            benchmark::ClobberMemory();
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size() * kRows));
}

void formatStandard(benchmark::State& state, const std::vector<float>& cells, int width, int decimals)
{
    std::vector<char> text(kColumns * static_cast<std::size_t>(width) + 64);
    for (auto _ : state) {
        for (std::size_t i = 0; i < kRows; ++i) {
            char* out = text.data();
            for (const float cell : std::span(cells).subspan(i * kColumns, kColumns)) {
                out += std::snprintf(out, 64, "%*.*f", width, decimals, static_cast<double>(cell));
            }
            benchmark::DoNotOptimize(text.data());
            benchmark::ClobberMemory();
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(kColumns * kRows * static_cast<std::size_t>(width)));
}

void extremes(benchmark::State& state, const std::vector<float>& cells)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(grid::findExtremes(cells));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(cells.size() * sizeof(float)));
}

const std::vector<float> kHeights = heights();
const std::vector<float> kJumble = jumble();

BENCHMARK_CAPTURE(parse, heights, textOf(kHeights, kWidth, kDecimals));
BENCHMARK_CAPTURE(parseStandard, heights, textOf(kHeights, kWidth, kDecimals));
BENCHMARK_CAPTURE(parse, jumble, textOf(kJumble, kWidth, kDecimals));
BENCHMARK_CAPTURE(parseStandard, jumble, textOf(kJumble, kWidth, kDecimals));
BENCHMARK_CAPTURE(parse, commas, textOf(kJumble, 0, kDecimals));
BENCHMARK_CAPTURE(parseStandard, commas, textOf(kJumble, 0, kDecimals));
BENCHMARK_CAPTURE(parse, tenDecimals, textOf(kJumble, 17, 10));
BENCHMARK_CAPTURE(parseStandard, tenDecimals, textOf(kJumble, 17, 10));
BENCHMARK_CAPTURE(format, heights, kHeights, kWidth, kDecimals);
BENCHMARK_CAPTURE(formatStandard, heights, kHeights, kWidth, kDecimals);
BENCHMARK_CAPTURE(format, jumble, kJumble, kWidth, kDecimals);
BENCHMARK_CAPTURE(formatStandard, jumble, kJumble, kWidth, kDecimals);
BENCHMARK_CAPTURE(format, tenDecimals, kJumble, 17, 10);
BENCHMARK_CAPTURE(formatStandard, tenDecimals, kJumble, 17, 10);
BENCHMARK_CAPTURE(extremes, heights, kHeights);

} // namespace
} // namespace gridforge
