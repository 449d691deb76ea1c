# SPDX-License-Identifier: BSD-3-Clause
# What must never happen, whatever comes in: tests of the whole module in the stand-in host.
kelvane_add_test(trust/hostile_inputs mex_host)
kelvane_add_test(trust/hostile_counts mex_host)
kelvane_add_test(trust/threads mex_host)
if(NOT KELVANE_SANITIZE)  # what hangs hangs without instrumentation, too, and thousands of child processes take long with it
  kelvane_add_test(trust/watchdog mex_host)
endif()
foreach(name IN ITEMS memory allocations)
  kelvane_add_test(trust/${name} mex_host ${CMAKE_DL_LIBS})
  target_sources(trust_${name}_test PRIVATE trust/failing_memory.cpp)
endforeach()

# Reads of uninitialised memory and leaks, over calls most of which fail, early or late.
find_program(Valgrind_PROGRAM valgrind)
mark_as_advanced(Valgrind_PROGRAM)
if(Valgrind_PROGRAM AND NOT KELVANE_SANITIZE AND NOT KELVANE_SANITIZE_THREADS)
  add_test(NAME trust/valgrind COMMAND "${Valgrind_PROGRAM}" --quiet --error-exitcode=1 --leak-check=full
    --errors-for-leak-kinds=definite,indirect,possible --keep-debuginfo=yes
    $<TARGET_FILE:trust_hostile_counts_test> "--gtest_filter=*ThreeToSixInputs*:*TooFewPoints*")
endif()
