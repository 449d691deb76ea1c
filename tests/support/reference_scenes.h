// SPDX-License-Identifier: BSD-3-Clause
// Random refinement problems for the comparison with the reference refinement, and the same calls for mexFunction.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "mex_host.h"
#include "support/cases.h"
#include "support/reference_refinement.h"

namespace reference {

/// How far a scene is from an exact fit: half widths of the disturbances of the pose and, in pixels or lengths, of the
/// observations.
struct Disturbance {
  double rotation = 0.03;
  double translation = 0.15;
  double pixels = 0.5;
};

/// A unit axis with its angle, as the rotation entries of the search vector.
inline std::vector<double> rotation_entries(const Rotation_kind& kind, const std::vector<double>& unit_angle_axis) {
  if (kind.primary() == Representation::rotation_vector) return support::rotation_vector_from(unit_angle_axis);
  if (kind.primary() == Representation::angle_axis) return unit_angle_axis;
  return support::quaternion_from(unit_angle_axis);
}

/// A rotation of 0.3 to 5 radians, away from half a turn. Angles above pi and lengths other than one are on purpose:
/// the representations differ in what they make of them.
inline std::vector<double> random_rotation(const Rotation_kind& kind, support::Random& random) {
  std::vector<double> a = random.direction(3);
  do {
    a.resize(3);
    a.push_back(random.uniform(0.3, 5.0));
  } while (std::abs(a[3] - support::pi) < 0.2);
  const std::vector<double> rotation = rotation_entries(kind, a);
  if (kind.primary() == Representation::rotation_vector) return rotation;
  if (kind.primary() == Representation::angle_axis) return support::scaled(rotation, 3, random.uniform(0.7, 1.3));
  // The hybrid with a quaternion takes acos of its scalar part, which must stay below one.
  const double longest = kind.blocks.size() > 1 ? 0.9 : 1.3;
  return support::scaled(rotation, 4, random.uniform(0.7, longest));
}

/// Camera-frame points, one quadrant and near and far in turn, so that few of them fix a pose as well.
inline Vector random_camera_frame_point(std::size_t i, support::Random& random) {
  const double depth = i % 3 == 0 ? random.uniform(4.0, 6.0) : random.uniform(7.0, 11.0);
  const double side = (i & 1U) != 0 ? depth : -depth;
  const double height = (i & 2U) != 0 ? depth : -depth;
  return {side * random.uniform(0.2, 0.6), height * random.uniform(0.2, 0.6), depth};
}

/// Bearing types get a K that is the identity only within the tolerance of its check.
inline Camera random_camera(const Rotation_kind& kind, support::Random& random) {
  const auto between = [&](double low, double high) { return Real{random.uniform(low, high)}; };
  if (kind.is_bearing) return {between(0.9999, 1.0001), between(-1e-4, 1e-4), between(-1e-4, 1e-4), {}};
  return {between(300.0, 1000.0), between(200.0, 600.0), between(200.0, 600.0), {}};
}

/// The call with three inputs and the type: a camera turned by `rotation` that sees all points, and a disturbed pose.
inline Call random_call(int type, const std::vector<double>& rotation, std::size_t num_points, support::Random& random,
                        const Disturbance& disturbance) {
  const Rotation_kind kind = rotation_kind(type);
  std::vector<double> pose = rotation;
  for (int k = 0; k < 3; ++k) pose.push_back(random.uniform(-2.0, 2.0));
  Camera camera = random_camera(kind, random);
  const Vector exact(pose.begin(), pose.end());
  const Rotation<Real> R = predicted_rotation(kind.primary(), exact);

  Call call;
  for (std::size_t i = 0; i < num_points; ++i) {
    const Vector p = random_camera_frame_point(i, random);
    for (std::size_t j = 0; j < 3; ++j) {
      const Real X = R[j][0] * p[0] + R[j][1] * p[1] + R[j][2] * p[2] + exact[kind.rotation_size() + j];
      call.points.push_back(static_cast<double>(X));
    }
    camera.points.push_back({call.points[3 * i], call.points[3 * i + 1], call.points[3 * i + 2]});
  }
  for (const Real value : projected(camera, R, &exact[kind.rotation_size()], kind.is_bearing)) {
    call.observations.push_back(static_cast<double>(value) + random.uniform(-disturbance.pixels, disturbance.pixels));
  }
  for (std::size_t k = 0; k < pose.size(); ++k) {
    const double half_width = k < kind.rotation_size() ? disturbance.rotation : disturbance.translation;
    pose[k] += random.uniform(-half_width, half_width);
  }
  call.parameters = pose;
  for (const Real k : {camera.f, camera.cx, camera.cy}) call.parameters.push_back(static_cast<double>(k));
  call.type = type;
  return call;
}

inline Call random_call(int type, std::size_t num_points, support::Random& random,
                        const Disturbance& disturbance = {}) {
  return random_call(type, random_rotation(rotation_kind(type), random), num_points, random, disturbance);
}

inline std::size_t num_equations(const Call& call) {
  const Rotation_kind kind = rotation_kind(call.type.value_or(0));
  return call.points.size() / 3 * kind.rows_per_point() * kind.blocks.size();
}

inline std::vector<mxArray> host_inputs(const Call& call) {
  const std::size_t num_points = call.points.size() / 3;
  std::vector<mxArray> inputs = {
      mex_host::row(call.parameters), mex_host::real_matrix(3, num_points, call.points),
      mex_host::real_matrix(call.observations.size() / num_points, num_points, call.observations)};
  if (!call.stopping.empty()) inputs.push_back(mex_host::row(call.stopping));
  if (!call.stopping.empty() && call.type) inputs.push_back(mex_host::scalar(*call.type));
  if (!call.weights.empty()) inputs.push_back(mex_host::row(call.weights));
  return inputs;
}

}  // namespace reference
