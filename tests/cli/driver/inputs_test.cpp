// The search that turns the names as typed into the input files.
#include "support/consoles.h"
#include "support/expect_run.h"

#include <filesystem>
#include <unistd.h>

namespace gridforge::test {
namespace {

const std::string kHead = kWildcards;
const std::string kTooMany =
    "ERROR - More the 100 input files specified. Please contact SUPPORT_CONTACT to get this raised.";

// A run without operation, which ends well when all inputs are found.
struct InputRun : ToolRun {
    explicit InputRun(Lines names) : ToolRun(withFlag(std::move(names))) {}

    void giveFiles(const Lines& names)
    {
        for (const std::string& name : names) {
            give(name, "x");
        }
    }

private:
    static Lines withFlag(Lines names)
    {
        names.insert(names.begin(), "-change");
        return names;
    }
};

Lines withHead(Lines lines)
{
    lines.insert(lines.begin(), kHead);
    return lines;
}

TEST(InputsCli, PlainNamesGoThroughTheSearch)
{
    InputRun run({"b.asc", "sub/a.asc", "b.asc"});
    run.giveFiles({"b.asc", "sub/a.asc"});
    expectRun(run, finished(withHead({"Input File  1: b.asc", "   File  1: b.asc", "Input File  2: sub/a.asc",
                                      "   File  2: sub/a.asc", "Input File  3: b.asc", "   File  3: b.asc"})));
}

TEST(InputsCli, WildcardNamesAscendByByte)
{
    InputRun run({"*.asc"});
    run.giveFiles({"b.asc", "a.asc", "B.asc", "10.asc", "9.asc", ".hidden.asc", "a.flt", "\xC3\xA4.asc", "ab.asc"});
    expectRun(run, finished(withHead({"Input File  1: *.asc", "   File  1: .hidden.asc", "   File  2: 10.asc",
                                      "   File  3: 9.asc", "   File  4: B.asc", "   File  5: a.asc",
                                      "   File  6: ab.asc", "   File  7: b.asc", "   File  8: \xC3\xA4.asc"})));
}

TEST(InputsCli, QuestionMarkIsOneCharacter)
{
    InputRun run({"g?.as*"});
    run.giveFiles({"g1.asc", "g2.asx", "g12.asc", "g.asc", "h1.asc", "g3.as"});
    expectRun(run, finished(withHead(
                       {"Input File  1: g?.as*", "   File  1: g1.asc", "   File  2: g2.asx", "   File  3: g3.as"})));
}

TEST(InputsCli, CaseOfNamesCounts)
{
    InputRun run({"A*"});
    run.giveFiles({"a.asc"});
    expectRun(run, failed(withHead({"Input File  1: A*", "ERROR - No valid file found for input: A*"})));
}

TEST(InputsCli, FoldersThatMatchAreKept)
{
    InputRun run({"d*"});
    run.giveFiles({"d1", "d2/x"});
    expectRun(run, finished(withHead({"Input File  1: d*", "   File  1: d1", "   File  2: d2"})));
}

TEST(InputsCli, AllDotsButTheFoldersOwn)
{
    InputRun run({"e/*"});
    run.giveFiles({"e/.x", "e/y"});
    expectRun(run, finished(withHead({"Input File  1: e/*", "   File  1: e/.x", "   File  2: e/y"})));
}

TEST(InputsCli, BackslashesSeparateFoldersAndStay)
{
    InputRun run({"dir\\grid*.asc", "dir\\sub/x"});
    run.giveFiles({"dir/grid2.asc", "dir/grid1.asc", "dir/other.asc", "dir/sub/x"});
    expectRun(
        run, finished(withHead({"Input File  1: dir\\grid*.asc", "   File  1: dir\\grid1.asc",
                                "   File  2: dir\\grid2.asc", "Input File  2: dir\\sub/x", "   File  3: dir\\sub/x"})));
}

TEST(InputsCli, WildcardsInFoldersAreNone)
{
    InputRun run({"d*/a.asc"});
    run.giveFiles({"dir/a.asc"});
    expectRun(run, failed(withHead({"Input File  1: d*/a.asc", "ERROR - No valid file found for input: d*/a.asc"})));
}

TEST(InputsCli, MissingFileEndsTheRun)
{
    InputRun run({"a.asc", "missing.asc", "b.asc"});
    run.giveFiles({"a.asc", "b.asc"});
    expectRun(run, failed(withHead({"Input File  1: a.asc", "   File  1: a.asc", "Input File  2: missing.asc",
                                    "ERROR - No valid file found for input: missing.asc"})));
}

TEST(InputsCli, MissingFolderIsAMissingFile)
{
    expectRun({"-change", "no/a.asc"},
              failed(withHead({"Input File  1: no/a.asc", "ERROR - No valid file found for input: no/a.asc"})));
    expectRun({"-change", "no\\*.asc"},
              failed(withHead({"Input File  1: no\\*.asc", "ERROR - No valid file found for input: no\\*.asc"})));
}

TEST(InputsCli, NamesOfFoldersAloneAndBlankNamesGiveNothing)
{
    for (const std::string name : {"", ".", "..", "sub/", "sub\\"}) {
        InputRun run({name});
        run.giveFiles({"sub/x"});
        expectRun(run, failed(withHead({"Input File  1: " + name, "ERROR - No valid file found for input: " + name})));
    }
}

TEST(InputsCli, PathThroughAFileIsInvalid)
{
    for (const std::string name : {"a.asc/b.asc", "a.asc/*.asc", "a.asc\\*"}) {
        InputRun run({name});
        run.giveFiles({"a.asc"});
        expectRun(run, failed(withHead({"Input File  1: " + name, " ERROR - Invalid file or pathname specified"})));
    }
}

TEST(InputsCli, FolderThatCannotBeReadIsInvalid)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "the superuser may read every folder";
    }
    InputRun run({"shut/*"});
    run.giveFiles({"shut/a.asc"});
    std::filesystem::permissions(run.folder() / "shut", std::filesystem::perms::none);
    run.start();
    std::filesystem::permissions(run.folder() / "shut", std::filesystem::perms::owner_all);
    EXPECT_CONSOLE(run, failed(withHead({"Input File  1: shut/*", " ERROR - Invalid file or pathname specified"})));
}

