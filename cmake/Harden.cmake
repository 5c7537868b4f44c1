# gridforge_harden(target): releases of it check buffers and the stack, and start at a random address with tables of addresses
# that are read-only from then on. scripts/check-install looks for all this in the package.
function(gridforge_harden target)
  if(NOT GRIDFORGE_HARDEN OR WIN32 OR CMAKE_BUILD_TYPE STREQUAL "Debug" OR GRIDFORGE_SANITIZE OR GRIDFORGE_SANITIZE_THREADS)
    return()
  endif()
  target_compile_options(${target} PRIVATE -fstack-protector-strong -fPIE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  target_link_options(${target} PRIVATE -pie -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endfunction()
