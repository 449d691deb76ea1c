// SPDX-License-Identifier: BSD-3-Clause
// Small objectives and Jacobians for tests of the framework.
#pragma once

#include <cstddef>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <utility>
#include <vector>

#include "fw_opt/grad_func.h"
#include "fw_opt/opt_func.h"

namespace support {

using Vector = std::vector<double>;
using Rows = std::vector<Vector>;
using Map = std::function<Vector(const Vector&)>;
using Derivatives = std::function<Rows(const Vector&)>;

/// An objective from a function.
class Objective : public fw::Opt_func {
 public:
  Vector operator()(const Vector& x) const override { return map_(x); }
  explicit Objective(Map map) : map_(std::move(map)) {}

 private:
  Map map_;
};

/// A Jacobian from a function that gives its rows. With `seen`, every call leaves there the matrix it was given: the
/// data is shared, so the finished Jacobian can be read once the iteration is over.
class Jacobian : public fw::Grad_func {
 public:
  int operator()(const Vector& x, cv::Mat& J, int start_row) const override {
    if (seen_ != nullptr) *seen_ = J;
    const Rows rows = derivatives_(x);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const int row = start_row + static_cast<int>(i);
      if (row >= J.rows) break;
      for (std::size_t c = 0; c < rows[i].size(); ++c) J.at<double>(row, static_cast<int>(c)) = rows[i][c];
    }
    return static_cast<int>(rows.size());
  }
  Jacobian(Map map, Derivatives derivatives, cv::Mat* seen = nullptr)
      : Grad_func(new Objective(std::move(map))), derivatives_(std::move(derivatives)), seen_(seen) {}

 private:
  Derivatives derivatives_;
  cv::Mat* seen_;
};

inline Vector product(const Rows& A, const Vector& x) {
  Vector y;
  for (const Vector& row : A) {
    double total = 0.0;
    for (std::size_t c = 0; c < row.size(); ++c) total += row[c] * x[c];
    y.push_back(total);
  }
  return y;
}

/// x -> A x
inline Map linear(const Rows& A) {
  return [A](const Vector& x) { return product(A, x); };
}

/// x -> A x with its derivative A.
inline Jacobian* linear_jacobian(const Rows& A, cv::Mat* seen = nullptr) {
  return new Jacobian(
      linear(A), [A](const Vector&) { return A; }, seen);
}

/// A Jacobian without base function.
struct Baseless_jacobian : fw::Grad_func {
  int operator()(const Vector&, cv::Mat&, int) const override { return 0; }
};

/// Writes its name into a log when it is destroyed.
class Logged_objective : public Objective {
 public:
  ~Logged_objective() override { log_.push_back(name_); }
  Logged_objective(std::vector<std::string>& log, std::string name)
      : Objective([](const Vector& x) { return x; }), log_(log), name_(std::move(name)) {}

 private:
  std::vector<std::string>& log_;
  std::string name_;
};

/// The same; its base function logs the name with " base" behind it.
class Logged_jacobian : public fw::Grad_func {
 public:
  ~Logged_jacobian() override { log_.push_back(name_); }
  int operator()(const Vector&, cv::Mat&, int) const override { return 0; }
  Logged_jacobian(std::vector<std::string>& log, const std::string& name)
      : Grad_func(new Logged_objective(log, name + " base")), log_(log), name_(name) {}

 private:
  std::vector<std::string>& log_;
  std::string name_;
};

}  // namespace support
