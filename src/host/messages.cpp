#include "host/messages.h"

#include "core/numbers.h"
#include "host/console.h"
#include "host/units.h"

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
constexpr std::size_t kRuleLength = 80;

enum MessageClass : std::int32_t { kNone = 0, kError = 1, kWarning = 2, kCheck = 3, kUnstable = 4 };

struct ClassWord {
    std::string_view word;
    MessageClass messageClass;
};
constexpr std::array<ClassWord, 4> kClassWords = {
    {{"ERROR", kError}, {"WARNING", kWarning}, {"CHECK", kCheck}, {"UNSTABLE", kUnstable}}};

MessageClass classOf(std::string_view line, std::string_view& word)
{
    for (const ClassWord& candidate : kClassWords) {
        if (line.starts_with(candidate.word)) {
            word = candidate.word;
            return candidate.messageClass;
        }
    }
    return kNone;
}

void countMessage(MessageRecord& record)
{
    std::string_view word;
    record.id = 0;
    record.messageClass = classOf(record.line[0].view(), word);
    switch (record.messageClass) {
    case kError: ++record.errorCount; break;
    case kWarning: ++record.warningCount; break;
    case kCheck: ++record.checkCount; break;
    default: break;
    }
    if (record.messageClass != kNone) {
        const std::string_view columns = record.line[0].view().substr(word.size()).substr(0, kNumberColumns);
        if (!parseNumber(trim(columns), record.id)) {
            record.id = 0;
        }
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

// --- The message layer -----------------------------------------------------------------------------------------------

struct LayerStyle {
    std::string_view font;
    bool checkLayer;
};

LayerStyle styleOf(MessageClass messageClass)
{
    switch (messageClass) {
    case kError: return {R"(Font ("Arial",257,0,16711935,0))", false};
    case kWarning: return {R"(Font ("Arial",257,0,16776960,0))", false};
    case kUnstable: return {R"(Font ("Arial",257,0,16711935,0))", false};
    case kCheck: return {R"(Font ("Arial",257,0,255,16777215))", true};
    default: return {R"(Font ("Arial",257,0,53248,16777215))", true};
    }
}

std::string placeField(double value)
{
    constexpr int kColumns = 16;
    constexpr int kDecimals = 3;
    return realField(value, kColumns, kDecimals);
}

void drawMessage(const MessageRecord& record, const LayerStyle& style, double x, double y)
{
    std::string text;
    std::string attributes;
    int lines = 0;
    for (const auto& line : record.line) {
        if (line.empty()) {
            continue;
        }
        ++lines;
        const std::string doubled = DOUBLEQUOTE(line.view());
        if (lines > 1) {
            text += record.messageInline != 0 ? "  " : "\\n";
        }
        text += doubled;
        attributes += join('"', doubled, "  ");
    }
    const double drop = record.labelDx * 0.5 * lines;
    const Unit mif = style.checkLayer ? record.checkMifUnit : record.mifUnit;
    if (mif > 0) {
        writeLine(mif, "Text");
        writeLine(mif, quoted(text));
        writeLine(mif, join("    ", placeField(x + record.labelDx), placeField(y - drop),
                            placeField(x + record.labelDx + record.labelDy), placeField(y + drop)));
        writeLine(mif, join("    ", style.font));
        writeLine(mif, join("    Label Line Arrow ", placeField(x), placeField(y)));
    }
    const Unit mid = style.checkLayer ? record.checkMidUnit : record.midUnit;
    if (mid > 0) {
        writeLine(mid, join(attributes, '"'));
    }
}

} // namespace

MessageRecord& DMESSAGES()
{
    return ::DMESSAGES;
}

void DMESSAGE(std::int32_t blankLines)
{
    MessageRecord& record = DMESSAGES();
    countMessage(record);
    if (record.messageCsvUnit > 0 && record.messageClass != kNone) {
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

void DMESSAGEXY(std::int32_t blankLines, double x, double y)
{
    MessageRecord& record = DMESSAGES();
    record.prefix = "XY:";
    std::string_view word;
    const MessageClass messageClass = classOf(record.line[0].view(), word);
    switch (messageClass) {
    case kError: ++record.xyErrorCount; break;
    case kWarning: ++record.xyWarningCount; break;
    case kCheck: ++record.xyCheckCount; break;
    default: break;
    }
    record.line[3] = joinTags(record);
    drawMessage(record, styleOf(messageClass), x, y);
    record.x = x;
    record.y = y;
    DMESSAGE(blankLines);
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

void DMESSAGERESETCOUNTERS()
{
    MessageRecord& record = DMESSAGES();
    record.errorCount = 0;
    record.warningCount = 0;
    record.checkCount = 0;
    record.xyErrorCount = 0;
    record.xyWarningCount = 0;
    record.xyCheckCount = 0;
}

void DLINE(std::int32_t unit)
{
    const std::string rule(kRuleLength, '_');
    say(rule);
    if (unit > 0) {
        writeLine(unit, rule);
    }
}

} // namespace gridforge::inline host