TEST(InputsCli, NoInputAtAllEndsTheRun)
{
    expectRun({"-change"}, failed({kHead, " ERROR - No valid files found."}));
}

TEST(InputsCli, ControlFilesAndWaterLevelsMustExistToo)
{
    for (const std::string flag : {"-nbc", "-damages", "-rf"}) {
        expectRun({flag, "x"}, failed({kHead, "Input File  1: x", "ERROR - No valid file found for input: x"}));
    }
    expectRun({"-change", "-wl", "x"}, failed({kHead, "Input File  1: x", "ERROR - No valid file found for input: x"}));
}

TEST(InputsCli, NameAheadOfTheWaterLevelIsLostAndLeavesABlankOne)
{
    InputRun run({"a.asc", "-wl", "w.asc"});
    run.giveFiles({"a.asc", "w.asc"});
    expectRun(run, failed({kHead, "Input File  1: w.asc", "   File  1: w.asc",
                           "Input File  2: ", "ERROR - No valid file found for input: "}));
}

std::string matchName(int i)
{
    const std::string digits = std::to_string(10000 + i);
    return "f/" + digits + ".asc";
}

// The lines of the first `count` files of folder f.
Lines matchLines(int count)
{
    Lines lines = {kHead, "Input File  1: f/*.asc"};
    for (int i = 1; i <= count; ++i) {
        const std::string number = std::to_string(i);
        const std::string field = i > 999 ? "***" : std::string(3 - number.size(), ' ') + number;
        lines.push_back("   File" + field + ": " + matchName(i));
    }
    return lines;
}

// A run on folder f with that many files.
struct MatchRun : InputRun {
    explicit MatchRun(int count) : InputRun({"f/*.asc"})
    {
        for (int i = 1; i <= count; ++i) {
            give(matchName(i), "");
        }
    }
};

TEST(InputsCli, Accepts2000Matches)
{
    MatchRun run(2000);
    expectRun(run, finished(matchLines(2000)));
}

TEST(InputsCli, Match2001EndsTheRunWithTheMessageThatSays100)
{
    MatchRun run(2001);
    Lines lines = matchLines(2001);
    lines.push_back(kTooMany);
    expectRun(run, failed(lines));
}

TEST(InputsCli, Accepts2000Names)
{
    InputRun run(Lines(2000, "a"));
    run.giveFiles({"a"});
    run.start();
    const Lines console = run.consoleLines();
    ASSERT_EQ(console.size(), 1U + 1U + 2U * 2000U + 2U);
    EXPECT_EQ(console[2], "Input File  1: a");
    EXPECT_EQ(console[2 + 2 * 999], "Input File***: a"); // 1000 does not fit its field
    EXPECT_EQ(console[console.size() - 2], kFinished);
}

// A folder of that many characters, its last separator included.
std::string deepFolder(std::size_t length)
{
    std::string folder;
    while (length - folder.size() > 300) {
        folder += std::string(199, 'd') + "/";
    }
    const std::size_t left = length - folder.size();
    folder += std::string(left / 2 - 1, 'e') + "/";
    return folder + std::string(length - folder.size() - 1, 'f') + "/";
}

TEST(InputsCli, NamesOf1000CharactersArePassed)
{
    const std::string name = deepFolder(990) + "123456.asc";
    ASSERT_EQ(name.size(), 1000U);
    InputRun run({name});
    run.giveFiles({name});
    expectRun(run, finished({kHead, "Input File  1: " + name, "   File  1: " + name}));
}

TEST(InputsCli, LongerNamesAreCutAt1000)
{
    const std::string name = deepFolder(990) + "123456.asc";
    InputRun run({name + ".bak"});
    run.giveFiles({name});
    expectRun(run, finished({kHead, "Input File  1: " + name, "   File  1: " + name}));
}

TEST(InputsCli, FoundNamesAreCutAt1000)
{
    const std::string folder = deepFolder(997);
    InputRun run({folder + "*"});
    run.giveFiles({folder + "abcdef"});
    expectRun(run, finished({kHead, "Input File  1: " + folder + "*", "   File  1: " + folder + "abc"}));
}

TEST(InputsCli, NameThatNoFileCanHaveIsInvalid)
{
    const std::string name(1000, 'n');
    expectRun({"-change", name + "more"},
              failed({kHead, "Input File  1: " + name, " ERROR - Invalid file or pathname specified"}));
}

} // namespace
} // namespace gridforge::test
