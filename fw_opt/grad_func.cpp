// SPDX-License-Identifier: BSD-3-Clause
// Base function and weights of a Jacobian.
#include "fw_opt/grad_func.h"

#include "fw_opt/equation_weights.h"

namespace fw {

Grad_func::Grad_func() = default;
Grad_func::Grad_func(Opt_func* base_to_own) : base(base_to_own) {}
Grad_func::Grad_func(const Grad_func& /*source*/) {}  // NOLINT(modernize-use-equals-default): nothing is copied
Grad_func::~Grad_func() { delete base; }

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned
Grad_func& Grad_func::operator=(const Grad_func& /*source*/) { return *this; }

const Opt_func* Grad_func::base_function() const {
  if (base == nullptr) {
    raise(site::base_function, "Tried to access base function for a Grad_func, but none has been set");
  }
  return base;
}

double Grad_func::get_weight(int i) const { return equation_weight(weights, i); }

void Grad_func::set_weights(const std::vector<double>& w) {
  weights = w;
  if (base != nullptr) base->set_weights(w);
}

void Grad_func::set_weight(int i, double w) {
  set_equation_weight(weights, i, w);
  if (base != nullptr) base->set_weight(i, w);
}

}  // namespace fw
