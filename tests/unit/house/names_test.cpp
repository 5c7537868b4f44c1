// Where names stand: a folder's in its namespace, and no type's twice.
#include "support/paths.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;

const fs::path kRooms = fs::path(sourceFolder()) / "src";

std::vector<fs::path> sources()
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(kRooms)) {
        if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") {
            files.push_back(entry.path().lexically_relative(kRooms));
        }
    }
    return files;
}

std::vector<std::string> linesOf(const fs::path& file)
{
    std::vector<std::string> lines;
    std::ifstream in(kRooms / file);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// --- Namespaces ------------------------------------------------------------------------------------------------------

// The folder that a namespace belongs to: "" for that of all, and for what is no namespace of the tool.
std::string folderOf(const std::string& line)
{
    static const std::regex opened(R"(namespace gridforge::(?:inline )?(\w+)(?:::\w+)* \{)");
    std::smatch found;
    return std::regex_match(line, found, opened) ? found[1].str() : std::string();
}

TEST(Namespaces, AreThoseOfTheFolders)
{
    std::set<std::string> folders;
    for (const fs::path& file : sources()) {
        const std::string folder = file.begin()->string();
        for (const std::string& line : linesOf(file)) {
            if (line.starts_with("namespace gridforge") && line.ends_with('{')) {
                EXPECT_EQ(folderOf(line), folder) << file << ": " << line;
                folders.insert(folder);
            }
        }
    }
    EXPECT_GT(folders.size(), 13U) << "hardly a namespace was found: does the reading of the lines still work?";
}

TEST(Namespaces, OfOtherFoldersAreSeen)
{
    EXPECT_EQ(folderOf("namespace gridforge::ops {"), "ops");
    EXPECT_EQ(folderOf("namespace gridforge::inline core {"), "core");
    EXPECT_EQ(folderOf("namespace gridforge::gis::shp {"), "gis");
    EXPECT_EQ(folderOf("namespace gridforge {"), "");
}

// --- Types -----------------------------------------------------------------------------------------------------------

// The type that a line begins to define; "" for none.
std::string typeDefinedIn(const std::string& line)
{
    static const std::regex definition(
        R"(\s*(?:template <.*> )?(?:struct|class|union|enum|enum class) (?:alignas\(.*\) )?([A-Z]\w*)(?: final)?(?: :.*)?(?: \{.*)?)");
    static const std::regex alias(R"((?:template <.*> )?using ([A-Z]\w*) = .*)");
    std::smatch found;
    return std::regex_match(line, found, definition) || std::regex_match(line, found, alias) ? found[1].str()
                                                                                             : std::string();
}

TEST(Types, HaveNamesOfTheirOwn)
{
    std::map<std::string, std::vector<std::string>> places;
    for (const fs::path& file : sources()) {
        if (file.generic_string().starts_with("host/windows/")) {
            continue; // stands in place of host/posix
        }
        for (const std::string& line : linesOf(file)) {
            if (const std::string type = typeDefinedIn(line); !type.empty()) {
                places[type].push_back(file.generic_string());
            }
        }
    }
    EXPECT_GT(places.size(), 150U) << "hardly a type was found: does the reading of the lines still work?";
    for (const auto& [type, files] : places) {
        EXPECT_EQ(files.size(), 1U) << type << " is defined in " << files.front() << " and " << files.back();
    }
}

TEST(Types, AreSeenInTheLinesThatDefineThem)
{
    EXPECT_EQ(typeDefinedIn("struct GridHeader {"), "GridHeader");
    EXPECT_EQ(typeDefinedIn("    enum class State : std::uint8_t { unknown, empty };"), "State");
    EXPECT_EQ(typeDefinedIn("template <typename Real> class Crossings final : Base {"), "Crossings");
    EXPECT_EQ(typeDefinedIn("using CellFlags = CellArray<std::uint8_t>;"), "CellFlags");
    EXPECT_EQ(typeDefinedIn("    using Row = int;"), ""); // a member of its type
    EXPECT_EQ(typeDefinedIn("struct Later;"), "");
    EXPECT_EQ(typeDefinedIn("    struct Box box;"), "");
}

// The types in a name as the linker lists it, each with all that it stands in.
std::set<std::string> typesIn(const std::string& symbol)
{
    static const std::string anonymous = "(anonymous namespace)::";
    // The list has wrong names for what a lambda takes: it repeats names by numbers, and counts them otherwise than g++.
    static const std::regex lambda(R"(\{lambda\(.*?\)#\d+\}(?:::(?:_FUN|operator\(\))\(.*)?)");
    std::string names = std::regex_replace(symbol, lambda, "");
    for (std::size_t at = names.find(anonymous); at != std::string::npos; at = names.find(anonymous, at)) {
        names.erase(at, anonymous.size());
    }
    static const std::regex name(R"(\bgridforge(?:::\w+)+)");
    static const std::regex type("[A-Z]\\w*[a-z]\\w*");
    std::set<std::string> types;
    for (std::sregex_iterator found(names.begin(), names.end(), name), end; found != end; ++found) {
        const std::string whole = found->str();
        const std::string after = found->suffix().str();
        std::string before;
        for (std::size_t to = whole.find("::"); to != std::string::npos;) {
            const std::size_t from = to + 2;
            to = whole.find("::", from);
            const std::string part = whole.substr(from, to == std::string::npos ? to : to - from);
            const bool isRoutine = part == before || (to == std::string::npos && after.starts_with('('));
            if (!isRoutine && std::regex_match(part, type)) {
                types.insert(whole.substr(0, to));
            }
            before = part;
        }
    }
    return types;
}

TEST(Types, HaveNamesOfTheirOwnForTheLinkerToo)
{
    std::map<std::string, std::set<std::string>> places;
    FILE* list = popen(("nm --demangle --format=just-symbols '" + toolPath() + "'").c_str(), "r");
    ASSERT_NE(list, nullptr);
    std::array<char, 65536> line;
    while (std::fgets(line.data(), line.size(), list) != nullptr) {
        for (const std::string& type : typesIn(line.data())) {
            places[type.substr(type.rfind(':') + 1)].insert(type);
        }
    }
    ASSERT_EQ(pclose(list), 0);
    EXPECT_GT(places.size(), 30U) << "hardly a type was found: does the reading of the list still work?";
    for (const auto& [type, names] : places) {
        EXPECT_EQ(names.size(), 1U) << *names.begin() << " and " << *names.rbegin();
    }
}

TEST(Types, AreSeenInTheListOfTheLinker)
{
    using Names = std::set<std::string>;
    EXPECT_EQ(typesIn("gridforge::plane::isEmpty(gridforge::plane::GridHeader const&)"),
              (Names{"gridforge::plane::GridHeader"}));
    EXPECT_EQ(typesIn("gridforge::ops::(anonymous namespace)::Table::Row::read()"),
              (Names{"gridforge::ops::Table", "gridforge::ops::Table::Row"}));
    EXPECT_EQ(typesIn("gridforge::network::ExtentTree::ExtentTree<int>(int)"),
              (Names{"gridforge::network::ExtentTree"}));
    EXPECT_EQ(typesIn("gridforge::core::FLAGEXISTS(std::string_view)"), Names{});
    EXPECT_EQ(
        typesIn("gridforge::driver::kChecks::{lambda(gridforge::ops::Ab::Cd const&)#1}::_FUN(gridforge::ops::Ab::Cd)"),
        Names{});
}

} // namespace
} // namespace gridforge::test
