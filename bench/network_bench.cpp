// Matching of sections to branches: networks of 125 to 2000 branches of 20 vertices with five sections on each, and one
// branch of up to 10000 vertices with as many sections. Time per vertex should stay about the same. The plain form, every
// branch, vertex and segment, stands beside for the networks.
#include "host/console.h"
#include "network/match.h"
#include "network/records.h"
#include "plane/geometry.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using namespace gridforge;

struct Network {
    network::NbcBranches branches;
    network::NbcSections sections;
    std::int64_t vertices = 0;
};

void addBranch(Network& network, std::vector<double> x, std::vector<double> y)
{
    network::NbcBranch& branch = network.branches.all.emplace_back();
    branch.x = std::move(x);
    branch.y = std::move(y);
    branch.chainage.assign(branch.x.size(), 0.0F);
    for (std::size_t v = 1; v < branch.x.size(); ++v) {
        branch.chainage[v] =
            branch.chainage[v - 1] + DISTANCE_8(branch.x[v - 1], branch.y[v - 1], branch.x[v], branch.y[v]);
    }
    branch.extent = network::extentOf(branch.x, branch.y);
    network.vertices += static_cast<std::int64_t>(branch.x.size());
}

// Of five vertices across (x, y), the first segment over it.
void addSection(Network& network, double x, double y)
{
    network::NbcSection& section = network.sections.all.emplace_back();
    section.x = {x, x, x, x, x};
    section.y = {y - 7, y + 5, y + 6, y + 7, y + 8};
    section.extent = network::extentOf(section.x, section.y);
    network.vertices += 5;
}

// Wavy branches side by side in a square of the size that keeps them apart.
Network manyBranches(std::int64_t count)
{
    constexpr int kVertices = 20;
    constexpr int kSections = 5;
    const auto columns = static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    Network network;
    for (std::int64_t b = 0; b < count; ++b) {
        const std::int64_t row = b / columns;
        const auto x0 = static_cast<double>(b % columns) * 250;
        const auto y0 = static_cast<double>(row) * 40;
        std::vector<double> x;
        std::vector<double> y;
        for (int v = 0; v < kVertices; ++v) {
            x.push_back(x0 + v * 12);
            y.push_back(y0 + 5 * std::sin(v));
        }
        addBranch(network, x, y);
        for (int s = 0; s < kSections; ++s) {
            addSection(network, x0 + 40 * s + 7, y0);
        }
    }
    return network;
}

Network longBranch(std::int64_t count)
{
    Network network;
    std::vector<double> x;
    std::vector<double> y;
    for (std::int64_t v = 0; v < count; ++v) {
        x.push_back(static_cast<double>(v) * 12);
        y.push_back(5 * std::sin(static_cast<double>(v)));
    }
    addBranch(network, x, y);
    for (std::int64_t s = 0; s + 1 < count; ++s) {
        addSection(network, static_cast<double>(s) * 12 + 7, 0);
    }
    return network;
}

// Standard output goes nowhere: the matching prints what it does.
class Quiet {
public:
    Quiet() : kept_(dup(STDOUT_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    ~Quiet()
    {
        flushConsole();
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    int kept_;
};

std::size_t met(const network::NbcSections& sections)
{
    std::size_t count = 0;
    for (const network::NbcSection& section : sections.all) {
        count += section.intersected || section.snapped ? 1 : 0;
    }
    return count;
}

template <typename Match>
void measure(benchmark::State& state, const Network& network, Match match)
{
    Network work = network;
    {
        const Quiet quiet;
        for (auto _ : state) {
            for (network::NbcBranch& branch : work.branches.all) {
                branch.sections.clear();
            }
            match(work.branches, work.sections);
        }
    }
    if (met(work.sections) != work.sections.all.size()) {
        state.SkipWithError("a section met nothing");
    }
    state.SetItemsProcessed(state.iterations() * network.vertices);
}

void plainMatch(network::NbcBranches& branches, network::NbcSections& sections)
{
    for (network::NbcSection& section : sections.all) {
        section.snapped = false;
        section.intersected = false;
        for (const network::NbcBranch& branch : branches.all) {
            const Box& e = branch.extent;
            const Box& s = section.extent;
            if (e.xmin > s.xmax || e.ymin > s.ymax || e.xmax < s.xmin || e.ymax < s.ymin) {
                continue;
            }
            for (std::size_t v = 0; v < branch.x.size(); ++v) {
                for (std::size_t w = 1; w < section.x.size() && !section.snapped; ++w) {
                    section.snapped = std::abs(branch.x[v] - section.x[w]) <= static_cast<double>(0.001F) &&
                                      std::abs(branch.y[v] - section.y[w]) <= static_cast<double>(0.001F);
                }
            }
            for (std::size_t v = 1; v < branch.x.size() && !section.intersected; ++v) {
                section.intersected = INTERSECT_LINE_V2_8(branch.x[v - 1], branch.y[v - 1], branch.x[v], branch.y[v],
                                                          section.x[0], section.y[0], section.x[1], section.y[1]) == 3;
            }
        }
    }
}

void branches(benchmark::State& state)
{
    measure(state, manyBranches(state.range(0)), network::nbc_match_sections);
}
BENCHMARK(branches)->Arg(125)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

void branchesPlain(benchmark::State& state)
{
    measure(state, manyBranches(state.range(0)), plainMatch);
}
BENCHMARK(branchesPlain)->Arg(125)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond);

void oneBranch(benchmark::State& state)
{
    measure(state, longBranch(state.range(0)), network::nbc_match_sections);
}
BENCHMARK(oneBranch)->Arg(625)->Arg(1250)->Arg(2500)->Arg(5000)->Arg(10000)->Unit(benchmark::kMillisecond);

void oneBranchPlain(benchmark::State& state)
{
    measure(state, longBranch(state.range(0)), plainMatch);
}
BENCHMARK(oneBranchPlain)->Arg(625)->Arg(2500)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
