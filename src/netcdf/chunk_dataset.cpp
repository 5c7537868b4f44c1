#include "netcdf/chunk_dataset.h"

#include "netcdf/library.h"

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace gridforge::netcdf {

namespace {

static_assert(std::is_same_v<hid_t, std::int64_t>);

constexpr int kMostDimensions = 3;

// An id of HDF5 that is given back.
class Held {
public:
    Held(hid_t id, herr_t (*close)(hid_t)) : id_(id), close_(close) {}
    ~Held()
    {
        if (id_ >= 0) {
            close_(id_);
        }
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    hid_t id() const { return id_; }

private:
    hid_t id_;
    herr_t (*close_)(hid_t);
};

std::string pathOf(hid_t file)
{
    const ssize_t length = library().H5Fget_name(file, nullptr, 0);
    std::string path(static_cast<std::size_t>(std::max<ssize_t>(length, 0)) + 1, '\0');
    library().H5Fget_name(file, path.data(), path.size());
    path.pop_back();
    return path;
}

// The id that the NetCDF library itself has for the file; it is not ours to close. Below 0 for none, as where that library
// brings an HDF5 of its own.
hid_t openInLibrary(int file)
{
    std::size_t length = 0;
    if (library().nc_inq_path(file, &length, nullptr) != NC_NOERR) {
        return -1;
    }
    std::string path(length + 1, '\0');
    library().nc_inq_path(file, nullptr, path.data());
    path.pop_back();

    constexpr auto kAll = static_cast<hid_t>(H5F_OBJ_ALL);
    const ssize_t count = library().H5Fget_obj_count(kAll, H5F_OBJ_FILE);
    std::vector<hid_t> files(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (files.empty() || library().H5Fget_obj_ids(kAll, H5F_OBJ_FILE, files.size(), files.data()) != count) {
        return -1;
    }
    const auto found = std::ranges::find(files, path, pathOf);
    return found == files.end() ? -1 : *found;
}

bool readChunks(hid_t properties, ChunkForm& form)
{
    std::array<hsize_t, kMostDimensions> chunk{};
    const bool inChunks = library().H5Pget_layout(properties) == H5D_CHUNKED;
    const int dimensions = inChunks ? library().H5Pget_chunk(properties, kMostDimensions, chunk.data()) : 0;
    if (dimensions < 2 || dimensions > kMostDimensions || (dimensions == kMostDimensions && chunk[0] != 1)) {
        return false;
    }
    const auto d = static_cast<std::size_t>(dimensions);
    form.rows = chunk[d - 2];
    form.columns = chunk[d - 1];
    unsigned options = 0; // such as chunks at the edge left unpacked
    return library().H5Pget_chunk_opts(properties, &options) >= 0 && options == 0 &&
           library().H5Pget_fill_value(properties, *library().H5T_NATIVE_FLOAT_g, &form.fill) >= 0;
}

// Shuffle, deflate or both in this order.
bool readFilters(hid_t properties, ChunkForm& form)
{
    const int filters = library().H5Pget_nfilters(properties);
    for (int i = 0; i < filters; ++i) {
        unsigned flags = 0;
        unsigned value = 0;
        std::size_t values = 1;
        unsigned how = 0;
        const H5Z_filter_t filter =
            library().H5Pget_filter2(properties, static_cast<unsigned>(i), &flags, &values, &value, 0, nullptr, &how);
        if (filter == H5Z_FILTER_SHUFFLE && i == 0 && value == sizeof(float)) {
            form.shuffled = true;
        } else if (filter == H5Z_FILTER_DEFLATE && !form.deflated && value <= 9) {
            form.deflated = static_cast<int>(value);
        } else {
            return false;
        }
    }
    return filters >= 0;
}

bool isOfFloats(hid_t dataset)
{
    const Held type(library().H5Dget_type(dataset), library().H5Tclose);
    return library().H5Tequal(type.id(), *library().H5T_NATIVE_FLOAT_g) > 0;
}

} // namespace

std::optional<ChunkDataset> ChunkDataset::open(int file, const char* variable)
{
    const hid_t id = openInLibrary(file);
    const hid_t dataset = id < 0 ? -1 : library().H5Dopen2(id, variable, H5P_DEFAULT);
    if (dataset < 0) {
        return std::nullopt;
    }
    ChunkDataset made(dataset, {});
    const Held properties(library().H5Dget_create_plist(dataset), library().H5Pclose);
    if (!isOfFloats(dataset) || !readChunks(properties.id(), made.form_) || !readFilters(properties.id(), made.form_)) {
        return std::nullopt;
    }
    return made;
}

ChunkDataset::~ChunkDataset()
{
    if (id_ >= 0) {
        library().H5Dclose(id_);
    }
}

ChunkDataset::ChunkDataset(ChunkDataset&& other) noexcept : id_(std::exchange(other.id_, -1)), form_(other.form_) {}

int ChunkDataset::reach(std::int32_t position)
{
    std::array<hsize_t, kMostDimensions> sizes{};
    const Held space(library().H5Dget_space(id_), library().H5Sclose);
    if (library().H5Sget_simple_extent_ndims(space.id()) > kMostDimensions ||
        library().H5Sget_simple_extent_dims(space.id(), sizes.data(), nullptr) < 0) {
        return NC_EHDFERR;
    }
    const auto wanted = static_cast<hsize_t>(position);
    if (sizes[0] >= wanted) {
        return NC_NOERR;
    }
    sizes[0] = wanted;
    return library().H5Dset_extent(id_, sizes.data()) < 0 ? NC_EHDFERR : NC_NOERR;
}

int ChunkDataset::write(std::optional<std::int32_t> position, std::size_t row, std::size_t column,
                        std::span<const std::byte> packed)
{
    const std::array<hsize_t, kMostDimensions> start{static_cast<hsize_t>(position.value_or(1) - 1), row, column};
    constexpr std::uint32_t kAllFilters = 0; // the mask has those that were left out
    const herr_t status = library().H5Dwrite_chunk(id_, H5P_DEFAULT, kAllFilters, start.data() + (position ? 0 : 1),
                                                   packed.size(), packed.data());
    return status < 0 ? NC_EHDFERR : NC_NOERR;
}

} // namespace gridforge::netcdf
