// The routines out of the shared libraries, which are loaded at first use.
#include "netcdf/library.h"

#include "host/system.h"
#include "netcdf/check_netcdf.h"

#include <cstring>
#include <string>

namespace gridforge::netcdf {

namespace {

[[noreturn]] void failToLoad(const std::string& reason)
{
    failNetcdf("nf90_create", reason); // what every writer calls first
}

void load(const char* name)
{
    if (const auto reason = loadLibrary(name)) {
        failToLoad(*reason);
    }
}

template <typename Routine>
void take(Routine*& routine, const char* name)
{
    void* const address = findLoaded(name);
    if (address == nullptr) {
        failToLoad(std::string(GRIDFORGE_NETCDF_LIBRARY " and " GRIDFORGE_HDF5_LIBRARY " have no ") + name);
    }
    static_assert(sizeof routine == sizeof address);
    std::memcpy(&routine, &address, sizeof address);
}

Library loadAll()
{
    load(GRIDFORGE_NETCDF_LIBRARY);
    load(GRIDFORGE_HDF5_LIBRARY);
    Library library{};
    take(library.nc_create, "nc_create");
    take(library.nc_def_dim, "nc_def_dim");
    take(library.nc_def_var, "nc_def_var");
    take(library.nc_def_var_deflate, "nc_def_var_deflate");
    take(library.nc_def_var_fill, "nc_def_var_fill");
    take(library.nc_put_att_text, "nc_put_att_text");
    take(library.nc_enddef, "nc_enddef");
    take(library.nc_inq_path, "nc_inq_path");
    take(library.nc_inq_varndims, "nc_inq_varndims");
    take(library.nc_inq_var_chunking, "nc_inq_var_chunking");
    take(library.nc_get_var_chunk_cache, "nc_get_var_chunk_cache");
    take(library.nc_set_var_chunk_cache, "nc_set_var_chunk_cache");
    take(library.nc_put_vara_double, "nc_put_vara_double");
    take(library.nc_put_vara_float, "nc_put_vara_float");
    take(library.nc_put_var1_double, "nc_put_var1_double");
    take(library.nc_sync, "nc_sync");
    take(library.nc_close, "nc_close");
    take(library.nc_strerror, "nc_strerror");
    take(library.H5Fget_name, "H5Fget_name");
    take(library.H5Fget_obj_count, "H5Fget_obj_count");
    take(library.H5Fget_obj_ids, "H5Fget_obj_ids");
    take(library.H5Dopen2, "H5Dopen2");
    take(library.H5Dget_type, "H5Dget_type");
    take(library.H5Dget_space, "H5Dget_space");
    take(library.H5Dget_create_plist, "H5Dget_create_plist");
    take(library.H5Dset_extent, "H5Dset_extent");
    take(library.H5Dwrite_chunk, "H5Dwrite_chunk");
    take(library.H5Dclose, "H5Dclose");
    take(library.H5Pget_layout, "H5Pget_layout");
    take(library.H5Pget_chunk, "H5Pget_chunk");
    take(library.H5Pget_chunk_opts, "H5Pget_chunk_opts");
    take(library.H5Pget_fill_value, "H5Pget_fill_value");
    take(library.H5Pget_nfilters, "H5Pget_nfilters");
    take(library.H5Pget_filter2, "H5Pget_filter2");
    take(library.H5Pclose, "H5Pclose");
    take(library.H5Sget_simple_extent_ndims, "H5Sget_simple_extent_ndims");
    take(library.H5Sget_simple_extent_dims, "H5Sget_simple_extent_dims");
    take(library.H5Sclose, "H5Sclose");
    take(library.H5Tequal, "H5Tequal");
    take(library.H5Tclose, "H5Tclose");
    take(library.H5T_NATIVE_FLOAT_g, "H5T_NATIVE_FLOAT_g");
    return library;
}

} // namespace

const Library& library()
{
    static const Library kLibrary = loadAll();
    return kLibrary;
}

} // namespace gridforge::netcdf
