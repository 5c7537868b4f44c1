#include "host/windows/names.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <optional>
#include <utility>
#include <windows.h>

namespace gridforge::inline host {

namespace {

constexpr std::wstring_view kShare = L"\\\\";
constexpr std::wstring_view kLongForm = L"\\\\?\\";
constexpr std::wstring_view kLongShare = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";
// A folder must leave room for a short name in it.
constexpr std::size_t kLongestUsual = MAX_PATH - 13;
constexpr const wchar_t* kNoName = L"|";

constexpr char32_t kFirstHigh = 0xD800;
constexpr char32_t kFirstLow = 0xDC00;
constexpr char32_t kPastLow = 0xE000;
constexpr char32_t kFirstOfPairs = 0x10000;
constexpr char32_t kLastCharacter = 0x10FFFF;

bool isHigh(char32_t unit)
{
    return unit >= kFirstHigh && unit < kFirstLow;
}

bool isLow(char32_t unit)
{
    return unit >= kFirstLow && unit < kPastLow;
}

void appendUtf8(char32_t character, std::string& text)
{
    constexpr std::array<char32_t, 3> kPastLengths = {0x80, 0x800, kFirstOfPairs};
    constexpr std::array<unsigned, 4> kLeads = {0, 0xC0, 0xE0, 0xF0};
    const auto more =
        static_cast<std::size_t>(std::ranges::count_if(kPastLengths, [&](char32_t past) { return character >= past; }));
    text += static_cast<char>(kLeads[more] | character >> (6 * more));
    for (std::size_t left = more; left-- > 0;) {
        text += static_cast<char>(0x80U | (character >> (6 * left) & 0x3FU));
    }
}

void appendUtf16(char32_t character, std::wstring& text)
{
    if (character >= kFirstOfPairs) {
        text += static_cast<wchar_t>(kFirstHigh + ((character - kFirstOfPairs) >> 10));
        character = kFirstLow + ((character - kFirstOfPairs) & 0x3FFU);
    }
    text += static_cast<wchar_t>(character);
}

// The first character, which leaves the text; nothing where that does not begin with one in its shortest form.
std::optional<char32_t> takeUtf8(std::string_view& text)
{
    constexpr std::array<char32_t, 4> kFirsts = {0, 0x80, 0x800, kFirstOfPairs};
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto ones = static_cast<std::size_t>(std::countl_one(byte(0)));
    const std::size_t more = ones == 0 ? 0 : ones - 1;
    if (ones == 1 || more >= kFirsts.size() || more >= text.size()) {
        return std::nullopt;
    }
    char32_t character = byte(0) & (0x7FU >> ones);
    for (std::size_t i = 1; i <= more; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return std::nullopt;
        }
        character = character << 6 | (byte(i) & 0x3FU);
    }
    text.remove_prefix(more + 1);
    return character >= kFirsts[more] && character <= kLastCharacter ? std::optional(character) : std::nullopt;
}

std::optional<std::wstring> fromUtf8(std::string_view text)
{
    std::wstring result;
    while (!text.empty()) {
        const std::optional<char32_t> character = takeUtf8(text);
        if (!character) {
            return std::nullopt;
        }
        appendUtf16(*character, result);
    }
    return result;
}

std::wstring fromWestern(std::string_view text)
{
    constexpr UINT kWestern = 1252;
    std::wstring result(text.size(), L'\0'); // each byte is one character
    const int length = static_cast<int>(text.size());
    MultiByteToWideChar(kWestern, 0, text.data(), length, result.data(), length);
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

// The system drops points and blanks from the end of a name, and takes what follows a colon for the name of a part of the file.
bool isDropped(wchar_t last)
{
    return last == L'.' || last == L' ';
}

bool isOfOneFile(std::wstring_view path)
{
    if (path.size() > 1 && path[1] == L':') {
        path.remove_prefix(2);
    }
    while (!path.empty()) {
        const std::wstring_view part = path.substr(0, path.find(L'\\'));
        path.remove_prefix(std::min(part.size() + 1, path.size()));
        const bool isFolderItself = part == L"." || part == L"..";
        if (part.find(L':') != part.npos || (!part.empty() && !isFolderItself && isDropped(part.back()))) {
            return false;
        }
    }
    return true;
}

std::wstring inLongForm(const std::wstring& full)
{
    return full.starts_with(kShare) ? std::wstring(kLongShare) + full.substr(kShare.size())
                                    : std::wstring(kLongForm) + full;
}

bool isTakenAsItIs(std::wstring_view path)
{
    return path.starts_with(kLongForm) || path.starts_with(kDevice);
}

} // namespace

std::wstring wide(std::string_view text)
{
    std::optional<std::wstring> result = fromUtf8(text);
    return result ? std::move(*result) : fromWestern(text);
}

std::string narrow(std::wstring_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t character = text[i];
        if (isHigh(character) && i + 1 < text.size() && isLow(text[i + 1])) {
            character = kFirstOfPairs + ((character - kFirstHigh) << 10) + (text[++i] - kFirstLow);
        }
        appendUtf8(character, result);
    }
    return result;
}

std::wstring systemPath(std::string_view name)
{
    std::wstring path = withBackslashes(name);
    if (isTakenAsItIs(path)) {
        return path;
    }
    const std::wstring full = inFull(path);
    if (!isOfOneFile(path) || full.starts_with(kDevice)) {
        return kNoName;
    }
    return full.size() < kLongestUsual ? path : inLongForm(full);
}

std::wstring fullPath(std::string_view name)
{
    const std::wstring path = withBackslashes(name);
    const std::wstring full = inFull(path);
    return full.size() < kLongestUsual || isTakenAsItIs(path) ? full : inLongForm(full);
}

std::string usualName(std::wstring_view full)
{
    if (full.starts_with(kLongShare)) {
        return narrow(std::wstring(kShare).append(full.substr(kLongShare.size())));
    }
    return narrow(full.starts_with(kLongForm) ? full.substr(kLongForm.size()) : full);
}

} // namespace gridforge::inline host
