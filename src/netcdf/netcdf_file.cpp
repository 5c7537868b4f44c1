#include "netcdf/netcdf_file.h"

#include "host/file_identity.h"
#include "host/file_system.h"
#include "host/system.h"
#include "netcdf/check_netcdf.h"
#include "netcdf/library.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

namespace gridforge::netcdf {

namespace {

bool hasDrive(std::string_view name)
{
    return theSystem().namesHaveDrives && name.size() > 1 && name[1] == ':';
}

bool isOnShare(std::string_view name)
{
    return theSystem().namesHaveDrives && name.starts_with("//");
}

// Where names have drives, one that begins at the root is on that of the current folder. The library asks for it.
std::string withDrive(std::string name)
{
    if (!theSystem().namesHaveDrives || !name.starts_with('/') || isOnShare(name)) {
        return name;
    }
    return systemName(fullName("/")) + name;
}

// The library takes some names for more than a file: "c:/x" for a drive, "http://x" for a server. A name that begins at a
// folder and has no doubled separator is always a file, and for the system it is the same one.
std::string libraryName(std::string_view name)
{
    std::string local = withDrive(systemName(name));
    const auto bothSeparate = [](char a, char b) { return a == '/' && b == '/'; };
    const auto inner = local.begin() + (isOnShare(local) ? 1 : 0);
    local.erase(std::unique(inner, local.end(), bothSeparate), local.end());
    return local.starts_with('/') || hasDrive(local) ? local : "./" + local;
}

// Where names have drives, some are those of devices or of parts of a file. The library opens files by itself, so it would write
// to these too.
bool canBeNamed(std::string_view name)
{
    return !theSystem().namesHaveDrives || theSystem().lookUp(systemName(name)) != SystemStatus::refused;
}

// The lines of the console would get among what the library writes.
bool getsConsole(std::string_view name)
{
    constexpr std::int64_t kStandardOutput = 1;
    const SystemFile output = theSystem().inherited(kStandardOutput);
    const std::optional<FileFacts> facts = output == SystemFile::none ? std::nullopt : theSystem().factsOfOpen(output);
    return facts && facts->identity.regular && facts->identity == identityOfOutput(name);
}

bool mayBeCreated(std::string_view name)
{
    return canBeNamed(name) && !getsConsole(name);
}

std::size_t fromZero(std::int32_t position)
{
    assert(position >= 1);
    return static_cast<std::size_t>(position - 1);
}

} // namespace

int createNetcdf(std::string_view name, int mode, std::string_view call)
{
    int file = 0;
    checkNetcdf(mayBeCreated(name) ? library().nc_create(libraryName(name).c_str(), mode, &file) : EACCES, call);
    return file;
}

void putNetcdfTexts(int file, int variable, std::span<const NetcdfText> texts, std::string_view call)
{
    for (const NetcdfText& text : texts) {
        checkNetcdf(library().nc_put_att_text(file, variable, text.name, std::strlen(text.value), text.value), call);
    }
}

int defineNetcdfDimension(int file, const char* name, std::size_t length, std::string_view call)
{
    int dimension = 0;
    checkNetcdf(library().nc_def_dim(file, name, length, &dimension), call);
    return dimension;
}

int defineNetcdfVariable(int file, const NetcdfVariable& variable, std::string_view call)
{
    int id = 0;
    checkNetcdf(library().nc_def_var(file, variable.name, variable.type, static_cast<int>(variable.dimensions.size()),
                                     variable.dimensions.data(), &id),
                call);
    return id;
}

void defineNetcdfFill(int file, int variable, float null, std::string_view call)
{
    checkNetcdf(library().nc_def_var_fill(file, variable, NC_FILL, &null), call);
}

void putNetcdfValues(int file, int variable, std::span<const double> values, std::string_view call)
{
    const std::size_t start = 0;
    const std::size_t count = values.size();
    checkNetcdf(library().nc_put_vara_double(file, variable, &start, &count, values.data()), call);
}

void putNetcdfTime(int file, int variable, std::int32_t position, double time, std::string_view call)
{
    const std::size_t index = fromZero(position);
    checkNetcdf(library().nc_put_var1_double(file, variable, &index, &time), call);
}

void putNetcdfRow(int file, int variable, std::int32_t position, std::int32_t row, std::span<const float> cells,
                  std::string_view call)
{
    const std::array<std::size_t, 3> start{fromZero(position), fromZero(row), 0};
    const std::array<std::size_t, 3> count{1, 1, cells.size()};
    checkNetcdf(library().nc_put_vara_float(file, variable, start.data(), count.data(), cells.data()), call);
}

void putNetcdfRow(int file, int variable, std::int32_t row, std::span<const float> cells, std::string_view call)
{
    const std::array<std::size_t, 2> start{fromZero(row), 0};
    const std::array<std::size_t, 2> count{1, cells.size()};
    checkNetcdf(library().nc_put_vara_float(file, variable, start.data(), count.data(), cells.data()), call);
}

// Where the last write of a NetCDF-4 file fails, HDF5 has released the file, and the NetCDF library asks it all the same
// what is still open in it. That reads memory which is gone; the user would lose the console and the reason.
void closeNetcdf(int file, std::string_view call)
{
    int status = NC_EHDFERR;
    runGuarded([&] { status = library().nc_close(file); });
    checkNetcdf(status, call);
}

} // namespace gridforge::netcdf
