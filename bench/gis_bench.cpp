// Whole layers written and read: a million points, a hundred thousand polygons.
#include "support/bench_layers.h"

#include "host/console.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace gridforge {
namespace {

constexpr int kPoints = 1'000'000;
constexpr int kPolygons = 100'000;

const std::string& folder()
{
    static const std::string theFolder = [] {
        std::string pattern = "/tmp/gridforge-bench-XXXXXX";
        std::string made = mkdtemp(pattern.data());
        std::atexit([] { std::filesystem::remove_all(folder()); });
        return made + "/";
    }();
    return theFolder;
}

// Layers talk of their files; the report of the benchmark stays readable without that.
class Silence {
public:
    Silence() : kept_(dup(STDOUT_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    ~Silence()
    {
        flushConsole();
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int kept_;
};

void writePoints(const std::string& name)
{
    bench::writePoints(folder() + name, kPoints);
}

void writePolygons(const std::string& name)
{
    bench::writePolygons(folder() + name, kPolygons);
}

void writeLayer(benchmark::State& state, void (*write)(const std::string&), const char* name)
{
    const Silence silence;
    for (auto _ : state) {
        write(name);
    }
}

void readBack(benchmark::State& state, void (*write)(const std::string&), const char* output, const char* input)
{
    const Silence silence;
    write(output);
    for (auto _ : state) {
        benchmark::DoNotOptimize(bench::readLayer(folder() + input));
    }
}

BENCHMARK_CAPTURE(writeLayer, mif_points, writePoints, "p.mif")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readBack, mif_points, writePoints, "p.mif", "p.mif")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeLayer, mif_polygons, writePolygons, "r.mif")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readBack, mif_polygons, writePolygons, "r.mif", "r.mif")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeLayer, shp_points, writePoints, "p.shp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readBack, shp_points, writePoints, "p.shp", "p_P.shp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeLayer, shp_polygons, writePolygons, "r.shp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readBack, shp_polygons, writePolygons, "r.shp", "r_R.shp")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace gridforge
