// Windows cannot copy a process. The code runs in that of the test: its standard streams are files meanwhile, and the end of the
// run comes back as an exception. What the code leaves in the message record, as the unit of a log, is taken back.
#include "support/child_run.h"

#include "host/console.h"
#include "host/ends.h"
#include "host/messages.h"
#include "host/system.h"
#include "host/units.h"

#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <utility>
#include <windows.h>

namespace gridforge::test {

namespace {

struct EndOfRun {};

// A file in place of a standard stream, while this lives.
class Redirected {
public:
    Redirected(DWORD stream, const std::filesystem::path& name) : stream_(stream), usual_(GetStdHandle(stream))
    {
        file_ = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        EXPECT_NE(file_, INVALID_HANDLE_VALUE) << name;
        SetStdHandle(stream_, file_);
    }
    ~Redirected()
    {
        SetStdHandle(stream_, usual_);
        CloseHandle(file_);
    }
    Redirected(const Redirected&) = delete;
    Redirected& operator=(const Redirected&) = delete;

private:
    DWORD stream_;
    HANDLE usual_;
    HANDLE file_ = INVALID_HANDLE_VALUE;
};

// False where the code ended the run.
bool runsToItsLastLine(const std::function<void()>& code)
{
    bool last = false;
    replaceProcessEnd([] { throw EndOfRun(); });
    try {
        startUnits(1000);
        code();
        last = true;
    } catch (const EndOfRun&) {
    }
    replaceProcessEnd(nullptr);
    closeAllUnits();
    flushConsole();
    return last;
}

} // namespace

ChildRun runInChild(const ScratchFolder& folder, const std::function<void()>& code, std::string_view input)
{
    const ScratchFolder talk;
    talk.give("input", input);
    ChildRun run;
    endLine();
    flushConsole();
    const auto record = std::make_unique<MessageRecord>(DMESSAGES());
    const std::filesystem::path usual = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    {
        const Redirected in(STD_INPUT_HANDLE, talk.path() / "input");
        const Redirected out(STD_OUTPUT_HANDLE, talk.path() / "console");
        const Redirected err(STD_ERROR_HANDLE, talk.path() / "errors");
        restartConsole();
        run.ended = !runsToItsLastLine(code);
        run.status = 0;
    }
    std::filesystem::current_path(usual);
    useSystem(nativeSystem());
    restartConsole();
    DMESSAGES() = *record;
    run.console = readWhole(talk.path() / "console");
    run.errors = readWhole(talk.path() / "errors");
    return run;
}

} // namespace gridforge::test
