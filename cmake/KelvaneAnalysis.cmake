# SPDX-License-Identifier: BSD-3-Clause
# all_in_one.cpp in the build folder includes every source that is shipped, so that a tool which reads sources has to read
# OpenCV's headers once. It is compiled only on request; its entry in compile_commands.json is what it is for.
get_target_property(sources kelvane SOURCES)
if(TARGET kelvane_framework)
  get_target_property(framework_sources kelvane_framework SOURCES)
  list(APPEND sources ${framework_sources})
endif()
list(FILTER sources EXCLUDE REGEX "_avx[0-9]+[.]cpp$")  # the same text as their SSE2 variant
list(TRANSFORM sources REPLACE "(.+)" "#include \"\\1\"\n")
string(JOIN "" all_in_one "// Generated.\n" ${sources} "#include \"kelvane_mex.cpp\"\n#include \"old_libraries.cpp\"\n")
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/all_in_one.cpp" CONTENT "${all_in_one}" @ONLY)
add_library(kelvane_all_in_one OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/all_in_one.cpp")
target_include_directories(kelvane_all_in_one SYSTEM PRIVATE "${Mkoctfile_INCLUDE_DIR}")
target_link_libraries(kelvane_all_in_one PRIVATE kelvane $<TARGET_NAME_IF_EXISTS:kelvane_framework>)
