// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction, compiled for SSE2, which every 64-bit x86 has.
#include "fw_opt/reduction_kernels_body.h"

namespace fw {

extern const Reduction_kernels reduction_kernels_sse2;
const Reduction_kernels reduction_kernels_sse2 = reduction_kernels_of_width<2>;

}  // namespace fw
