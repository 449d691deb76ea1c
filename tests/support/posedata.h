// SPDX-License-Identifier: BSD-3-Clause
// Measured problems: observations of a camera, a pose to start from and the best one.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "camera_pose/rotation_type.h"
#include "support/camera_model.h"
#include "support/csv.h"

namespace support {

/// A pose in every representation, as a row of pose_*.csv holds it.
struct Measured_pose {
  std::array<double, 3> rotation_vector;
  std::array<double, 4> angle_axis, quaternion;
  std::array<double, 3> centre;
  double rms;

  explicit Measured_pose(const std::vector<double>& row) {
    if (row.size() != 17) throw std::runtime_error("a pose has 17 columns");
    const auto copy = [&row](std::size_t first, auto& to) { std::copy_n(&row[first], to.size(), to.begin()); };
    copy(1, rotation_vector);
    copy(4, angle_axis);
    copy(8, quaternion);
    copy(12, centre);
    rms = row[16];
  }

  /// Rotation entries of the representation, then the centre.
  std::vector<double> search_vector(kelvane::Representation representation) const {
    std::vector<double> x;
    const auto append = [&x](const auto& entries) { x.insert(x.end(), entries.begin(), entries.end()); };
    if (representation == kelvane::Representation::rotation_vector) append(rotation_vector);
    if (representation == kelvane::Representation::angle_axis) append(angle_axis);
    if (representation == kelvane::Representation::quaternion) append(quaternion);
    append(centre);
    return x;
  }
};

/// A problem of a pixel set.
struct Measured_problem {
  int id;
  int num_points;
  double f, cx, cy;
  std::vector<double> points;        // X, Y, Z point by point
  std::vector<double> observations;  // u, v point by point
  Measured_pose start, optimum;

  /// Camera centre of the optimum to the mean point: the unit of all deviations of the centre.
  double distance() const {
    std::array<double, 3> mean{};
    for (std::size_t i = 0; i < points.size(); ++i) mean[i % 3] += points[i] / num_points;
    return std::hypot(mean[0] - optimum.centre[0], mean[1] - optimum.centre[1], mean[2] - optimum.centre[2]);
  }

  /// The root mean square distance, in pixels, between observations and predictions.
  double rms(const Matrix3<double>& R, const Vector3<double>& t) const {
    double sum = 0.0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(num_points); ++i) {
      const std::vector<double> X(&points[3 * i], &points[3 * i] + 3);
      const auto predicted = pixel(f, cx, cy, camera_frame_point(R, t, X));
      for (std::size_t k = 0; k < 2; ++k) sum += std::pow(predicted[k] - observations[2 * i + k], 2);
    }
    return std::sqrt(sum / num_points);
  }
};

/// Where the problems of a set lie: the whole set beside the project, or else the part of it that comes with the
/// project (tests/data/README.md). Empty where there is neither.
inline std::filesystem::path folder_of_set(const std::string& set) {
  const std::filesystem::path project = KELVANE_PROJECT_FOLDER;
  for (const char* place : {"../shared/data", "tests/data", "examples/data"}) {
    if (std::filesystem::exists(project / place / set / "problems.csv")) return project / place / set;
  }
  return {};
}

/// All problems of a pixel set that are there, in their order. Throws when a file is missing or does not hold what it
/// should.
inline std::vector<Measured_problem> read_pixel_set(const std::filesystem::path& folder) {
  const auto starts = read_csv(folder / "pose_start.csv");
  const auto optima = read_csv(folder / "pose_optimal_pixel.csv");
  std::vector<Measured_problem> problems;
  for (const auto& row : read_csv(folder / "problems.csv")) {
    const std::size_t k = problems.size();
    const int id = static_cast<int>(row.at(0));
    Measured_problem problem{id,
                             static_cast<int>(row.at(1)),
                             row.at(2),
                             row.at(3),
                             row.at(4),
                             {},
                             {},
                             Measured_pose(starts.at(k)),
                             Measured_pose(optima.at(k))};
    if (starts[k][0] != id || optima[k][0] != id) throw std::runtime_error("poses and problems differ in their order");
    const std::string number = (id < 10 ? "0" : "") + std::to_string(id);
    for (const auto& observation : read_csv(folder / ("obs_" + number + ".csv"))) {
      if (observation.size() != 5) throw std::runtime_error("a pixel observation has 5 columns");
      problem.points.insert(problem.points.end(), observation.begin(), observation.begin() + 3);
      problem.observations.insert(problem.observations.end(), observation.begin() + 3, observation.end());
    }
    if (problem.observations.size() != 2 * static_cast<std::size_t>(problem.num_points)) {
      throw std::runtime_error("problem " + number + " does not have its number of observations");
    }
    problems.push_back(problem);
  }
  return problems;
}

}  // namespace support
