#include "host/environment.h"

#include <charconv>

namespace gridforge::inline host {

std::optional<std::string> environmentText(const char* name)
{
    const std::optional<std::string> value = processVariable(name);
    return value && value->find_first_not_of(' ') != std::string::npos ? value : std::nullopt;
}

std::optional<std::uint64_t> environmentNumber(const char* name)
{
    const std::string text = environmentText(name).value_or("");
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && number > 0 ? std::optional(number) : std::nullopt;
}

std::vector<std::string> scratchFolders(const System& system, const std::string& folder)
{
    if (const auto named = environmentText("GRIDFORGE_SCRATCH")) {
        return {*named};
    }
    return {folder, system.temporaryFolder()};
}

} // namespace gridforge::inline host
