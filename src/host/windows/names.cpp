#include "host/windows/names.h"

#include <algorithm>
#include <cstddef>
#include <windows.h>

namespace gridforge::inline host {

namespace {

constexpr std::wstring_view kShare = L"\\\\";
constexpr std::wstring_view kLongForm = L"\\\\?\\";
constexpr std::wstring_view kLongShare = L"\\\\?\\UNC\\";
// A folder must leave room for a short name in it.
constexpr std::size_t kLongestUsual = MAX_PATH - 13;

// No text if `flags` do not allow it.
std::wstring decoded(std::string_view text, UINT codePage, DWORD flags)
{
    const int length = static_cast<int>(text.size());
    const int count = MultiByteToWideChar(codePage, flags, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(std::max(count, 0)), L'\0');
    MultiByteToWideChar(codePage, flags, text.data(), length, result.data(), count);
    return result;
}

std::wstring withBackslashes(std::string_view name)
{
    std::wstring path = wide(name);
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path;
}

std::wstring inFull(const std::wstring& path)
{
    std::wstring result(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    result.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(result.size()), result.data(), nullptr));
    return result;
}

} // namespace

std::wstring wide(std::string_view text)
{
    constexpr UINT kWestern = 1252;
    std::wstring result = decoded(text, CP_UTF8, MB_ERR_INVALID_CHARS);
    return result.empty() && !text.empty() ? decoded(text, kWestern, 0) : result;
}

std::string narrow(std::wstring_view text)
{
    const int length = static_cast<int>(text.size());
    const int count = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(std::max(count, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), count, nullptr, nullptr);
    return result;
}

std::wstring systemPath(std::string_view name)
{
    std::wstring path = withBackslashes(name);
    if (path.starts_with(kLongForm) || path.starts_with(L"\\\\.\\")) {
        return path;
    }
    const std::wstring full = inFull(path);
    if (full.size() < kLongestUsual) {
        return path;
    }
    return full.starts_with(kShare) ? std::wstring(kLongShare) + full.substr(kShare.size())
                                    : std::wstring(kLongForm) + full;
}

std::wstring fullPath(std::string_view name)
{
    return inFull(withBackslashes(name));
}

std::string usualName(std::wstring_view full)
{
    if (full.starts_with(kLongShare)) {
        return narrow(std::wstring(kShare).append(full.substr(kLongShare.size())));
    }
    return narrow(full.starts_with(kLongForm) ? full.substr(kLongForm.size()) : full);
}

} // namespace gridforge::inline host
