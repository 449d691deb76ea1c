// SPDX-License-Identifier: BSD-3-Clause
// Weights of an objective.
#include "fw_opt/opt_func.h"

#include "fw_opt/equation_weights.h"

namespace fw {

Opt_func::Opt_func() = default;
Opt_func::Opt_func(const Opt_func& /*source*/) {}  // NOLINT(modernize-use-equals-default): weights are not copied
Opt_func::~Opt_func() = default;

Opt_func& Opt_func::operator=(const Opt_func& /*source*/) { return *this; }

double Opt_func::get_weight(int i) const { return equation_weight(weights, i); }

void Opt_func::set_weights(const std::vector<double>& w) { weights = w; }

void Opt_func::set_weight(int i, double w) { set_equation_weight(weights, i, w); }

}  // namespace fw
