# SPDX-License-Identifier: BSD-3-Clause
# The built module and its sources as files, and the scripts that build it.
foreach(topic IN ITEMS layers suppressions install_missing scripts build_preset)
  add_test(NAME "module/${topic}" COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/${topic}_test" "${PROJECT_SOURCE_DIR}")
endforeach()
# Instrumentation brings symbols of its own, and other compilers and settings leave others open.
if(TARGET kelvane_mex_octave AND CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"
   AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12 AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_test(NAME module/symbols
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/symbols_test" "$<TARGET_FILE:kelvane_mex_octave>")
endif()
if(TARGET kelvane_mex_octave AND OctaveCli_PROGRAM)
  add_test(NAME module/any_folder
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/any_folder_test" "${PROJECT_SOURCE_DIR}" "${CMAKE_CXX_COMPILER}")
  set(arguments "${OctaveCli_PROGRAM}" "$<TARGET_FILE_DIR:kelvane_mex_octave>" "${CMAKE_CURRENT_SOURCE_DIR}")
  add_test(NAME module/environment
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/environment_test" ${arguments})
  add_library(counterfeit SHARED module/counterfeit.cpp)
  target_link_libraries(counterfeit PRIVATE Opencv::core)
  set_target_properties(counterfeit PROPERTIES CXX_VISIBILITY_PRESET default)
  add_test(NAME module/counterfeit
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/counterfeit_test" ${arguments} "$<TARGET_FILE:counterfeit>")
endif()
