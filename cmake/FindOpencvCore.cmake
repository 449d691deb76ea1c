# SPDX-License-Identifier: BSD-3-Clause
# OpenCV's core as Opencv::core and, where they are installed, imgproc as Opencv::imgproc and calib3d, a peer of tests and
# the benchmark, as Opencv::calib3d. Debian installs no CMake package
# with single modules, so where there is none the headers and libraries are looked up themselves.
find_package(OpenCV QUIET COMPONENTS core)
if(OpenCV_FOUND)
  set(OpencvCore_INCLUDE_DIR "${OpenCV_INCLUDE_DIRS}")
  set(OpencvCore_LIBRARY opencv_core)
else()
  find_path(OpencvCore_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4)
  find_library(OpencvCore_LIBRARY opencv_core)
endif()
find_path(OpencvImgproc_INCLUDE_DIR opencv2/imgproc.hpp HINTS ${OpencvCore_INCLUDE_DIR} PATH_SUFFIXES opencv4)
find_library(OpencvImgproc_LIBRARY opencv_imgproc HINTS ${OpenCV_INSTALL_PATH} PATH_SUFFIXES lib)
find_path(OpencvCalib3d_INCLUDE_DIR opencv2/calib3d.hpp HINTS ${OpencvCore_INCLUDE_DIR} PATH_SUFFIXES opencv4)
find_library(OpencvCalib3d_LIBRARY opencv_calib3d HINTS ${OpenCV_INSTALL_PATH} PATH_SUFFIXES lib)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpencvCore REQUIRED_VARS OpencvCore_LIBRARY OpencvCore_INCLUDE_DIR)
mark_as_advanced(OpencvCore_INCLUDE_DIR OpencvCore_LIBRARY OpencvImgproc_INCLUDE_DIR OpencvImgproc_LIBRARY
                 OpencvCalib3d_INCLUDE_DIR OpencvCalib3d_LIBRARY)

if(OpencvCore_FOUND AND NOT TARGET Opencv::core)
  add_library(Opencv::core INTERFACE IMPORTED)
  # System headers: their warnings are not ours.
  target_include_directories(Opencv::core SYSTEM INTERFACE ${OpencvCore_INCLUDE_DIR})
  target_link_libraries(Opencv::core INTERFACE ${OpencvCore_LIBRARY})
endif()
if(OpencvCore_FOUND AND OpencvImgproc_INCLUDE_DIR AND OpencvImgproc_LIBRARY AND NOT TARGET Opencv::imgproc)
  add_library(Opencv::imgproc INTERFACE IMPORTED)
  target_include_directories(Opencv::imgproc SYSTEM INTERFACE ${OpencvImgproc_INCLUDE_DIR})
  target_link_libraries(Opencv::imgproc INTERFACE ${OpencvImgproc_LIBRARY} Opencv::core)
endif()
if(OpencvCore_FOUND AND OpencvCalib3d_INCLUDE_DIR AND OpencvCalib3d_LIBRARY AND NOT TARGET Opencv::calib3d)
  add_library(Opencv::calib3d INTERFACE IMPORTED)
  target_include_directories(Opencv::calib3d SYSTEM INTERFACE ${OpencvCalib3d_INCLUDE_DIR})
  target_link_libraries(Opencv::calib3d INTERFACE ${OpencvCalib3d_LIBRARY} Opencv::core)
endif()
