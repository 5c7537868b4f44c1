// Whole layers written and read: a million points, a hundred thousand polygons.
#include "gis/layers.h"

#include "base/console.h"

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
constexpr int kRingVertices = 21;

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

void start()
{
    startUnits(1000);
    gisInitialise(-1, "", "", "");
    gisPrjLine() = "PROJCS[\"bench\"]";
    gisCoordSysLine() = "CoordSys NonEarth Units \"m\" Bounds (0, 0) (2000000, 2000000)";
    gisOutputAttributes().clear();
    gisOutputAttributes().add("Name", "Char", 20);
    gisOutputAttributes().add("Val", "Float");
}

std::int32_t openOutput(const std::string& name, const char* letters)
{
    start();
    const std::int32_t gisID = gisOpenLayer(folder() + name, letters, "O ");
    gisWriteHeader(gisID);
    return gisID;
}

void writePoints(const std::string& name)
{
    std::int32_t gisID = openOutput(name, "P");
    GisO gisO;
    gisO.point = true;
    for (int i = 0; i < kPoints; ++i) {
        gisOutputCoordinates().clear();
        gisOutputCoordinates().add(293000.0 + i * 0.37, 6178000.0 + (i % 1000) * 1.13);
        gisWriteObject(gisID, gisO);
        gisDataLine() = "\"point\",12.5";
        gisWriteRecord(gisID, gisO);
    }
    gisCloseLayer(gisID);
}

void writePolygons(const std::string& name)
{
    std::int32_t gisID = openOutput(name, "R");
    GisO gisO;
    gisO.region = true;
    for (int i = 0; i < kPolygons; ++i) {
        const double x = 293000.0 + i % 300 * 30.0;
        const double y = 6178000.0 + i / 300 * 30.0;
        gisOutputCoordinates().clear();
        for (int k = 0; k < kRingVertices - 1; ++k) {
            gisOutputCoordinates().add(x + (k < 10 ? k : 20 - k) * 1.01, y + (k < 10 ? 0.0 : 10.0) + k * 0.013);
        }
        gisOutputCoordinates().add(x, y);
        gisWriteObject(gisID, gisO);
        gisDataLine() = "\"region\",12.5";
        gisWriteRecord(gisID, gisO);
    }
    gisCloseLayer(gisID);
}

double readLayer(const std::string& name)
{
    start();
    std::int32_t gisID = gisOpenLayer(folder() + name, "", "I ");
    gisReadHeader(gisID);
    GisO gisO;
    GisCoordinates c;
    std::string line;
    double sum = 0;
    while (!gisLayer(gisID).layerEnd) {
        if (gisObjectType(gisID, gisO)) {
            gisReadRecord(gisID, gisO, line);
            gisReadObject(gisID, gisO, c, 1000000);
            sum += c.xc;
        }
    }
    gisCloseLayer(gisID);
    return sum;
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
        benchmark::DoNotOptimize(readLayer(input));
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
