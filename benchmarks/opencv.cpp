// SPDX-License-Identifier: BSD-3-Clause
// OpenCV's refinements of a pose, and its estimates among wrong observations.
#include <opencv2/calib3d.hpp>
#include <stdexcept>

#include "benchmarks/race.h"

namespace bench {
namespace {

const cv::Matx33d camera_matrix(Scene::f, 0, Scene::cx, 0, Scene::f, Scene::cy, 0, 0, 1);
const cv::TermCriteria ten_iterations(cv::TermCriteria::MAX_ITER, 10, 0);

cv::Mat points_of(const Scene& scene) { return cv::Mat(scene.all.points).reshape(3); }
cv::Mat pixels_of(const Scene& scene) { return cv::Mat(scene.all.pixels).reshape(2); }

/// The result of a call that fills the two vectors. One that throws has found nothing.
template <typename Call>
Estimated estimated(const Scene& scene, const Call& call) {
  cv::Mat r;
  cv::Mat s;
  try {
    if (!call(points_of(scene), pixels_of(scene), r, s)) return {};
    return {true, {pose_of(cv::Vec3d(r).val, cv::Vec3d(s).val)}};
  } catch (const cv::Exception&) {
    return {};
  } catch (const std::invalid_argument&) {  // not finite
    return {true, {}};
  }
}

constexpr double max_error = 8;  // its default

Estimator by_flag(const std::string& name, int flag, int num_trials = 100, double confidence = 0.99) {
  return {name, [=](const Scene& scene) {
            return estimated(scene, [&](const cv::Mat& points, const cv::Mat& pixels, cv::Mat& r, cv::Mat& s) {
              return cv::solvePnPRansac(points, pixels, camera_matrix, cv::noArray(), r, s, false, num_trials,
                                        static_cast<float>(max_error), confidence, cv::noArray(), flag);
            });
          }};
}

/// The other overload, whose defaults are its own but for the threshold.
Estimated by_usac_params(const Scene& scene) {
  return estimated(scene, [](const cv::Mat& points, const cv::Mat& pixels, cv::Mat& r, cv::Mat& s) {
    cv::UsacParams params;
    params.threshold = max_error;
    cv::Mat K(camera_matrix);
    return cv::solvePnPRansac(points, pixels, K, cv::noArray(), r, s, cv::noArray(), params);
  });
}

/// By a function that refines the two vectors.
template <typename Refine>
Contestant opencv(const char* name, const Scene& scene, const Refine& refine) {
  const Parameters start = parameters_of(scene.start);
  const auto r = std::make_shared<cv::Vec3d>();
  const auto s = std::make_shared<cv::Vec3d>();
  const auto call = [=, points = points_of(scene), pixels = pixels_of(scene)] {
    *r = cv::Vec3d(&start[0]);
    *s = cv::Vec3d(&start[3]);
    refine(points, pixels, camera_matrix, cv::noArray(), *r, *s, ten_iterations);
  };
  return {name, call, [=] { return pose_of(r->val, s->val); }};
}

}  // namespace

Contestant opencv_lm(const Scene& scene) {
  return opencv("solvePnPRefineLM", scene, [](auto&&... arguments) { cv::solvePnPRefineLM(arguments...); });
}

Contestant opencv_vvs(const Scene& scene) {
  return opencv("solvePnPRefineVVS", scene, [](auto&&... arguments) { cv::solvePnPRefineVVS(arguments...); });
}

std::vector<Estimator> opencv_estimators() {
  const std::pair<const char*, int> flags[] = {
      {"SQPNP", cv::SOLVEPNP_SQPNP},      {"`USAC_FAST`", cv::USAC_FAST},       {"AP3P", cv::SOLVEPNP_AP3P},
      {"USAC_DEFAULT", cv::USAC_DEFAULT}, {"USAC_PARALLEL", cv::USAC_PARALLEL}, {"USAC_ACCURATE", cv::USAC_ACCURATE},
      {"USAC_MAGSAC", cv::USAC_MAGSAC}};
  std::vector<Estimator> estimators{by_flag("default", cv::SOLVEPNP_ITERATIVE)};
  for (const auto& [name, flag] : flags) estimators.push_back(by_flag(name, flag));
  estimators.insert(estimators.begin() + 3, {"`UsacParams`", by_usac_params});
  for (const auto& [name, flag] : flags) {
    estimators.push_back(by_flag(name + std::string(" 10000"), flag, 10000, 0.9999));
  }
  return estimators;
}

}  // namespace bench
