// Writes the manual page (gridforge.1), the completion of the shells (gridforge.bash and _gridforge, for zsh) and the
// description for programs (gridforge.json) into a folder, all from the tables that the tool itself uses, so that none can tell
// of other flags than the tool knows.
#include "completion.h"
#include "core/text.h"
#include "description.h"
#include "driver/flag_table.h"
#include "driver/operations.h"
#include "parts.h"

#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge {
namespace {

// --- The manual page -------------------------------------------------------------------------------------------------

constexpr std::string_view kHead = R"(.SH NAME
gridforge \- batch raster tool for two-dimensional flood models
.SH SYNOPSIS
.B gridforge
.RB [ \-b ]
.I operation
.RI [ option " ...]"
.RI [ grid " ...]"
.SH DESCRIPTION
.B gridforge
performs one operation on the grids of a two-dimensional flood model, writes its results beside the inputs, and ends.
Grids are read and written as
.I .asc
(text) and
.I .flt
(binary, with a
.I .hdr
beside it), layers as
.IR .mif / .mid
and as Shapefiles, series of grids as NetCDF.
Without any argument it shows a short text of usage.
.PP
Arguments are read from left to right.
One that begins with
.B \-
or
.B /
is a flag, and every other one is the name of an input.
So an input cannot be named from the root of the file system: go to its folder, or name it from the current one.
Case does not count in flags, and letters after a flag's name are ignored:
.B \-maximum
is
.BR \-max .
A value that is shown joined to its flag, as in
.BI \-cd value\fR,
follows it without a blank; a value that is shown apart is the next argument, whatever it looks like.
With a blank before its value a joined flag ends the run, mostly with a message about row 0 of an
.I .asc
file.
.PP
Exactly one flag of those under
.B OPERATIONS
must be given; only
.B \-count
may go with
.BR \-cd ,
.B \-trans_m
with
.BR \-trans_c ,
and
.B \-stat
flags with each other.
.PP
Names of inputs may hold
.B *
and
.B ?
in their last part.
Both \e and / separate folders.
At most 2000 files are taken.
A pattern also finds the outputs of an earlier run, so write outputs to another folder or under a name that it does not match.
)";

// Before the list of operations.
constexpr std::string_view kFiles = R"(.SH INPUTS AND OUTPUTS
The main output has the name that
.B \-out
gives, and otherwise that of the first input with a suffix of the operation; it lies beside the first input.
Other outputs take the same name with suffixes of their own.
A file that is there already is replaced without a question.
Grids are written in the format of the first input unless
.BR \-asc ,
.B \-flt
or the extension of the name after
.B \-out
says otherwise.
Cells without a value hold the null of the first grid.
.PP
In the names below, which show no extension of a grid or layer, {first}, {second} and {input} stand for inputs,
{layer}, {control} and {levels} for the file after a flag, all without extension;
{out} for the name after
.BR \-out ,
{value} for the number of the operation's flag, and other words for what they say.
)";

constexpr std::string_view kTail = R"(.SH EXIT STATUS
Always 0, also after an error.
All messages go to standard output; standard error stays empty.
The last line of a run that reached its end is
.BR Finished. ;
with
.BR \-b ,
nothing follows it.
Scripts test for this line.
A failing run need not write a line that begins with
.BR ERROR :
a missing layer or table gives
.BR "CHECK 0008" ,
a missing folder of an output
.BR "Can't open" .
And a few runs write a line
.B ERROR
or
.B WARNING
and go on, so look for both words before results are used.
.PP
After most errors the tool waits for Enter, also with
.BR \-b ;
for a missing file it asks for another name.
At the end of standard input it ends instead.
In a shell loop that reads a list, a run whose standard input is open reads the rest of that list.
So scripts close standard input:
.PP
.RS
.EX
gridforge \-b \-conv depth_1pct_6h.asc < /dev/null > depth.log
tail \-n 1 depth.log | grep \-qxF Finished. || echo failed, see depth.log
.EE
.RE
.SH ENVIRONMENT
These change how a run does its work, never its result.
A value that cannot be used counts as none.
.TP
.B GRIDFORGE_THREADS
The largest number of threads, which are never more than the processors that the process may use.
.TP
.B GRIDFORGE_MEMORY
Bytes of memory that waiting cells may take, beyond which they wait in a file without a name; without it half of what is free.
.TP
.B GRIDFORGE_SCRATCH
The folder for that file, and for grids held whole that memory has no room for; without it the folder of the output or the
temporary one.
.TP
.B GRIDFORGE_PROGRESS
A file that gets a line about the progress each second, or the number of an open one, also behind
.BR fd: .
.TP
.B GRIDFORGE_PIECE
Cells of a piece, for tests, which may then have more threads than processors.
.SH EXAMPLES
Of the sample valley: the highest level of each cell over the storms of one chance, and the storm that it came from:
.PP
.RS
.EX
gridforge \-b \-max level_1pct_*_coarse.asc \-out level_1pct.asc
.EE
.RE
.PP
The difference between two floods, where both are wet:
.PP
.RS
.EX
gridforge \-b \-dif level_1pct_6h.asc level_5pct_6h.asc \-out change.asc
.EE
.RE
.PP
A coarse water level on a finer terrain:
.PP
.RS
.EX
gridforge \-b \-remap \-wl level_1pct.asc \-dem ground.asc
.EE
.RE
.SH SEE ALSO
The pages on each operation and on the formats of files come with the tool, in
.I docs/operations
and
.I docs/formats
of its documentation.
Programs in C that are loaded into the tool find its routines in
.IR gridforge/gridforge.h .
)";

