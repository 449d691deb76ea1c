// SPDX-License-Identifier: BSD-3-Clause
// Where the rows of an iteration of Packed_gauss_newton come from.
#pragma once

#include <algorithm>

#include "fw_opt/packed_gauss_newton.h"

namespace fw {

/// Weighted Jacobian, weighted target minus values.
class Packed_gauss_newton::Rows : public Row_source {
 public:
  explicit Rows(const Packed_gauss_newton& run) : run_(run) {}

 protected:
  ~Rows() = default;

  /// Where to find what belongs to the rows from `first` on.
  const double* target(std::size_t first) const { return run_.target_.data() + first; }
  const double* weighted_target(std::size_t first) const { return run_.weighted_target() + first; }
  const double* weights(std::size_t first) const { return run_.weights_.data() + first; }
  const double* values(std::size_t first) const { return run_.values_.data() + first; }

  double* right_hand_side(const Row_sink& sink) const { return sink.column(run_.num_dimensions_); }

  void subtract_kept_values(Row_sink& sink, std::size_t first, std::size_t num_rows) const {
    double* b = right_hand_side(sink);
    const double* from = weighted_target(first);
    const double* value = values(first);
    for (std::size_t i = 0; i < num_rows; ++i) b[i] = from[i] - value[i];
  }

  void weigh_jacobian(Row_sink& sink, std::size_t first, std::size_t num_rows) const {
    if (run_.weights_.empty()) return;
    const double* weight = weights(first);
    for (std::size_t c = 0; c < run_.num_dimensions_; ++c) {
      double* entries = sink.column(c);
      for (std::size_t i = 0; i < num_rows; ++i) entries[i] *= weight[i];
    }
  }

  const Packed_gauss_newton& run_;
};

/// From a Jacobian that makes the predictions on the way.
class Packed_gauss_newton::Predicting_rows final : public Rows {
 public:
  Predicting_rows(const Packed_gauss_newton& run, const std::vector<double>& x) : Rows(run), x_(x) {}

  void send(Row_sink& sink) override {
    squared_distance_ = 0.0;
    Completing_sink completing(*this, sink);
    run_.jacobian_->linearise(x_, completing);
  }

  /// The sum of squares of target minus prediction, both unweighted, over all rows sent.
  double squared_distance() const { return squared_distance_; }

 private:
  class Completing_sink final : public Row_sink {
   public:
    Completing_sink(Predicting_rows& rows, Row_sink& next) : Row_sink(next), rows_(rows), next_(next) {}
    void take(std::size_t first, std::size_t num_rows) override {
      rows_.complete(next_, first, num_rows);
      next_.take(first, num_rows);
    }

   private:
    Predicting_rows& rows_;
    Row_sink& next_;
  };

  /// Predictions become the right-hand side in place.
  void complete(Row_sink& sink, std::size_t first, std::size_t num_rows) {
    double* b = right_hand_side(sink);
    if (run_.weights_.empty()) {
      squared_distance_ += run_.kernels_->subtract_from(target(first), b, num_rows);
      return;
    }
    squared_distance_ += run_.kernels_->squared_distance(target(first), b, num_rows);
    const double* from = weighted_target(first);
    const double* weight = weights(first);
    for (std::size_t i = 0; i < num_rows; ++i) b[i] = from[i] - (run_.is_first_ ? b[i] * weight[i] : b[i]);
    weigh_jacobian(sink, first, num_rows);
  }

  const std::vector<double>& x_;
  double squared_distance_ = 0.0;
};

/// From a Jacobian, and the values kept.
class Packed_gauss_newton::Jacobian_rows final : public Rows {
 public:
  Jacobian_rows(const Packed_gauss_newton& run, const std::vector<double>& x) : Rows(run), x_(x) {}

  void send(Row_sink& sink) override {
    Completing_sink completing(*this, sink);
    run_.jacobian_->linearise(x_, completing);
  }

 private:
  class Completing_sink final : public Row_sink {
   public:
    Completing_sink(const Jacobian_rows& rows, Row_sink& next) : Row_sink(next), rows_(rows), next_(next) {}
    void take(std::size_t first, std::size_t num_rows) override {
      rows_.subtract_kept_values(next_, first, num_rows);
      rows_.weigh_jacobian(next_, first, num_rows);
      next_.take(first, num_rows);
    }

   private:
    const Jacobian_rows& rows_;
    Row_sink& next_;
  };

  const std::vector<double>& x_;
};

/// From differences, which carry the weights already, and the values kept.
class Packed_gauss_newton::Difference_rows final : public Rows {
 public:
  using Rows::Rows;

  void send(Row_sink& sink) override {
    const std::size_t size = run_.layout_.packed_size();
    for (std::size_t first = 0; first < size; first += Row_sink::max_rows) {
      const std::size_t num_rows = std::min(Row_sink::max_rows, size - first);
      for (std::size_t c = 0; c < run_.num_dimensions_; ++c) {
        std::copy_n(run_.differences_.data() + c * size + first, num_rows, sink.column(c));
      }
      subtract_kept_values(sink, first, num_rows);
      sink.take(first, num_rows);
    }
  }
};

}  // namespace fw
