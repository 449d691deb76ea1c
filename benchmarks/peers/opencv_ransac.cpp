// SPDX-License-Identifier: BSD-3-Clause
// OpenCV's estimates of a pose among outliers.
#include <opencv2/calib3d.hpp>
#include <stdexcept>

#include "benchmarks/estimator.h"

namespace bench {
namespace {

cv::Mat camera_matrix() {
  return (cv::Mat_<double>(3, 3) << Estimation_scene::f, 0, Estimation_scene::width / 2, 0, Estimation_scene::f,
          Estimation_scene::height / 2, 0, 0, 1);
}

/// The result of a call that fills the two vectors. One that throws has found nothing.
template <typename Call>
Estimated estimated(const Estimation_scene& scene, const Call& call) {
  cv::Mat r;
  cv::Mat s;
  try {
    if (!call(cv::Mat(scene.all.points).reshape(3), cv::Mat(scene.all.pixels).reshape(2), r, s)) return {};
    const kelvane::Rotation_vector_pose pose{{r.at<double>(0), r.at<double>(1), r.at<double>(2)},
                                             {s.at<double>(0), s.at<double>(1), s.at<double>(2)}};
    return {true, {pose_of(pose, kelvane::Pose_frame::camera_from_world)}};
  } catch (const cv::Exception&) {
    return {};
  } catch (const std::invalid_argument&) {  // not finite
    return {true, {}};
  }
}

/// Its default.
double or_eight_pixels(double max_error) { return max_error > 0 ? max_error : 8; }

Estimator by_flag(const std::string& name, int flag, int num_trials = 100, double confidence = 0.99) {
  return {name, [=](const Estimation_scene& scene, double max_error) {
            return estimated(scene, [&](const cv::Mat& points, const cv::Mat& pixels, cv::Mat& r, cv::Mat& s) {
              return cv::solvePnPRansac(points, pixels, camera_matrix(), cv::noArray(), r, s, false, num_trials,
                                        static_cast<float>(or_eight_pixels(max_error)), confidence, cv::noArray(),
                                        flag);
            });
          }};
}

/// The other overload, whose defaults are its own but for the threshold.
Estimated by_usac_params(const Estimation_scene& scene, double max_error) {
  return estimated(scene, [=](const cv::Mat& points, const cv::Mat& pixels, cv::Mat& r, cv::Mat& s) {
    cv::UsacParams params;
    params.threshold = or_eight_pixels(max_error);
    cv::Mat K = camera_matrix();
    return cv::solvePnPRansac(points, pixels, K, cv::noArray(), r, s, cv::noArray(), params);
  });
}

}  // namespace

std::vector<Estimator> opencv_estimators() {
  const std::pair<const char*, int> flags[] = {{"AP3P", cv::SOLVEPNP_AP3P},        {"SQPNP", cv::SOLVEPNP_SQPNP},
                                               {"USAC_DEFAULT", cv::USAC_DEFAULT}, {"USAC_PARALLEL", cv::USAC_PARALLEL},
                                               {"USAC_FAST", cv::USAC_FAST},       {"USAC_ACCURATE", cv::USAC_ACCURATE},
                                               {"USAC_MAGSAC", cv::USAC_MAGSAC}};
  std::vector<Estimator> estimators{by_flag("default", cv::SOLVEPNP_ITERATIVE)};
  for (const auto& [name, flag] : flags) estimators.push_back(by_flag(name, flag));
  estimators.push_back({"UsacParams", by_usac_params});
  for (const auto& [name, flag] : flags) {
    estimators.push_back(by_flag(name + std::string(" 10000"), flag, 10000, 0.9999));
  }
  return estimators;
}

}  // namespace bench
