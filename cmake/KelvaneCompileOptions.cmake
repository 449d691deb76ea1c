# SPDX-License-Identifier: BSD-3-Clause
# What our own code is compiled with, warnings and instrumentation, as a target to link.
add_library(kelvane_compile_options INTERFACE)
target_compile_options(kelvane_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual ${module_options}
  # A loop that Clang does not unroll although it was asked to is slower, not wrong.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-pass-failed>
  # Nor does a name hide that of another file, with which it happens to be compiled.
  $<$<BOOL:${CMAKE_UNITY_BUILD}>:-Wno-shadow>)
if(KELVANE_WARNINGS_AS_ERRORS)
  target_compile_options(kelvane_compile_options INTERFACE -Werror)
endif()
if(KELVANE_SANITIZE)
  target_compile_definitions(kelvane_compile_options INTERFACE KELVANE_SANITIZED)  # for tests that are to be shorter then
  target_compile_options(kelvane_compile_options INTERFACE
    -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kelvane_compile_options INTERFACE -fsanitize=address,undefined,float-cast-overflow)
endif()
if(KELVANE_SANITIZE_THREADS)
  target_compile_options(kelvane_compile_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(kelvane_compile_options INTERFACE -fsanitize=thread)
endif()
if(KELVANE_FUZZ)  # counters alone: tracing comparisons, too, would make every test take two thirds longer
  target_compile_options(kelvane_compile_options INTERFACE
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:KELVANE_IS_TEST>>>:-fsanitize-coverage=inline-8bit-counters,pc-table>)
endif()
