// Rules of the house that no compiler checks: which layer may include which, what only the forms of the system may hold, and
// that every test file is run.
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/paths.h"
#include "support/sanitizers.h"

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = sourceFolder();

// Each folder of src/ and the folders it may include from, besides itself: the picture in docs/architecture.md.
const std::map<std::string, std::set<std::string>> kMayInclude{
    {"core", {}},
    {"plane", {"core"}},
    {"host", {"core"}},
    {"grid", {"core", "plane", "host"}},
    {"gis", {"core", "plane", "host"}},
    {"run", {"core", "plane", "host", "grid", "gis"}},
    {"ops", {"core", "plane", "host", "grid", "gis", "run"}},
    {"remap", {"core", "plane", "host", "grid", "run"}},
    {"netcdf", {"core", "plane", "host", "grid", "run"}},
    {"sampling", {"core", "plane", "host", "grid", "gis", "run"}},
    {"network", {"core", "plane", "host", "grid", "gis", "run"}},
    {"damages", {"core", "plane", "host", "grid", "gis", "run"}},
    {"rainfall", {"core", "plane", "host", "grid", "gis", "run", "netcdf"}},
    {"driver",
     {"core", "host", "grid", "gis", "run", "ops", "sampling", "remap", "netcdf", "network", "damages", "rainfall"}},
    {"exports", {"core", "plane", "host", "gis"}},
};

// The quoted name of an #include "..." line, "" for any other line.
std::string quotedInclude(const std::string& line)
{
    const auto hash = line.find_first_not_of(" \t");
    if (hash == std::string::npos || line[hash] != '#') {
        return {};
    }
    const auto word = line.find_first_not_of(" \t", hash + 1);
    if (word == std::string::npos || line.compare(word, 7, "include") != 0) {
        return {};
    }
    const auto open = line.find('"', word);
    const auto end = open == std::string::npos ? open : line.find('"', open + 1);
    return end == std::string::npos ? std::string() : line.substr(open + 1, end - open - 1);
}

// What is wrong with an include of `name` in a file of `folder`; "" where nothing is.
std::string objection(const std::string& folder, const std::string& name)
{
    const auto slash = name.find('/');
    const std::string from = name.substr(0, std::min(slash, name.size()));
    if (slash == std::string::npos || !kMayInclude.contains(from)) {
        return "is not named as folder/file.h";
    }
    if (from != folder && !kMayInclude.at(folder).contains(from)) {
        return folder + " may not use " + from;
    }
    return {};
}

// The folder of src/ that a file in it, or in a folder of that one, belongs to.
std::string layerOf(const fs::path& file)
{
    return file.lexically_relative(kSource / "src").begin()->string();
}

// A source by its place in src/.
std::string sourceName(const fs::path& file)
{
    return file.lexically_relative(kSource / "src").generic_string();
}

std::vector<fs::path> sourcesBelow(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto extension = entry.path().extension();
        if (extension == ".cpp" || extension == ".h") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(Layers, IncludesGoDownThePictureAndUseAllOfIt)
{
    std::size_t includes = 0;
    std::map<std::string, std::set<std::string>> used;
    for (const auto& [folder, below] : kMayInclude) {
        used[folder];
    }
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string folder = layerOf(file);
        ASSERT_TRUE(kMayInclude.contains(folder)) << file << " is in a folder that the picture does not show";
        std::ifstream in(file);
        int number = 0;
        for (std::string line; std::getline(in, line);) {
            ++number;
            if (const std::string name = quotedInclude(line); !name.empty()) {
                ++includes;
                EXPECT_EQ(objection(folder, name), "") << file << ':' << number << ": " << line;
                used[folder].insert(name.substr(0, name.find('/')));
            }
        }
    }
    for (auto& [folder, names] : used) {
        names.erase(folder);
    }
    EXPECT_EQ(used, kMayInclude);
    EXPECT_GT(includes, 10U) << "hardly any include was found: does the reading of the lines still work?";
}

TEST(Layers, AForbiddenIncludeIsSeen)
{
    EXPECT_EQ(quotedInclude("#include \"run/inputs.h\""), "run/inputs.h");
    EXPECT_EQ(quotedInclude("  #  include \"run/inputs.h\" // why"), "run/inputs.h");
    EXPECT_EQ(quotedInclude("#include <vector>"), "");
    EXPECT_EQ(quotedInclude("say(\"#include\");"), "");
    EXPECT_EQ(objection("grid", "core/text.h"), "");
    EXPECT_EQ(objection("grid", "run/inputs.h"), "grid may not use run");
    EXPECT_EQ(objection("ops", "sampling/points.h"), "ops may not use sampling");
    EXPECT_EQ(objection("remap", "gis/layer_name.h"), "remap may not use gis");
    EXPECT_EQ(objection("ops", "max_min.h"), "is not named as folder/file.h");
    EXPECT_EQ(objection("ops", "../grid/header.h"), "is not named as folder/file.h");
}

