# SPDX-License-Identifier: BSD-3-Clause
# all_in_one.cpp in the build folder includes every source that is shipped, so that a tool which reads sources has to read
# OpenCV's headers once. It is compiled only on request; its entry in compile_commands.json is what it is for.
foreach(target IN ITEMS kelvane kelvane_framework kelvane_mex_octave kelvane_engine_octave)
  if(TARGET ${target})
    get_target_property(sources ${target} SOURCES)
    list(APPEND all_sources ${sources})
  endif()
endforeach()
list(REMOVE_DUPLICATES all_sources)
list(FILTER all_sources EXCLUDE REGEX "_avx[0-9]+[.]cpp$")  # the same text as their SSE2 variant
list(TRANSFORM all_sources REPLACE "(.+)" "#include \"\\1\"\n")
string(JOIN "" text "// Generated.\n" ${all_sources})
# Both modules define mexFunction: here the second one gets another name.
set(engine "#include \"kelvane_engine.cpp\"")
string(REPLACE "${engine}" "#define mexFunction function_of_engine  // NOLINT\n${engine}" text "${text}")
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/all_in_one.cpp" CONTENT "${text}" @ONLY)
add_library(kelvane_all_in_one OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/all_in_one.cpp")
target_include_directories(kelvane_all_in_one SYSTEM PRIVATE "${Mkoctfile_INCLUDE_DIR}")
target_link_libraries(kelvane_all_in_one PRIVATE kelvane $<TARGET_NAME_IF_EXISTS:kelvane_framework>)
