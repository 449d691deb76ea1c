# SPDX-License-Identifier: BSD-3-Clause
# A module that asks nobody else in the process for OpenCV or LAPACK, and little of the C and C++ libraries: OpenCV's core
# is a static one of our own, which scripts/opencv_core makes once, and whatever is not reached is left out.
set(KELVANE_OPENCV_ARCHIVE "" CACHE FILEPATH "Source archive of OpenCV 4; empty: the distribution's source package")

if(KELVANE_SELF_CONTAINED)
  set(core "${PROJECT_SOURCE_DIR}/build/opencv_core")
  add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")  # the same bits wherever it is built
  execute_process(COMMAND sh "${PROJECT_SOURCE_DIR}/scripts/opencv_core" ${KELVANE_OPENCV_ARCHIVE}
                  RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "scripts/opencv_core failed")
  endif()
  add_library(Opencv::core STATIC IMPORTED)
  set_target_properties(Opencv::core PROPERTIES IMPORTED_LOCATION "${core}/lib/libopencv_core.a")
  target_include_directories(Opencv::core SYSTEM INTERFACE "${core}/include/opencv4")
endif()

# kelvane_make_self_contained(target): links a module in this way. Our own symbols of the C++ library stay inside, as the
# list of exports hides them. Once loaded it stays in memory: OpenCV frees none of what it sets up once, so each time it was
# loaded anew would cost two kilobytes, and it has the C library call it when a thread ends.
function(kelvane_make_self_contained target)
  target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/self_contained/old_libstdcxx.cpp"
                                   "${PROJECT_SOURCE_DIR}/self_contained/no_environment.cpp")
  target_link_options(${target} PRIVATE LINKER:--gc-sections LINKER:--strip-all LINKER:-z,nodelete LINKER:--wrap=getenv)
  # The oldest versions are these on this processor only.
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/self_contained/old_glibc.cpp")
    foreach(function IN ITEMS pow pthread_key_create pthread_key_delete pthread_getspecific pthread_setspecific)
      target_link_options(${target} PRIVATE LINKER:--wrap=${function})
    endforeach()
  endif()
endfunction()
