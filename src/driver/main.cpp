// The entry of the tool.
#include "driver/run_tool.h"
#include "host/ends.h"
#include "host/progress.h"
#include "host/system.h"

int main(int argc, char** argv)
{
    gridforge::prepareProcess();
    gridforge::startProgress();
    gridforge::runToItsEnd([&] { gridforge::driver::runTool(gridforge::argumentsOf(argc, argv)); });
}
