// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction, compiled for AVX2.
#include "fw_opt/reduction_kernels_body.h"

namespace fw {

extern const Reduction_kernels reduction_kernels_avx2;
const Reduction_kernels reduction_kernels_avx2 = reduction_kernels_of_width<4>;

}  // namespace fw
