#include "exports/messages_for_callers.h"

#include "core/number_text.h"
#include "core/text.h"
#include "host/console.h"
#include "host/messages.h"
#include "host/units.h"

#include <string>
#include <string_view>

namespace gridforge::exports {

namespace {

struct MessageStyle {
    std::string_view font;
    bool checkLayer;
};

MessageStyle styleOf(MessageClass messageClass)
{
    switch (messageClass) {
    case MessageClass::error: return {R"(Font ("Arial",257,0,16711935,0))", false};
    case MessageClass::warning: return {R"(Font ("Arial",257,0,16776960,0))", false};
    case MessageClass::unstable: return {R"(Font ("Arial",257,0,16711935,0))", false};
    case MessageClass::check: return {R"(Font ("Arial",257,0,255,16777215))", true};
    default: return {R"(Font ("Arial",257,0,53248,16777215))", true};
    }
}

std::string placeField(double value)
{
    constexpr int kColumns = 16;
    constexpr int kDecimals = 3;
    return realField(value, kColumns, kDecimals);
}

void drawMessage(const MessageRecord& record, const MessageStyle& style, double x, double y)
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

void DMESSAGEXY(std::int32_t blankLines, double x, double y)
{
    MessageRecord& record = DMESSAGES();
    record.prefix = "XY:";
    classify(record);
    const MessageClass messageClass{record.messageClass};
    switch (messageClass) {
    case MessageClass::error: ++record.xyErrorCount; break;
    case MessageClass::warning: ++record.xyWarningCount; break;
    case MessageClass::check: ++record.xyCheckCount; break;
    default: break;
    }
    record.line[3] = joinTags(record);
    drawMessage(record, styleOf(messageClass), x, y);
    record.x = x;
    record.y = y;
    DMESSAGE(blankLines);
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
    constexpr std::size_t kRuleLength = 80;
    const std::string rule(kRuleLength, '_');
    say(rule);
    if (unit > 0) {
        writeLine(unit, rule);
    }
}

} // namespace gridforge::exports
