// Messages of the validation, in their order. "-change" alone passes as an operation and runs none, so what follows the
// validation is short.
#include "support/consoles.h"
#include "support/expect_run.h"

namespace gridforge::test {
namespace {

const std::string kNoOperation = "ERROR - No operational flag specified.";
const std::string kTwoOperations = "ERROR - More than one operational flag specified.";
const std::string kSource = "ERROR - The src switch is only used in combination with the min and max commands. Please "
                            "check your batch syntax.";
const std::string kRgb = "WARNING - RGB option only valid for classify operation. Flag ignored.";
const std::string kBothFormats = "WARNING - Both -asc and -flt specified.  Outputting to .flt grid.";
const std::string kGrc = "WARNING - \"-grc\" option only used with \"classify\". Flag ignored.";
const std::string kMat = "ERROR - \"-mat\" option only used with \"xs\". Flag ignored.";
const std::string kNoInput = kWildcards;

// The console of a run that passes the validation with `lines` and has no input.
Lines passed(Lines lines)
{
    lines.insert(lines.end(), {kNoInput, " ERROR - No valid files found."});
    return failed(lines);
}

TEST(ValidateCli, SourceSwitchBelongsToMinAndMax)
{
    expectRun({"-src", "-conv"}, failed({kSource}));
    expectRun({"-src", "-statMax"}, failed({kSource}));
    expectRun({"-src"}, failed({kSource})); // ahead of the missing operation
    expectRun({"-src", "-max"}, passed({}));
    expectRun({"-src", "-min"}, passed({}));
}

TEST(ValidateCli, OneOperationIsNeeded)
{
    expectRun({"a.asc"}, failed({kNoOperation}));
    expectRun({"-b"}, failed({kNoOperation}));
    expectRun({"-asc", "-tin"}, failed({kNoOperation}));
    expectRun({"-damages"}, failed({kNoOperation})); // counts when its value arrives
    expectRun({"-rf"}, failed({kNoOperation}));
}

TEST(ValidateCli, TwoOperationsAreRefused)
{
    for (const Lines& arguments : std::vector<Lines>{{"-max", "-min"},
                                                     {"-max", "-MAXIMA"},
                                                     {"-conv", "-trans_m2"},
                                                     {"-conv", "-statAll"},
                                                     {"-statMin", "-trans_c1"},
                                                     {"-count", "-count", "-cd1"},
                                                     {"-cd1", "-cd2"},
                                                     {"-dif", "-nowetdry"},
                                                     {"-change", "-nowetdry"},
                                                     {"-damages", "x", "-rf", "y"},
                                                     {"-nbc", "x", "-max"}}) {
        expectRun(arguments, refused({kTwoOperations}));
    }
}

TEST(ValidateCli, WhatCountsAsOneOperation)
{
    for (const Lines& arguments : std::vector<Lines>{{"-trans_m2", "-trans_c1", "-trans_m3"},
                                                     {"-statMin", "-statMax", "-statMean"},
                                                     {"-count", "-cd0.2"},
                                                     {"-dif", "-change"},
                                                     {"-dif", "-change", "-nowetdry"},
                                                     {"-dif", "-change", "-max"},
                                                     {"-nowetdry"},
                                                     {"-nbc"}}) {
        expectRun(arguments, passed({}));
    }
}

TEST(ValidateCli, ColoursAreIgnoredWithoutClassify)
{
    expectRun({"-RGB", "-change"}, passed({kRgb, kEnter}));
    expectRun({"-RGB", "-classify", "c.csv"}, passed({}));
}

TEST(ValidateCli, DifferenceOfOneFileIsRefused)
{
    expectRun({"-dif", "a.asc"}, refused({"ERROR - More than one file requried for -dif."}));
}

TEST(ValidateCli, DifferenceOfMoreThanThreeFilesIsRefused)
{
    expectRun({"-dif", "a", "b", "c", "d"}, refused({"ERROR - More than three files specified for -dif option."}));
}

TEST(ValidateCli, ThirdFileOfADifferenceNamesTheOutput)
{
    expectRun({"-dif", "-out", "old.flt", "a", "b", "new"},
              failed({"Using 3rd filename for setting output filename",
                      "Checking specified output name: new includes file extension...", kNoInput, "Input File  1: a",
                      "ERROR - No valid file found for input: a"}));
}

TEST(ValidateCli, DifferenceWithoutFilesGoesOnToTheInputs)
{
    expectRun({"-dif"}, passed({}));
}

TEST(ValidateCli, ExtensionOfTheOutputNameSetsTheFormat)
{
    expectRun({"-change", "-out", "r.ASC"}, passed({"Checking specified output name: r.ASC includes file extension...",
                                                    "Output file extension is .asc, setting output format to -asc."}));
    expectRun({"-change", "-out", "d.x\\r.Flt"},
              passed({"Checking specified output name: d.x\\r.Flt includes file extension...",
                      "Output file extension is .flt, setting output format to -flt."}));
}

TEST(ValidateCli, OtherExtensionsSetNothing)
{
    expectRun({"-change", "-out", "result.txt"},
              passed({"Checking specified output name: result.txt includes file extension..."}));
}

TEST(ValidateCli, OutputNameLeftBlankIsGivenAllTheSame)
{
    expectRun({"-change", "-out"}, passed({"Checking specified output name:  includes file extension..."}));
}

TEST(ValidateCli, BothFormatsMeanFlt)
{
    expectRun({"-change", "-asc", "-flt"}, passed({kBothFormats, kEnter}));
    // The extension counts as a wish too.
    expectRun({"-change", "-flt", "-out", "r.asc"},
              passed({"Checking specified output name: r.asc includes file extension...",
                      "Output file extension is .asc, setting output format to -asc.", kBothFormats, kEnter}));
}

TEST(ValidateCli, GridClassesAreIgnoredWithoutClassify)
{
    expectRun({"-change", "-grc"}, passed({kGrc, kEnter}));
    expectRun({"-classify", "c.csv", "-grc"}, passed({}));
}

TEST(ValidateCli, MaterialGridsAreIgnoredWithoutSections)
{
    expectRun({"-change", "-mat", "m"}, passed({kMat, kEnter}));
    expectRun({"-xs", "l", "-mat", "m"}, passed({}));
    expectRun({"-change", "-mat"}, passed({})); // no value, no list
}

TEST(ValidateCli, WarningsComeInTheirOrder)
{
    expectRun({"-mat", "m", "-grc", "-flt", "-asc", "-RGB", "-out", "o", "-change"},
              passed({kRgb, kEnter, "Checking specified output name: o includes file extension...", kBothFormats,
                      kEnter, kGrc, kEnter, kMat, kEnter}));
}

TEST(ValidateCli, EachWarningWaitsForItsOwnEnter)
{
    ToolRun run("-change -grc -RGB");
    run.type("one");
    run.type("two");
    run.type("three");
    expectRun(run, passed({kRgb, kEnter, kGrc, kEnter}));
}

TEST(ValidateCli, MissingOperationGoesBeforeTheWarnings)
{
    expectRun({"-RGB", "-grc", "-asc", "-flt"}, failed({kNoOperation}));
}

} // namespace
} // namespace gridforge::test
