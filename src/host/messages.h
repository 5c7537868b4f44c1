// Numbered messages: counted by class, written to the console and, where units are set, to a log and a CSV list.
#pragma once

#include "core/padded_text.h"
#include "core/text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace gridforge::inline host {

inline constexpr double kNoMessagePlace = -99999.0;
inline constexpr std::size_t kMessageWidth = 10000;
inline constexpr std::size_t kPrefixWidth = 4;

// Programs outside share this record by its layout, so its members stay in this order, fields of text are padded and a
// logical is an integer.
struct MessageRecord {
    double x = kNoMessagePlace;
    double y = kNoMessagePlace;
    std::int32_t messageInline = 0; // not 0: lines 2 to 4 follow line 1 on its console line
    std::int32_t messageLogUnit = 0;
    std::int32_t mifUnit = 0;
    std::int32_t midUnit = 0;
    std::int32_t checkMifUnit = 0;
    std::int32_t checkMidUnit = 0;
    std::array<PaddedText<kMessageWidth>, 4> line;
    PaddedText<kPrefixWidth> prefix; // before line 1
    double labelDx = 0;
    double labelDy = 0;
    std::int32_t errorCount = 0;
    std::int32_t warningCount = 0;
    std::int32_t checkCount = 0;
    std::int32_t xyErrorCount = 0;
    std::int32_t xyWarningCount = 0;
    std::int32_t xyCheckCount = 0;
    std::int32_t id = 0;
    std::int32_t messageClass = 0; // 1 ERROR, 2 WARNING, 3 CHECK, 4 UNSTABLE, 0 none
    std::array<PaddedText<kMessageWidth>, 3> tag;
    std::int32_t messageCsvUnit = 0;
};

// The record that a caller fills before DMESSAGE.
MessageRecord& DMESSAGES();

enum class MessageClass : std::int32_t { none, error, warning, check, unstable };
// Fills `messageClass` and `id` from the word at the head of line 1 and the number after it.
void classify(MessageRecord& record);
// The tags as one text, which DMESSAGE writes as line 4.
std::string joinTags(const MessageRecord& record);

// Writes the message of the record after `blankLines` empty lines (none when below 0) and clears the record. -2 and
// below keep the text out of the log.
void DMESSAGE(std::int32_t blankLines);
void DMESSAGECLEAR();

// Reports the parts as line 1, one blank line first.
template <typename... Parts>
void report(const Parts&... parts)
{
    DMESSAGES().line[0] = join(parts...);
    DMESSAGE(1);
}

} // namespace gridforge::inline host
