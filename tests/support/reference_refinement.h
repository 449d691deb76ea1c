// SPDX-License-Identifier: BSD-3-Clause
// A whole refinement a second time: from the mathematics and the rules of the algorithm, with none of the module's
// code.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

#include "support/reference_camera.h"

namespace reference {

/// The inputs of one call; those that are absent stay empty, from the last backwards.
struct Call {
  std::vector<double> parameters;    // rotation, t, f, cx, cy
  std::vector<double> points;        // three numbers for each
  std::vector<double> observations;  // two for each point, three for bearing vectors
  std::vector<double> stopping;      // (not used, min_x_step, min_y_step, finite differences unless 0)
  std::optional<int> type;
  std::vector<double> weights;
};

/// Departures from the algorithm, to show that a comparison would notice them.
struct Departures {
  std::optional<int> max_iters;
  bool weighs_every_iteration = false;
  bool uses_other_target_layout = false;  // bearing vectors by component, a hybrid's blocks point by point
  bool takes_the_last_point = false;
};

struct Refined {
  std::vector<double> x;
  /// Other points whose squared error is that of x but for the rounding of its sum in double: the choice between them
  /// is not the algorithm's.
  std::vector<std::vector<double>> ties;
  std::size_t smallest_rank = 1000;  // of all iterations
  Real worst_condition = 1.0L;
  std::vector<Real> steps;      // of each iteration, from the best point before it, as a sum of absolute differences
  std::vector<Real> decreases;  // of the squared error, by each iteration but the first
};

/// What a call derives from its inputs.
struct Problem {
  Rotation_kind kind;
  Camera camera;
  std::vector<double> x0;
  Vector target;
  Vector weights;  // empty: all are one
  int max_iters = 10;
  float min_x_step = 0.0F;
  float min_y_step = -10000.0F;
  bool is_analytic = true;

