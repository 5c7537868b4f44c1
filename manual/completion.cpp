#include "completion.h"

#include "core/text.h"
#include "driver/flag_table.h"
#include "driver/operations.h"
#include "parts.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge {
namespace {

constexpr std::string_view kRankWithValue = "Rank<n>";
constexpr std::string_view kGlued = "glued"; // the value follows at once
constexpr std::string_view kAnyFile = "*";
constexpr std::size_t kLineWidth = 120;

// Those of gridforge-run, which takes the arguments of the tool as well.
constexpr std::string_view kRunOptions = "--stage --overwrite --keep --input --timeout --json --log --quiet --progress "
                                         "--dry-run --version --help";

// --- Both shells -----------------------------------------------------------------------------------------------------

struct Entry {
    std::string flag;
    std::string takes; // kGlued, extensions of the file that is the next argument, or nothing
    std::string_view operation;
    std::string_view about;
    const driver::FlagRow* row;
};

std::string_view extensionsOf(driver::ValueKind kind)
{
    switch (kind) {
    case driver::ValueKind::grid: return "asc flt";
    case driver::ValueKind::layer: return "mif shp";
    case driver::ValueKind::table: return "csv txt xyz";
    default: return kAnyFile;
    }
}

std::string takenValue(const driver::FlagRow& row)
{
    if (row.value == driver::FlagValue::none) {
        return {};
    }
    if (row.value != driver::FlagValue::next) {
        return std::string(kGlued);
    }
    return std::string(row.docs.extension.empty() ? extensionsOf(row.docs.holds) : row.docs.extension);
}

// The flags of the -stat family are one row of the table, their words its value.
void addStatistics(const driver::FlagRow& row, std::vector<Entry>& entries)
{
    for (const std::string_view word : partsOf(row.docs.valueName, '|')) {
        const bool ranked = word == kRankWithValue;
        entries.push_back({join('-', row.key, ranked ? "Rank" : word), std::string(ranked ? kGlued : ""),
                           driver::operationOf(row), row.docs.description, &row});
    }
}

std::vector<Entry> allEntries()
{
    std::vector<Entry> entries;
    for (const driver::FlagRow& row : driver::flagTable()) {
        if (row.value == driver::FlagValue::statistic) {
            addStatistics(row, entries);
        } else {
            entries.push_back(
                {join('-', row.key), takenValue(row), driver::operationOf(row), row.docs.description, &row});
        }
    }
    return entries;
}

// Flags with numbers that ask for one operation go together, as -trans_m and -trans_c; switches like -max and -min do not.
bool goesWithOwn(const Entry& entry, const std::vector<Entry>& entries)
{
    const auto ofOperation = [&](const Entry& other) { return other.operation == entry.operation; };
    return entry.row->docs.use.repeated || (entry.takes == kGlued && std::ranges::count_if(entries, ofOperation) > 1);
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

void append(std::string& list, std::string_view word)
{
    list += join(list.empty() ? "" : " ", word);
}

Pairs optionsByOperation(const std::vector<Entry>& entries)
{
    Pairs pairs;
    for (const driver::OperationRow& operation : driver::operationTable()) {
        std::string flags;
        for (const Entry& entry : entries) {
            const bool asks = entry.operation == operation.name;
            if (asks ? goesWithOwn(entry, entries) : driver::isOptionOf(*entry.row, operation)) {
                append(flags, entry.flag);
            }
        }
        pairs.emplace_back(operation.name, flags);
    }
    return pairs;
}

Pairs inputsByOperation()
{
    Pairs pairs;
    for (const driver::OperationRow& operation : driver::operationTable()) {
        const driver::InputRule& inputs = operation.docs.inputs;
        pairs.emplace_back(operation.name, inputs.most == 0 ? std::string_view() : extensionsOf(inputs.kind));
    }
    return pairs;
}

// Bash and zsh read such a list alike.
void writeMap(std::ostream& file, std::string_view name, const Pairs& pairs)
{
    std::string line = join("    local -A ", name, "=(");
    for (const auto& [key, value] : pairs) {
        const std::string item = join("[", key, "]=\"", value, "\"");
        if (line.size() + item.size() + 1 > kLineWidth) {
            file << line << '\n';
            line = "       ";
        }
        line += join(line.ends_with('(') ? "" : " ", item);
    }
    file << line << ")\n";
}

void writeData(std::ostream& file, const std::vector<Entry>& entries)
{
    Pairs operations;
    Pairs values;
    std::string common;
    std::string repeated;
    for (const Entry& entry : entries) {
        values.emplace_back(entry.flag, entry.takes);
        if (!entry.operation.empty()) {
            operations.emplace_back(entry.flag, entry.operation);
        }
        if (entry.row->docs.operations == driver::kEveryOperation) {
            append(common, entry.flag);
        }
        if (entry.row->docs.use.repeated && !entry.takes.empty()) {
            append(repeated, entry.flag);
        }
    }
    writeMap(file, "operation", operations);
    writeMap(file, "takes", values);
    writeMap(file, "options", optionsByOperation(entries));
    writeMap(file, "inputs", inputsByOperation());
    file << "    local common=\"" << common << "\" repeated=\" " << repeated << " \"\n"
         << "    local ours=\"" << kRunOptions << "\"\n";
}

// Looks at the words before the cursor, which each shell names in its own way.
constexpr std::string_view kWalk = R"(
    local given=" " asked="" match="" kinds="" isValue="" isRun="" isMany="" word flag
    local -l lowerWord lowerFlag
    if [[ $program == gridforge-run ]]; then
        isRun=1
    else
        ours=""
    fi

    # What the words before say: the operation, and whether a value is due.
    for word in "${before[@]}"; do
        if [[ -n $isValue ]]; then
            isValue=""
            continue
        fi
        [[ $word == -* ]] || continue
        isMany=""
        if [[ -n $ours && $word == --* ]]; then
            given+="$word "
            case $word in
            --) ours="" ;; # what follows is the tool's
            --json | --log) kinds="*" isValue=1 ;;
            --timeout) kinds="" isValue=1 ;;
            --input) isMany=1 ;;
            esac
            continue
        fi
        match=""
        lowerWord=$word
        for flag in "${flags[@]}"; do # letters after a flag's name are ignored, so the longest one counts
            lowerFlag=$flag
            if [[ $lowerWord == "$lowerFlag"* && ${#flag} -gt ${#match} ]]; then
                match=$flag
            fi
        done
        [[ -n $match ]] || continue
        given+="$match "
        asked=${asked:-${operation[$match]:-}}
        kinds=${takes[$match]}
        if [[ -n $kinds && $kinds != glued ]]; then
            isValue=1
        fi
    done

)";

// --- Bash ------------------------------------------------------------------------------------------------------------

constexpr std::string_view kBashWords = R"(
    local current=${COMP_WORDS[COMP_CWORD]} program=${COMP_WORDS[0]##*/}
    local -a before=("${COMP_WORDS[@]:1:COMP_CWORD-1}") flags=("${!takes[@]}") found=()
)";

constexpr std::string_view kBash = R"(
    COMPREPLY=()
    if [[ ! $isValue && $current == -* ]]; then
        local wanted="$common ${!operation[*]}"
        if [[ $ours && $current == --* ]]; then
            wanted=$ours
        elif [[ $asked ]]; then
            wanted="$common ${options[$asked]}"
        fi
        mapfile -t found < <(compgen -W "$wanted" -- "$current")
        if [[ ! $asked && ${#found[@]} == 0 ]]; then # an option before its operation
            mapfile -t found < <(compgen -W "${!takes[*]}" -- "$current")
        fi
        for flag in "${found[@]}"; do
            if [[ $given != *" $flag "* || $repeated == *" $flag "* ]]; then
                COMPREPLY+=("$flag")
            fi
        done
        if [[ ${#COMPREPLY[@]} == 1 && ${takes[${COMPREPLY[0]}]} == glued ]]; then
            compopt -o nospace 2> /dev/null
        fi
        return
    fi

    if [[ $isMany ]]; then
        kinds="*"
    elif [[ ! $isValue ]]; then
        # The tool takes a leading slash for a flag, so inputs are not named from the root.
        [[ $current == /* && ! $isRun ]] && return
        kinds="asc flt"
        [[ $asked ]] && kinds=${inputs[$asked]}
    fi
    [[ $kinds ]] || return
    compopt -o filenames 2> /dev/null
    mapfile -t found < <(compgen -f -- "$current")
    for word in "${found[@]}"; do
        flag=${word##*.}
        if [[ $kinds == "*" || -d $word || ($word == *.* && " $kinds " == *" ${flag,,} "*) ]]; then
            COMPREPLY+=("$word")
        fi
    done
    if [[ ${#COMPREPLY[@]} == 0 ]]; then
        COMPREPLY=("${found[@]}") # a file of another name is better than none
    fi
}
complete -F _gridforge gridforge gridforge-run
)";

// --- Zsh -------------------------------------------------------------------------------------------------------------

constexpr std::string_view kZshWords = R"zsh(
    local current=$words[CURRENT] program=${words[1]:t}
    local -a before=("${(@)words[2,CURRENT-1]}") flags=("${(@k)takes}") wanted plain glued
)zsh";

constexpr std::string_view kZsh = R"zsh(
    if [[ -z $isValue && $current == -* ]]; then
        wanted=(${=common} ${(k)operation})
        if [[ -n $ours && $current == --* ]]; then
            wanted=(${=ours})
        elif [[ -n $asked ]]; then
            wanted=(${=common} ${=options[$asked]})
        elif [[ -z ${(M)wanted:#${current}*} ]]; then # an option before its operation
            wanted=(${(k)takes})
        fi
        for flag in $wanted; do
            [[ $given == *" $flag "* && $repeated != *" $flag "* ]] && continue
            if [[ ${takes[$flag]} == glued ]]; then
                glued+=("$flag:${about[$flag]}")
            else
                plain+=("$flag:${about[$flag]}")
            fi
        done
        _describe -o 'flag' plain -- glued -S ''
        return
    fi

    if [[ -n $isMany ]]; then
        kinds="*"
    elif [[ -z $isValue ]]; then
        # The tool takes a leading slash for a flag, so inputs are not named from the root.
        [[ $current == /* && -z $isRun ]] && return 1
        kinds="asc flt"
        [[ -n $asked ]] && kinds=${inputs[$asked]}
    fi
    [[ -n $kinds ]] || return 1
    if [[ $kinds == "*" ]]; then
        _files
    else
        _files -g "(#i)*.(${kinds// /|})(-.)" || _files # a file of another name is better than none
    fi
}

_gridforge "$@"
)zsh";

// A description as _describe reads it, within double quotes.
std::string described(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        result += c == ':'                                        ? "\\\\:"
                  : c == '"' || c == '$' || c == '`' || c == '\\' ? join('\\', c)
                                                                  : std::string(1, c);
    }
    return result;
}

} // namespace

void writeBashCompletion(std::ostream& file)
{
    file << "# Completion for gridforge, made from its table of flags.\n\n_gridforge() {\n";
    writeData(file, allEntries());
    file << kBashWords.substr(1) << kWalk.substr(1) << kBash.substr(1);
}

void writeZshCompletion(std::ostream& file)
{
    file << "#compdef gridforge gridforge-run\n# Made from the table of flags.\n\n_gridforge() {\n";
    const std::vector<Entry> entries = allEntries();
    writeData(file, entries);
    Pairs about;
    for (const Entry& entry : entries) {
        about.emplace_back(entry.flag, described(entry.about));
    }
    writeMap(file, "about", about);
    file << kZshWords.substr(1) << kWalk.substr(1) << kZsh.substr(1);
}

} // namespace gridforge
