# SPDX-License-Identifier: BSD-3-Clause
# The built modules and their sources as files, and the scripts that build it.
foreach(topic IN ITEMS layers install_missing scripts functions)
  add_test(NAME "module/${topic}" COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/${topic}_test" "${PROJECT_SOURCE_DIR}")
endforeach()
# Instrumentation brings symbols of its own, and other compilers and settings leave others open.
if(TARGET kelvane_mex_octave AND CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"
   AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12 AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_test(NAME module/symbols
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/symbols_test" "$<TARGET_FILE:kelvane_mex_octave>")
  add_test(NAME module/engine_symbols
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/symbols_test" "$<TARGET_FILE:kelvane_engine_octave>")
endif()
if(TARGET kelvane_mex_octave AND OctaveCli_PROGRAM)
  add_test(NAME module/any_folder
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/any_folder_test" "${PROJECT_SOURCE_DIR}" "${CMAKE_CXX_COMPILER}")
endif()
if(TARGET kelvane_mex_octave AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(modules "$<TARGET_FILE:kelvane_mex_octave>" "$<TARGET_FILE:kelvane_engine_octave>")
  add_test(NAME module/hosts COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/hosts_test" "${PROJECT_SOURCE_DIR}" ${modules})
  # A host of its own, which needs no more than the modules.
  add_executable(bare_host module/bare_host.cpp)
  target_include_directories(bare_host PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_compile_definitions(bare_host PRIVATE KELVANE_PROJECT_FOLDER="")
  target_link_libraries(bare_host PRIVATE bare_mex_host kelvane kelvane_compile_options GTest::gtest ${CMAKE_DL_LIBS})
  set_target_properties(bare_host PROPERTIES ENABLE_EXPORTS ON)
  add_test(NAME module/bare_root
    COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/bare_root_test" "$<TARGET_FILE:bare_host>" ${modules})
  set_tests_properties(module/bare_root PROPERTIES SKIP_RETURN_CODE 77)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_library(threads_apart MODULE module/threads_apart.cpp)
    target_link_libraries(threads_apart PRIVATE kelvane_compile_options ${CMAKE_DL_LIBS})
    configure_file(module/threads_apart.map threads_apart.map COPYONLY)
    configure_file(module/threads_apart.map ../threads_apart.map COPYONLY)  # from where Ninja calls the linker
    target_link_options(threads_apart PRIVATE "LINKER:--version-script=threads_apart.map")
    add_test(NAME module/old_threads
      COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/module/old_threads_test" "$<TARGET_FILE:bare_host>"
              "$<TARGET_FILE:kelvane_engine_octave>" "$<TARGET_FILE:threads_apart>")
  endif()
endif()
