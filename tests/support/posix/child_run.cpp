#include "support/child_run.h"

#include "host/console.h"
#include "host/units.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace gridforge::test {

namespace {

constexpr int kCodeReturned = 77;

void redirect(const std::string& name, int flags, int target)
{
    const int descriptor = open(name.c_str(), flags, 0600);
    if (descriptor < 0 || dup2(descriptor, target) < 0) {
        _exit(EXIT_FAILURE);
    }
    close(descriptor);
}

// A run that ends in the process of the tests itself ends them with the status of a good run: as if all had passed.
class EndWatch {
public:
    EndWatch()
    {
        static const pid_t tests = getpid();
        std::atexit([] {
            if (getpid() == tests && testing::UnitTest::GetInstance()->current_test_info() != nullptr) {
                std::fputs("The run has ended within a test.\n", stderr);
                _exit(EXIT_FAILURE);
            }
        });
    }
};

const EndWatch kEndWatch;

} // namespace

ChildRun runInChild(const ScratchFolder& folder, const std::function<void()>& code, std::string_view input)
{
    const ScratchFolder talk;
    talk.give("input", input);
    const std::string in = (talk.path() / "input").string();
    const std::string out = (talk.path() / "console").string();
    const std::string err = (talk.path() / "errors").string();
    // What this process has not written yet must not be written by the child as well.
    endLine();
    flushConsole();
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        ADD_FAILURE() << "no new process";
        return {};
    }
    if (child == 0) {
        redirect(in, O_RDONLY, STDIN_FILENO);
        redirect(out, O_WRONLY | O_CREAT, STDOUT_FILENO);
        redirect(err, O_WRONLY | O_CREAT, STDERR_FILENO);
        if (chdir(folder.path().c_str()) != 0) {
            _exit(EXIT_FAILURE);
        }
        startUnits(1000);
        code();
        closeAllUnits();
        flushConsole();
        _exit(kCodeReturned);
    }
    int state = 0;
    waitpid(child, &state, 0);
    ChildRun run;
    run.console = readWhole(out);
    run.errors = readWhole(err);
    if (WIFEXITED(state)) {
        run.ended = WEXITSTATUS(state) != kCodeReturned;
        run.status = run.ended ? WEXITSTATUS(state) : 0;
    }
    return run;
}

} // namespace gridforge::test