  Real weight(std::size_t i) const { return weights.empty() ? 1.0L : weights.at(i); }
};

/// The first two rows of the observations, pair by pair from the front, once for each block. The bearing types have
/// one equation more for each point, so what lies behind their pairs stays zero.
inline Vector target_of(const Call& call, const Rotation_kind& kind, const Departures& departures) {
  const std::size_t rows = kind.rows_per_point();
  const std::size_t num_points = call.points.size() / 3;
  const std::size_t blocks = kind.blocks.size();
  Vector target(rows * num_points * blocks, 0.0L);
  for (std::size_t i = 0; i < num_points; ++i) {
    for (std::size_t r = 0; r < blocks; ++r) {
      std::size_t first = 2 * (i + r * num_points);
      if (departures.uses_other_target_layout) first = kind.is_bearing ? 3 * i : 2 * (i * blocks + r);
      target[first] = call.observations[rows * i];
      target[first + 1] = call.observations[rows * i + 1];
    }
  }
  return target;
}

inline Problem problem_of(const Call& call, const Departures& departures) {
  const int type = call.type.value_or(0);
  Problem problem{rotation_kind(type), {}, {}, {}, {call.weights.begin(), call.weights.end()}};
  const std::size_t n = problem.kind.search_size();
  const auto& p = call.parameters;
  problem.x0.assign(p.begin(), p.begin() + static_cast<std::ptrdiff_t>(n));
  problem.camera = {p[n], p[n + 1], p[n + 2], {}};
  for (std::size_t i = 0; i < call.points.size(); i += 3) {
    problem.camera.points.push_back({call.points[i], call.points[i + 1], call.points[i + 2]});
  }
  problem.target = target_of(call, problem.kind, departures);
  if (!call.stopping.empty()) {
    problem.max_iters = type == 0 ? 3 : 1;
    problem.min_x_step = static_cast<float>(call.stopping[1]);
    problem.min_y_step = static_cast<float>(call.stopping[2]);
    problem.is_analytic = call.stopping[3] == 0.0;
  }
  problem.max_iters = departures.max_iters.value_or(problem.max_iters);
  return problem;
}

inline Vector weighted(Vector values, const Problem& problem) {
  for (std::size_t i = 0; i < values.size(); ++i) values[i] *= problem.weight(i);
  return values;
}

inline Vector predict(const Problem& problem, const std::vector<double>& x) {
  return predict(problem.kind, problem.camera, Vector(x.begin(), x.end()));
}

/// Weighted values ahead minus the values as the solver holds them, divided by the step.
inline Matrix forward_differences(const Problem& problem, std::vector<double> x, const Vector& values) {
  const Representation primary = problem.kind.primary();
  const bool is_quaternion = primary == Representation::quaternion || primary == Representation::unit_quaternion;
  Matrix columns;
  for (std::size_t d = 0; d < x.size(); ++d) {
    const double step = d >= problem.kind.rotation_size() ? 0.01 : is_quaternion ? 0.314 : 0.0314;
    x[d] += step;
    columns.push_back(weighted(predict(problem, x), problem));
    for (std::size_t i = 0; i < values.size(); ++i) columns.back()[i] = (columns.back()[i] - values[i]) / step;
    x[d] -= step;
  }
  return transposed(columns);
}

inline Matrix weighted_jacobian(const Problem& problem, const std::vector<double>& x, const Vector& values) {
  if (!problem.is_analytic) return forward_differences(problem, x, values);
  Matrix J = jacobian(problem.kind, problem.camera, Vector(x.begin(), x.end()));
  for (std::size_t i = 0; i < J.size(); ++i) {
    for (Real& entry : J[i]) entry *= problem.weight(i);
  }
  return J;
}

inline bool is_finite(const Vector& values) {
  for (const Real value : values) {
    if (!std::isfinite(value)) return false;
  }
  return true;
}

/// x + dx with J dx = b. What is not finite has no solution: dx is not a number then.
inline std::vector<double> stepped(const Problem& problem, std::vector<double> x, const Vector& values, Vector b,
                                   Refined& result) {
  const Matrix J = weighted_jacobian(problem, x, values);
  for (std::size_t i = 0; i < b.size(); ++i) b[i] -= values[i];
  bool is_solvable = is_finite(b);
  for (const Vector& row : J) is_solvable = is_solvable && is_finite(row);
  if (!is_solvable) return std::vector<double>(x.size(), std::numeric_limits<double>::quiet_NaN());
  const Least_squares solved = least_squares(J, b);
  result.smallest_rank = std::min(result.smallest_rank, solved.rank);
  result.worst_condition = std::max(result.worst_condition, solved.condition);
  for (std::size_t d = 0; d < x.size(); ++d) x[d] = static_cast<double>(x[d] + solved.solution[d]);
  return x;
}

inline Real squared_distance(const Vector& a, const Vector& b) {
  Real sum = 0.0L;
  for (std::size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
  return sum;
}

inline Real absolute_distance(const std::vector<double>& a, const std::vector<double>& b) {
  Real sum = 0.0L;
  for (std::size_t i = 0; i < a.size(); ++i) sum += std::abs(Real{a[i]} - b[i]);
  return sum;
}

struct Candidate {
  std::vector<double> x;
  Real error;
};

/// Residuals of half a pixel beside coordinates of a thousand lose three of double's sixteen digits, so errors that
/// differ by less than 1e-11 of themselves may be ordered either way.
inline std::vector<std::vector<double>> ties_of(const std::vector<Candidate>& candidates, Real best_error) {
  std::vector<std::vector<double>> ties;
  for (const Candidate& candidate : candidates) {
    if (std::abs(candidate.error - best_error) <= 1e-11L * best_error) ties.push_back(candidate.x);
  }
  return ties;
}

inline Refined refine(const Call& call, const Departures& departures = {}) {
  const Problem problem = problem_of(call, departures);
  const Vector weighted_target = weighted(problem.target, problem);
  Refined result;
  result.x = problem.x0;
  std::vector<double> x = problem.x0;
  std::vector<Candidate> candidates;
  Vector values;
  Real error = std::numeric_limits<double>::max();
  Real best_error = error;
  for (int iteration = 0; iteration < problem.max_iters; ++iteration) {
    // Only the first iteration weighs the values; the later ones take them as they were left for the error.
    if (iteration == 0 || departures.weighs_every_iteration) values = weighted(predict(problem, x), problem);
    const Real previous_error = error;
    x = stepped(problem, x, values, weighted_target, result);
    values = predict(problem, x);
    error = squared_distance(values, problem.target);
    if (problem.max_iters > 1) {
      result.steps.push_back(absolute_distance(result.x, x));
      if (problem.min_x_step > result.steps.back()) break;
      if (iteration > 0) {
        result.decreases.push_back(previous_error - error);
        if (problem.min_y_step > result.decreases.back()) break;
      }
    }
    candidates.push_back({x, error});
    if (best_error >= error || departures.takes_the_last_point) {
      result.x = x;
      best_error = error;
    }
  }
  result.ties = ties_of(candidates, best_error);
  return result;
}

}  // namespace reference
