// Messages, and lines and fields of control files, under their plain names. The record DMESSAGES itself stands with the
// routines that fill it.
#include "exports/boundary.h"
#include "exports/messages_for_callers.h"
#include "exports/text_for_callers.h"
#include "host/control_lines.h"
#include "host/messages.h"

#include <cstddef>
#include <cstdint>
#include <gridforge/gridforge.h>
#include <string>

using gridforge::exports::answer;
using gridforge::exports::content;
using gridforge::exports::give;
using gridforge::exports::put;

// The record of the header is the record of the tool, member by member.
namespace {

using Outside = gridforgeMessages;
using Inside = gridforge::MessageRecord;
static_assert(sizeof(Outside) == sizeof(Inside));
static_assert(offsetof(Outside, x) == offsetof(Inside, x));
static_assert(offsetof(Outside, messageInline) == offsetof(Inside, messageInline));
static_assert(offsetof(Outside, messageLogUnit) == offsetof(Inside, messageLogUnit));
static_assert(offsetof(Outside, checkMidUnit) == offsetof(Inside, checkMidUnit));
static_assert(offsetof(Outside, line) == offsetof(Inside, line));
static_assert(offsetof(Outside, prefix) == offsetof(Inside, prefix));
static_assert(offsetof(Outside, labelDx) == offsetof(Inside, labelDx));
static_assert(offsetof(Outside, errorCount) == offsetof(Inside, errorCount));
static_assert(offsetof(Outside, xyCheckCount) == offsetof(Inside, xyCheckCount));
static_assert(offsetof(Outside, id) == offsetof(Inside, id));
static_assert(offsetof(Outside, messageClass) == offsetof(Inside, messageClass));
static_assert(offsetof(Outside, tag) == offsetof(Inside, tag));
static_assert(offsetof(Outside, messageCsvUnit) == offsetof(Inside, messageCsvUnit));

} // namespace

extern "C" {

// --- Messages --------------------------------------------------------------------------------------------------------

void DMESSAGE(std::int32_t blankLines)
{
    answer([&] { gridforge::DMESSAGE(blankLines); });
}

void DMESSAGEXY(std::int32_t blankLines, double x, double y)
{
    answer([&] { gridforge::exports::DMESSAGEXY(blankLines, x, y); });
}

void DMESSAGECLEAR()
{
    gridforge::DMESSAGECLEAR();
}

void DMESSAGERESETCOUNTERS()
{
    gridforge::exports::DMESSAGERESETCOUNTERS();
}

void DLINE(std::int32_t unit)
{
    answer([&] { gridforge::exports::DLINE(unit); });
}

// --- Lines and fields ------------------------------------------------------------------------------------------------

std::int32_t READLINE(std::int32_t unit, char* text, std::size_t textLength)
{
    return answer([&] {
        std::string line;
        const bool result = gridforge::READLINE(unit, line, textLength);
        put(line, text, textLength);
        return static_cast<std::int32_t>(result);
    });
}

std::int32_t CHECKLINE(const char* line, std::size_t lineLength, const char* key, std::size_t keyLength,
                       const char* separator, std::size_t separatorLength, std::int32_t splitColumn, char* right,
                       std::size_t rightLength, char* left, std::size_t leftLength)
{
    return answer([&] {
        std::string after;
        std::string before;
        const bool result = gridforge::CHECKLINE(content(line, lineLength), content(key, keyLength),
                                                 {separator, separatorLength}, splitColumn, after, before);
        put(after, right, rightLength);
        put(before, left, leftLength);
        return static_cast<std::int32_t>(result);
    });
}

std::int32_t CSVCOLUMN(const char* text, std::size_t textLength, const char* name, std::size_t nameLength,
                       std::int32_t fallback)
{
    return gridforge::exports::CSVCOLUMN({text, textLength}, {name, nameLength}, fallback);
}

std::int32_t CSVVALUE(const char* text, std::size_t textLength, std::int32_t column, float* value)
{
    return static_cast<std::int32_t>(gridforge::exports::CSVVALUE({text, textLength}, column, *value));
}

// The lines keep their padding here: the search of a key goes by the length of the line.
void EXTRACTSTRING(char* result, std::size_t resultLength, const char* line, std::size_t lineLength,
                   const char* lowerLine, std::size_t lowerLineLength, const char* key, std::size_t keyLength,
                   std::int32_t column)
{
    give(result, resultLength, [&] {
        return gridforge::EXTRACTSTRING({line, lineLength}, {lowerLine, lowerLineLength}, {key, keyLength}, column);
    });
}

void EXTRACTSTRINGREM(char* result, std::size_t resultLength, const char* line, std::size_t lineLength,
                      const char* lowerLine, std::size_t lowerLineLength, const char* key, std::size_t keyLength,
                      std::int32_t column)
{
    give(result, resultLength, [&] {
        return gridforge::EXTRACTSTRINGREM({line, lineLength}, {lowerLine, lowerLineLength}, {key, keyLength}, column);
    });
}

std::int32_t EXTRACTINTEGER(const char* line, std::size_t lineLength, const char* lowerLine,
                            std::size_t lowerLineLength, const char* key, std::size_t keyLength, std::int32_t column,
                            std::int32_t fallback)
{
    return answer([&] {
        return gridforge::EXTRACTINTEGER({line, lineLength}, {lowerLine, lowerLineLength}, {key, keyLength}, column,
                                         fallback);
    });
}

float EXTRACTREAL(const char* line, std::size_t lineLength, const char* lowerLine, std::size_t lowerLineLength,
                  const char* key, std::size_t keyLength, std::int32_t column, float fallback)
{
    return answer([&] {
        return gridforge::EXTRACTREAL({line, lineLength}, {lowerLine, lowerLineLength}, {key, keyLength}, column,
                                      fallback);
    });
}
}
