# SPDX-License-Identifier: BSD-3-Clause
set(corpus "${CMAKE_CURRENT_BINARY_DIR}/corpus")
add_custom_command(OUTPUT "${corpus}.made"
  COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/make_corpus" "${corpus}"
  COMMAND "${CMAKE_COMMAND}" -E touch "${corpus}.made"
  DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/make_corpus" VERBATIM)
add_custom_target(fuzz_corpus ALL DEPENDS "${corpus}.made")

function(kelvane_add_fuzz_target name)
  set(target fuzz_${name})
  add_executable(${target} fuzz/${name}.cpp)
  add_dependencies(${target} fuzz_corpus)
  target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
  target_compile_definitions(${target} PRIVATE "KELVANE_PROJECT_FOLDER=\"${PROJECT_SOURCE_DIR}\"")
  target_link_libraries(${target} PRIVATE kelvane kelvane_compile_options GTest::gtest ${ARGN})
  target_link_options(${target} PRIVATE -fsanitize=fuzzer)
  set(here "${CMAKE_CURRENT_SOURCE_DIR}/fuzz")
  add_test(NAME fuzz/${name} COMMAND sh "${here}/fuzz_test" "$<TARGET_FILE:${target}>"
    "${CMAKE_CURRENT_BINARY_DIR}/found/${name}" "${corpus}/${name}" "${here}/regressions/${name}")
endfunction()

kelvane_add_fuzz_target(mex_function mex_host)
kelvane_add_fuzz_target(engine_function engine_host)
kelvane_add_fuzz_target(colmap_model)
kelvane_add_fuzz_target(bal_file)
if(TARGET Opencv::imgproc)
  kelvane_add_fuzz_target(stream_readers kelvane_framework)
endif()
