# SPDX-License-Identifier: BSD-3-Clause
# kelvane_add_modules(host suffix includes [library...])
#
# Builds kelvane_mex<suffix> and kelvane_engine<suffix> in the top of the build folder, each with its help text beside it:
# targets kelvane_mex_<host>, kelvane_engine_<host>, and kelvane_<host> for both. The host's functions are left open for the
# host to resolve, and mexFunction is all that can be seen from outside.
function(kelvane_add_modules host suffix includes)
  # A copy, to name it without a path: in that of a folder CMake would double a dollar sign.
  configure_file("${PROJECT_SOURCE_DIR}/kelvane.map" kelvane.map COPYONLY)
  add_custom_target(kelvane_${host})
  set(sources_of_kelvane_mex "")
  sources_of(sources_of_kelvane_engine ${host_folders})
  foreach(module IN ITEMS kelvane_mex kelvane_engine)
    configure_file("${PROJECT_SOURCE_DIR}/matlab/${module}.m" "${PROJECT_BINARY_DIR}/${module}.m" COPYONLY)
    set(target ${module}_${host})
    add_library(${target} MODULE ${module}.cpp old_libraries.cpp ${sources_of_${module}})
    set_target_properties(${target} PROPERTIES
      OUTPUT_NAME ${module} PREFIX "" SUFFIX "${suffix}"
      LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}"
      LINK_DEPENDS "${CMAKE_CURRENT_BINARY_DIR}/kelvane.map")
    target_include_directories(${target} SYSTEM PRIVATE ${includes})
    target_link_libraries(${target} PRIVATE kelvane kelvane_compile_options ${ARGN})
    target_link_options(${target} PRIVATE "LINKER:--version-script=kelvane.map")
    add_dependencies(kelvane_${host} ${target})
  endforeach()
endfunction()