// Text as roff takes it: a minus that stays one when copied, and no character that means something else.
std::string roff(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        if (c == '-') {
            result += "\\-";
        } else if (c == '\\') {
            result += "\\e";
        } else {
            result += c;
        }
    }
    return result.starts_with('.') || result.starts_with('\'') ? join("\\&", result) : result;
}

std::string withCommas(const std::vector<std::string_view>& parts, std::string_view prefix)
{
    std::string result;
    for (const std::string_view part : parts) {
        result += join(result.empty() ? "" : ", ", prefix, part);
    }
    return result;
}

// Values are off, none or the default that the table names.
std::string defaultOf(const driver::FlagRow& row)
{
    if (!row.docs.defaultText.empty()) {
        return std::string(row.docs.defaultText);
    }
    return row.value == driver::FlagValue::none ? "off" : "none";
}

std::string kindOfValue(const driver::FlagDocs& docs)
{
    switch (docs.holds) {
    case driver::ValueKind::toggle: return {};
    case driver::ValueKind::number: return "a number";
    case driver::ValueKind::integer: return "a whole number";
    case driver::ValueKind::grid: return "a grid";
    case driver::ValueKind::layer: return "a layer";
    case driver::ValueKind::table: return "a table";
    case driver::ValueKind::controlFile: return "a control file";
    case driver::ValueKind::choice: return join("one of ", withCommas(partsOf(docs.valueName, '|'), ""));
    case driver::ValueKind::name: return "a name";
    }
    return {};
}

// The operations that take an option, by their first flags.
std::string takers(const driver::FlagRow& row)
{
    std::string names;
    for (const driver::OperationRow& operation : driver::operationTable()) {
        if (driver::isOptionOf(row, operation)) {
            names += join(names.empty() ? "Option of " : ", ", roff(join('-', operation.name)));
        }
    }
    return names.empty() ? names : names + ".\n";
}

void writeFlag(std::ostream& page, const driver::FlagRow& row)
{
    const std::string name = roff(join('-', row.key));
    const std::string value = roff(row.docs.valueName);
    page << ".TP\n";
    if (row.value == driver::FlagValue::none) {
        page << ".B " << name << '\n';
    } else {
        page << ".BI " << name << (isGlued(row) || row.value == driver::FlagValue::statistic ? " " : " \" ") << value
             << (row.value == driver::FlagValue::next ? "\"" : "") << '\n';
    }
    std::string description(row.docs.description);
    description[0] = UPPERCASE(description.substr(0, 1))[0];
    page << roff(description) << ".\n";
    const std::string kind = kindOfValue(row.docs);
    page << (kind.empty() ? "Default: " : join("Value: ", roff(kind), ". Default: ")) << roff(defaultOf(row)) << ".\n";
    if (!row.docs.unit.empty()) {
        page << "Unit: " << row.docs.unit << ".\n";
    }
    page << takers(row);
}

