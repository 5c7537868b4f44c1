#include "host/console.h"

#include "core/number_text.h"
#include "host/system.h"

#include <array>
#include <span>

namespace gridforge::inline host {

namespace {

constexpr std::size_t kFlushAt = std::size_t{1} << 16;
constexpr int kProgressWidth = 8;

struct Console {
    std::string output;
    bool lineOpen = false;
    bool watched = theSystem().consoleIsWatched();
    std::array<char, 4096> input{};
    std::size_t inputAt = 0;
    std::size_t inputEnd = 0;
    bool inputBegun = false;
};

Console& console()
{
    static Console theConsole;
    return theConsole;
}

// A person who watches sees each line at once; a file or pipe gets large pieces.
void flushIfDue()
{
    if (console().watched || console().output.size() >= kFlushAt) {
        flushConsole();
    }
}

// Reads more after the unused bytes; false if nothing came.
bool readMoreInput()
{
    Console& c = console();
    if (c.inputAt == c.inputEnd) {
        c.inputAt = 0;
        c.inputEnd = 0;
    }
    const std::int64_t got = theSystem().readConsole(std::span(c.input).subspan(c.inputEnd));
    if (got <= 0) {
        return false;
    }
    c.inputEnd += static_cast<std::size_t>(got);
    return true;
}

// Some shells send a byte order mark first through a pipe. Reads no further than the first byte that is not part of one,
// because a person may be typing. False if there is no input.
bool skipByteOrderMark()
{
    Console& c = console();
    if (c.inputBegun) {
        return true;
    }
    c.inputBegun = true;
    const auto waiting = [&c] { return std::string_view(c.input.data(), c.inputEnd); };
    while (c.inputEnd < kByteOrderMark.size() && kByteOrderMark.starts_with(waiting()) && readMoreInput()) {
    }
    if (waiting().starts_with(kByteOrderMark)) {
        c.inputAt = kByteOrderMark.size();
    }
    return c.inputEnd > 0;
}

std::optional<char> nextInputByte()
{
    Console& c = console();
    if (c.inputAt == c.inputEnd && !readMoreInput()) {
        return std::nullopt;
    }
    return c.input[c.inputAt++];
}

// A line of standard input, cut at 1000 characters; nothing at its end.
std::optional<std::string> readInput()
{
    flushConsole();
    if (!skipByteOrderMark()) { // not asked again: on a terminal the end of input would have to be typed twice
        return std::nullopt;
    }
    std::string line;
    bool any = false;
    while (const auto byte = nextInputByte()) {
        any = true;
        if (*byte == '\n') {
            break;
        }
        if (line.size() <= kLineWidth) {
            line += *byte;
        }
    }
    if (!any) {
        return std::nullopt;
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    return cut(line, kLineWidth);
}

} // namespace

void consoleLine(std::string_view text)
{
    endLine();
    // If memory runs out here, the message of that must not join half a line: a line is added with its end or not at all.
    console().output.reserve(console().output.size() + text.size() + 1);
    console().output += text;
    console().output += '\n';
    flushIfDue();
}

void consoleOpen(std::string_view text)
{
    console().output += text;
    console().lineOpen = true;
    flushIfDue();
}

void endLine()
{
    if (console().lineOpen) {
        console().output += '\n';
        console().lineOpen = false;
        flushIfDue();
    }
}

void progress(std::int32_t number)
{
    consoleOpen(integerField(number, kProgressWidth));
}

void flushConsole()
{
    std::string& output = console().output;
    theSystem().writeConsole(output);
    output.clear();
}

void restartConsole()
{
    console() = Console();
}

void pause(std::string_view prompt)
{
    readAnswer(prompt);
}

void pauseForEnter()
{
    pause("Enter command<CR> or <CR> to continue.");
}

std::optional<std::string> readAnswer(std::string_view question)
{
    consoleLine(question);
    return readInput();
}

} // namespace gridforge::inline host
