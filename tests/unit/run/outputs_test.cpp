#include "run/outputs.h"

#include "host/console.h"
#include "support/consoles.h"

#include <gtest/gtest.h>
#include <optional>

namespace gridforge {
namespace {

// What the console is told while `call` runs.
template <typename Call>
std::string consoleOf(const Call& call)
{
    flushConsole();
    testing::internal::CaptureStdout();
    call();
    flushConsole();
    return testing::internal::GetCapturedStdout();
}

std::string nameOf(std::string_view source, std::string_view suffix)
{
    return run::outputNameRule(run::Common{}, source, suffix);
}

TEST(OutputNameRule, SourceWithoutExtensionAndTheSuffix)
{
    EXPECT_EQ(nameOf("a.asc", "(max)"), "a(max)");
    EXPECT_EQ(nameOf("d/e.x\\a.b.flt", "(max)"), "d/e.x\\a.b(max)");
}

TEST(OutputNameRule, DotInAFolderIsNoExtension)
{
    EXPECT_EQ(nameOf("d.x/grid", "(max)"), "d.x/grid(max)");
    EXPECT_EQ(nameOf("d.x\\grid", "(max)"), "d.x\\grid(max)");
}

TEST(OutputNameRule, IsCutAt1000Characters)
{
    EXPECT_EQ(nameOf(std::string(998, 'a'), "(max)"), std::string(998, 'a') + "(m");
}

TEST(OutputNameRule, GivenNameStandsAsItIs)
{
    run::Common common;
    common.out = "result.txt";
    std::string name;
    EXPECT_EQ(consoleOf([&] { name = run::outputNameRule(common, "a.asc", "(max)"); }),
              "Using output file name specified with -out switch: \"result.txt\"\n");
    EXPECT_EQ(name, "result.txt");
}

TEST(OutputNameRule, SaysNothingOfANameOfItsOwn)
{
    EXPECT_EQ(consoleOf([] { nameOf("a.asc", "x"); }), "");
}

struct FormatCase {
    std::optional<grid::Format> wanted;
    grid::Format first;
    grid::Format expected;
    std::string line;
};

TEST(OutputFormatRule, AsSpecifiedOrAsTheFirstGrid)
{
    const std::string byInputs = test::kFormatOfInputs + "\n";
    const std::vector<FormatCase> cases = {
        {grid::Format::asc, grid::Format::flt, grid::Format::asc, "Using output format .asc as specified.\n"},
        {grid::Format::flt, grid::Format::asc, grid::Format::flt, "Using output format .flt as specified.\n"},
        {std::nullopt, grid::Format::asc, grid::Format::asc, byInputs},
        {std::nullopt, grid::Format::flt, grid::Format::flt, byInputs}};
    for (const FormatCase& c : cases) {
        run::Common common;
        common.format = c.wanted;
        grid::Format format{};
        EXPECT_EQ(consoleOf([&] { format = run::outputFormatRule(common, c.first); }), c.line);
        EXPECT_EQ(format, c.expected);
    }
}

} // namespace
} // namespace gridforge
