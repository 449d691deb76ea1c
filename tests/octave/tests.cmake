# SPDX-License-Identifier: BSD-3-Clause
# The module in Octave itself. An instrumented module needs its runtime to come first in the process.
find_program(OctaveCli_PROGRAM octave-cli)
mark_as_advanced(OctaveCli_PROGRAM)

# kelvane_add_octave_test(name command [launcher ...]): runs an Octave command on the built module, without any file of the
# user's. A quote in the project's folder is doubled, as in Octave's texts.
function(kelvane_add_octave_test name command)
  string(REPLACE "'" "''" project_folder "${PROJECT_SOURCE_DIR}")
  string(REPLACE "${PROJECT_SOURCE_DIR}" "${project_folder}" command "${command}")
  set(here "${CMAKE_CURRENT_SOURCE_DIR}/octave")
  add_test(NAME "octave/${name}" COMMAND ${ARGN} "${OctaveCli_PROGRAM}" --norc --no-history --no-window-system -q
    --path "$<TARGET_FILE_DIR:kelvane_mex_octave>" --path "${here}" --path "${here}/support"
    --path "${PROJECT_SOURCE_DIR}/examples" --path "${PROJECT_SOURCE_DIR}/matlab" --eval "${command}")
endfunction()

set(topics number_of_arguments rotation_type camera_and_points criteria_and_weights check_order deep_reports refinement
           help_text)
# The m-files do not need an instrumented module.
set(topics_of_functions help_of_functions examples_of_pages refine_costs refine_covariance refine_data refine_far_starts
                        refine_outliers refine_poses refine_reports refine_info refine_known reports_page interrupts
                        batch_engines batch_processes demos demo_folders read_bal read_cameras read_colmap
                        written_models plots batch_problems gradient_scenes refine_options)
set(functions kelvane_batch kelvane_camera kelvane_check_gradient kelvane_demo kelvane_distort kelvane_estimate kelvane_plot kelvane_pose
              kelvane_project kelvane_read_bal kelvane_read_colmap kelvane_refine kelvane_types kelvane_undistort
              kelvane_write_bal kelvane_write_colmap kelvane_write_csv)
set(is_tested_in_octave ON)
if(KELVANE_SANITIZE)
  set(libasan libasan.so)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(libasan libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so)
  endif()
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${libasan} OUTPUT_VARIABLE libasan
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT EXISTS "${libasan}")
    set(is_tested_in_octave OFF)
  endif()
endif()

if(TARGET kelvane_mex_octave AND OctaveCli_PROGRAM AND is_tested_in_octave)
  foreach(topic IN LISTS topics)
    kelvane_add_octave_test(${topic} "run_tests('${CMAKE_CURRENT_SOURCE_DIR}/octave/${topic}.tst')")
  endforeach()
  kelvane_add_octave_test(silence "silent_calls()")
  set_tests_properties(octave/silence PROPERTIES PASS_REGULAR_EXPRESSION "^all calls made\n$")
  # One type is enough for an instrumented module, in which everything takes longer.
  kelvane_add_octave_test(hostile_inputs "hostile_inputs($<$<BOOL:${KELVANE_SANITIZE}>:[0, 0]>)")
  set_tests_properties(octave/hostile_inputs PROPERTIES PASS_REGULAR_EXPRESSION "^every value at every position\n$")
  kelvane_add_octave_test(hostile_engine_inputs "hostile_engine_inputs($<IF:$<BOOL:${KELVANE_SANITIZE}>,100,10>)")
  set_tests_properties(octave/hostile_engine_inputs PROPERTIES PASS_REGULAR_EXPRESSION "^every value at every place\n$")
  if(KELVANE_SANITIZE)
    # Leaks are told by their whole stack, which makes everything slow: looked for in one test only.
    set(environment "LD_PRELOAD=${libasan};ASAN_OPTIONS=detect_leaks=0")
    list(TRANSFORM topics PREPEND octave/)
    set_tests_properties(${topics} octave/hostile_inputs octave/hostile_engine_inputs PROPERTIES
      ENVIRONMENT "${environment}")
    set(leaks "fast_unwind_on_malloc=0:print_suppressions=0")
    set(environment "LD_PRELOAD=${libasan}"
      "LSAN_OPTIONS=${leaks}:suppressions=\"${CMAKE_CURRENT_SOURCE_DIR}/octave/leak_suppressions.txt\"")
    set_tests_properties(octave/silence PROPERTIES ENVIRONMENT "${environment}")
  else()
    foreach(topic IN LISTS topics_of_functions)
      kelvane_add_octave_test(${topic} "run_tests('${CMAKE_CURRENT_SOURCE_DIR}/octave/${topic}.tst')")
    endforeach()
    foreach(function IN LISTS functions)
      kelvane_add_octave_test(${function} "run_tests('${PROJECT_SOURCE_DIR}/matlab/${function}.m')")
    endforeach()
    # Its servers start and end with it; where that is not possible, it is skipped with the reason.
    kelvane_add_octave_test(batch_servers "run_tests('${CMAKE_CURRENT_SOURCE_DIR}/octave/batch_servers.tst')"
      sh "${CMAKE_CURRENT_SOURCE_DIR}/octave/two_servers")
    set_tests_properties(octave/batch_servers PROPERTIES SKIP_RETURN_CODE 77)
    # These measure memory.
    kelvane_add_octave_test(no_side_effects "run_tests('${CMAKE_CURRENT_SOURCE_DIR}/octave/no_side_effects.tst')")
    kelvane_add_octave_test(loads_and_unloads "loads_and_unloads(1000)")
  endif()
endif()
# How the modules are built by the m-files, and what MATLAB reads: tested once, as no instrumentation changes it.
if(TARGET kelvane_mex_octave AND OctaveCli_PROGRAM AND NOT KELVANE_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
  foreach(topic IN ITEMS build_options build_folders function_signatures)
    kelvane_add_octave_test(${topic} "run_tests('${CMAKE_CURRENT_SOURCE_DIR}/octave/${topic}.tst')")
  endforeach()
  kelvane_add_octave_test(kelvane_build "run_tests('${PROJECT_SOURCE_DIR}/matlab/kelvane_build.m')")
  # The classes for MATLAB, on a stand-in for its testing framework; four tests need what only MATLAB has.
  foreach(class_and_skips IN ITEMS "'RefineTest', 0" "'HostTest', 4")
    string(REGEX REPLACE "[^A-Za-z]" "" class "${class_and_skips}")
    kelvane_add_octave_test(${class} "addpath('${CMAKE_CURRENT_SOURCE_DIR}/matlab'); run_unittest(${class_and_skips})")
  endforeach()
endif()
