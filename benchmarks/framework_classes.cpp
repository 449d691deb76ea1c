// SPDX-License-Identifier: BSD-3-Clause
// The published C++ classes as competitors.
#include "benchmarks/framework_classes.h"

#include <algorithm>

#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_grad_func_hybrid.h"
#include "framework/camera_position_opt_func.h"
#include "fw_opt/linear_taylor_solver.h"

namespace bench {
namespace {

using Points = std::vector<std::vector<double>>;

/// One Gauss-Newton step by OpenCV's decomposition of the whole Jacobian.
class Opencv_solver final : public fw::Solver {
 public:
  using fw::Solver::optimise;
  void reset() override { values_.clear(); }
  void inner_optimise(const std::vector<double>& x0, const std::vector<double>& target, std::vector<double>& x_out,
                      double& err, int /*iter*/) override {
    const fw::Grad_func& jacobian = *get_grad_funcs()[0];
    if (values_.empty()) values_ = (*jacobian.base_function())(x0);
    const cv::Mat b = cv::Mat(target) - cv::Mat(values_);
    cv::Mat J(b.rows, get_num_dimensions(), CV_64F);
    jacobian(x0, J, 0);
    cv::Mat dx;
    cv::solve(J, b, dx, cv::DECOMP_SVD);
    x_out = x0;
    for (int d = 0; d < dx.rows; ++d) x_out[static_cast<std::size_t>(d)] += dx.at<double>(d);
    values_ = (*jacobian.base_function())(x_out);
    err = cv::norm(cv::Mat(values_), cv::Mat(target), cv::NORM_L2SQR);
  }

 private:
  std::vector<double> values_;
};

fw::Grad_func* make_jacobian(int type, const Points& points, const fw::matrix<double>& K) {
  fw::Opt_func* base = new Camera_position_opt_func(points, K, type);
  switch (type) {
    case 1:
      return new Camera_position_grad_func_aan(points, K, base);
    case 2:
      return new Camera_position_grad_func_qu(points, K, base);
    case 10:
      return new Camera_position_grad_func_aau_bv(points, K, base);
    case -1:
      return new Camera_position_grad_func_qu_aau_aan(points, K, base);
    case -2:
      return new Camera_position_grad_func_aau_qu_aan(points, K, base);
    case -3:
      return new Camera_position_grad_func_aan_qu_aau(points, K, base);
    default:
      return new Camera_position_grad_func_aau(points, K, base);
  }
}

template <typename Solver>
class Classes final : public Competitor {
 public:
  Classes(const Scene& scene, const Task& task)
      : task_(task), x0_(search_vector(task.type, scene.start)), target_(target_of(scene, task.type)), K_(3, 3) {
    const Intrinsics k = task.type == 10 ? Intrinsics{1, 0, 0} : scene.intrinsics;
    K_[0][0] = K_[1][1] = k.f;
    K_[0][2] = k.cx;
    K_[1][2] = k.cy;
    K_[2][2] = 1;
    for (auto X = scene.points.begin(); X != scene.points.end(); X += 3) points_.emplace_back(X, X + 3);
  }

  void refine() override {
    Solver solver;
    solver.set_num_dimensions(static_cast<int>(x0_.size()));
    solver.set_num_equations(static_cast<int>(target_.size()));
    solver.set_max_iters(task_.num_iterations());
    solver.set_min_y_step(-1e30F);
    if (task_.by_differences) {
      solver.set_funcs({new Camera_position_opt_func(points_, K_, task_.type)});
      solver.set_finite_difference_steps({{0.0314, 0.0314, 0.0314, 0.01, 0.01, 0.01}});
    } else {
      solver.set_grad_funcs({make_jacobian(task_.type, points_, K_)});
    }
    best_ = solver.optimise(x0_, target_);
  }
  std::vector<double> refined() const override { return best_; }

 private:
  static std::vector<double> target_of(const Scene& scene, int type) {
    if (type >= 0 && type != 10) return scene.pixels;
    std::vector<double> target;
    if (type == 10) {
      target.resize(scene.bearings.size());
      for (std::size_t i = 0; i < target.size() / 3; ++i) std::copy_n(&scene.bearings[3 * i], 2, &target[2 * i]);
      return target;
    }
    for (int block = 0; block < 3; ++block) target.insert(target.end(), scene.pixels.begin(), scene.pixels.end());
    return target;
  }

  Task task_;
  std::vector<double> x0_, target_;
  fw::matrix<double> K_;
  Points points_;
  std::vector<double> best_;
};

}  // namespace

Entry framework() {
  return {"framework", [](const Scene& scene, const Task& task) {
            return std::make_unique<Classes<fw::Linear_taylor_solver>>(scene, task);
          }};
}

Entry literal() {
  return {"literal",
          [](const Scene& scene, const Task& task) { return std::make_unique<Classes<Opencv_solver>>(scene, task); }};
}

}  // namespace bench
