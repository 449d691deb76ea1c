// SPDX-License-Identifier: BSD-3-Clause
// A solver whose iterations are written down beforehand and whose calls are logged.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "fw_opt/solver.h"

namespace support {

class Scripted_solver : public fw::Solver {
 public:
  /// What one iteration gives: the new point and its error.
  struct Step {
    std::vector<double> x;
    double err;
  };

  std::vector<std::string> calls;            // "reset" or "iteration", in order
  std::vector<std::vector<double>> starts;   // where each iteration began
  std::vector<int> iters;                    // the number each iteration was given
  std::vector<std::vector<double>> targets;  // the target each iteration was given
  bool points_alias = true;                  // whether x_out was always x0 itself
  std::function<void()> failure;             // called by every iteration when set

  void reset() override { calls.emplace_back("reset"); }
  void inner_optimise(const std::vector<double>& x0, const std::vector<double>& target, std::vector<double>& x_out,
                      double& err, int iter) override {
    calls.emplace_back("iteration");
    starts.push_back(x0);
    targets.push_back(target);
    iters.push_back(iter);
    points_alias = points_alias && &x0 == &x_out;
    if (failure) failure();
    const Step& step = steps_.at(static_cast<std::size_t>(iter));
    x_out = step.x;
    err = step.err;
  }

  /// As many iterations as steps, no stopping rule but the defaults.
  explicit Scripted_solver(std::vector<Step> steps) : steps_(std::move(steps)) {
    set_max_iters(static_cast<int>(steps_.size()));
  }

 private:
  std::vector<Step> steps_;
};

inline constexpr const char* optimise_signature =
    "virtual std::vector<double, std::allocator<double> > fw::Solver::optimise(const std::vector<double, "
    "std::allocator<double> >&, const std::vector<double, std::allocator<double> >&)";
inline constexpr const char* optimise_from_start_signature =
    "virtual std::vector<double, std::allocator<double> > fw::Solver::optimise(const std::vector<double, "
    "std::allocator<double> >&)";

}  // namespace support
