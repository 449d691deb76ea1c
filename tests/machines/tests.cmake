# SPDX-License-Identifier: BSD-3-Clause
# What is the same on every processor and system, and what is said where nothing can be built.
kelvane_add_test(machines/kernels)
kelvane_add_test(machines/whole_calls)

# kelvane_add_platform_test(name sentence [variable=value...]): what is said of a machine that is like ours but for these
function(kelvane_add_platform_test name sentence)
  list(TRANSFORM ARGN PREPEND -D)
  add_test(NAME "machines/${name}" COMMAND "${CMAKE_COMMAND}" -DCMAKE_CXX_COMPILER_ID=GNU
    -DCMAKE_CXX_COMPILER_VERSION=12.2 -DCMAKE_SIZEOF_VOID_P=8 -DCMAKE_CXX_BYTE_ORDER=LITTLE_ENDIAN ${ARGN}
    -P "${PROJECT_SOURCE_DIR}/cmake/KelvanePlatform.cmake")
  if(sentence)
    set_tests_properties("machines/${name}" PROPERTIES PASS_REGULAR_EXPRESSION "kelvane needs ${sentence}[.]\n")
  endif()
endfunction()
kelvane_add_platform_test(supported "")
kelvane_add_platform_test(other_compiler "the vector types of GCC or Clang, which MSVC 19.4 has not"
                          CMAKE_CXX_COMPILER_ID=MSVC CMAKE_CXX_COMPILER_VERSION=19.4)
kelvane_add_platform_test(old_compiler "GCC 12 or Clang 14, or newer; this is GNU 11.4" CMAKE_CXX_COMPILER_VERSION=11.4)
kelvane_add_platform_test(old_clang "GCC 12 or Clang 14, or newer; this is Clang 13.0.1"
                          CMAKE_CXX_COMPILER_ID=Clang CMAKE_CXX_COMPILER_VERSION=13.0.1)
kelvane_add_platform_test(few_bits "a system of 64 bits" CMAKE_SIZEOF_VOID_P=4)
kelvane_add_platform_test(high_byte_first "a processor that stores the low byte of a number first"
                          CMAKE_CXX_BYTE_ORDER=BIG_ENDIAN)
