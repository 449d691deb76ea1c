# SPDX-License-Identifier: BSD-3-Clause
# GNU Octave's interface for modules, asked of its own build tool.
find_program(Mkoctfile_PROGRAM mkoctfile)
if(Mkoctfile_PROGRAM)
  execute_process(COMMAND "${Mkoctfile_PROGRAM}" -p OCTINCLUDEDIR OUTPUT_VARIABLE mkoctfile_include_dir
                  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  execute_process(COMMAND "${Mkoctfile_PROGRAM}" -p OCTLIBDIR OUTPUT_VARIABLE mkoctfile_library_dir
                  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  find_path(Mkoctfile_INCLUDE_DIR mex.h HINTS "${mkoctfile_include_dir}" NO_DEFAULT_PATH)
  # From Octave 10 on the functions of mex.h live in a library of their own.
  find_library(Mkoctfile_OCTMEX_LIBRARY octmex HINTS "${mkoctfile_library_dir}")
  if(Mkoctfile_OCTMEX_LIBRARY)
    set(Mkoctfile_LIBRARIES "${Mkoctfile_OCTMEX_LIBRARY}")
  endif()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Mkoctfile REQUIRED_VARS Mkoctfile_PROGRAM Mkoctfile_INCLUDE_DIR)
mark_as_advanced(Mkoctfile_PROGRAM Mkoctfile_INCLUDE_DIR Mkoctfile_OCTMEX_LIBRARY)
