# SPDX-License-Identifier: BSD-3-Clause
# kelvane_add_kernels(target folder/name...)
#
# Adds name.cpp and its variants name_sse2.cpp, name_avx2.cpp and name_avx512.cpp, each compiled for its instructions;
# which one runs is decided by the processor at hand. So nobody needs an option for his processor, and the module runs
# on every 64-bit x86.
function(kelvane_add_kernels target)
  # Without errno the square root is one instruction.
  set(options_sse2 -fno-math-errno)
  set(options_avx2 -fno-math-errno -mavx2)
  set(options_avx512 -fno-math-errno -mavx512f)
  foreach(kernels IN LISTS ARGN)
    target_sources(${target} PRIVATE ${kernels}.cpp)
    foreach(variant IN ITEMS sse2 avx2 avx512)
      target_sources(${target} PRIVATE ${kernels}_${variant}.cpp)
      set_source_files_properties(${kernels}_${variant}.cpp PROPERTIES COMPILE_OPTIONS "${options_${variant}}")
    endforeach()
  endforeach()
endfunction()
