// The routines as the linker binds them.
#include "netcdf/library.h"

namespace gridforge::netcdf {

const Library& library()
{
    static constexpr Library kLibrary{
        .nc_create = &::nc_create,
        .nc_def_dim = &::nc_def_dim,
        .nc_def_var = &::nc_def_var,
        .nc_def_var_deflate = &::nc_def_var_deflate,
        .nc_def_var_fill = &::nc_def_var_fill,
        .nc_put_att_text = &::nc_put_att_text,
        .nc_enddef = &::nc_enddef,
        .nc_inq_path = &::nc_inq_path,
        .nc_inq_varndims = &::nc_inq_varndims,
        .nc_inq_var_chunking = &::nc_inq_var_chunking,
        .nc_get_var_chunk_cache = &::nc_get_var_chunk_cache,
        .nc_set_var_chunk_cache = &::nc_set_var_chunk_cache,
        .nc_put_vara_double = &::nc_put_vara_double,
        .nc_put_vara_float = &::nc_put_vara_float,
        .nc_put_var1_double = &::nc_put_var1_double,
        .nc_sync = &::nc_sync,
        .nc_close = &::nc_close,
        .nc_strerror = &::nc_strerror,
        .H5Fget_name = &::H5Fget_name,
        .H5Fget_obj_count = &::H5Fget_obj_count,
        .H5Fget_obj_ids = &::H5Fget_obj_ids,
        .H5Dopen2 = &::H5Dopen2,
        .H5Dget_type = &::H5Dget_type,
        .H5Dget_space = &::H5Dget_space,
        .H5Dget_create_plist = &::H5Dget_create_plist,
        .H5Dset_extent = &::H5Dset_extent,
        .H5Dwrite_chunk = &::H5Dwrite_chunk,
        .H5Dclose = &::H5Dclose,
        .H5Pget_layout = &::H5Pget_layout,
        .H5Pget_chunk = &::H5Pget_chunk,
        .H5Pget_chunk_opts = &::H5Pget_chunk_opts,
        .H5Pget_fill_value = &::H5Pget_fill_value,
        .H5Pget_nfilters = &::H5Pget_nfilters,
        .H5Pget_filter2 = &::H5Pget_filter2,
        .H5Pclose = &::H5Pclose,
        .H5Sget_simple_extent_ndims = &::H5Sget_simple_extent_ndims,
        .H5Sget_simple_extent_dims = &::H5Sget_simple_extent_dims,
        .H5Sclose = &::H5Sclose,
        .H5Tequal = &::H5Tequal,
        .H5Tclose = &::H5Tclose,
        .H5T_NATIVE_FLOAT_g = &::H5T_NATIVE_FLOAT_g,
    };
    return kLibrary;
}

} // namespace gridforge::netcdf
