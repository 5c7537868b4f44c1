// Code on layers in a process of its own: what it says on the console.
#pragma once

#include "gis/layer_table.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/scratch_folder.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {

inline ChildRun runOnLayers(const ScratchFolder& folder, const std::function<void()>& code)
{
    ChildRun run = runInChild(folder, [&] {
        gis::initialise();
        code();
    });
    EXPECT_EQ(run.status, 0);
    return run;
}

inline std::string consoleOf(const ScratchFolder& folder, const std::function<void()>& code)
{
    const ChildRun run = runOnLayers(folder, code);
    EXPECT_EQ(run.errors, "");
    return run.console;
}

// The console of a run that the code must end by itself, up to the last pause.
inline std::string endOf(const ScratchFolder& folder, const std::function<void()>& code)
{
    const ChildRun run = runOnLayers(folder, code);
    EXPECT_TRUE(run.ended) << run.console;
    EXPECT_THAT(run.console, testing::EndsWith("\n" + kExits));
    return run.console;
}

} // namespace gridforge::test
