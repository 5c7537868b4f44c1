// The routines of the NetCDF library that the tool calls, and those of HDF5 below it, under their own names. Nobody calls
// them in another way: both libraries bring some forty more along, and most runs write no NetCDF. `loaded` takes them into the
// process at first use, `linked` is for builds in which they are part of the executable.
#pragma once

#include <hdf5.h>
#include <netcdf.h>

namespace gridforge::netcdf {

struct Library {
    decltype(&::nc_create) nc_create;
    decltype(&::nc_def_dim) nc_def_dim;
    decltype(&::nc_def_var) nc_def_var;
    decltype(&::nc_def_var_deflate) nc_def_var_deflate;
    decltype(&::nc_def_var_fill) nc_def_var_fill;
    decltype(&::nc_put_att_text) nc_put_att_text;
    decltype(&::nc_enddef) nc_enddef;
    decltype(&::nc_inq_path) nc_inq_path;
    decltype(&::nc_inq_varndims) nc_inq_varndims;
    decltype(&::nc_inq_var_chunking) nc_inq_var_chunking;
    decltype(&::nc_get_var_chunk_cache) nc_get_var_chunk_cache;
    decltype(&::nc_set_var_chunk_cache) nc_set_var_chunk_cache;
    decltype(&::nc_put_vara_double) nc_put_vara_double;
    decltype(&::nc_put_vara_float) nc_put_vara_float;
    decltype(&::nc_put_var1_double) nc_put_var1_double;
    decltype(&::nc_sync) nc_sync;
    decltype(&::nc_close) nc_close;
    decltype(&::nc_strerror) nc_strerror;

    decltype(&::H5Fget_name) H5Fget_name;
    decltype(&::H5Fget_obj_count) H5Fget_obj_count;
    decltype(&::H5Fget_obj_ids) H5Fget_obj_ids;
    decltype(&::H5Dopen2) H5Dopen2;
    decltype(&::H5Dget_type) H5Dget_type;
    decltype(&::H5Dget_space) H5Dget_space;
    decltype(&::H5Dget_create_plist) H5Dget_create_plist;
    decltype(&::H5Dset_extent) H5Dset_extent;
    decltype(&::H5Dwrite_chunk) H5Dwrite_chunk;
    decltype(&::H5Dclose) H5Dclose;
    decltype(&::H5Pget_layout) H5Pget_layout;
    decltype(&::H5Pget_chunk) H5Pget_chunk;
    decltype(&::H5Pget_chunk_opts) H5Pget_chunk_opts;
    decltype(&::H5Pget_fill_value) H5Pget_fill_value;
    decltype(&::H5Pget_nfilters) H5Pget_nfilters;
    decltype(&::H5Pget_filter2) H5Pget_filter2;
    decltype(&::H5Pclose) H5Pclose;
    decltype(&::H5Sget_simple_extent_ndims) H5Sget_simple_extent_ndims;
    decltype(&::H5Sget_simple_extent_dims) H5Sget_simple_extent_dims;
    decltype(&::H5Sclose) H5Sclose;
    decltype(&::H5Tequal) H5Tequal;
    decltype(&::H5Tclose) H5Tclose;
    // HDF5 sets the variable behind H5T_NATIVE_FLOAT when it is first called.
    const hid_t* H5T_NATIVE_FLOAT_g;
};

// The run ends, by the name of the first call of every file, where the libraries cannot be loaded.
const Library& library();

} // namespace gridforge::netcdf