// CMakeLists.txt has the same picture; this keeps the two from drifting apart.
TEST(Layers, TheBuildLinksTheSamePicture)
{
    std::map<std::string, std::set<std::string>> linked;
    std::ifstream in(kSource / "CMakeLists.txt");
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with("gridforge_layer(")) {
            continue;
        }
        line = line.substr(line.find('(') + 1);
        line = line.substr(0, std::min(line.find(')'), line.find(" FORMS ")));
        std::istringstream words(line);
        std::string layer;
        words >> layer;
        auto& uses = linked[layer];
        for (std::string word; words >> word;) {
            if (word != "USES") {
                uses.insert(word);
            }
        }
    }
    EXPECT_EQ(linked, kMayInclude);
}

// --- Files of a folder -----------------------------------------------------------------------------------------------

// For each source, without its extension, those that it includes. A header and its .cpp are one; so are the two forms of a
// kernel, as the plain one calls the other where it may.
using Needs = std::map<std::string, std::set<std::string>>;

std::string withoutForm(const std::string& file)
{
    const std::string name = fs::path(file).replace_extension().generic_string();
    return name.ends_with("_avx2") ? name.substr(0, name.size() - std::string("_avx2").size()) : name;
}

// Takes out the sources that need none, or only others that are taken out. What is left stands in circles, or needs some that do.
void settle(Needs& needs)
{
    std::set<std::string> settled;
    std::size_t before = 0;
    do {
        before = settled.size();
        std::erase_if(needs, [&settled](const auto& source) {
            const bool isSettled = std::ranges::includes(settled, source.second);
            if (isSettled) {
                settled.insert(source.first);
            }
            return isSettled;
        });
    } while (settled.size() != before);
}

TEST(Layers, FilesNeedEachOtherInNoCircle)
{
    Needs needs;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string source = withoutForm(sourceName(file));
        needs[source];
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            const std::string name = quotedInclude(line);
            if (!name.empty() && withoutForm(name) != source) {
                needs[source].insert(withoutForm(name));
            }
        }
    }
    EXPECT_GT(needs.size(), 100U);
    settle(needs);
    for (const auto& [source, others] : needs) {
        ADD_FAILURE() << source << " stands in a circle, or needs a file that does";
    }
}

TEST(Layers, ACircleOfFilesIsSeen)
{
    Needs line{{"a", {"b", "c"}}, {"b", {"c"}}, {"c", {}}};
    settle(line);
    EXPECT_TRUE(line.empty());
    Needs circle{{"a", {"b"}}, {"b", {"c", "d"}}, {"c", {"b"}}, {"d", {}}};
    settle(circle);
    EXPECT_EQ(circle.size(), 3U); // without d
    EXPECT_EQ(withoutForm("ops/stat_cells_avx2.cpp"), "ops/stat_cells");
}

// --- The system ------------------------------------------------------------------------------------------------------

// The folders that speak to a system, each of its own.
bool isFormOfSystem(const fs::path& file)
{
    const std::string name = file.lexically_relative(kSource / "src").string();
    return name.starts_with("host/posix/") || name.starts_with("host/windows/");
}

// The name of an #include <...> line, "" for any other line.
std::string angledInclude(const std::string& line)
{
    static const std::regex form("\\s*#\\s*include\\s*<([^>]*)>.*");
    std::smatch found;
    return std::regex_match(line, found, form) ? found[1].str() : std::string();
}

// Headers of the language have no extension; of those, these reach out of the program.
bool belongsToForms(const std::string& header)
{
    static const std::set<std::string> reaching{
        "chrono", "condition_variable", "csignal", "cstdio", "ctime", "filesystem", "fstream",
        "future", "iostream",           "mutex",   "thread"};
    static const std::set<std::string> libraries{"gridforge/gridforge.h", "hdf5.h", "immintrin.h", "libdeflate.h",
                                                 "netcdf.h"};
    return reaching.contains(header) || (header.ends_with(".h") && !libraries.contains(header));
}

// Threads, which the language itself offers, start and wait in one place.
const std::set<std::string> kReachOutside{"host/threads.cpp condition_variable", "host/threads.cpp mutex",
                                          "host/threads.cpp thread"};

