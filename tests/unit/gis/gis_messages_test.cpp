#include "gis/gis_messages.h"

#include "support/layer_runs.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

TEST(GisReportMessage, OlderLinesShowBehindAShorterMessage)
{
    const ScratchFolder folder;
    EXPECT_EQ(consoleOf(folder,
                        [] {
                            gis::gisWarn("first", "second", "third");
                            gis::gisWarn("new first");
                            gis::gisReportMessage(0);
                        }),
              "\nfirst\nsecond\nthird\n\nnew first\nsecond\nthird\nnew first\nsecond\nthird\n");
}

} // namespace
} // namespace gridforge::test
