// A run on files and a console in memory, while an object of this lives.
#pragma once

#include "host/console.h"
#include "host/memory/memory_system.h"
#include "host/units.h"

#include <string>
#include <string_view>

namespace gridforge::test {

class MemoryRun {
public:
    MemoryRun()
    {
        flushConsole();
        clearMemorySystem();
        useSystem(memorySystem());
        restartConsole();
        startUnits(1000);
    }
    ~MemoryRun()
    {
        closeAllUnits();
        endLine();
        flushConsole();
        useSystem(nativeSystem());
        restartConsole();
    }
    MemoryRun(const MemoryRun&) = delete;
    MemoryRun& operator=(const MemoryRun&) = delete;

    // What the console was told since the last call.
    static std::string console()
    {
        endLine();
        flushConsole();
        return takeMemoryConsole();
    }
};

} // namespace gridforge::test
