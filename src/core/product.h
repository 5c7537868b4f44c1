// Whom messages ask to contact, which a build may be given. GRIDFORGE_TOOL_NAME, the name of the tool, is part of texts that
// are put together by the compiler and stays a macro.
#pragma once

#include <string_view>

namespace gridforge::inline core {

inline constexpr std::string_view kSupportContact = GRIDFORGE_SUPPORT_CONTACT;

} // namespace gridforge::inline core
