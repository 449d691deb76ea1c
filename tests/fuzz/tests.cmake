# SPDX-License-Identifier: BSD-3-Clause
set(corpus "${CMAKE_CURRENT_BINARY_DIR}/corpus")
add_custom_command(OUTPUT "${corpus}.made"
  COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/make_corpus" "${corpus}"
  COMMAND "${CMAKE_COMMAND}" -E touch "${corpus}.made"
  DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/make_corpus" VERBATIM)
add_custom_target(fuzz_corpus ALL DEPENDS "${corpus}.made")

# Fuzz targets. Every compiler builds them with a plain main function, which replays the seeds and all past findings;
# with KELVANE_FUZZ they are linked to libFuzzer as well.
function(kelvane_add_fuzz_target name)
  set(here "${CMAKE_CURRENT_SOURCE_DIR}/fuzz")
  foreach(target IN ITEMS fuzz_${name}_replay fuzz_${name})
    if(target STREQUAL fuzz_${name} AND NOT KELVANE_FUZZ)
      continue()
    endif()
    add_executable(${target} fuzz/${name}.cpp)
    add_dependencies(${target} fuzz_corpus)
    target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_compile_definitions(${target} PRIVATE "KELVANE_PROJECT_FOLDER=\"${PROJECT_SOURCE_DIR}\"")
    if(NOT KELVANE_FUZZ)
      target_compile_options(${target} PRIVATE ${test_options})
    endif()
    target_link_libraries(${target} PRIVATE kelvane kelvane_compile_options GTest::gtest ${ARGN})
  endforeach()
  target_sources(fuzz_${name}_replay PRIVATE fuzz/replay.cpp)
  add_test(NAME fuzz/${name}_replay COMMAND fuzz_${name}_replay "${corpus}/${name}" "${here}/regressions/${name}")
  if(KELVANE_FUZZ)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  endif()
endfunction()

kelvane_add_fuzz_target(mex_function mex_host)
kelvane_add_fuzz_target(engine_function engine_host)
kelvane_add_fuzz_target(colmap_model)
kelvane_add_fuzz_target(bal_file)
if(TARGET Opencv::imgproc)
  kelvane_add_fuzz_target(stream_readers kelvane_framework)
endif()
