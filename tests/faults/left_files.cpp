#include "faults/left_files.h"

#include "support/sanitizers.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <netcdf.h>
#include <optional>
#include <string_view>

namespace gridforge::test {
namespace {

bool endsInOneOf(std::string_view name, std::initializer_list<std::string_view> ends)
{
    return std::ranges::any_of(ends, [&](std::string_view end) { return name.ends_with(end); });
}

// --- Files whose headers are completed -------------------------------------------------------------------------------

// Bytes of a header that are written when the file is finished.
struct Completed {
    std::size_t at;
    std::size_t count;
};

std::vector<Completed> completedIn(std::string_view name)
{
    if (name.ends_with(".dbf")) {
        return {{4, 4}}; // the number of records
    }
    if (endsInOneOf(name, {".shp", ".shx"})) {
        return {{24, 4}, {36, 32}}; // the length of the file, and the box
    }
    return {};
}

std::string withoutCompleted(std::string_view name, std::string bytes)
{
    for (const Completed& part : completedIn(name)) {
        for (std::size_t i = part.at; i < std::min(part.at + part.count, bytes.size()); ++i) {
            bytes[i] = '\0';
        }
    }
    return bytes;
}

bool beginsAs(std::string_view name, const std::string& left, const std::string& finished)
{
    return withoutCompleted(name, finished).starts_with(withoutCompleted(name, left));
}

// --- Grids -----------------------------------------------------------------------------------------------------------

// An .asc or a .hdr is empty, or whole, or begins with a byte that no header begins with. Several threads write pieces
// side by side, so it may have gaps between them.
bool isMarkedPart(const std::string& left, const std::string& finished)
{
    const auto isRight = [](char byte, char right) { return byte == right || byte == '\0'; };
    return left.empty() || left == finished ||
           (left[0] == '?' && left.size() <= finished.size() &&
            std::equal(left.begin() + 1, left.end(), finished.begin() + 1, isRight));
}

std::string wrongGridFile(const std::string& name, const std::string& left, const std::string& finished)
{
    if (name.ends_with(".flt")) {
        return left.size() <= finished.size() ? "" : "is longer than that of a finished run";
    }
    return isMarkedPart(left, finished) ? "" : "is neither whole nor a part of that, marked as such";
}

// --- NetCDF ----------------------------------------------------------------------------------------------------------

struct NetcdfVariable {
    std::vector<std::size_t> inner; // lengths of all dimensions except the first
    std::vector<double> values;
    double fill = 0;
    bool isFloat = false;
};
using NetcdfContent = std::map<std::string, NetcdfVariable>;

// Closes the file at the end of the reading.
struct OpenNetcdf {
    int id = -1;
    ~OpenNetcdf()
    {
        if (id >= 0) {
            nc_close(id);
        }
    }
};

std::optional<NetcdfVariable> readVariable(int file, int id)
{
    int dimensions[NC_MAX_VAR_DIMS] = {};
    int count = 0;
    nc_type type = NC_NAT;
    if (nc_inq_var(file, id, nullptr, &type, &count, dimensions, nullptr) != NC_NOERR) {
        return std::nullopt;
    }
    NetcdfVariable variable;
    std::size_t values = 1;
    for (int i = 0; i < count; ++i) {
        std::size_t length = 0;
        if (nc_inq_dimlen(file, dimensions[i], &length) != NC_NOERR) {
            return std::nullopt;
        }
        values *= length;
        if (i > 0) {
            variable.inner.push_back(length);
        }
    }
    if (nc_get_att_double(file, id, "_FillValue", &variable.fill) != NC_NOERR) {
        variable.fill = type == NC_FLOAT ? double{NC_FILL_FLOAT} : NC_FILL_DOUBLE;
    }
    variable.isFloat = type == NC_FLOAT;
    variable.values.resize(values);
    if (values > 0 && nc_get_var_double(file, id, variable.values.data()) != NC_NOERR) {
        return std::nullopt;
    }
    return variable;
}

// Nothing where the library refuses the file, or part of it.
std::optional<NetcdfContent> readNetcdf(const std::string& bytes)
{
    const ScratchFolder folder;
    folder.give("f.nc", bytes);
    OpenNetcdf file;
    int count = 0;
    if (nc_open((folder.path() / "f.nc").c_str(), NC_NOWRITE, &file.id) != NC_NOERR) {
        file.id = -1;
        return std::nullopt;
    }
    if (nc_inq_nvars(file.id, &count) != NC_NOERR) {
        return std::nullopt;
    }
    NetcdfContent content;
    for (int id = 0; id < count; ++id) {
        char name[NC_MAX_NAME + 1] = {};
        const std::optional<NetcdfVariable> variable = readVariable(file.id, id);
        if (!variable || nc_inq_varname(file.id, id, name) != NC_NOERR) {
            return std::nullopt;
        }
        content[name] = *variable;
    }
    return content;
}

// The bytes of a value as the classic format has them, the highest first.
template <typename Value>
std::string bytesOf(Value value)
{
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    if constexpr (std::endian::native == std::endian::little) {
        std::ranges::reverse(bytes);
    }
    return bytes;
}

// The value, of which bytes at the end are zero.
bool isBeginningOf(double left, double whole, bool isFloat)
{
    std::string bytes = isFloat ? bytesOf(static_cast<float>(left)) : bytesOf(left);
    bytes.erase(bytes.find_last_not_of('\0') + 1);
    return (isFloat ? bytesOf(static_cast<float>(whole)) : bytesOf(whole)).starts_with(bytes);
}

// The same values from the first on, of which any may be missing. Of a file in the classic format, the library reads what is
// cut off as zeros.
bool isPartOf(const NetcdfVariable& left, const NetcdfVariable& finished, bool isClassic)
{
    if (left.inner != finished.inner || left.values.size() > finished.values.size()) {
        return false;
    }
    const auto isRight = [&](double value, double right) {
        return value == right || (isClassic && isBeginningOf(value, right, left.isFloat));
    };
    for (std::size_t i = 0; i < left.values.size(); ++i) {
        if (!isRight(left.values[i], finished.values[i]) && !isRight(left.values[i], left.fill)) {
            return false;
        }
    }
    return true;
}

std::string wrongNetcdf(const std::string& left, const std::string& finished)
{
    if (kSanitized) {
        return ""; // which would report memory that the library loses over a damaged file
    }
    const std::optional<NetcdfContent> content = readNetcdf(left);
    if (!content) {
        return "";
    }
    const std::optional<NetcdfContent> whole = readNetcdf(finished);
    const bool isClassic = finished.starts_with("CDF");
    for (const auto& [name, variable] : *content) {
        const auto same = whole ? whole->find(name) : NetcdfContent::const_iterator();
        if (!whole || same == whole->end() || !isPartOf(variable, same->second, isClassic)) {
            return "has other values of " + name + " than that of a finished run";
        }
    }
    return "";
}

} // namespace

bool isPassingName(const std::string& name, const Files& finished)
{
    constexpr std::string_view kEnd = ".part";
    if (!name.ends_with(kEnd)) {
        return false;
    }
    const std::string rest = name.substr(0, name.size() - kEnd.size());
    const std::size_t point = rest.rfind('.');
    if (point == std::string::npos || point + 1 == rest.size()) {
        return false;
    }
    const std::string process = rest.substr(point + 1);
    const std::string grid = rest.substr(0, point);
    return std::ranges::all_of(process, [](unsigned char c) { return std::isdigit(c) != 0; }) &&
           grid.ends_with(".flt") && finished.contains(grid);
}

FilesLeft::FilesLeft(Files before, Files finished) : before_(std::move(before)), finished_(std::move(finished)) {}

void FilesLeft::add(const Files& files, const std::string& mission, const std::string& how)
{
    for (const auto& [name, bytes] : files) {
        if (!seen_.emplace(name, bytes).second) {
            continue;
        }
        const std::string what = whatIsWrong(name, bytes);
        if (!what.empty()) {
            wrong_.push_back({name + ' ' + what + " after " + how, mission});
        }
    }
    for (const auto& [name, bytes] : before_) {
        const auto found = files.find(name);
        const bool isInput = finished_.contains(name) && finished_.at(name) == bytes;
        if (isInput && (found == files.end() || found->second != bytes)) {
            wrong_.push_back({"the input " + name + " is lost after " + how, mission});
        }
    }
}

std::string FilesLeft::whatIsWrong(const std::string& name, const std::string& bytes) const
{
    if (isPassingName(name, finished_)) {
        const std::string grid = name.substr(0, name.rfind(".flt") + 4);
        return bytes == finished_.at(grid) ? "" : "is not the whole " + grid;
    }
    const auto old = before_.find(name);
    if (old != before_.end() && old->second == bytes) {
        return "";
    }
    const auto whole = finished_.find(name);
    if (whole == finished_.end()) {
        return "is left";
    }
    if (endsInOneOf(name, {".asc", ".flt", ".hdr"})) {
        return wrongGridFile(name, bytes, whole->second);
    }
    if (name.ends_with(".nc")) {
        return wrongNetcdf(bytes, whole->second);
    }
    return beginsAs(name, bytes, whole->second) ? "" : "does not begin as that of a finished run";
}

} // namespace gridforge::test
