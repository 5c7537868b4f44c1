// What operations compute where there is no number: in a .flt all bits of it are settled.
#include "support/rainfall_files.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace gridforge::test {
namespace {

constexpr double kEndless = std::numeric_limits<double>::infinity();
constexpr std::string_view kQuiet("\x00\x00\xc0\x7f", 4);

std::string times(std::string_view text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

struct Computed {
    std::string arguments;
    std::string output;
    int cells;
};

void PrintTo(const Computed& computed, std::ostream* out)
{
    *out << computed.arguments;
}

class ComputedNotANumber : public testing::TestWithParam<Computed> {};

TEST_P(ComputedNotANumber, HasTheSameBitsWhateverComputesIt)
{
    ToolRun run(("-b " + GetParam().arguments).c_str());
    run.give("endless.flt", fltCells(Cells(2, std::vector<double>(6, kEndless))));
    run.give("odd.flt", times("\x45\x23\xc1\xff", 12)); // a not-a-number that no processor makes by itself
    run.give("mixed.flt", fltCells({{kEndless, -kEndless, kEndless, -kEndless, kEndless, -kEndless},
                                    {kEndless, -kEndless, kEndless, -kEndless, kEndless, -kEndless}}));
    run.give("zero.flt", fltCells(Cells(2, std::vector<double>(6, 0))));
    for (const std::string name : {"endless.hdr", "odd.hdr", "mixed.hdr", "zero.hdr"}) {
        run.give(name, hdr(6, 2));
    }
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(run.read(GetParam().output), times(kQuiet, GetParam().cells));
}

INSTANTIATE_TEST_SUITE_P(Operations, ComputedNotANumber,
                         testing::Values(Computed{"-dif endless.flt endless.flt -out r", "r.flt", 12},
                                         Computed{"-dif -change endless.flt endless.flt -out r", "r.flt", 12},
                                         Computed{"-trans_m0 endless.flt", "endless_trans.flt", 12},
                                         Computed{"-multiply endless.flt zero.flt -out r", "r.flt", 12},
                                         Computed{"-resize2 mixed.flt", "mixed_resize2.flt", 3},
                                         Computed{"-statMean endless.flt odd.flt -out r", "r_Mean_Val.flt", 12},
                                         Computed{"-remap -idw_npt1 -bd1 -wl endless.flt -dem zero.flt",
                                                  "endless_remap_h.flt", 12}));

TEST(NotANumber, ACellOnARainGaugeHasThoseBits)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kRainfallGrid + kTwoHyetographs +
                          "RF Interpolation Method == IDW\nRead GIS RF Points == gauges.mif\nRF Grid Format == flt\n");
    giveRainfallLayer(run, "gauges", mifPoint("105 205") + mifPoint("135 205"), "a,1,1\nb,1,1\n");
    run.start();
    // The cell in the south-west is the first of the last row.
    EXPECT_EQ(run.read("rain_t0..flt").substr(12, 4), kQuiet);
    EXPECT_EQ(run.read("rain_total.flt").substr(12, 4), kQuiet);
}

} // namespace
} // namespace gridforge::test
