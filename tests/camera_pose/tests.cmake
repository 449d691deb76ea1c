# SPDX-License-Identifier: BSD-3-Clause
# Tests of the camera model.
kelvane_add_test(camera_pose/rotation_type)
kelvane_add_test(camera_pose/measurements)
kelvane_add_test(camera_pose/point_kernels)
kelvane_add_test(camera_pose/point_kernels_bits)
kelvane_add_test(camera_pose/pose_system mex_host)
