// What a build may be given another name for: the tool, and whom its messages ask to contact.
#pragma once

#include <string_view>

namespace gridforge::inline core {

inline constexpr std::string_view kToolName = GRIDFORGE_TOOL_NAME;
inline constexpr std::string_view kSupportContact = GRIDFORGE_SUPPORT_CONTACT;

} // namespace gridforge::inline core
