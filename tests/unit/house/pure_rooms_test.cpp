// The pure rooms hold no text for users, and import nothing that prints, opens or ends.
#include "support/paths.h"
#include "support/sanitizers.h"
#include "unit/house/pure_files.h"
#include "unit/house/sources.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

// The texts in double quotes of a source without its comments and includes.
std::vector<std::string> textsOf(const fs::path& file)
{
    static const std::regex text(R"re("((?:[^"\\]|\\.)*)")re");
    static const std::regex mark(R"re('"')re"); // begins no text
    std::vector<std::string> texts;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        if (line.find("#include") != std::string::npos) {
            continue;
        }
        line = std::regex_replace(line.substr(0, line.find("//")), mark, "' '");
        for (std::sregex_iterator found(line.begin(), line.end(), text), end; found != end; ++found) {
            texts.push_back((*found)[1].str());
        }
    }
    return texts;
}

// Every text with a word in it, however short, could be one for users, except parts of numbers and names of processor
// features.
bool mayBeMessage(const std::string& text)
{
    static const std::regex byte(R"(\\x[0-9A-Fa-f]{2})");
    static const std::regex word("[A-Za-z]{2,}");
    static const std::set<std::string> parts{"NaN",       "nan",  "Inf",  "inf",  "Infinity", "infinity",
                                             "-Infinity", "-Inf", "eEdD", "avx2", "bmi",      "avx2,bmi"};
    return !parts.contains(text) && std::regex_search(std::regex_replace(text, byte, ""), word);
}

TEST(PureRooms, HoldNoTextForTheConsole)
{
    std::size_t texts = 0;
    for (const std::string& room : kPureRooms) {
        for (const auto& file : sourcesBelow(kSource / "src" / room)) {
            for (const std::string& text : textsOf(file)) {
                ++texts;
                EXPECT_FALSE(mayBeMessage(text)) << file << ": \"" << text << '"';
            }
        }
    }
    EXPECT_GT(texts, 10U) << "hardly any text was found: does the reading of the lines still work?";
    EXPECT_TRUE(mayBeMessage("Finished."));
    EXPECT_TRUE(mayBeMessage("OK"));
    EXPECT_TRUE(mayBeMessage("   Done"));
    EXPECT_FALSE(mayBeMessage("-Infinity"));
    EXPECT_FALSE(mayBeMessage("0."));
    EXPECT_FALSE(mayBeMessage("\\xEF\\xBB"));
}

// The names that a program takes from the libraries of the system, without their versions.
std::set<std::string> importsOf(const std::string& program)
{
    std::set<std::string> names;
    FILE* list = popen(("nm --undefined-only --format=just-symbols '" + program + "'").c_str(), "r");
    if (list == nullptr) {
        return names;
    }
    std::array<char, 4096> line;
    while (std::fgets(line.data(), line.size(), list) != nullptr) {
        const std::string name = line.data();
        names.insert(name.substr(0, name.find_first_of("@\n")));
    }
    pclose(list);
    return names;
}

// What a program may import that only computes.
bool isPureImport(const std::string& name)
{
    static const std::set<std::string> routines{
        "memchr", "memcmp", "memcpy", "memmove", "memset", "strlen", "strtod", "strtof", "calloc", "free",
        // numbers
        "atan2", "ceil", "copysign", "cos", "floor", "floorf", "fmod", "round", "sin", "sincos", "sqrt", "sqrtf",
        "trunc",
        // what compilers add to each program, and a failed assertion
        "__libc_start_main", "__gmon_start__", "_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable",
        "_Unwind_Resume", "__stack_chk_fail", "__assert_fail", "_ZSt9terminatev",
        "_ZSt21__glibcxx_assert_failPKciS0_S0_",
        // a header that any test may include starts these, and only more names could use them
        "_ZNSt8ios_base4InitC1Ev", "_ZNSt8ios_base4InitD1Ev"};
    // Of the C++ library: memory, texts, numbers to text and back, and the errors of these.
    static const std::regex library(
        "(__cxa_|__gxx_personality_v|_Zn[aw]m|_Zd[al]Pv|_ZNSaI|_ZNK?St7__cxx1112basic_string|"
        "_ZSt[0-9]+(__throw_|from_chars|to_chars)).*");
    return routines.contains(name) || std::regex_match(name, library);
}

TEST(PureRooms, NeitherPrintNorOpenNorEnd)
{
    if (kSanitized || kCountsLines) {
        GTEST_SKIP() << "what watches the program asks all of the system";
    }
    const std::set<std::string> imports = importsOf(pureRoomsPath());
    EXPECT_TRUE(imports.contains("memcpy") || imports.contains("memmove")) << "no imports were found";
    for (const std::string& name : imports) {
        EXPECT_TRUE(isPureImport(name)) << name;
    }
    // The tool itself does what is not allowed there.
    for (const char* const name : {"open64", "read", "write", "exit", "getenv"}) {
        EXPECT_FALSE(isPureImport(name)) << name;
    }
    EXPECT_FALSE(std::ranges::all_of(importsOf(toolPath()), isPureImport));
}

TEST(PureRooms, TakeLargeArraysFromTheHeapWithoutOthers)
{
    FILE* program = popen(("'" + pureRoomsPath() + "'").c_str(), "r");
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(pclose(program), 0);
}

} // namespace
} // namespace gridforge::test