TEST(System, OnlyItsFormsIncludeItsHeaders)
{
    std::size_t inForms = 0;
    std::set<std::string> outside;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            const std::string header = angledInclude(line);
            if (!belongsToForms(header)) {
                continue;
            }
            if (isFormOfSystem(file)) {
                ++inForms;
            } else {
                outside.insert(sourceName(file) + ' ' + header);
            }
        }
    }
    EXPECT_EQ(outside, kReachOutside);
    EXPECT_GT(inForms, 5U) << "the forms have hardly a header of a system: does the reading of the lines still work?";
}

// Calls that reach out of the program through headers that everybody may include. Members and longer names do not count.
bool callsSystem(const std::string& line)
{
    static const std::regex call(R"((^|[^A-Za-z0-9_.>])(std::)?(getenv|setenv|system|popen|exit|_Exit|abort)\s*\(.*)");
    return std::regex_search(line.substr(0, line.find("//")), call);
}

TEST(System, OnlyItsFormsCallIt)
{
    std::set<std::string> calling;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; !isFormOfSystem(file) && std::getline(in, line);) {
            if (callsSystem(line)) {
                calling.insert(sourceName(file));
            }
        }
    }
    EXPECT_EQ(calling, (std::set<std::string>{"host/ends.cpp", "netcdf/check_netcdf.cpp"}));
    EXPECT_TRUE(callsSystem("    std::exit(EXIT_SUCCESS);"));
    EXPECT_TRUE(callsSystem("if (system(command) != 0)"));
    EXPECT_FALSE(callsSystem("    useSystem(memorySystem());"));
    EXPECT_FALSE(callsSystem("    runs.exit(1); // calls exit(0)"));
}

TEST(System, OnlyItsFormsAskWhichItIs)
{
    static const std::regex condition("\\s*#\\s*(el)?if.*");
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (std::regex_match(line, condition) && !isFormOfSystem(file)) {
                EXPECT_EQ(line, "#if defined(__x86_64__)") << file << ": only the processor may be asked for";
            }
        }
    }
}

// --- The lower rooms -------------------------------------------------------------------------------------------------

const std::set<std::string> kPureRooms{"core", "plane"};

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

// Files of kernels that several operations share, and that are named by their subject.
const std::set<std::string> kSharedKernels{"remap/cell_state",       "remap/extent_flags",     "remap/growth",
                                           "remap/places",           "remap/tin_places",       "remap/tin_places_avx2",
                                           "remap/tin_quads",        "remap/tin_row",          "remap/wet_search",
                                           "sampling/cell_extremes", "sampling/cell_search",   "sampling/cell_tiles",
                                           "sampling/ground_level",  "sampling/search_polygon"};

// Files of kernels, by their place in src/.
bool holdsKernels(const fs::path& file)
{
    const std::string name = fs::path(file).replace_extension().generic_string();
    return name.ends_with("_cells") || name.ends_with("_cells_avx2") || kSharedKernels.contains(name);
}

TEST(Kernels, NeedNothingButTheLowerRoomsAndEachOther)
{
    std::size_t files = 0;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        if (!holdsKernels(sourceName(file))) {
            continue;
        }
        ++files;
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            const std::string name = quotedInclude(line);
            const bool pure = kPureRooms.contains(name.substr(0, name.find('/')));
            EXPECT_TRUE(name.empty() || pure || holdsKernels(name)) << file << ": " << line;
        }
    }
    EXPECT_GT(files, 10U);
    for (const std::string& shared : kSharedKernels) {
        EXPECT_TRUE(fs::exists(kSource / "src" / (shared + ".h"))) << shared;
    }
    EXPECT_TRUE(holdsKernels("sampling/cell_search.cpp"));
    EXPECT_FALSE(holdsKernels("grid/grid.h"));
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

// A file and those it includes, by its name without extension: what a header includes its source needs too.
std::map<std::string, std::set<std::string>> includesOf(const std::set<std::string>& rooms)
{
    std::map<std::string, std::set<std::string>> included;
    for (const std::string& room : rooms) {
        for (const auto& file : sourcesBelow(kSource / "src" / room)) {
            auto& names = included[file.lexically_relative(kSource / "src").replace_extension().string()];
            std::ifstream in(file);
            for (std::string line; std::getline(in, line);) {
                if (const std::string name = quotedInclude(line); !name.empty()) {
                    names.insert(fs::path(name).replace_extension().string());
                }
            }
        }
    }
    for (auto& [name, names] : included) {
        names.erase(name);
    }
    return included;
}

