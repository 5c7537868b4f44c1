// What the documents say of each other and of the tool's tables.
#include "core/text.h"
#include "driver/flag_table.h"
#include "driver/operations.h"
#include "support/paths.h"
#include "support/scratch_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = sourceFolder();
const fs::path kPages = kSource / "docs/operations";

std::vector<fs::path> documents()
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(kSource)) {
        if (entry.path().extension() == ".md") {
            files.push_back(entry.path());
        }
    }
    for (const char* folder : {"docs", "examples"}) {
        for (const auto& entry : fs::recursive_directory_iterator(kSource / folder)) {
            if (entry.path().extension() == ".md") {
                files.push_back(entry.path());
            }
        }
    }
    return files;
}

std::vector<std::string> matches(const std::string& text, const std::string& pattern)
{
    const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
    std::vector<std::string> found;
    for (auto match = std::sregex_iterator(text.begin(), text.end(), expression); match != std::sregex_iterator();
         ++match) {
        found.push_back((*match)[1].str());
    }
    return found;
}

// What stands between fences is no link and no heading.
std::string withoutListings(const std::string& text)
{
    return std::regex_replace(text, std::regex("```[^]*?```"), "");
}

std::vector<std::string> linksIn(const std::string& text)
{
    return matches(withoutListings(text), R"(\]\(([^)\s]+)\))");
}

// The name by which a link reaches a heading.
std::string anchorOf(const std::string& heading)
{
    std::string anchor;
    for (const char c : heading) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 || c == '-' || c == '_') {
            anchor += static_cast<char>(std::tolower(byte));
        } else if (c == ' ') {
            anchor += '-';
        }
    }
    return anchor;
}

std::set<std::string> anchorsIn(const std::string& text)
{
    std::set<std::string> anchors;
    for (const std::string& heading : matches(withoutListings(text), "^#+ +(.*)$")) {
        anchors.insert(anchorOf(heading));
    }
    return anchors;
}

// What is wrong with a link that stands in `document`; "" where nothing is.
std::string objection(const fs::path& document, const std::string& link)
{
    if (link.find("://") != std::string::npos) {
        return {};
    }
    const std::size_t mark = link.find('#');
    const std::string name = link.substr(0, mark);
    const fs::path target = name.empty() ? document : document.parent_path() / name;
    if (!fs::exists(target)) {
        return "leads nowhere";
    }
    if (!target.lexically_normal().string().starts_with(kSource.lexically_normal().string())) {
        return "leads out of the tree";
    }
    if (mark != std::string::npos && !anchorsIn(readWhole(target)).contains(link.substr(mark + 1))) {
        return "leads to no heading of its page";
    }
    return {};
}

TEST(Docs, LinksLeadSomewhere)
{
    std::size_t links = 0;
    for (const fs::path& document : documents()) {
        for (const std::string& link : linksIn(readWhole(document))) {
            ++links;
            EXPECT_EQ(objection(document, link), "") << document << ": " << link;
        }
    }
    EXPECT_GT(links, 20U) << "hardly any link was found: does the reading of the pages still work?";
}

TEST(Docs, EveryPageIsReachedFromAnother)
{
    std::set<fs::path> reached;
    for (const fs::path& document : documents()) {
        for (const std::string& link : linksIn(readWhole(document))) {
            const fs::path target = (document.parent_path() / link.substr(0, link.find('#'))).lexically_normal();
            if (target != document.lexically_normal()) {
                reached.insert(target);
            }
        }
    }
    for (const fs::path& document : documents()) {
        const fs::path page = document.lexically_normal();
        const bool stands = page.parent_path() == kSource.lexically_normal();
        EXPECT_TRUE(stands || reached.contains(page)) << page << " is linked from nowhere";
    }
}

TEST(Docs, ALinkThatLeadsNowhereIsSeen)
{
    EXPECT_EQ(linksIn("a [b](c.md) ![d](e.png)\n```\n[f](g.md)\n```\n[h](#i)"),
              (std::vector<std::string>{"c.md", "e.png", "#i"}));
    const fs::path readme = kSource / "README.md";
    EXPECT_EQ(objection(readme, "docs/building.md"), "");
    EXPECT_EQ(objection(readme, "docs/building.md#tests-by-hand"), "");
    EXPECT_EQ(objection(readme, "docs/building.md#test-by-foot"), "leads to no heading of its page");
    EXPECT_EQ(objection(readme, "docs/bilding.md"), "leads nowhere");
    EXPECT_EQ(objection(readme, ".."), "leads out of the tree");
    EXPECT_EQ(objection(readme, "https://example.org/x"), "");
}

// --- What the documents show of the sources --------------------------------------------------------------------------

// Without the blanks around each line.
std::string unindented(const std::string& text)
{
    return std::regex_replace(text, std::regex("(^|\n)[ ]+"), "$1");
}

struct Excerpt {
    std::string file;
    std::string lines;
};

// The blocks whose first line names a source.
std::vector<Excerpt> excerptsIn(const std::string& text)
{
    const std::regex block("```cpp\n// (src/[^\n]+)\n([^]*?)```");
    std::vector<Excerpt> found;
    for (auto match = std::sregex_iterator(text.begin(), text.end(), block); match != std::sregex_iterator(); ++match) {
        found.push_back({(*match)[1].str(), (*match)[2].str()});
    }
    return found;
}

bool isExcerpt(const std::string& lines, const std::string& source)
{
    return unindented(source).find('\n' + unindented(lines)) != std::string::npos;
}

