# SPDX-License-Identifier: BSD-3-Clause
set(corpus "${CMAKE_CURRENT_BINARY_DIR}/corpus")
add_custom_command(OUTPUT "${corpus}.made"
  COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/make_corpus" "${corpus}"
  COMMAND "${CMAKE_COMMAND}" -E touch "${corpus}.made"
  DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/make_corpus" VERBATIM)
add_custom_target(fuzz_corpus ALL DEPENDS "${corpus}.made")

# Fuzz targets: linked to libFuzzer with KELVANE_FUZZ, otherwise to a main function that replays the seeds and all past
# findings.
function(kelvane_add_fuzz_target name)
  set(target fuzz_${name})
  set(inputs "${corpus}/${name}" "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/regressions/${name}")
  add_executable(${target} fuzz/${name}.cpp)
  add_dependencies(${target} fuzz_corpus)
  target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_compile_definitions(${target} PRIVATE "KELVANE_PROJECT_FOLDER=\"${PROJECT_SOURCE_DIR}\"")
  target_link_libraries(${target} PRIVATE kelvane kelvane_compile_options GTest::gtest ${ARGN})
  if(KELVANE_FUZZ)
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    add_test(NAME fuzz/${name} COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/fuzz_test" "$<TARGET_FILE:${target}>"
                                          "${CMAKE_CURRENT_BINARY_DIR}/found/${name}" ${inputs})
  else()
    target_sources(${target} PRIVATE fuzz/replay.cpp)
    target_compile_options(${target} PRIVATE ${test_options})
    add_test(NAME fuzz/${name} COMMAND ${target} ${inputs})
  endif()
endfunction()

kelvane_add_fuzz_target(mex_function mex_host)
kelvane_add_fuzz_target(engine_function engine_host)
kelvane_add_fuzz_target(colmap_model)
kelvane_add_fuzz_target(bal_file)
if(TARGET Opencv::imgproc)
  kelvane_add_fuzz_target(stream_readers kelvane_framework)
endif()
