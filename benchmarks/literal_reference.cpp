// SPDX-License-Identifier: BSD-3-Clause
// The steps of the literal reference.
#include "benchmarks/literal_reference.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <stdexcept>

#include "benchmarks/literal_functions.h"

namespace bench {
namespace {

class Literal_reference final : public Competitor {
 public:
  Literal_reference(const Scene& scene, int type) : scene_(scene), type_(type), x0_(search_vector(type, scene.start)) {
    if (type < -2 || type == -1 || (type > 2 && type != 10)) throw std::invalid_argument("no literal reference");
    const Intrinsics& k = scene.intrinsics;
    K_ = type == 10 ? cv::Matx33d::eye() : cv::Matx33d(k.f, 0, k.cx, 0, k.f, k.cy, 0, 0, 1);
  }

  void refine() override {
    const Points points = point_list();
    const std::vector<double> target = target_vector();
    const Literal_objective objective{points, K_, type_};
    const Literal_jacobian jacobian(points, K_, type_);
    iterate(objective, jacobian, target);
  }

  std::vector<double> refined() const override { return best_; }
  int num_jacobians() const override { return num_iterations(type_); }

 private:
  Points point_list() const {
    Points points;
    points.reserve(static_cast<std::size_t>(scene_.num_points));
    for (auto X = scene_.points.begin(); X != scene_.points.end(); X += 3) points.emplace_back(X, X + 3);
    return points;
  }

  std::vector<double> target_vector() const {
    if (type_ != 10) {
      std::vector<double> target;
      for (int block = 0; block < (type_ == -2 ? 3 : 1); ++block) {
        target.insert(target.end(), scene_.pixels.begin(), scene_.pixels.end());
      }
      return target;
    }
    std::vector<double> target(scene_.bearings.size(), 0.0);
    for (std::size_t i = 0; i < scene_.bearings.size() / 3; ++i) {
      std::copy_n(&scene_.bearings[3 * i], 2, &target[2 * i]);
    }
    return target;
  }

  void iterate(const Literal_objective& objective, const Literal_jacobian& jacobian,
               const std::vector<double>& target) {
    double least_error = std::numeric_limits<double>::max();
    best_ = x0_;
    std::vector<double> x = x0_;
    cv::Mat b = residual(objective(x), target);
    for (int i = 0; i < num_iterations(type_); ++i) {
      cv::Mat J(b.rows, static_cast<int>(x.size()), CV_64F);
      jacobian(x, J);
      cv::Mat dx;
      cv::solve(J, b, dx, cv::DECOMP_SVD);
      for (std::size_t k = 0; k < x.size(); ++k) x[k] += dx.at<double>(static_cast<int>(k));
      b = residual(objective(x), target);
      const double error = b.dot(b);
      if (error > least_error) continue;
      least_error = error;
      best_ = x;
    }
  }

  static cv::Mat residual(const std::vector<double>& values, const std::vector<double>& target) {
    cv::Mat b(static_cast<int>(target.size()), 1, CV_64F);
    std::transform(target.begin(), target.end(), values.begin(), b.ptr<double>(), std::minus<>());
    return b;
  }

  const Scene& scene_;
  int type_;
  std::vector<double> x0_;
  cv::Matx33d K_;
  std::vector<double> best_;
};

}  // namespace

Entry literal_reference() {
  return {"literal", [](const Scene& scene, int type) { return std::make_unique<Literal_reference>(scene, type); }};
}

}  // namespace bench
