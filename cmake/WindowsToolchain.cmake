# Builds for Windows on x86-64 with MinGW-w64: cmake -DCMAKE_TOOLCHAIN_FILE=cmake/WindowsToolchain.cmake ...
# Programs that the build itself runs, as the one that makes the manual, run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# The libraries built for Windows, if any; nothing of this machine but programs.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${GRIDFORGE_WINDOWS_LIBRARIES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES GRIDFORGE_WINDOWS_LIBRARIES)
# Not in the Wine of the user.
set(CMAKE_CROSSCOMPILING_EMULATOR env "WINEPREFIX=${CMAKE_BINARY_DIR}/wine" WINEDEBUG=-all /usr/lib/wine/wine64)
