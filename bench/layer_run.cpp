// Writes or reads one whole layer, as a process of its own that can be timed beside other tools:
//   layer_run points <count> <file> | layer_run polygons <count> <file> | layer_run read <file>
#include "support/bench_layers.h"

#include "host/console.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    using namespace gridforge;
    const std::string action = argc > 1 ? argv[1] : "";
    if (action == "read" && argc == 3) {
        say("Objects: ", bench::readLayer(argv[2]).objects);
    } else if (action == "points" && argc == 4) {
        bench::writePoints(argv[3], std::atoi(argv[2]));
    } else if (action == "polygons" && argc == 4) {
        bench::writePolygons(argv[3], std::atoi(argv[2]));
    } else {
        std::fputs("usage: layer_run points|polygons <count> <file>, layer_run read <file>\n", stderr);
        return 1;
    }
    flushConsole();
    return 0;
}
