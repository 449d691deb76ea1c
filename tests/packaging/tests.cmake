# SPDX-License-Identifier: BSD-3-Clause
# All that is published, the packages for Octave and MATLAB, the installation for C++ with its reference, and the build
# without CMake, which runs where KELVANE_LONG is set.
function(kelvane_add_packaging_test name)
  add_test(NAME "packaging/${name}"
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/packaging/${name}_test" "${PROJECT_SOURCE_DIR}" ${ARGN})
endfunction()

kelvane_add_packaging_test(archives)
find_program(Doxygen_PROGRAM doxygen)
mark_as_advanced(Doxygen_PROGRAM)
if(Doxygen_PROGRAM)
  kelvane_add_packaging_test(api_reference)
endif()
if(TARGET kelvane_mex_octave AND TARGET kelvane::mat_reader AND OctaveCli_PROGRAM AND CMAKE_BUILD_TYPE STREQUAL "Release")
  kelvane_add_packaging_test(cpp_install "${PROJECT_BINARY_DIR}" "${CMAKE_CXX_COMPILER}" "${OctaveCli_PROGRAM}")
  kelvane_add_packaging_test(release "${CMAKE_CXX_COMPILER}" "${OctaveCli_PROGRAM}")
endif()
if(TARGET kelvane_mex_octave AND OctaveCli_PROGRAM)
  kelvane_add_packaging_test(octave_install "${CMAKE_CXX_COMPILER}")
  kelvane_add_packaging_test(mex_build "$<TARGET_FILE_DIR:kelvane_mex_octave>")
  set_tests_properties(packaging/mex_build PROPERTIES SKIP_RETURN_CODE 77)
  foreach(topic IN ITEMS build_options build_folders function_signatures)
    kelvane_add_octave_test(${topic} "addpath('${CMAKE_CURRENT_SOURCE_DIR}/packaging/octave');
      run_tests('${CMAKE_CURRENT_SOURCE_DIR}/packaging/octave/${topic}.tst')")
  endforeach()
  kelvane_add_octave_test(kelvane_build "run_tests('${PROJECT_SOURCE_DIR}/matlab/kelvane_build.m')")
  # The classes for MATLAB, on a stand-in for its testing framework; four tests need what only MATLAB has.
  foreach(class IN ITEMS RefineTest HostTest)
    set(skipped_HostTest 4)
    set(skipped_RefineTest 0)
    kelvane_add_octave_test(${class} "addpath('${CMAKE_CURRENT_SOURCE_DIR}/packaging/octave', \
      '${CMAKE_CURRENT_SOURCE_DIR}/matlab'); run_unittest('${class}', ${skipped_${class}})")
  endforeach()
endif()
