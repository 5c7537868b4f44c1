#include "support/scratch_folder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <system_error>

namespace gridforge::test {

namespace {

// Names are UTF-8, also where the library takes plain characters for others.
std::filesystem::path under(const std::filesystem::path& folder, std::string_view name)
{
    return folder / std::u8string(name.begin(), name.end());
}

} // namespace

std::string readWhole(const std::filesystem::path& name)
{
    std::ifstream in(name, std::ios::binary | std::ios::ate);
    if (!in) {
        return {};
    }
    std::string bytes(static_cast<std::size_t>(in.tellg()), '\0');
    in.seekg(0);
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

ScratchFolder::ScratchFolder()
{
    std::random_device random;
    constexpr int kAttempts = 100;
    for (int i = 0; i < kAttempts; ++i) {
        path_ = std::filesystem::temp_directory_path() / ("gridforge-test-" + std::to_string(random()));
        std::error_code failure;
        if (std::filesystem::create_directory(path_, failure)) {
            return;
        }
    }
    ADD_FAILURE() << "no scratch folder: " << path_;
}

ScratchFolder::~ScratchFolder()
{
    if (kept_) {
        return;
    }
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void ScratchFolder::give(std::string_view name, std::string_view bytes) const
{
    const auto target = under(path_, name);
    std::filesystem::create_directories(target.parent_path());
    std::ofstream out(target, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) {
        ADD_FAILURE() << "cannot write " << target;
    }
}

bool ScratchFolder::has(std::string_view name) const
{
    return std::filesystem::exists(under(path_, name));
}

std::string ScratchFolder::read(std::string_view name) const
{
    std::ifstream in(under(path_, name), std::ios::binary);
    if (!in) {
        ADD_FAILURE() << "cannot read " << name;
        return {};
    }
    return readWhole(under(path_, name));
}

} // namespace gridforge::test
