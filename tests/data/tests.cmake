# SPDX-License-Identifier: BSD-3-Clause
# Whether the whole sets of measurements are there.
add_test(NAME data/whole_sets COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/data/whole_sets_test" "${PROJECT_SOURCE_DIR}")
set_tests_properties(data/whole_sets PROPERTIES SKIP_RETURN_CODE 77)
