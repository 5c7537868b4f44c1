# The unit tests as a program for Windows; scripts/test-windows runs it under Wine. Debian has GoogleTest as sources only for this.
# What is left out as a whole stands here, single tests in windows_exceptions.
set(GRIDFORGE_GOOGLETEST /usr/src/googletest CACHE PATH "Sources of GoogleTest")
set(INSTALL_GTEST OFF)
add_subdirectory(${GRIDFORGE_GOOGLETEST} googletest EXCLUDE_FROM_ALL)

# unit/posix     calls of POSIX, and pipes with a name
# unit/house     rules of the tree, whatever it is built for
# unit/exports   what the executable exports on Linux only
# unit/support   how command-line tests start the tool, which they do on this machine
file(GLOB_RECURSE sources CONFIGURE_DEPENDS unit/*.cpp)
list(FILTER sources EXCLUDE REGEX "/unit/(posix|house|exports|support)/")
file(GLOB support CONFIGURE_DEPENDS support/windows/*.cpp)

add_executable(unit_tests EXCLUDE_FROM_ALL ${sources} ${support} support/grids.cpp support/scratch_folder.cpp)
target_include_directories(unit_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(unit_tests PRIVATE gridforge_layers GTest::gtest_main GTest::gmock)
target_precompile_headers(unit_tests PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
target_compile_options(unit_tests PRIVATE -Og)
