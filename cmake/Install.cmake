# What an installation holds, and the Debian package of it. The manual and the examples tell their own files.
install(TARGETS gridforge RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/gridforge/gridforge.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/gridforge)
# As they lie in the tree, so that their links hold.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN "*.py" EXCLUDE)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${GRIDFORGE_SUPPORT_CONTACT} <gridforge@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
  "Works on the result grids of two-dimensional flood models: maxima and statistics over many runs, differences, levels on a
finer terrain, profiles and sections, damages, rainfall grids. Reads and writes .asc, .flt, .mif, Shapefiles and NetCDF.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3 (>= 3.9)") # of gridforge-run and its like
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS # of gridforge-prepare and gridforge-picture; of recipes
    "python3-gdal, python3-numpy, gdal-bin, netcdf-bin")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "python3-matplotlib") # of pictures as .png, and of the workflow for ensembles
if(NOT GRIDFORGE_LINK_NETCDF)
  # Libraries that are loaded at run time are not seen in the executable.
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package_depends.cmake @ONLY CONTENT [[
file(WRITE "@PROJECT_BINARY_DIR@/package_depends/debian/control" "Source: gridforge\n\nPackage: gridforge\nArchitecture: any\n")
execute_process(COMMAND dpkg-shlibdeps -O "-e@PROJECT_BINARY_DIR@/libgridforge_needs.so"
  WORKING_DIRECTORY "@PROJECT_BINARY_DIR@/package_depends" OUTPUT_VARIABLE needed COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "lib(netcdf|hdf5)[^,\n]*" libraries "${needed}")
list(JOIN libraries ", " libraries)
string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", ${libraries}")
]])
  set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/package_depends.cmake)
endif()
include(CPack)
