# SPDX-License-Identifier: BSD-3-Clause
# All that is published: a release is made once, and the tests beside it take it apart. mex_build runs where KELVANE_LONG is set.
if(TARGET kelvane_mex_octave AND TARGET kelvane::mat_reader AND OctaveCli_PROGRAM AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(released "${CMAKE_CURRENT_BINARY_DIR}/released")
  foreach(name IN ITEMS release archives cpp_install octave_install mex_build)
    add_test(NAME packaging/${name} COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/packaging/${name}_test" "${PROJECT_SOURCE_DIR}"
             "${released}" "${CMAKE_CXX_COMPILER}" "$<TARGET_FILE_DIR:kelvane_mex_octave>")
    set_tests_properties(packaging/${name} PROPERTIES FIXTURES_REQUIRED released SKIP_RETURN_CODE 77)
  endforeach()
  add_test(NAME packaging/metadata
           COMMAND /usr/bin/python3 "${CMAKE_CURRENT_SOURCE_DIR}/packaging/metadata_test.py" "${PROJECT_SOURCE_DIR}" "${released}")
  set_tests_properties(packaging/metadata PROPERTIES FIXTURES_REQUIRED released)
  set_tests_properties(packaging/release PROPERTIES FIXTURES_REQUIRED "" FIXTURES_SETUP released)
endif()
