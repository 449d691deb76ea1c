# SPDX-License-Identifier: BSD-3-Clause
# The documentation: the site built from it, its links, and its pictures.
foreach(topic IN ITEMS site pictures trust_page)
  add_test(NAME "docs/${topic}" COMMAND sh "${CMAKE_CURRENT_SOURCE_DIR}/docs/${topic}_test" "${PROJECT_SOURCE_DIR}")
  set_tests_properties("docs/${topic}" PROPERTIES SKIP_RETURN_CODE 77)
endforeach()
