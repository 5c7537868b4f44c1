// Where vector instructions are named, and where the processor is asked for them.
#include "unit/house/sources.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace gridforge::test {
namespace {

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

} // namespace
} // namespace gridforge::test
