#include "gis/mif/reader.h"

#include "core/free_form.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/mif/base_name.h"
#include "gis/mif/keywords.h"

#include <algorithm>
#include <array>

namespace gridforge::gis::mif {

MifInput open(std::string_view fileName)
{
    const std::string base = baseOf(fileName);
    MifInput input;
    OPENER(input.mifUnit, "I ", base + ".mif");
    OPENER(input.midUnit, "I ", base + ".mid");
    return input;
}

void closeFiles(MifInput& input)
{
    CLOSER(input.mifUnit);
    CLOSER(input.midUnit);
}

// --- Objects and records ---------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t kKeywordWidth = 16;

// The first characters of `text` in upper case, with blanks for tabs.
std::string_view upperHead(std::string_view text, std::array<char, kKeywordWidth>& head)
{
    const std::size_t count = std::min(text.size(), head.size());
    for (std::size_t i = 0; i < count; ++i) {
        const char c = text[i];
        if (c >= 'a' && c <= 'z') {
            head[i] = static_cast<char>(c - 'a' + 'A');
        } else {
            head[i] = c == '\t' ? ' ' : c;
        }
    }
    return {head.data(), count};
}

void readCounts(std::string_view line, std::string_view rest, LayerObject& object)
{
    if (object.kind == Kind::combinedPolyline || object.kind == Kind::multipoint) {
        readFree(rest, object.sections);
    } else if (object.kind == Kind::region) {
        readFree(rest, object.rings);
        if (object.rings > kMaxParts) {
            gisFail("ERROR 0304 - Exceeded maximum number of polygons in region below of 10000", line);
        }
    }
}

void needObjectLine(MifInput& input)
{
    if (!readLine(input.mifUnit, input.line)) {
        gisFail("ERROR 0321 - Reading .mif file object type."); // there was a line, so the read was refused
    }
}

// Looks for an object in the line of the .mif; `tail` becomes the text after its keyword.
bool isObject(std::string_view line, std::string_view& tail, LayerObject& object)
{
    std::array<char, kKeywordWidth> head{};
    tail = line.substr(std::min(line.find_first_not_of(" \t"), line.size()));
    const std::string_view word = upperHead(tail, head);
    const auto* const match = std::ranges::find_if(
        kKeywords, [&](const ObjectKeyword& candidate) { return word.starts_with(candidate.word); });
    // Set for every line: a Center line counts only if it is the last one.
    object.centre = word.starts_with(kCentreKeyword);
    if (match != kKeywords.end()) {
        object.kind = match->kind;
        object.name = match->word;
        tail.remove_prefix(match->word.size());
        readCounts(line, tail, object);
        return true;
    }
    if (word.starts_with(kUnsupportedKeyword)) {
        gisFail("ERROR 0303 - MIF \"Collection\" objects not supported.  Delete or disaggregate object.");
    }
    if (object.centre) {
        object.name = kCentreKeyword;
        tail.remove_prefix(kCentreKeyword.size());
    }
    return false;
}

} // namespace

bool readKind(MifInput& input, LayerObject& object)
{
    bool found = false;
    std::string_view tail;
    while (!found && !atEnd(input.mifUnit)) {
        needObjectLine(input);
        found = isObject(input.line, tail, object);
    }
    input.rest = tail;
    std::ranges::replace(input.rest, '\t', ' ');
    return found;
}

bool atObjectsEnd(const MifInput& input)
{
    return atEnd(input.mifUnit);
}

bool readRecord(MifInput& input, std::string_view name, std::string& line, std::size_t width)
{
    if (!readLine(input.midUnit, line, width)) {
        gisFail(join("ERROR 0254 - Failed to read object attribute data record for a ", name, " object in GIS layer."));
    }
    return atObjectsEnd(
        input); // a .mid that ends early does not end the .mif: an object without a record must be reported
}

std::int32_t recordCount(MifInput& input)
{
    seekTo(input.midUnit, 0);
    std::int32_t count = 0;
    std::string line;
    while (readLine(input.midUnit, line)) {
        ++count;
    }
    seekTo(input.midUnit, 0);
    return count;
}

} // namespace gridforge::gis::mif
