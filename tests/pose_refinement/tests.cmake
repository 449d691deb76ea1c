# SPDX-License-Identifier: BSD-3-Clause
# Tests of the refinement for daily use.
kelvane_add_test(pose_refinement/pose)
kelvane_add_test(pose_refinement/refine)
kelvane_add_test(pose_refinement/refine_many)
kelvane_add_test(pose_refinement/reference)
kelvane_add_test(pose_refinement/hostile_problems)
kelvane_add_test(pose_refinement/covariance)
kelvane_add_test(pose_refinement/allocations mex_host ${CMAKE_DL_LIBS})
target_sources(pose_refinement_allocations_test PRIVATE trust/failing_memory.cpp)
