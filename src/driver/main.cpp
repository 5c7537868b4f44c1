// The entry of the tool.
#include "driver/run_tool.h"
#include "host/ends.h"

#include <csignal>
#include <exception>
#include <fcntl.h>
#include <new>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// A standard stream that the caller has closed would lend its number to the first file of the run, and the console's text
// would go into that file.
void keepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1) {
            [[maybe_unused]] const int null = open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    keepStandardStreams();
    // A console that nobody reads any more must not stop a run from writing its files.
    std::signal(SIGPIPE, SIG_IGN);
    // A file that grows past a limit of the system is a write that fails, and says so.
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        gridforge::runTool({argv + (argc > 0 ? 1 : 0), argv + argc});
    } catch (const std::bad_alloc&) {
        gridforge::failMemory();
    } catch (const std::length_error&) { // more than a vector or a text can ever hold
        gridforge::failMemory();
    } catch (const std::exception&) {
        gridforge::shouldNotBeHere("main");
    }
}
