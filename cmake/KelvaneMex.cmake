# SPDX-License-Identifier: BSD-3-Clause
# kelvane_add_mex(target SUFFIX .mex INCLUDES dir... [LIBRARIES library...])
#
# Builds kelvane_mex<SUFFIX> in the top of the build folder, with its help text beside it. The host's functions are left
# open for the host to resolve, and mexFunction is all that can be seen from outside.
function(kelvane_add_mex target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SUFFIX" "INCLUDES;LIBRARIES")
  configure_file("${PROJECT_SOURCE_DIR}/matlab/kelvane_mex.m" "${PROJECT_BINARY_DIR}/kelvane_mex.m" COPYONLY)
  # By its name alone: in the path of a folder CMake would double a dollar sign.
  set(exports kelvane_mex.map)
  configure_file("${PROJECT_SOURCE_DIR}/${exports}" ${exports} COPYONLY)
  sources_of(sources .)
  add_library(${target} MODULE ${sources})
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME kelvane_mex PREFIX "" SUFFIX "${arg_SUFFIX}"
    LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}"
    LINK_DEPENDS "${CMAKE_CURRENT_BINARY_DIR}/${exports}")
  target_include_directories(${target} SYSTEM PRIVATE ${arg_INCLUDES})
  target_link_libraries(${target} PRIVATE kelvane kelvane_compile_options ${arg_LIBRARIES})
  target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}")
endfunction()
