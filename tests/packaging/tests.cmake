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
if(TARGET kelvane_mex_octave AND OctaveCli_PROGRAM)
  foreach(topic IN ITEMS build_options build_folders function_signatures)
    kelvane_add_octave_test(${topic} "addpath('${CMAKE_CURRENT_SOURCE_DIR}/packaging/octave');
      run_tests('${CMAKE_CURRENT_SOURCE_DIR}/packaging/octave/${topic}.tst')")
  endforeach()
  kelvane_add_octave_test(kelvane_build "run_tests('${PROJECT_SOURCE_DIR}/matlab/kelvane_build.m')")
  # The classes for MATLAB, on a stand-in for its testing framework; four tests need what only MATLAB has.
  foreach(class_and_skips IN ITEMS "'RefineTest', 0" "'HostTest', 4")
    string(REGEX REPLACE "[^A-Za-z]" "" class "${class_and_skips}")
    kelvane_add_octave_test(${class} "addpath('${CMAKE_CURRENT_SOURCE_DIR}/packaging/octave', \
      '${CMAKE_CURRENT_SOURCE_DIR}/matlab'); run_unittest(${class_and_skips})")
  endforeach()
endif()
