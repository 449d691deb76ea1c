# SPDX-License-Identifier: BSD-3-Clause
# all_in_one.cpp in the build folder includes every source of the module, so that a tool which reads sources has to read
# OpenCV's headers once. It is compiled only on request; its entry in compile_commands.json is what it is for.
get_target_property(sources kelvane SOURCES)
list(TRANSFORM sources REPLACE "(.+)" "#include \"\\1\"\n")
string(JOIN "" all_in_one "// Generated.\n" ${sources} "#include \"kelvane_mex.cpp\"\n")
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/all_in_one.cpp" CONTENT "${all_in_one}" @ONLY)
add_library(kelvane_all_in_one OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/all_in_one.cpp")
target_include_directories(kelvane_all_in_one SYSTEM PRIVATE "${Mkoctfile_INCLUDE_DIR}")
target_link_libraries(kelvane_all_in_one PRIVATE kelvane)
