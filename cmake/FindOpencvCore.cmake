# SPDX-License-Identifier: BSD-3-Clause
# OpenCV's core as Opencv::core and, where they are installed, Opencv::imgproc and Opencv::calib3d, a peer of tests and the
# benchmark. Debian installs no CMake package with single modules: without one the headers and libraries are looked up.
find_package(OpenCV QUIET COMPONENTS core)
if(OpenCV_FOUND)
  set(OpencvCore_INCLUDE_DIR "${OpenCV_INCLUDE_DIRS}")
  set(OpencvCore_LIBRARY opencv_core)
endif()
set(core "")
foreach(name IN ITEMS Core Imgproc Calib3d)
  string(TOLOWER ${name} module)
  find_path(Opencv${name}_INCLUDE_DIR opencv2/${module}.hpp HINTS ${OpencvCore_INCLUDE_DIR} PATH_SUFFIXES opencv4)
  find_library(Opencv${name}_LIBRARY opencv_${module} HINTS ${OpenCV_INSTALL_PATH} PATH_SUFFIXES lib)
  mark_as_advanced(Opencv${name}_INCLUDE_DIR Opencv${name}_LIBRARY)
  if(Opencv${name}_INCLUDE_DIR AND Opencv${name}_LIBRARY AND NOT TARGET Opencv::${module})
    add_library(Opencv::${module} INTERFACE IMPORTED)
    # System headers: their warnings are not ours.
    target_include_directories(Opencv::${module} SYSTEM INTERFACE ${Opencv${name}_INCLUDE_DIR})
    target_link_libraries(Opencv::${module} INTERFACE ${Opencv${name}_LIBRARY} ${core})
  endif()
  if(NOT TARGET Opencv::core)
    break()
  endif()
  set(core Opencv::core)
endforeach()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpencvCore REQUIRED_VARS OpencvCore_LIBRARY OpencvCore_INCLUDE_DIR)
