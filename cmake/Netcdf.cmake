# How the routines of the NetCDF library and of HDF5 get into the tool. They bring some forty libraries more along, which take as long
# to load as a short run lasts; so the tool loads them when it writes NetCDF, by the names that a linked executable would hold.
target_include_directories(gridforge_netcdf SYSTEM PUBLIC ${NETCDF_INCLUDE_DIRS} ${HDF5_INCLUDE_DIRS})

function(gridforge_soname variable library)
  # What the linker would write into an executable.
  find_library(${variable}_FILE ${library} HINTS ${ARGN} REQUIRED NO_CACHE)
  execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${${variable}_FILE} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
  if(NOT headers MATCHES "SONAME +([^ \n]+)")
    message(FATAL_ERROR "${${variable}_FILE} is no shared library: configure with -DGRIDFORGE_LINK_NETCDF=ON")
  endif()
  set(${variable} ${CMAKE_MATCH_1} PARENT_SCOPE)
endfunction()

if(GRIDFORGE_LINK_NETCDF)
  target_compile_definitions(gridforge_netcdf PUBLIC GRIDFORGE_LINK_NETCDF) # for tests
  target_link_libraries(gridforge_netcdf PUBLIC PkgConfig::NETCDF PkgConfig::HDF5)
else()
  gridforge_soname(netcdf_soname netcdf ${NETCDF_LIBRARY_DIRS})
  gridforge_soname(hdf5_soname hdf5 ${HDF5_LIBRARY_DIRS})
  target_compile_definitions(gridforge_netcdf PUBLIC
    GRIDFORGE_NETCDF_LIBRARY="${netcdf_soname}" GRIDFORGE_HDF5_LIBRARY="${hdf5_soname}")
  target_link_libraries(gridforge_host PUBLIC ${CMAKE_DL_LIBS})

  # Every routine of theirs that the tool calls, linked: this fails where one is missing, and shows what the package depends on.
  # Not installed.
  add_library(gridforge_needs MODULE src/netcdf/linked/library.cpp)
  target_include_directories(gridforge_needs PRIVATE ${PROJECT_BINARY_DIR}/include/netcdf)
  target_link_libraries(gridforge_needs PRIVATE PkgConfig::NETCDF PkgConfig::HDF5)
  target_link_options(gridforge_needs PRIVATE -Wl,--no-undefined)
endif()
