# One static library for each folder of src/. Every library has an include root of its own, a folder in the build tree that
# holds nothing but a link to the library's sources, so that `#include "grid/header.h"` compiles only where grid is linked.
# A folder without sources yet is skipped. FORMS names the folders in it whose sources belong to the library too.
function(gridforge_layer layer)
  cmake_parse_arguments(ARG "" "" "USES;FORMS" ${ARGN})
  set(folder ${PROJECT_SOURCE_DIR}/src/${layer})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.h)
  foreach(form IN LISTS ARG_FORMS)
    file(GLOB formSources CONFIGURE_DEPENDS ${folder}/${form}/*.cpp ${folder}/${form}/*.h)
    list(APPEND sources ${formSources})
  endforeach()
  list(FILTER sources EXCLUDE REGEX "/driver/main\\.cpp$")
  if(NOT sources)
    return()
  endif()

  set(root ${PROJECT_BINARY_DIR}/include/${layer})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${folder} ${root}/${layer} SYMBOLIC)

  add_library(gridforge_${layer} STATIC ${sources})
  # Users first: a static library must stand before those it draws from.
  get_property(layers GLOBAL PROPERTY GRIDFORGE_LAYERS)
  set_property(GLOBAL PROPERTY GRIDFORGE_LAYERS gridforge_${layer} ${layers})
  set_target_properties(gridforge_${layer} PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(gridforge_${layer} PUBLIC ${root})
  target_link_libraries(gridforge_${layer} PUBLIC gridforge_flags)
  foreach(used IN LISTS ARG_USES)
    if(TARGET gridforge_${used})
      target_link_libraries(gridforge_${layer} PUBLIC gridforge_${used})
    endif()
  endforeach()
endfunction()
