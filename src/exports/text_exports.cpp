// Text, numbers as text, and file names under their plain names.
#include "core/free_form.h"
#include "core/names.h"
#include "core/number_text.h"
#include "core/text.h"
#include "exports/boundary.h"
#include "exports/names_for_callers.h"
#include "exports/text_for_callers.h"

#include <cstddef>
#include <cstdint>
#include <gridforge/gridforge.h>
#include <string>
#include <string_view>

using gridforge::exports::answer;
using gridforge::exports::askInPlace;
using gridforge::exports::content;
using gridforge::exports::give;
using gridforge::exports::put;

namespace {

using Change = std::string (*)(std::string_view);

void change(Change routine, char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    give(result, resultLength, [&] { return routine(content(text, textLength)); });
}

} // namespace

extern "C" {

// --- Comparing and finding -------------------------------------------------------------------------------------------

std::int32_t ASAME(const char* a, std::size_t aLength, const char* b, std::size_t bLength)
{
    return static_cast<std::int32_t>(gridforge::ASAME({a, aLength}, {b, bLength}));
}

std::int32_t ASAMECS(const char* a, std::size_t aLength, const char* b, std::size_t bLength)
{
    return static_cast<std::int32_t>(gridforge::exports::ASAMECS({a, aLength}, {b, bLength}));
}

std::int32_t FLAGEXISTS(const char* text, std::size_t textLength, const char* key, std::size_t keyLength)
{
    return static_cast<std::int32_t>(gridforge::FLAGEXISTS({text, textLength}, {key, keyLength}));
}

std::int32_t FLAGEXISTSRET(const char* text, std::size_t textLength, const char* key, std::size_t keyLength, char* rest,
                           std::size_t restLength)
{
    return answer([&] {
        std::string after;
        const bool found = gridforge::FLAGEXISTSRET({text, textLength}, {key, keyLength}, after);
        put(after, rest, restLength);
        return static_cast<std::int32_t>(found);
    });
}

std::int32_t BLANK(char* text, std::size_t textLength)
{
    return askInPlace(gridforge::exports::BLANK, text, textLength);
}

std::int32_t COMMENTLINE(char* text, std::size_t textLength)
{
    return askInPlace(gridforge::COMMENTLINE, text, textLength);
}

std::int32_t NUMBERLINE(char* text, std::size_t textLength)
{
    return askInPlace(gridforge::exports::NUMBERLINE, text, textLength);
}

std::int32_t LENSL(char* text, std::size_t textLength)
{
    const std::int32_t count = gridforge::exports::LENSL({text, textLength});
    const auto end = static_cast<std::size_t>(count);
    if (end > 0 && end < textLength) {
        text[end] = '\0';
        put("", text + end + 1, textLength - end - 1);
    }
    return count;
}

std::int32_t POSITIVEINTEGERNUMBER(char* text, std::size_t textLength)
{
    return askInPlace(gridforge::exports::POSITIVEINTEGERNUMBER, text, textLength);
}

std::int32_t CHECKINT(const char* text, std::size_t textLength, std::int32_t* value)
{
    return static_cast<std::int32_t>(gridforge::CHECKINT(content(text, textLength), *value));
}

std::int32_t CHECKINT4(const char* text, std::size_t textLength, std::int32_t* value)
{
    return static_cast<std::int32_t>(gridforge::readFree(content(text, textLength), *value));
}

std::int32_t CHECKINT8(const char* text, std::size_t textLength, std::int64_t* value)
{
    return static_cast<std::int32_t>(gridforge::readFree(content(text, textLength), *value));
}

// --- Changing text ---------------------------------------------------------------------------------------------------

void TRIMF(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::TRIMF, result, resultLength, text, textLength);
}

void UPPERCASE(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::UPPERCASE, result, resultLength, text, textLength);
}

void LOWERCASE(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::LOWERCASE, result, resultLength, text, textLength);
}

void REMOVESPACES(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::exports::REMOVESPACES, result, resultLength, text, textLength);
}

void REMOVETABS(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::exports::REMOVETABS, result, resultLength, text, textLength);
}

void SS256(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::exports::SS256, result, resultLength, text, textLength);
}

void REMOVEQUOTES(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::REMOVEQUOTES, result, resultLength, text, textLength);
}

void DOUBLEQUOTE(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::DOUBLEQUOTE, result, resultLength, text, textLength);
}

void ALPHANUMERICONLY(char* result, std::size_t resultLength, const char* text, std::size_t textLength,
                      char replacement)
{
    give(result, resultLength,
         [&] { return gridforge::exports::ALPHANUMERICONLY(content(text, textLength), replacement); });
}

void CLEANATTRIBUTENAME(char* result, std::size_t resultLength, const char* text, std::size_t textLength)
{
    change(gridforge::CLEANATTRIBUTENAME, result, resultLength, text, textLength);
}

void REPLACE(char* result, std::size_t resultLength, const char* text, std::size_t textLength, const char* find,
             std::size_t findLength, const char* with, std::size_t withLength)
{
    give(result, resultLength, [&] {
        return gridforge::exports::REPLACE({text, textLength}, {find, findLength}, {with, withLength});
    });
}

