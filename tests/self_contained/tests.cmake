# SPDX-License-Identifier: BSD-3-Clause
# The self-contained module as a file; its parts are tested in the other builds.
set(here "${CMAKE_CURRENT_SOURCE_DIR}/self_contained")
set(module "$<TARGET_FILE:kelvane_mex_octave>")
set(folder "$<TARGET_FILE_DIR:kelvane_mex_octave>")
set(KELVANE_OTHER_MODULE "${PROJECT_SOURCE_DIR}/build/release/kelvane_mex.mex" CACHE FILEPATH
    "A module with the system's OpenCV, to compare results with")

add_test(NAME self_contained/symbols
  COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/symbols_test" "${module}" "${here}")
add_test(NAME self_contained/hosts COMMAND sh "${here}/hosts_test" "${PROJECT_SOURCE_DIR}" "${module}")
add_test(NAME self_contained/same_results
  COMMAND sh "${here}/same_results_test" "${OctaveCli_PROGRAM}" "${module}" "${KELVANE_OTHER_MODULE}" "${PROJECT_SOURCE_DIR}")
set_tests_properties(self_contained/same_results PROPERTIES SKIP_RETURN_CODE 77)

# A host of its own, which needs no more than the module.
add_executable(bare_host self_contained/bare_host.cpp mex_host/mex_host.cpp)
target_include_directories(bare_host PRIVATE mex_host)
target_link_libraries(bare_host PRIVATE kelvane_compile_options ${CMAKE_DL_LIBS})
set_target_properties(bare_host PROPERTIES ENABLE_EXPORTS ON CXX_VISIBILITY_PRESET default)
add_test(NAME self_contained/bare_root COMMAND sh "${here}/bare_root_test" "$<TARGET_FILE:bare_host>" "${module}")
set_tests_properties(self_contained/bare_root PROPERTIES SKIP_RETURN_CODE 77)

# Somebody else's OpenCV and LAPACK, real ones and counterfeits.
find_library(SystemOpencvCore_LIBRARY opencv_core)
find_path(SystemOpencvCore_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4)
mark_as_advanced(SystemOpencvCore_LIBRARY SystemOpencvCore_INCLUDE_DIR)
if(SystemOpencvCore_LIBRARY AND SystemOpencvCore_INCLUDE_DIR)
  add_library(counterfeit SHARED module/counterfeit.cpp)
  target_include_directories(counterfeit SYSTEM PRIVATE "${SystemOpencvCore_INCLUDE_DIR}")
  target_link_libraries(counterfeit PRIVATE "${SystemOpencvCore_LIBRARY}")
  set_target_properties(counterfeit PROPERTIES CXX_VISIBILITY_PRESET default)
  add_test(NAME self_contained/strangers COMMAND sh "${here}/strangers_test" "${OctaveCli_PROGRAM}" "${folder}"
    "${CMAKE_CURRENT_SOURCE_DIR}" "$<TARGET_FILE:counterfeit>" "${SystemOpencvCore_LIBRARY}")
endif()
add_test(NAME self_contained/environment COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/environment_test"
  "${OctaveCli_PROGRAM}" "${folder}" "${CMAKE_CURRENT_SOURCE_DIR}")
