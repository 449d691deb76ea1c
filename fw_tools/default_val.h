// SPDX-License-Identifier: BSD-3-Clause
// The default value of each element type.
#pragma once

namespace fw {

/// Sets it to 0.
inline void default_val(double& value) { value = 0.0; }
/// Sets it to 0.
inline void default_val(float& value) { value = 0.0F; }
/// Sets it to 0.
inline void default_val(int& value) { value = 0; }

}  // namespace fw
