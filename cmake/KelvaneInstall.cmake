# SPDX-License-Identifier: BSD-3-Clause
# What "cmake --install" puts where. Component library: headers, static libraries and the CMake package. Component
# module: one folder to add to Octave's or MATLAB's path. Nothing installed knows where it was built or lies.
include(CMakePackageConfigHelpers)

words_of(internal_headers internal_headers)
words_of(engine_headers headers)
set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/kelvane")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/kelvane")

foreach(header IN LISTS internal_headers)
  list(APPEND exclusions PATTERN "${header}" EXCLUDE)
endforeach()
install(DIRECTORY fw_tools fw_opt framework DESTINATION "${header_folder}" COMPONENT library
        FILES_MATCHING PATTERN "*.h" ${exclusions})
foreach(header IN LISTS engine_headers)
  get_filename_component(folder "${header}" DIRECTORY)
  install(FILES "${header}" DESTINATION "${header_folder}/${folder}" COMPONENT library)
endforeach()

install(TARGETS kelvane EXPORT kelvaneTargets DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library)
install(EXPORT kelvaneTargets NAMESPACE kelvane:: DESTINATION "${package_folder}" COMPONENT library)
if(TARGET kelvane_framework)  # a file of its own: who has no OpenCV can still use the rest
  install(TARGETS kelvane_framework EXPORT kelvaneFrameworkTargets DESTINATION "${CMAKE_INSTALL_LIBDIR}"
          COMPONENT library)
  install(EXPORT kelvaneFrameworkTargets NAMESPACE kelvane:: DESTINATION "${package_folder}" COMPONENT library)
endif()

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/kelvaneConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/kelvaneConfig.cmake" INSTALL_DESTINATION "${package_folder}"
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kelvaneConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kelvaneConfig.cmake" "${PROJECT_BINARY_DIR}/kelvaneConfigVersion.cmake"
              "${PROJECT_SOURCE_DIR}/cmake/FindOpencvCore.cmake"
        DESTINATION "${package_folder}" COMPONENT library)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT library)

# For builds without CMake, found from where the file lies.
file(RELATIVE_PATH headers_from_here "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_FULL_INCLUDEDIR}/kelvane")
configure_file(cmake/kelvane.pc.in kelvane.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kelvane.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT library)
install(FILES "${PROJECT_BINARY_DIR}/include/kelvane_version.h" DESTINATION "${header_folder}" COMPONENT library)

# The functions for daily use, without those that build the modules and the list of all;
# kelvane_demo looks for the examples in there.
set(module_folder lib/kelvane/octave)
foreach(host IN ITEMS octave matlab)
  if(TARGET kelvane_${host})
    install(TARGETS kelvane_mex_${host} kelvane_engine_${host} DESTINATION "${module_folder}" COMPONENT module)
    set(has_module TRUE)
  endif()
endforeach()
if(has_module)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/matlab/" DESTINATION "${module_folder}" COMPONENT module
          FILES_MATCHING PATTERN "*.m" PATTERN "*build*.m" EXCLUDE PATTERN Contents.m EXCLUDE)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${module_folder}" COMPONENT module
          PATTERN "cpp" EXCLUDE PATTERN "octave-workspace" EXCLUDE)
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${module_folder}" COMPONENT module)
endif()
