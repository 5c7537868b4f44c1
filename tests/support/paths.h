#pragma once

#include <string>

namespace gridforge::test {

// Where the build has put what tests run and read. Only the support library is compiled with these paths.

std::string toolPath();           // the program under test
std::string catchmentMakerPath(); // the program that makes the sample catchment
std::string preloadedPath();      // the C program that is loaded into the tool, to call what it exports
std::string failingNetcdfPath();  // a library that is loaded into the tool, to make calls of NetCDF fail
std::string failingSystemPath();  // the same for calls of the system
std::string pureRoomsPath();      // a program of the rooms that ask nothing of the system
std::string gridWritersPath();    // a program that writes grids in wrong ways and a right one
std::string manualFolder();       // the manual page and the completions, as made by the build
std::string sourceFolder();       // the root of the source tree
std::string dataFolder();         // real grids and layers; may not exist

} // namespace gridforge::test
