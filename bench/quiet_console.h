// Whole runs in a benchmark: the console goes nowhere while they last.
#pragma once

#include "host/console.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace gridforge {

class QuietConsole {
public:
    QuietConsole() : console_(dup(STDOUT_FILENO))
    {
        flushConsole();
        std::fflush(stdout);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    ~QuietConsole()
    {
        flushConsole();
        dup2(console_, STDOUT_FILENO);
        close(console_);
    }
    QuietConsole(const QuietConsole&) = delete;
    QuietConsole& operator=(const QuietConsole&) = delete;

private:
    int console_;
};

} // namespace gridforge
