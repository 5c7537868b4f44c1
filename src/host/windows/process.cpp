// The process itself, by the calls of Windows.
#include "host/system.h"
#include "host/windows/names.h"

#include <cstdlib>
#include <memory>
#include <windows.h>

#include <shellapi.h> // needs the types of windows.h

namespace gridforge::inline host {

namespace {

// --- Code page of the window, which the caller gets back -------------------------------------------------------------

UINT& callersCodePage()
{
    static UINT codePage = 0;
    return codePage;
}

void restoreCodePage()
{
    SetConsoleOutputCP(callersCodePage());
}

// By Ctrl+C or a window that closes. The process then ends as without this.
BOOL WINAPI restoreBeforeEnd(DWORD /*event*/)
{
    restoreCodePage();
    return FALSE;
}

// --- Standard streams ------------------------------------------------------------------------------------------------

// If the caller has closed a standard stream, the first file of the run might get its number, and the console's text would go into
// that file.
void forgetClosedStreams()
{
    for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        DWORD flags = 0;
        if (GetHandleInformation(GetStdHandle(stream), &flags) == 0) {
            SetStdHandle(stream, nullptr);
        }
    }
}

// --- Faults ----------------------------------------------------------------------------------------------------------

struct Guard {
    CONTEXT place = {}; // where a run goes on after a fault
    DWORD thread = 0;   // the guarded one; 0 for none
    volatile bool met = false;
};

Guard& guardInUse()
{
    static Guard guard;
    return guard;
}

LONG CALLBACK goOn(EXCEPTION_POINTERS* fault)
{
    Guard& guard = guardInUse();
    if (guard.thread != GetCurrentThreadId() || fault->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    guard.met = true;
    *fault->ContextRecord = guard.place;
    return EXCEPTION_CONTINUE_EXECUTION;
}

// --- Arguments -------------------------------------------------------------------------------------------------------

struct FreeLocally {
    void operator()(wchar_t** memory) const { LocalFree(memory); }
};

// A dash that a word processor has put in place of "-" is one byte where texts are Windows-1252, and marks a flag.
std::string argument(std::wstring_view text)
{
    constexpr wchar_t kEnDash = 0x2013;
    constexpr char kWesternEnDash = '\x96';
    return text.starts_with(kEnDash) ? kWesternEnDash + narrow(text.substr(1)) : narrow(text);
}

} // namespace

void prepareProcess()
{
    forgetClosedStreams();
    callersCodePage() = GetConsoleOutputCP();
    if (callersCodePage() != 0 && SetConsoleOutputCP(CP_UTF8) != 0) {
        std::atexit(restoreCodePage);
        SetConsoleCtrlHandler(restoreBeforeEnd, TRUE);
    }
    // A drive without a disk, or a fault of the tool, is an error here, not a window that waits for somebody.
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

// From the system, because those of `main` have lost what the code page lacks.
std::vector<std::string> argumentsOf(int /*argc*/, char** /*argv*/)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, FreeLocally> texts(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        arguments.push_back(argument(texts.get()[i]));
    }
    return arguments;
}

std::optional<std::string> processVariable(const char* name)
{
    const wchar_t* const value = _wgetenv(wide(name).c_str());
    return value == nullptr ? std::nullopt : std::optional(narrow(value));
}

void runGuarded(const std::function<void()>& work)
{
    Guard& guard = guardInUse();
    guard.met = false;
    guard.thread = GetCurrentThreadId();
    void* const handler = AddVectoredExceptionHandler(1, goOn);
    RtlCaptureContext(&guard.place);
    if (!guard.met) {
        work();
    }
    RemoveVectoredExceptionHandler(handler);
    guard.thread = 0;
}

} // namespace gridforge::inline host
