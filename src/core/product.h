// Whom messages ask users to contact; a build may set it. The name of the tool stays a macro, GRIDFORGE_TOOL_NAME, because
// the compiler joins it with other texts.
#pragma once

#include <string_view>

namespace gridforge::inline core {

inline constexpr std::string_view kSupportContact = GRIDFORGE_SUPPORT_CONTACT;

} // namespace gridforge::inline core
