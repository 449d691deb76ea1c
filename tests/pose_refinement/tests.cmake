# SPDX-License-Identifier: BSD-3-Clause
kelvane_add_test(pose_refinement/argument_contract)
kelvane_add_test(pose_refinement/refinement)
kelvane_add_test(pose_refinement/gateway mex_host)
kelvane_add_test(pose_refinement/real_data)
kelvane_add_test(pose_refinement/reference mex_host)
kelvane_add_test(pose_refinement/bearing_refinement)
kelvane_add_test(pose_refinement/difference_rows)
