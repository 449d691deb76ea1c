# SPDX-License-Identifier: BSD-3-Clause
# The built module and its sources as files.
add_test(NAME module/layers COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/layers_test" "${PROJECT_SOURCE_DIR}")
add_test(NAME module/install_missing
  COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/install_missing_test" "${PROJECT_SOURCE_DIR}")
# Instrumentation brings symbols of its own.
if(TARGET kelvane_mex_octave AND NOT KELVANE_SANITIZE)
  add_test(NAME module/symbols
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/symbols_test" "$<TARGET_FILE:kelvane_mex_octave>")
endif()
