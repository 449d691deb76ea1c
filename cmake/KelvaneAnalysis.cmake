# SPDX-License-Identifier: BSD-3-Clause
# all_in_one.cpp and engine_all_in_one.cpp in the build folder together include every source that is shipped, so that a tool
# which reads sources has to read OpenCV's headers once. There are two as each module has its mexFunction. They are compiled
# only on request; their entries in compile_commands.json are what they are for.
function(kelvane_all_in_one name)
  set(sources ${ARGN})
  list(FILTER sources EXCLUDE REGEX "_avx[0-9]+[.]cpp$")  # the same text as their SSE2 variant
  list(TRANSFORM sources REPLACE "(.+)" "#include \"\\1\"\n")
  string(JOIN "" text "// Generated.\n" ${sources})
  file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/${name}.cpp" CONTENT "${text}" @ONLY)
  add_library(kelvane_${name} OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/${name}.cpp")
  target_include_directories(kelvane_${name} SYSTEM PRIVATE "${Mkoctfile_INCLUDE_DIR}")
  target_link_libraries(kelvane_${name} PRIVATE kelvane $<TARGET_NAME_IF_EXISTS:kelvane_framework>)
endfunction()

get_target_property(sources kelvane SOURCES)
if(TARGET kelvane_framework)
  get_target_property(framework_sources kelvane_framework SOURCES)
  list(APPEND sources ${framework_sources})
endif()
kelvane_all_in_one(all_in_one ${sources} kelvane_mex.cpp old_libraries.cpp)
get_target_property(sources kelvane_engine_octave SOURCES)
list(REMOVE_ITEM sources old_libraries.cpp)
kelvane_all_in_one(engine_all_in_one ${sources})
