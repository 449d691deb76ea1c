# SPDX-License-Identifier: BSD-3-Clause
# Tests of the toolkit: one executable for each source file, more where a file would grow long.
kelvane_add_test(fw_tools/exception_l)
kelvane_add_test(fw_tools/report)
kelvane_add_test(fw_tools/scalar_helpers)
kelvane_add_test(fw_tools/std_vector_overloads)
kelvane_add_test(fw_tools/default_val)
kelvane_add_test(fw_tools/matrix)
kelvane_add_test(fw_tools/IplImage_overloads)
kelvane_add_test(fw_tools/rotation)
kelvane_add_test(fw_tools/rotation_branches)
kelvane_add_test(fw_tools/rotation_properties)
kelvane_add_test(fw_tools/rotation_errors)
