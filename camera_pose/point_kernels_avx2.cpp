// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points, compiled for AVX2.
#include "camera_pose/point_kernels_body.h"

extern const Point_kernels point_kernels_avx2;
const Point_kernels point_kernels_avx2 = point_kernels_of_width<4>;
