# SPDX-License-Identifier: BSD-3-Clause
# What must never happen, whatever comes in: tests of the whole module in the stand-in host.
kelvane_add_test(trust/stand_in_host bare_mex_host ALONE)
kelvane_add_test(trust/hostile_inputs mex_host)
kelvane_add_test(trust/hostile_counts mex_host)
kelvane_add_test(trust/threads mex_host ALONE)
foreach(name IN ITEMS inputs counts states estimates)
  kelvane_add_test(trust/engine_${name} engine_host)
endforeach()
kelvane_add_test(trust/engine_threads engine_host ALONE)
if(NOT KELVANE_SANITIZE)  # what hangs hangs without instrumentation, too, and thousands of child processes take long with it
  kelvane_add_test(trust/watchdog mex_host)
  kelvane_add_test(trust/engine_watchdog engine_host)
endif()
if(UNIX)
  foreach(name IN ITEMS memory allocations)
    kelvane_add_memory_test(trust/${name} mex_host)
    kelvane_add_memory_test(trust/engine_${name} engine_host)
  endforeach()
endif()

# Reads of uninitialised memory and leaks, over calls most of which fail, early or late.
find_program(Valgrind_PROGRAM valgrind)
mark_as_advanced(Valgrind_PROGRAM)
if(Valgrind_PROGRAM AND NOT CMAKE_CROSSCOMPILING AND NOT KELVANE_SANITIZE AND NOT KELVANE_SANITIZE_THREADS)
  set(valgrind "${Valgrind_PROGRAM}" --quiet --error-exitcode=1 --leak-check=full
    --errors-for-leak-kinds=definite,indirect,possible --keep-debuginfo=yes)
  add_test(NAME trust/valgrind COMMAND ${valgrind}
    $<TARGET_FILE:trust_tests_mex_host> "--gtest_filter=*ThreeToSixInputs*:*TooFewPoints*")
  add_test(NAME trust/engine_valgrind COMMAND ${valgrind}
    $<TARGET_FILE:trust_tests_engine_host> "--gtest_filter=*WithOtherFields*")
endif()