// The files left when, again and again, those that include none of the others are taken away.
std::set<std::string> filesInCircles(std::map<std::string, std::set<std::string>> included)
{
    for (bool taken = true; taken;) {
        taken = std::erase_if(included, [&](const auto& file) {
                    return std::ranges::none_of(file.second,
                                                [&](const std::string& name) { return included.contains(name); });
                }) > 0;
    }
    std::set<std::string> left;
    for (const auto& [name, names] : included) {
        left.insert(name);
    }
    return left;
}

TEST(LowerRooms, NoFileNeedsOneThatNeedsIt)
{
    EXPECT_EQ(filesInCircles(includesOf({"core", "plane", "host"})), std::set<std::string>());
    EXPECT_EQ(filesInCircles({{"a", {"b"}}, {"b", {"c"}}, {"c", {"b"}}, {"d", {"z"}}}).size(), 3U);
}

// --- State -----------------------------------------------------------------------------------------------------------

// A variable that lives longer than the call that uses it, and changes: of a word for that, or at the head of a line, where only
// what belongs to no routine and no type stands.
bool holdsState(const std::string& line)
{
    static const std::regex variable(
        R"((?:\s*(?:constinit|thread_local|static) |(?!(?:using|namespace|template|concept|struct|class|enum|extern)\b)(?=\w)))"
        R"((?!(?:inline )?(?:constexpr |const [^*=({;]*[=({;])|inline namespace|.*operator)[^=({;]*[={;].*)");
    return std::regex_match(line, variable);
}

TEST(State, StandsWhereThePageSaysSo)
{
    std::set<std::string> holding;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (holdsState(line)) {
                holding.insert(sourceName(file));
            }
        }
    }
    EXPECT_EQ(holding, (std::set<std::string>{"core/huge_array.cpp",
                                              "core/simd.cpp",
                                              "gis/gis_messages.cpp",
                                              "gis/layer_table.cpp",
                                              "gis/shp/dbf_writer.cpp",
                                              "grid/cell_store.cpp",
                                              "host/console.cpp",
                                              "host/ends.cpp",
                                              "host/file_stream.cpp",
                                              "host/file_system.cpp",
                                              "host/memory/memory_system.cpp",
                                              "host/messages.cpp",
                                              "host/page_room.cpp",
                                              "host/posix/system.cpp",
                                              "host/progress.cpp",
                                              "host/system.cpp",
                                              "host/unit_table.cpp",
                                              "host/windows/pages.cpp",
                                              "host/windows/process.cpp",
                                              "host/windows/scratch_file.cpp",
                                              "host/windows/system.cpp",
                                              "run/ways.cpp"}));
    EXPECT_TRUE(holdsState("    static std::atomic<int> count = 0;"));
    EXPECT_TRUE(holdsState("    static const System* system = &nativeSystem();"));
    EXPECT_FALSE(holdsState("    static const std::string none;"));
    EXPECT_FALSE(holdsState("    static constexpr int kNone = 0;"));
    EXPECT_FALSE(holdsState("    static_assert(sizeof(int) == 4);"));
    EXPECT_FALSE(holdsState("    static std::string console();"));
    EXPECT_TRUE(holdsState("int count = 0;"));
    EXPECT_TRUE(holdsState("std::vector<std::string> names;"));
    EXPECT_TRUE(holdsState("inline const System* system{nullptr};"));
    EXPECT_FALSE(holdsState("    int count = 0;"));
    EXPECT_FALSE(holdsState("inline constexpr int kNone = 0;"));
    EXPECT_FALSE(holdsState("const std::regex form(\"a\");"));
    EXPECT_FALSE(holdsState("int count(int first = 0);"));
    EXPECT_FALSE(holdsState("Reader& Reader::operator=(Reader&& other) = default;"));
    EXPECT_FALSE(holdsState("inline namespace core {"));
    EXPECT_FALSE(holdsState("struct Lines {"));
}

// --- The processor ---------------------------------------------------------------------------------------------------

std::string textOf(const fs::path& file)
{
    std::ifstream in(file);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// One place names vector instructions to compilers, and one asks the processor.
TEST(Processor, OnlyFilesOfAvx2NameVectorInstructions)
{
    std::size_t vectorFiles = 0;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string text = textOf(file);
        const bool room = file.stem() == "simd" && file.parent_path().filename() == "core";
        const bool vectors = text.find("<immintrin.h>") != std::string::npos;
        vectorFiles += vectors ? 1 : 0;
        EXPECT_TRUE(!vectors || file.stem().string().ends_with("_avx2")) << file;
        for (const char* const word : {"gnu::target", "__attribute__((target", "__builtin_cpu"}) {
            EXPECT_TRUE(room || text.find(word) == std::string::npos) << file << ": " << word;
        }
    }
    EXPECT_GT(vectorFiles, 1U);
}