TEST(Docs, ShowSourcesAsTheyAre)
{
    const std::vector<Excerpt> excerpts = excerptsIn(readWhole(kSource / "CONTRIBUTING.md"));
    EXPECT_EQ(excerpts.size(), 3U);
    for (const Excerpt& excerpt : excerpts) {
        EXPECT_TRUE(isExcerpt(excerpt.lines, readWhole(kSource / excerpt.file)))
            << "CONTRIBUTING.md shows other lines than " << excerpt.file << " has:\n"
            << excerpt.lines;
    }
    EXPECT_TRUE(isExcerpt("b\n  c\n", "{\n    b\n      c\n}\n"));
    EXPECT_FALSE(isExcerpt("b\nc\n", "b\n// between\nc\n"));
    EXPECT_FALSE(isExcerpt("b\n", "ab\n"));
}

// The names of code between backticks: not files, and not what a user types.
std::set<std::string> namesIn(const std::string& text)
{
    std::set<std::string> names;
    for (const std::string& word : matches(text, "`(?:[a-z]+(?:::|\\.))*([A-Za-z_]\\w*)(?:\\(\\))?`")) {
        names.insert(word);
    }
    return names;
}

// The names of a source, without its comments.
void addNamesOf(const fs::path& file, std::set<std::string>& names)
{
    const std::string text = std::regex_replace(readWhole(file), std::regex("//[^\n]*"), "");
    const std::regex name("[A-Za-z_]\\w*");
    for (auto match = std::sregex_iterator(text.begin(), text.end(), name); match != std::sregex_iterator(); ++match) {
        names.insert(match->str());
    }
}

TEST(Docs, TheWalksThroughRunsNameWhatTheSourcesHave)
{
    std::set<std::string> known;
    for (const auto& entry : fs::recursive_directory_iterator(kSource / "src")) {
        if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") {
            known.insert(entry.path().stem().string());
            addNamesOf(entry.path(), known);
        }
    }
    for (const auto& entry : fs::directory_iterator(kSource / "src")) {
        known.insert(entry.path().filename().string());
    }
    const std::string page = readWhole(kSource / "docs/architecture.md");
    const std::size_t from = page.find("\n## Three runs, room by room\n");
    ASSERT_NE(from, std::string::npos);
    const std::set<std::string> names = namesIn(page.substr(from, page.find("\n## ", from + 1) - from));
    EXPECT_GT(names.size(), 60U);
    for (const std::string& name : names) {
        EXPECT_TRUE(known.contains(name)) << name;
    }
    EXPECT_EQ(namesIn("`gis::openLayer` `layer.next()` `a.flt` `-cp gauges_P.shp` `run`"),
              (std::set<std::string>{"openLayer", "next", "flt", "run"}));
}

// --- Pages on operations ---------------------------------------------------------------------------------------------

struct IndexLine {
    std::set<std::string> flags; // as `-max`, `-stat...`
    std::string page;
};

std::vector<IndexLine> index()
{
    std::vector<IndexLine> lines;
    const std::string text = readWhole(kPages / "README.md");
    for (const std::string& line : matches(text, R"(^\| (`-.*)$)")) {
        const std::vector<std::string> flags = matches(line.substr(0, line.find('|')), "`([^`]+)`");
        const std::vector<std::string> pages = linksIn(line);
        lines.push_back({{flags.begin(), flags.end()}, pages.empty() ? "" : pages.front()});
    }
    return lines;
}

// The page that the index names for a flag; "" for none.
std::string pageOf(const std::vector<IndexLine>& lines, std::string_view flag)
{
    for (const IndexLine& line : lines) {
        if (line.flags.contains(join('-', flag)) || line.flags.contains(join('-', flag, "..."))) {
            return line.page;
        }
    }
    return {};
}

TEST(OperationPages, EveryOperationHasOneInTheHouseSkeleton)
{
    const std::vector<IndexLine> lines = index();
    ASSERT_GT(lines.size(), 10U);
    for (const driver::OperationRow& row : driver::operationTable()) {
        const std::string name = pageOf(lines, row.name);
        ASSERT_NE(name, "") << "-" << row.name << " is not in the index";
        const std::string page = readWhole(kPages / name);
        ASSERT_FALSE(page.empty()) << name;
        EXPECT_EQ(page.rfind("# ", 0), 0U) << name;
        std::size_t before = 0;
        for (const char* heading :
             {"Usage", "What it does", "Flags", "Missing cells and edges", "Messages", "Memory", "Examples"}) {
            const std::size_t at = page.find(join("\n## ", heading, "\n"));
            EXPECT_NE(at, std::string::npos) << name << " has no " << heading;
            EXPECT_GT(at, before) << name << ": " << heading << " stands too early";
            before = at;
        }
    }
}

TEST(OperationPages, EveryFlagOfAnOperationIsInTheIndex)
{
    const std::vector<IndexLine> lines = index();
    for (const driver::FlagRow& flag : driver::flagTable()) {
        if (flag.kind == driver::FlagKind::operation) {
            EXPECT_NE(pageOf(lines, flag.key), "") << flag.key;
        }
    }
}

TEST(OperationPages, TheIndexNamesFlagsAndPagesThatExist)
{
    std::set<std::string> pages = {"README.md"};
    for (const IndexLine& line : index()) {
        pages.insert(line.page);
        for (const std::string& flag : line.flags) {
            const driver::FlagRow* row = driver::findFlag(flag);
            ASSERT_NE(row, nullptr) << flag;
            EXPECT_TRUE(flag == join('-', row->key) || flag == join('-', row->key, "...")) << flag;
        }
    }
    std::set<std::string> files;
    for (const auto& entry : fs::directory_iterator(kPages)) {
        files.insert(entry.path().filename().string());
    }
    EXPECT_EQ(pages, files);
}

} // namespace
} // namespace gridforge::test
