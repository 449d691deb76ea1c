// SPDX-License-Identifier: BSD-3-Clause
// The default value of each element type.
#pragma once

namespace fw {

inline void default_val(double& value) { value = 0.0; }
inline void default_val(float& value) { value = 0.0F; }
inline void default_val(int& value) { value = 0; }

}  // namespace fw