std::string inputsOf(const driver::InputRule& inputs)
{
    if (inputs.most == 0) {
        return "Inputs: none.";
    }
    const std::string count = inputs.least == inputs.most ? join(inputs.most)
                              : inputs.least == 0         ? join("up to ", inputs.most)
                                                          : join(inputs.least, " to ", inputs.most);
    const std::string_view kind = inputs.kind == driver::ValueKind::grid ? "grid" : "table";
    std::string result = join("Inputs: ", count, " ", kind, inputs.most == 1 ? "." : "s.");
    if (inputs.surplus == driver::Surplus::ignored) {
        result += " Others are ignored.";
    }
    if (inputs.then != driver::ThenName::none) {
        result += " A name after them is that of the output";
        result += inputs.then == driver::ThenName::existingOutput ? ", if a file has it already." : ".";
    }
    return result;
}

std::string_view nameOf(driver::FileKind kind)
{
    switch (kind) {
    case driver::FileKind::grid: return "Grid";
    case driver::FileKind::layer: return "Layer";
    case driver::FileKind::table: return "Table";
    case driver::FileKind::netcdf: return "NetCDF file";
    }
    return {};
}

std::string lineOf(const driver::OutputRow& output)
{
    std::string result = join(nameOf(output.kind), ": ", output.name);
    if (!output.note.empty()) {
        result += join(" (", output.note, ")");
    }
    if (!output.outName.empty()) {
        result += join("; after -out ", output.outName);
    }
    result += '.';
    if (!output.when.empty()) {
        result += join(" Only with ", withCommas(partsOf(output.when, ' '), "-"), ".");
    }
    if (!output.unless.empty()) {
        result += join(" Not with ", withCommas(partsOf(output.unless, ' '), "-"), ".");
    }
    return result;
}

void writeFilesOf(std::ostream& page, const driver::OperationRow& operation)
{
    std::vector<std::string_view> flags;
    for (const driver::FlagRow& row : driver::flagTable()) {
        if (driver::operationOf(row) == operation.name) {
            flags.push_back(row.key);
        }
    }
    page << ".TP\n.B " << roff(withCommas(flags, "-")) << '\n' << roff(inputsOf(operation.docs.inputs)) << '\n';
    for (const driver::OutputRow& output : operation.docs.outputs) {
        page << ".br\n" << roff(lineOf(output)) << '\n';
    }
}

void writePage(std::ostream& page)
{
    page << ".\\\" Made from the table of flags.\n.TH GRIDFORGE 1 \"\" \"gridforge " << GRIDFORGE_VERSION
         << "\" \"User Commands\"\n"
         << kHead;
    for (const driver::FlagKind kind : {driver::FlagKind::operation, driver::FlagKind::option}) {
        page << (kind == driver::FlagKind::operation ? ".SH OPERATIONS\n" : ".SH OPTIONS\n");
        for (const driver::FlagRow& row : driver::flagTable()) {
            if (row.kind == kind) {
                writeFlag(page, row);
            }
        }
    }
    page << kFiles;
    for (const driver::OperationRow& operation : driver::operationTable()) {
        writeFilesOf(page, operation);
    }
    page << kTail;
}

// --- The files -------------------------------------------------------------------------------------------------------

bool writeFile(const std::string& name, void (*write)(std::ostream&))
{
    std::ofstream file(name, std::ios::binary);
    write(file);
    file.close();
    if (!file) {
        std::cerr << "gridforge_make_manual: cannot write " << name << '\n';
    }
    return !file.fail();
}

} // namespace
} // namespace gridforge

int main(int count, char** words)
{
    if (count != 2) {
        std::cerr << "usage: gridforge_make_manual FOLDER\n";
        return 2;
    }
    const std::string folder = words[1];
    const bool written = gridforge::writeFile(folder + "/gridforge.1", gridforge::writePage) &&
                         gridforge::writeFile(folder + "/gridforge.bash", gridforge::writeBashCompletion) &&
                         gridforge::writeFile(folder + "/_gridforge", gridforge::writeZshCompletion) &&
                         gridforge::writeFile(folder + "/gridforge.json", gridforge::writeDescription);
    return written ? 0 : 1;
}
