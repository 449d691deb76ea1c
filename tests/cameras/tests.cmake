# SPDX-License-Identifier: BSD-3-Clause
# Tests of cameras with a lens.
kelvane_add_test(cameras/polynomial)
kelvane_add_test(cameras/fold)
kelvane_add_test(cameras/lens ALONE)
kelvane_add_test(cameras/lens_models)
kelvane_add_test(cameras/unproject)
if(TARGET Opencv::calib3d)
  kelvane_add_test(cameras/opencv Opencv::calib3d)
endif()
