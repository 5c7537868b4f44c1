// The entry of the tool.
#include "driver/run_tool.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/system.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Memory may have run out in the middle of a line.
[[noreturn]] void failMemoryAnywhere()
{
    gridforge::endLine();
    gridforge::failMemory();
}

} // namespace

int main(int argc, char** argv)
{
    gridforge::prepareProcess();
    try {
        gridforge::runTool({argv + (argc > 0 ? 1 : 0), argv + argc});
    } catch (const std::bad_alloc&) {
        failMemoryAnywhere();
    } catch (const std::length_error&) { // more than a vector or a text can ever hold
        failMemoryAnywhere();
    } catch (const std::exception&) {
        gridforge::shouldNotBeHere("main");
    }
}