TEST(Processor, VectorFormsStandBesideTheirPlainForm)
{
    constexpr std::string_view kForm = "_avx2";
    std::size_t forms = 0;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string name = file.stem().string();
        if (file.extension() == ".cpp" && name.ends_with(kForm)) {
            ++forms;
            const std::string plain = name.substr(0, name.size() - kForm.size());
            EXPECT_TRUE(fs::exists(file.parent_path() / (plain + ".h"))) << file;
        }
    }
    EXPECT_GT(forms, 1U);
}

// --- The families of layers ------------------------------------------------------------------------------------------

// Lines that ask which family of files a layer is of: by the text of an extension, or by what a variant holds.
bool asksForFamily(const std::string& line)
{
    static const std::regex sign(R"re("\.(mif|mid|shp|shx|dbf)"|holds_alternative|get_if<|std::get<)re"
                                 R"re(|[=!]= *(gis::)?k(Mif|Shp)Extension|k(Mif|Shp)Extension *[=!]=)re");
    return std::regex_search(line.substr(0, line.find("//")), sign);
}

// Lines that have the extension of a layer looked at.
bool asksForExtension(const std::string& line)
{
    static const std::regex call("(hasMifExtension|hasLayerExtension|layerStem)\\(");
    return std::regex_search(line.substr(0, line.find("//")), call);
}

// The sources outside the folders of the two families that have such a line.
std::set<std::string> filesAsking(bool (*asks)(const std::string&))
{
    std::set<std::string> asking;
    for (const auto& file : sourcesBelow(kSource / "src")) {
        const std::string name = sourceName(file);
        if (name.starts_with("gis/mif/") || name.starts_with("gis/shp/")) {
            continue;
        }
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (asks(line)) {
                asking.insert(name);
            }
        }
    }
    return asking;
}

// The two families stand in folders of their own, and one file chooses between them.
TEST(Layers, OnePlaceAsksForTheFamilyOfALayer)
{
    EXPECT_EQ(filesAsking(asksForFamily), (std::set<std::string>{"gis/layer_open.cpp", "gis/layer_name.h"}));
}

// Operations that look at the name that a user gave: for an output layer, or for a grid of materials, which no layer may be.
TEST(Layers, FewOperationsAskForTheExtensionOfALayer)
{
    EXPECT_EQ(filesAsking(asksForExtension),
              (std::set<std::string>{"damages/damages.cpp", "gis/layer_name.h", "gis/layer_open.cpp", "network/xs.cpp",
                                     "sampling/brkline.cpp", "sampling/lp.cpp"}));
}

TEST(Layers, AQuestionForTheFamilyIsSeen)
{
    EXPECT_TRUE(asksForFamily("    if (extension == \".mif\") {"));
    EXPECT_TRUE(asksForFamily("    if (extension == kMifExtension) {"));
    EXPECT_TRUE(asksForFamily("    if (gis::kShpExtension != extension) {"));
    EXPECT_TRUE(asksForFamily("std::get_if<mif::MifInput>(&layer.files)"));
    EXPECT_FALSE(asksForFamily("// the \".mif\" of a layer"));
    EXPECT_FALSE(asksForFamily("    say(\"Reading .mif file\");"));
    EXPECT_TRUE(asksForExtension("    if (gis::hasMifExtension(name)) {"));
    EXPECT_FALSE(asksForExtension("    name += gis::kMifExtension; // not hasMifExtension(name)"));
}

// --- Form ------------------------------------------------------------------------------------------------------------

TEST(Headings, FillTheirLine)
{
    constexpr std::size_t kColumns = 120;
    std::size_t headings = 0;
    for (const char* const folder : {"src", "tests"}) {
        for (const auto& file : sourcesBelow(kSource / folder)) {
            std::ifstream in(file);
            for (std::string line; std::getline(in, line);) {
                if (line.starts_with("// --- ")) {
                    ++headings;
                    EXPECT_TRUE(line.size() == kColumns && line.ends_with("--")) << file << ": " << line;
                }
            }
        }
    }
    EXPECT_GT(headings, 10U);
}

} // namespace
} // namespace gridforge::test
