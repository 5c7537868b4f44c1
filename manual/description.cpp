#include "description.h"

#include "core/product.h"
#include "core/text.h"
#include "driver/flag_table.h"
#include "driver/operations.h"
#include "parts.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge {
namespace {

// The shape of the file; a change that readers must know of raises it.
constexpr std::int32_t kShape = 1;

// --- JSON ------------------------------------------------------------------------------------------------------------

struct Member {
    std::string_view name;
    std::string value; // as JSON
};

std::string text(std::string_view value)
{
    std::string result = "\"";
    for (const char c : value) {
        result += c == '"' || c == '\\' ? join('\\', c) : std::string(1, c);
    }
    return result + '"';
}

std::string textOrNull(std::string_view value)
{
    return value.empty() ? "null" : text(value);
}

std::string truth(bool value)
{
    return value ? "true" : "false";
}

std::string object(std::initializer_list<Member> members)
{
    std::string result;
    for (const Member& member : members) {
        result += join(result.empty() ? "{" : ", ", text(member.name), ": ", member.value);
    }
    return result + "}";
}

// Each value on a line of its own.
std::string list(const std::vector<std::string>& values, std::string_view indent)
{
    std::string result;
    for (const std::string& value : values) {
        result += join(result.empty() ? "" : ",", "\n", indent, "  ", value);
    }
    return values.empty() ? "[]" : join("[", result, "\n", indent, "]");
}

// The parts of a text between `separator`, each after `prefix`.
std::string parts(std::string_view words, char separator, std::string_view prefix)
{
    std::string result;
    for (const std::string_view part : partsOf(words, separator)) {
        result += join(result.empty() ? "" : ", ", text(join(prefix, part)));
    }
    return join("[", result, "]");
}

// --- Flags -----------------------------------------------------------------------------------------------------------

std::string_view nameOf(driver::ValueKind kind)
{
    switch (kind) {
    case driver::ValueKind::toggle: return "switch";
    case driver::ValueKind::number: return "number";
    case driver::ValueKind::integer: return "integer";
    case driver::ValueKind::grid: return "grid";
    case driver::ValueKind::layer: return "layer";
    case driver::ValueKind::table: return "table";
    case driver::ValueKind::controlFile: return "controlFile";
    case driver::ValueKind::choice: return "choice";
    case driver::ValueKind::name: return "name";
    }
    return {};
}

bool isNumber(driver::ValueKind kind)
{
    return kind == driver::ValueKind::number || kind == driver::ValueKind::integer;
}

std::string formOf(const driver::FlagRow& row)
{
    std::string flag = join('-', row.key);
    if (row.value == driver::FlagValue::none) {
        return flag;
    }
    return join(flag, row.value == driver::FlagValue::next ? " " : "", "<", row.docs.valueName, ">");
}

std::string defaultOf(const driver::FlagRow& row)
{
    if (row.docs.holds == driver::ValueKind::toggle) {
        return row.docs.defaultText == "on" ? "true" : "false";
    }
    return isNumber(row.docs.holds) && !row.docs.defaultText.empty() ? std::string(row.docs.defaultText)
                                                                     : textOrNull(row.docs.defaultText);
}

std::string describe(const driver::FlagRow& row)
{
    const driver::FlagDocs& docs = row.docs;
    const bool hasValue = docs.holds != driver::ValueKind::toggle;
    return object({{"flag", text(join('-', row.key))},
                   {"kind", text(nameOf(docs.holds))},
                   {"form", text(formOf(row))},
                   {"glued", truth(hasValue && row.value != driver::FlagValue::next)},
                   {"description", text(docs.description)},
                   {"default", defaultOf(row)},
                   {"unit", textOrNull(docs.unit)},
                   {"choices", parts(docs.holds == driver::ValueKind::choice ? docs.valueName : "", '|', "")},
                   {"required", truth(docs.use.required)},
                   {"repeated", truth(docs.use.repeated)},
                   {"acts", truth(row.atFlag != nullptr || row.kind == driver::FlagKind::operation)},
                   {"needs", parts(docs.use.needs, ' ', "-")},
                   {"group", textOrNull(docs.use.group)}});
}

template <typename Wanted>
std::string flags(std::string_view indent, Wanted wanted)
{
    std::vector<std::string> described;
    for (const driver::FlagRow& row : driver::flagTable()) {
        if (wanted(row)) {
            described.push_back(describe(row));
        }
    }
    return list(described, indent);
}

// --- Operations ------------------------------------------------------------------------------------------------------

std::string_view nameOf(driver::FileKind kind)
{
    switch (kind) {
    case driver::FileKind::grid: return "grid";
    case driver::FileKind::layer: return "layer";
    case driver::FileKind::table: return "table";
    case driver::FileKind::netcdf: return "netcdf";
    }
    return {};
}

std::string describe(const driver::InputRule& inputs)
{
    return object({{"kind", text(nameOf(inputs.kind))},
                   {"min", join(inputs.least)},
                   {"max", join(inputs.most)},
                   {"more", text(inputs.surplus == driver::Surplus::refused ? "refused" : "ignored")},
                   {"thenOutputName", truth(inputs.then != driver::ThenName::none)},
                   {"outputNameMustExist", truth(inputs.then == driver::ThenName::existingOutput)}});
}

std::string describe(const driver::OutputRow& output)
{
    return object({{"kind", text(nameOf(output.kind))},
                   {"name", text(output.name)},
                   {"outName", textOrNull(output.outName)},
                   {"when", parts(output.when, ' ', "-")},
                   {"unless", parts(output.unless, ' ', "-")},
                   {"note", textOrNull(output.note)},
                   {"anywhere", truth(output.anywhere)}});
}

std::string describe(const driver::OperationRow& row)
{
    std::vector<std::string> outputs;
    for (const driver::OutputRow& output : row.docs.outputs) {
        outputs.push_back(describe(output));
    }
    const auto asks = [&](const driver::FlagRow& flag) { return driver::operationOf(flag) == row.name; };
    const auto takes = [&](const driver::FlagRow& flag) { return driver::isOptionOf(flag, row); };
    constexpr std::string_view kIndent = "      ";
    return join("{\n      \"name\": ", text(row.name), ",\n      \"description\": ", text(row.docs.description),
                ",\n      \"page\": ", text(join("docs/operations/", row.docs.page, ".md")),
                ",\n      \"flags\": ", flags(kIndent, asks), ",\n      \"inputs\": ", describe(row.docs.inputs),
                ",\n      \"outputs\": ", list(outputs, kIndent), ",\n      \"options\": ", flags(kIndent, takes),
                "\n    }");
}

} // namespace

void writeDescription(std::ostream& file)
{
    std::vector<std::string> operations;
    for (const driver::OperationRow& row : driver::operationTable()) {
        operations.push_back(describe(row));
    }
    const auto common = [](const driver::FlagRow& flag) { return flag.docs.operations == driver::kEveryOperation; };
    file << "{\n  \"tool\": " << text(GRIDFORGE_TOOL_NAME) << ",\n  \"version\": " << text(GRIDFORGE_VERSION)
         << ",\n  \"shape\": " << kShape << ",\n  \"commonOptions\": " << flags("  ", common)
         << ",\n  \"operations\": " << list(operations, "  ") << "\n}\n";
}

} // namespace gridforge
