// SPDX-License-Identifier: BSD-3-Clause
// OpenCV's two refinements of a pose.
#include <opencv2/calib3d.hpp>

#include "benchmarks/peers/peers.h"

namespace bench {
namespace {

const cv::TermCriteria ten_iterations(cv::TermCriteria::MAX_ITER, 10, 0);

void refine_lm(const cv::Mat& points, const cv::Mat& pixels, const cv::Matx33d& K, World_to_camera& x) {
  cv::solvePnPRefineLM(points, pixels, K, cv::noArray(), x.rotation, x.translation, ten_iterations);
}

void refine_vvs(const cv::Mat& points, const cv::Mat& pixels, const cv::Matx33d& K, World_to_camera& x) {
  cv::solvePnPRefineVVS(points, pixels, K, cv::noArray(), x.rotation, x.translation, ten_iterations);
}

class Opencv final : public Competitor {
 public:
  using Function = decltype(&refine_lm);

  Opencv(const Scene& scene, Function function)
      : function_(function),
        points_(cv::Mat(scene.points).reshape(3).clone()),
        pixels_(cv::Mat(scene.pixels).reshape(2).clone()),
        K_(scene.intrinsics.f, 0, scene.intrinsics.cx, 0, scene.intrinsics.f, scene.intrinsics.cy, 0, 0, 1),
        start_(world_to_camera(scene.start)) {}

  void refine() override {
    x_ = start_;
    function_(points_, pixels_, K_, x_);
  }

  std::vector<double> refined() const override { return search_vector(0, pose_of(x_)); }

 private:
  Function function_;
  cv::Mat points_;
  cv::Mat pixels_;
  cv::Matx33d K_;
  World_to_camera start_;
  World_to_camera x_;
};

Entry entry(const char* name, Opencv::Function function) {
  return {name,
          [function](const Scene& scene, const Task& /*task*/) { return std::make_unique<Opencv>(scene, function); }};
}

}  // namespace

Entry opencv_lm() { return entry("solvePnPRefineLM", &refine_lm); }
Entry opencv_vvs() { return entry("solvePnPRefineVVS", &refine_vvs); }

}  // namespace bench
