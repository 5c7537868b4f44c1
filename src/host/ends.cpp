#include "host/ends.h"

#include "core/product.h"
#include "host/progress.h"

#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>

namespace gridforge::inline host {

namespace {

EndHandler& endHandler()
{
    static EndHandler handler = nullptr;
    return handler;
}

CloseOpenFiles& fileCloser()
{
    static CloseOpenFiles closer = nullptr;
    return closer;
}

void closeFiles()
{
    if (fileCloser() != nullptr) {
        fileCloser()();
    }
}

// What is still buffered goes to its file first: an end of the run is no reason to lose output.
[[noreturn]] void endProcess()
{
    closeFiles();
    flushConsole();
    endProgress();
    if (endHandler() != nullptr) {
        endHandler()();
    }
    std::exit(EXIT_SUCCESS);
}

} // namespace

void closeFilesAtEnd(CloseOpenFiles close)
{
    fileCloser() = close;
}

void replaceProcessEnd(EndHandler handler)
{
    endHandler() = handler;
}

void EXITS()
{
    closeFiles();
    say("");
    pause("Press Enter to Close");
    endProcess();
}

void pauseExit()
{
    pauseForEnter();
    endProcess();
}

void endNow()
{
    endProcess();
}

void endFinished(bool batch)
{
    closeFiles();
    say("Finished.");
    if (!batch) {
        pauseForEnter();
    }
    endProcess();
}

void failLine(std::string_view message, std::string_view line)
{
    say(message);
    fail(line);
}

void shouldNotBeHere(std::string_view place)
{
    fail("Should not be here [", place, "] - please contact ", kSupportContact, ".");
}

void failMemory()
{
    fail("ERROR - Could not allocate enough memory (RAM).");
}

void runToItsEnd(const std::function<void()>& work)
{
    try {
        work();
    } catch (const std::bad_alloc&) {
        failMemory();
    } catch (const std::length_error&) { // more than a vector or a text can ever hold
        failMemory();
    } catch (const std::exception&) {
        shouldNotBeHere("main");
    }
}

} // namespace gridforge::inline host
