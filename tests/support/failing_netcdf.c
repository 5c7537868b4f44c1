/* Loaded into the tool by LD_PRELOAD, these stand before the routines of the NetCDF library, and before those of HDF5 that the
 * tool itself calls, and pass every call on, except the one that GRIDFORGE_FAIL_NETCDF names: with "nc_def_var 3" the third
 * call of nc_def_var fails. Calls that the NetCDF library makes of HDF5 count too. */
#define _GNU_SOURCE

#include <dlfcn.h>
#include <hdf5.h>
#include <netcdf.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failsNow(const char* name, int call)
{
    const char* wanted = getenv("GRIDFORGE_FAIL_NETCDF");
    char this[64];
    snprintf(this, sizeof this, "%s %d", name, call);
    return wanted != NULL && strcmp(wanted, this) == 0;
}

/* The routine `name`, with its parameters and the arguments to pass on, and its status where it fails. */
#define STAND_BEFORE_WITH(status, name, parameters, arguments)                                                         \
    int name parameters                                                                                                \
    {                                                                                                                  \
        static int calls = 0;                                                                                          \
        int(*real) parameters = NULL;                                                                                  \
        void* const found = dlsym(RTLD_NEXT, #name);                                                                   \
        memcpy(&real, &found, sizeof real);                                                                            \
        return failsNow(#name, ++calls) ? (status) : real arguments;                                                   \
    }
#define STAND_BEFORE(name, parameters, arguments) STAND_BEFORE_WITH(NC_EPERM, name, parameters, arguments)

STAND_BEFORE(nc_put_att_text, (int file, int variable, const char* name, size_t length, const char* text),
             (file, variable, name, length, text))
STAND_BEFORE(nc_def_dim, (int file, const char* name, size_t length, int* id), (file, name, length, id))
STAND_BEFORE(nc_def_var, (int file, const char* name, nc_type type, int count, const int* dimensions, int* id),
             (file, name, type, count, dimensions, id))
STAND_BEFORE(nc_def_var_fill, (int file, int variable, int off, const void* value), (file, variable, off, value))
STAND_BEFORE(nc_enddef, (int file), (file))
STAND_BEFORE(nc_put_vara_double,
             (int file, int variable, const size_t* start, const size_t* count, const double* values),
             (file, variable, start, count, values))
STAND_BEFORE(nc_put_vara_float, (int file, int variable, const size_t* start, const size_t* count, const float* values),
             (file, variable, start, count, values))
STAND_BEFORE(nc_put_var1_double, (int file, int variable, const size_t* index, const double* value),
             (file, variable, index, value))
STAND_BEFORE(nc_sync, (int file), (file))
STAND_BEFORE(nc_close, (int file), (file))

STAND_BEFORE_WITH(-1, H5Dset_extent, (hid_t dataset, const hsize_t* sizes), (dataset, sizes))
STAND_BEFORE_WITH(-1, H5Dwrite_chunk,
                  (hid_t dataset, hid_t how, uint32_t left, const hsize_t* start, size_t size, const void* bytes),
                  (dataset, how, left, start, size, bytes))
