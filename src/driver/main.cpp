// The entry of the tool.
#include "driver/run_tool.h"
#include "host/ends.h"
#include "host/progress.h"
#include "host/system.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    gridforge::prepareProcess();
    gridforge::startProgress();
    try {
        gridforge::driver::runTool({argv + (argc > 0 ? 1 : 0), argv + argc});
    } catch (const std::bad_alloc&) {
        gridforge::failMemory();
    } catch (const std::length_error&) { // more than a vector or a text can ever hold
        gridforge::failMemory();
    } catch (const std::exception&) {
        gridforge::shouldNotBeHere("main");
    }
}
