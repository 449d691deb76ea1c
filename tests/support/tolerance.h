// SPDX-License-Identifier: BSD-3-Clause
// The tolerances of all tests, relative to max(1, scale of the expected values) unless said otherwise.
#pragma once

namespace tolerance {

inline constexpr double identity = 1e-12;         // identities and round trips: some hundred roundings
inline constexpr double identity_near_pi = 1e-9;  // the same where the conversion divides by a small sine
inline constexpr double closed_form = 1e-12;      // against dual numbers, relative to the block's largest entry
inline constexpr double stencil = 1e-8;           // against a fourth-order stencil of step 3e-4
inline constexpr double solved = 1e-9;            // parameters recovered from noise-free data

}  // namespace tolerance
