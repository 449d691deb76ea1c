// SPDX-License-Identifier: BSD-3-Clause
// The rules of a list of weights, one per equation, that objectives and Jacobians share.
#pragma once

#include <vector>

namespace fw {

/// 1.0 for any index when the list is empty, otherwise the weight of equation i.
/// Throws std::out_of_range "vector::_M_range_check" when a non-empty list does not reach i, or i is negative.
double equation_weight(const std::vector<double>& weights, int i);

/// Sets the weight of equation i. A list that does not reach i grows to i + 1 entries, the new ones 0.0 (not 1.0).
/// Throws std::out_of_range "vector::_M_range_check" when i is negative.
void set_equation_weight(std::vector<double>& weights, int i, double weight);

}  // namespace fw
