// SPDX-License-Identifier: BSD-3-Clause
// Reduction, then the solution of the triangle; extreme systems are scaled first.
#include "fw_opt/least_squares.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace fw {
namespace {

/// Finds the largest entries of J and b.
class Measuring_sink final : public Row_sink {
 public:
  Measuring_sink(const Row_sink& memory, std::size_t n) : Row_sink(memory), n_(n) {}

  void take(std::size_t /*first*/, std::size_t num_rows) override {
    for (std::size_t c = 0; c <= n_; ++c) {
      double& largest = c < n_ ? largest_of_J_ : largest_of_b_;
      const double* entries = column(c);
      for (std::size_t i = 0; i < num_rows; ++i) {
        is_finite_ = is_finite_ && std::isfinite(entries[i]);
        largest = std::max(largest, std::abs(entries[i]));
      }
    }
  }

  bool is_finite() const { return is_finite_; }
  double largest_of_J() const { return largest_of_J_; }
  double largest_of_b() const { return largest_of_b_; }

 private:
  std::size_t n_;
  bool is_finite_ = true;
  double largest_of_J_ = 0.0;
  double largest_of_b_ = 0.0;
};

/// Multiplies J and b by powers of two on their way to another sink.
class Scaling_sink final : public Row_sink {
 public:
  Scaling_sink(Row_sink& next, std::size_t n, int exponent_of_J, int exponent_of_b)
      : Row_sink(next), next_(next), n_(n), exponent_of_J_(exponent_of_J), exponent_of_b_(exponent_of_b) {}

  void take(std::size_t first, std::size_t num_rows) override {
    for (std::size_t c = 0; c <= n_; ++c) {
      double* entries = column(c);
      const int exponent = c < n_ ? exponent_of_J_ : exponent_of_b_;
      for (std::size_t i = 0; i < num_rows; ++i) entries[i] = std::scalbn(entries[i], exponent);
    }
    next_.take(first, num_rows);
  }

 private:
  Row_sink& next_;
  std::size_t n_;
  int exponent_of_J_;
  int exponent_of_b_;
};

}  // namespace

void Least_squares::reduce(Row_source& source, std::size_t n) {
  reduction_.start(n);
  source.send(reduction_);
}

void Least_squares::solve(Row_source& source, std::size_t n, std::size_t num_rows, double* dx) {
  const double squared_norm = reduction_.squared_norm();
  if (reduction_.is_well_scaled(squared_norm)) {
    triangular_system_.solve(reduction_.triangle(), squared_norm, n, num_rows, dx);
  } else {
    solve_scaled(source, n, num_rows, dx);
  }
}

void Least_squares::solve_scaled(Row_source& source, std::size_t n, std::size_t num_rows, double* dx) {
  Measuring_sink measure(reduction_, n);
  source.send(measure);
  if (!measure.is_finite() || measure.largest_of_J() == 0.0) {
    std::fill_n(dx, n, measure.is_finite() ? 0.0 : std::numeric_limits<double>::quiet_NaN());
    return;
  }
  const int exponent_of_J = std::ilogb(measure.largest_of_J());
  const int exponent_of_b = measure.largest_of_b() == 0.0 ? 0 : std::ilogb(measure.largest_of_b());
  reduction_.start(n);  // after the sink that measured in its memory
  Scaling_sink scale(reduction_, n, -exponent_of_J, -exponent_of_b);
  source.send(scale);
  triangular_system_.solve(reduction_.triangle(), reduction_.squared_norm(), n, num_rows, dx);
  for (std::size_t d = 0; d < n; ++d) dx[d] = std::scalbn(dx[d], exponent_of_b - exponent_of_J);
}

}  // namespace fw
