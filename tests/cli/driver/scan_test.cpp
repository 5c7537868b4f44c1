// Messages of the flag scan.
#include "support/consoles.h"
#include "support/expect_run.h"

namespace gridforge::test {
namespace {

const std::string kReadFailure = "ERROR - Reading row       0 of .asc file";
const std::string kTooMany =
    "ERROR - More the 100 input files specified. Please contact SUPPORT_CONTACT to get this raised.";

TEST(ScanCli, RefusesAnArgumentThatIsNoFlag)
{
    for (const std::string argument : {"-h", "/?", "--max", "-", "-9999", "-ma", "\x96zz", "-help me"}) {
        expectRun({argument, "a.asc"}, refused({"ERROR - Incorrect flag specified: \"" + argument + "\""}));
    }
}

TEST(ScanCli, StopsAtTheFirstFlagThatIsWrong)
{
    expectRun({"-fb1", "-q", "-cd"}, refused({"CHECK - Free boarding specified, use IDW interporation.",
                                              "ERROR - Incorrect flag specified: \"-q\""}));
}

TEST(ScanCli, CutoffNeedsItsValueGlued)
{
    const std::string message =
        "ERROR - Unable to read value of cutoff depth, ensure no space between flag and value: ";
    expectRun({"-cd", "0.1"}, refused({message + "\"-cd\""}));
    expectRun({"/CD"}, refused({message + "\"/CD\""}));
    expectRun({"-cd  "}, refused({message + "\"-cd\""}));
}

TEST(ScanCli, DistancesNeedTheirValueGlued)
{
    expectRun({"-cpsd", "500"},
              refused({"ERROR - Unable to read value of calibration point search distance (cpsd).",
                       "   Please ensure no space exists between flag and value (e.g. cpsd500). Read argument: "
                       "\"-cpsd\""}));
    expectRun({"-cpmm", "100"},
              refused({"ERROR - Unable to read value of calib point min/max search distance (cpmm).",
                       "   Please ensure NO space exists between flag and value (e.g. cpmm100). Read argument: "
                       "\"-cpmm\""}));
    expectRun({"/LPMD", "500"},
              refused({"ERROR - Unable to read value of long profile distance (lpmd).",
                       "   Please ensure NO space exists between flag and value (e.g. lpmd500). Read argument: "
                       "\"/LPMD\""}));
}

// Each glued flag with text, with nothing where no other check comes first, and integers with a real or out of range.
TEST(ScanCli, NumberThatCannotBeReadSpeaksOfARow)
{
    for (const std::string argument : {"-cdx",        "-cd0.1m",
                                       "-cd\"1\"",    "-cd1..2",
                                       "-resize",     "-resize2.5",
                                       "-resizex",    "-trans_m",
                                       "-trans_mx",   "-trans_c",
                                       "-trans_cx",   "-cpsdx",
                                       "-cpmmx",      "-lpmdx",
                                       "-nc_comp",    "-nc_comp2.5",
                                       "-nc_shuffle", "-nc_shufflex",
                                       "-nc_part",    "-nc_partx",
                                       "-idw_npt",    "-idw_npt3000000000",
                                       "-default_n",  "-default_nx",
                                       "-decimal",    "-decimal1e1"}) {
        expectRun({argument, "-change", "a.asc"}, failed({kReadFailure}));
    }
}

TEST(ScanCli, FreeboardSaysThatItUsesIdw)
{
    const std::string check = "CHECK - Free boarding specified, use IDW interporation.";
    expectRun({"-fb"}, failed({check, kReadFailure}));
    expectRun({"-fbx"}, failed({check, kReadFailure}));
    expectRun({"-fb0", "-q"}, refused({check, "ERROR - Incorrect flag specified: \"-q\""}));
    expectRun({"-fbNaN", "-q"}, refused({check, "ERROR - Incorrect flag specified: \"-q\""}));
}

TEST(ScanCli, FreeboardBelowZeroEndsAtOnce)
{
    expectRun({"-fb-0.1", "-q"}, Lines{kBanner, "CHECK - Free boarding specified, use IDW interporation.",
                                       "ERROR - Freeboard can not be less than 0."});
}

TEST(ScanCli, BufferDistanceSaysThatItUsesIdw)
{
    const std::string check = "CHECK - Buffer distance specified, use IDW interporation.";
    expectRun({"-bd"}, failed({check, kReadFailure}));
    expectRun({"-bd5m"}, failed({check, kReadFailure}));
    expectRun({"-bd0.0011", "-q"}, refused({check, "ERROR - Incorrect flag specified: \"-q\""}));
}

TEST(ScanCli, BufferDistanceOfAThousandthOrLessEndsAtOnce)
{
    for (const std::string argument : {"-bd0.001", "-bd0", "-bd-5", "-bdNaN", "-bd,"}) {
        expectRun({argument, "-q"}, Lines{kBanner, "CHECK - Buffer distance specified, use IDW interporation.",
                                          "ERROR - Buffer distance can not be less than or equal to 0."});
    }
}

TEST(ScanCli, RankIsAnnounced)
{
    expectRun({"-statRank7", "-statRank-2", "-statRankAll", "-q"},
              refused({"Adding Rank: 7", "Adding Rank: -2", "ERROR - Incorrect flag specified: \"-q\""}));
}

TEST(ScanCli, RankNeedsAllOrAnInteger)
{
    const std::string message = "ERROR - Reading \"-statRank\" should be followed by \"All\" or integer rank instead: ";
    expectRun({"-statRank"}, refused({message + "\"\""}));
    expectRun({"-statRankx"}, refused({message + "\"x\""}));
    expectRun({"-statRank2.5"}, refused({message + "\"2.5\""}));
    expectRun({"-statrank5"}, refused({message + "\"atrank5\""}));
    expectRun({"-STATRANK5"}, refused({message + "\"ATRANK5\""}));
}

TEST(ScanCli, StatisticMustBeNamed)
{
    const std::string message =
        "ERROR - Expecting  one of \"All\", \"Mean\", \"Median\", \"Min\", \"Max\", \"Frac\", \"Rank<>\". Found: ";
    expectRun({"-stat"}, refused({message + "\"-stat\""}));
    expectRun({"/Status"}, refused({message + "\"/Status\""}));
}

TEST(ScanCli, More2000NamesEndTheRunWithTheMessageThatSays100)
{
    Lines arguments(2000, "a.asc");
    arguments.emplace_back("-q"); // shows that 2000 passed
    expectRun(arguments, refused({"ERROR - Incorrect flag specified: \"-q\""}));

    arguments.insert(arguments.begin(), "a.asc");
    expectRun(arguments, failed({kTooMany}));
}

TEST(ScanCli, ValuesThatJoinTheInputsAreCountedToo)
{
    for (const std::string flag : {"-nbc", "-damages", "-rf", "-wl"}) {
        Lines arguments(2000, "a.asc");
        arguments.insert(arguments.end(), {flag, "x", "-q"});
        expectRun(arguments, failed({kTooMany}));
    }
}

} // namespace
} // namespace gridforge::test