void REPLACEALL(char* result, std::size_t resultLength, const char* text, std::size_t textLength, const char* find,
                std::size_t findLength, const char* with, std::size_t withLength)
{
    give(result, resultLength, [&] {
        return gridforge::exports::REPLACEALL({text, textLength}, {find, findLength}, {with, withLength});
    });
}

void SPLITFIRSTWORD(char* word, std::size_t wordLength, char* text, std::size_t textLength)
{
    answer([&] {
        std::string first;
        std::string rest(content(text, textLength));
        gridforge::exports::SPLITFIRSTWORD(first, rest);
        put(rest, text, textLength);
        put(first, word, wordLength);
    });
}

// --- Numbers to text -------------------------------------------------------------------------------------------------

void AINTEGER(char* result, std::size_t resultLength, std::int32_t value)
{
    give(result, resultLength, [&] { return gridforge::AINTEGER(value); });
}

void AINTEGER8(char* result, std::size_t resultLength, std::int64_t value)
{
    give(result, resultLength, [&] { return std::to_string(value); });
}

void AINTEGERPREC0(char* result, std::size_t resultLength, std::int32_t value, std::int32_t digits)
{
    give(result, resultLength, [&] { return gridforge::AINTEGERPREC0(value, digits); });
}

void AINTEGER8PREC0(char* result, std::size_t resultLength, std::int64_t value, std::int32_t digits)
{
    give(result, resultLength, [&] { return gridforge::AINTEGER8PREC0(value, digits); });
}

void AREAL(char* result, std::size_t resultLength, float value)
{
    give(result, resultLength, [&] { return gridforge::AREAL(value); });
}

void AREAL8(char* result, std::size_t resultLength, double value)
{
    give(result, resultLength, [&] { return gridforge::AREAL8(value); });
}

void AREALD(char* result, std::size_t resultLength, float value, std::int32_t decimals)
{
    give(result, resultLength, [&] { return gridforge::AREALD(value, decimals); });
}

void AREALD8(char* result, std::size_t resultLength, double value, std::int32_t decimals)
{
    give(result, resultLength, [&] { return gridforge::AREALD8(value, decimals); });
}

// --- Counting and fields ---------------------------------------------------------------------------------------------

std::int32_t NEXTCOMMA(const char* text, std::size_t textLength)
{
    return gridforge::exports::NEXTCOMMA({text, textLength});
}

std::int32_t NUMBEROFSUBSTRINGS(const char* text, std::size_t textLength, const char* separator,
                                std::size_t separatorLength)
{
    return gridforge::exports::NUMBEROFSUBSTRINGS(content(text, textLength), {separator, separatorLength});
}

void SUBSTRING(char* result, std::size_t resultLength, const char* text, std::size_t textLength, const char* separator,
               std::size_t separatorLength, std::int32_t n)
{
    give(result, resultLength, [&] {
        return gridforge::exports::SUBSTRING(content(text, textLength), {separator, separatorLength}, n);
    });
}

std::int32_t NUMBEROFNUMBERS(const char* text, std::size_t textLength)
{
    return gridforge::exports::NUMBEROFNUMBERS({text, textLength});
}

std::int32_t NUMBEROFDAYS(const char* date, std::size_t dateLength)
{
    return gridforge::exports::NUMBEROFDAYS({date, dateLength});
}

// --- File names ------------------------------------------------------------------------------------------------------

void FILEEXT(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::FILEEXT, result, resultLength, name, nameLength);
}

void FILEEXTKC(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::exports::FILEEXTKC, result, resultLength, name, nameLength);
}

void FILENAMEPATH(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::FILENAMEPATH, result, resultLength, name, nameLength);
}

void FILENAME(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::FILENAME, result, resultLength, name, nameLength);
}

void FILENAMEEXT(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::FILENAMEEXT, result, resultLength, name, nameLength);
}

void FILE___EXT(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::exports::FILE___EXT, result, resultLength, name, nameLength);
}

void FILENAMENO_(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::exports::FILENAMENO_, result, resultLength, name, nameLength);
}

void FILENAMEPATHNO_(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::exports::FILENAMEPATHNO_, result, resultLength, name, nameLength);
}

void FILEFOLDERPATH(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::FILEFOLDERPATH, result, resultLength, name, nameLength);
}

void ADDFOLDER(char* result, std::size_t resultLength, const char* folder, std::size_t folderLength, const char* name,
               std::size_t nameLength)
{
    give(result, resultLength, [&] {
        return gridforge::exports::ADDFOLDER({folder, folderLength}, {name, nameLength});
    });
}

void REMOVEDOTDOT(char* result, std::size_t resultLength, const char* name, std::size_t nameLength)
{
    change(gridforge::exports::REMOVEDOTDOT, result, resultLength, name, nameLength);
}

std::int32_t DRIVEANDURLNAME(char* name, std::size_t nameLength)
{
    return askInPlace(gridforge::exports::DRIVEANDURLNAME, name, nameLength);
}
}
