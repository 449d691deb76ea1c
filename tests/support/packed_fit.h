// SPDX-License-Identifier: BSD-3-Clause
// A small curve fit that can be evaluated in packed order or through the published operators only.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

#include "fw_opt/grad_func.h"
#include "fw_opt/opt_func.h"
#include "fw_opt/packed_equations.h"
#include "fw_tools/aligned_buffer.h"

namespace support {

/// Output o of item t in stack s: x0 exp(x1 t / (s + 1)) + (o + 1) x2 t.
struct Curve {
  fw::Packed_layout layout;
  std::size_t items_per_piece = 8;  // a multiple of 8

  double time(std::size_t item) const {
    return 2.0 * static_cast<double>(item + 1) / static_cast<double>(layout.num_items) - 0.7;
  }
  double value(const std::vector<double>& x, std::size_t stack, std::size_t item, std::size_t output) const {
    const double t = time(item);
    return x[0] * std::exp(x[1] * t / static_cast<double>(stack + 1)) + static_cast<double>(output + 1) * x[2] * t;
  }
  double derivative(const std::vector<double>& x, std::size_t c, std::size_t stack, std::size_t item,
                    std::size_t output) const {
    const double t = time(item);
    const double rate = t / static_cast<double>(stack + 1);
    return c == 0   ? std::exp(x[1] * rate)
           : c == 1 ? x[0] * rate * std::exp(x[1] * rate)
                    : static_cast<double>(output + 1) * t;
  }

  /// Calls visit(stack, item, output) in published order.
  template <typename Visit>
  void visit_all(const Visit& visit) const {
    for (std::size_t s = 0; s < layout.num_stacks; ++s) {
      for (std::size_t i = 0; i < layout.num_items; ++i) {
        for (std::size_t o = 0; o < layout.num_outputs; ++o) visit(s, i, o);
      }
    }
  }

  /// For each piece clear(num_rows), write(place in the piece, stack, item, output), then send(first, num_rows).
  template <typename Clear, typename Write, typename Send>
  void visit_pieces(const Clear& clear, const Write& write, const Send& send) const {
    std::size_t first = 0;
    for (std::size_t s = 0; s < layout.num_stacks; ++s) {
      for (std::size_t start = 0; start < layout.num_items; start += items_per_piece) {
        const std::size_t num_items = std::min(items_per_piece, layout.num_items - start);
        const std::size_t num_rows = (num_items + 7) / 8 * 8 * layout.num_outputs;
        clear(num_rows);
        for (std::size_t i = 0; i < num_items; ++i) {
          for (std::size_t o = 0; o < layout.num_outputs; ++o) {
            write((i / 8 * layout.num_outputs + o) * 8 + i % 8, s, start + i, o);
          }
        }
        send(first, num_rows);
        first += num_rows;
      }
    }
  }
};

/// How often each way of evaluation was taken.
struct Fit_calls {
  int published = 0;
  int packed = 0;
};

class Fit_function final : public fw::Opt_func, public fw::Packed_function {
 public:
  Fit_function(const Curve& curve, bool is_packed, Fit_calls& calls)
      : curve_(curve), is_packed_(is_packed), calls_(calls), piece_(curve.items_per_piece * curve.layout.num_outputs) {}

  std::vector<double> operator()(const std::vector<double>& x) const override {
    ++calls_.published;
    std::vector<double> values;
    curve_.visit_all([&](auto... place) { values.push_back(curve_.value(x, place...)); });
    return values;
  }

  const fw::Packed_function* packed() const override { return is_packed_ ? this : nullptr; }
  fw::Packed_layout layout() const override { return curve_.layout; }
  void evaluate(const std::vector<double>& x, fw::Value_sink& sink) const override {
    ++calls_.packed;
    curve_.visit_pieces([&](std::size_t num_rows) { std::fill_n(piece_.data(), num_rows, 0.0); },
                        [&](std::size_t row, auto... place) { piece_[row] = curve_.value(x, place...); },
                        [&](std::size_t first, std::size_t num_rows) { sink.take(first, piece_.data(), num_rows); });
  }

 private:
  Curve curve_;
  bool is_packed_;
  Fit_calls& calls_;
  mutable fw::Aligned_buffer piece_;
};

/// Where the predictions that come with the Jacobian can be used.
enum class Predicts { nowhere, everywhere, at_first, at_large_x0 };

class Fit_jacobian final : public fw::Grad_func, public fw::Packed_jacobian {
 public:
  fw::Packed_layout packed_layout;  // as the packed operator claims

  Fit_jacobian(const Curve& curve, bool is_packed, Predicts predicts, Fit_calls& calls, Fit_calls& function_calls)
      : Grad_func(new Fit_function(curve, is_packed, function_calls)),
        packed_layout(curve.layout),
        curve_(curve),
        is_packed_(is_packed),
        predicts_(predicts),
        calls_(calls) {}

  int operator()(const std::vector<double>& x, cv::Mat& J, int start_row) const override {
    ++calls_.published;
    int row = start_row;
    curve_.visit_all([&](auto... place) {
      for (std::size_t c = 0; c < 3; ++c) J.at<double>(row, static_cast<int>(c)) = curve_.derivative(x, c, place...);
      ++row;
    });
    return row - start_row;
  }

  const fw::Packed_jacobian* packed() const override { return is_packed_ ? this : nullptr; }
  fw::Packed_layout layout() const override { return packed_layout; }
  int num_columns() const override { return 3; }
  bool predicts_base() const override { return predicts_ != Predicts::nowhere; }
  bool predicts_base_at(const std::vector<double>& x) const override {
    switch (predicts_) {
      case Predicts::at_first:  // for some iterations, until x is near the solution of the tests
        return std::abs(x[0] - 2.0) + std::abs(x[1] - 0.5) > 0.05;
      case Predicts::at_large_x0:
        return x[0] > 1.5;
      case Predicts::everywhere:
      case Predicts::nowhere:
        break;
    }
    return predicts_ == Predicts::everywhere;
  }
  void linearise(const std::vector<double>& x, fw::Row_sink& sink) const override {
    ++calls_.packed;
    const bool is_predicted = predicts_base() && predicts_base_at(x);
    curve_.visit_pieces(
        [&](std::size_t num_rows) {
          for (std::size_t c = 0; c < 3; ++c) std::fill_n(sink.column(c), num_rows, 0.0);
          std::fill_n(sink.column(3), num_rows, is_predicted ? 0.0 : rubbish);
        },
        [&](std::size_t row, auto... place) {
          for (std::size_t c = 0; c < 3; ++c) sink.column(c)[row] = curve_.derivative(x, c, place...);
          if (is_predicted) sink.column(3)[row] = curve_.value(x, place...);
        },
        [&](std::size_t first, std::size_t num_rows) { sink.take(first, num_rows); });
  }

 private:
  static constexpr double rubbish = 1e30;
  Curve curve_;
  bool is_packed_;
  Predicts predicts_;
  Fit_calls& calls_;
};

}  // namespace support
