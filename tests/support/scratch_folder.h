// A fresh folder of its own for a test, gone when the test is.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace gridforge::test {

// All bytes of a file in one read; "" where it cannot be read.
std::string readWhole(const std::filesystem::path& name);

class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // Writes `bytes` as the file `name`, with its folders.
    void give(std::string_view name, std::string_view bytes) const;
    bool has(std::string_view name) const;
    // The bytes of the file `name`; a test failure and "" where it cannot be read.
    std::string read(std::string_view name) const;
    // Leaves the folder in place for a look.
    void keep() { kept_ = true; }

private:
    std::filesystem::path path_;
    bool kept_ = false;
};

} // namespace gridforge::test
