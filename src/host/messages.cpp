#include "host/messages.h"

#include "core/free_form.h"
#include "core/number_text.h"
#include "host/console.h"
#include "host/units.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

// The record under the name by which programs outside share it.
extern "C" {
constinit gridforge::MessageRecord DMESSAGES;
}

namespace gridforge::inline host {

namespace {

constexpr std::size_t kNumberColumns = 6;
constexpr std::size_t kCsvTextWidth = 1000;

struct ClassWord {
    std::string_view word;
    MessageClass messageClass;
};
constexpr std::array<ClassWord, 4> kClassWords = {{{"ERROR", MessageClass::error},
                                                   {"WARNING", MessageClass::warning},
                                                   {"CHECK", MessageClass::check},
                                                   {"UNSTABLE", MessageClass::unstable}}};

// Null where the line begins with none of the words.
const ClassWord* classWordOf(std::string_view line)
{
    const auto* const found =
        std::ranges::find_if(kClassWords, [&](const ClassWord& candidate) { return line.starts_with(candidate.word); });
    return found == kClassWords.end() ? nullptr : found;
}

void countMessage(MessageRecord& record)
{
    switch (MessageClass{record.messageClass}) {
    case MessageClass::error: ++record.errorCount; break;
    case MessageClass::warning: ++record.warningCount; break;
    case MessageClass::check: ++record.checkCount; break;
    default: break;
    }
}

std::string csvText(std::string_view text)
{
    return join(", ", quoted(cut(DOUBLEQUOTE(text), kCsvTextWidth)));
}

void writeCsv(const MessageRecord& record)
{
    constexpr int kIdColumns = 5;
    constexpr int kIdDigits = 4;
    constexpr int kClassColumns = 2;
    constexpr int kPlaceColumns = 10;
    constexpr int kPlaceDecimals = 3;
    const std::string digits = AINTEGERPREC0(record.id, kIdDigits);
    std::string line(digits.size() < kIdColumns ? kIdColumns - digits.size() : 0, ' ');
    line += join(digits, ',', integerField(record.messageClass, kClassColumns), ',',
                 realField(record.x, kPlaceColumns, kPlaceDecimals), ',',
                 realField(record.y, kPlaceColumns, kPlaceDecimals));
    line += csvText(join(record.line[0].view(), "  ", record.line[1].view(), "  ", record.line[2].view()));
    for (const auto& tag : record.tag) {
        line += csvText(tag.view());
    }
    writeLine(record.messageCsvUnit, line);
}

// The message as the lines of the console and the log.
std::vector<std::string> messageLines(const MessageRecord& record)
{
    std::vector<std::string> lines;
    const std::string_view first = record.line[0].view();
    lines.push_back(record.prefix.empty() ? std::string(first) : join(record.prefix.view(), ' ', first));
    for (std::size_t i = 1; i < record.line.size(); ++i) {
        if (record.line[i].empty()) {
            continue;
        }
        if (record.messageInline != 0) {
            lines[0] += join("  ", record.line[i].view());
        } else {
            lines.emplace_back(record.line[i].view());
        }
    }
    return lines;
}

} // namespace

MessageRecord& DMESSAGES()
{
    return ::DMESSAGES;
}

void classify(MessageRecord& record)
{
    const std::string_view line = record.line[0].view();
    const ClassWord* const found = classWordOf(line);
    record.messageClass = found == nullptr ? 0 : static_cast<std::int32_t>(found->messageClass);
    if (found == nullptr || !parseNumber(trim(line.substr(found->word.size(), kNumberColumns)), record.id)) {
        record.id = 0;
    }
}

std::string joinTags(const MessageRecord& record)
{
    std::string all;
    for (const auto& tag : record.tag) {
        if (!tag.empty()) {
            all += join(all.empty() ? "" : "; ", tag.view());
        }
    }
    return cut(all, kMessageWidth);
}

void DMESSAGE(std::int32_t blankLines)
{
    MessageRecord& record = DMESSAGES();
    classify(record);
    countMessage(record);
    if (record.messageCsvUnit > 0 && record.messageClass != 0) {
        writeCsv(record);
    }
    record.line[3] = joinTags(record);

    const bool toLog = blankLines > -2 && record.messageLogUnit > 0;
    for (std::int32_t i = 0; i < blankLines; ++i) {
        say("");
        if (toLog) {
            writeLine(record.messageLogUnit, "");
        }
    }
    for (const std::string& line : messageLines(record)) {
        say(line);
        if (toLog) {
            writeLine(record.messageLogUnit, line);
        }
    }
    DMESSAGECLEAR();
}

void DMESSAGECLEAR()
{
    MessageRecord& record = DMESSAGES();
    record.x = kNoMessagePlace;
    record.y = kNoMessagePlace;
    record.messageInline = 0;
    record.line.fill({});
    record.prefix.clear();
    record.tag.fill({});
}

} // namespace gridforge::inline host
