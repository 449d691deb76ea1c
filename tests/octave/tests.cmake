# SPDX-License-Identifier: BSD-3-Clause
# The module in Octave itself. An instrumented module could not be loaded: its runtime must come first in a process.
find_program(OctaveCli_PROGRAM octave-cli)
mark_as_advanced(OctaveCli_PROGRAM)

# kelvane_add_octave_test(name command): runs an Octave command on the built module, without any file of the user's.
function(kelvane_add_octave_test name command)
  set(here "${CMAKE_CURRENT_SOURCE_DIR}/octave")
  add_test(NAME "octave/${name}" COMMAND "${OctaveCli_PROGRAM}" --norc --no-history --no-window-system -q
    --path "$<TARGET_FILE_DIR:kelvane_mex_octave>" --path "${here}" --path "${here}/support"
    --path "${PROJECT_SOURCE_DIR}/examples" --path "${PROJECT_SOURCE_DIR}/matlab" --eval "${command}")
endfunction()

if(TARGET kelvane_mex_octave AND OctaveCli_PROGRAM AND NOT KELVANE_SANITIZE)
  foreach(topic IN ITEMS number_of_arguments rotation_type camera_and_points criteria_and_weights check_order
                         deep_reports refinement no_side_effects help_text help_of_functions
                         refine_costs refine_covariance refine_data refine_far_starts refine_outliers refine_poses
                         refine_reports)
    kelvane_add_octave_test(${topic} "run_tests('${CMAKE_CURRENT_SOURCE_DIR}/octave/${topic}.tst')")
  endforeach()
  foreach(function IN ITEMS kelvane_check_gradient kelvane_pose kelvane_project kelvane_refine kelvane_types)
    kelvane_add_octave_test(${function} "run_tests('${PROJECT_SOURCE_DIR}/matlab/${function}.m')")
  endforeach()
  kelvane_add_octave_test(silence "silent_calls()")
  set_tests_properties(octave/silence PROPERTIES PASS_REGULAR_EXPRESSION "^all calls made\n$")
endif()
