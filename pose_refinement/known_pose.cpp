// SPDX-License-Identifier: BSD-3-Clause
// A root of the information, and the rows that follow from it.
#include "pose_refinement/known_pose.h"

#include <cmath>
#include <string>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/motion.h"
#include "pose_refinement/symmetric_root.h"
#include "pose_refinement/turns.h"

namespace kelvane {
namespace {

/// Of the one that is given, or null.
const Numbers* given(const Pose_prior& prior, const char*& name) {
  if (prior.covariance.size != 0 && prior.information.size != 0) {
    throw Bad_argument("prior", "prior", " has a covariance and information: one of the two is enough.");
  }
  name = prior.covariance.size != 0 ? "prior.covariance" : "prior.information";
  if (prior.covariance.size != 0) return &prior.covariance;
  return prior.information.size != 0 ? &prior.information : nullptr;
}

}  // namespace

Known_pose::Known_pose(const Pose_prior& prior, const World& world, double sigma) : unit_(world.unit) {
  const char* name = nullptr;
  const Numbers* const numbers = given(prior, name);
  if (numbers == nullptr) return;
  if (numbers->size != 36) {
    throw Bad_argument("size", name, " must be 36 numbers, 6 x 6; there are " + std::to_string(numbers->size) + ".");
  }
  check_finite(name, numbers->data, 0, numbers->size);
  const bool is_covariance = numbers == &prior.covariance;
  Matrix root = {};
  double* const W = &root.rows[0][0];
  const Root found = is_covariance ? Symmetric_root<6>::of_covariance(numbers->data, W)
                                   : Symmetric_root<6>::of_information(numbers->data, W);
  if (found == Root::not_symmetric) throw Bad_argument("notSymmetric", name, " is not symmetric.");
  if (found == Root::not_positive && is_covariance) {
    throw Bad_argument("notPositive", name,
                       " is not positive definite. What is known for sure belongs in the fixed directions.");
  }
  if (found == Root::not_positive) {
    throw Bad_argument("notPositive", name, " has a negative eigenvalue: where nothing is known, information is 0.");
  }
  for (int i = 0; i < 36; ++i) W[i] *= sigma;
  Pose pose = prior.pose;
  take_nearest_rotation(pose.rotation, "prior.pose.rotation");
  check_finite("prior.pose.centre", pose.centre, 0, 3);
  pose_ = world.from_users(pose);
  root_ = root;
}

void Known_pose::set_error(const Pose& pose, double* e) const {
  turn_between(pose_.rotation, pose.rotation, e);
  for (int i = 0; i < 3; ++i) e[3 + i] = (pose.centre[i] - pose_.centre[i]) * unit_;
}

double Known_pose::cost(const Pose& pose) const {
  if (!is_given()) return 0.0;
  double e[6];
  set_error(pose, e);
  double cost = 0.0;
  for (const auto& row : root_->rows) {
    double entry = 0.0;
    for (int j = 0; j < 6; ++j) entry += row[j] * e[j];
    cost += entry * entry;
  }
  return cost;
}

/// exp [w]x exp [omega]x: dw is the inverse Jacobian from the right, the transposed one from the left, times omega.
void Known_pose::linearise(const Pose& pose, double (&rows)[6][7]) const {
  double e[6];
  double J[3][3];
  set_error(pose, e);
  inverse_left_jacobian(e, J);
  for (int i = 0; i < 6; ++i) {
    const double* W = root_->rows[i];
    rows[i][6] = 0.0;
    for (int j = 0; j < 6; ++j) rows[i][6] -= W[j] * e[j];
    for (int j = 0; j < 3; ++j) {
      rows[i][j] = rows[i][3 + j] = 0.0;
      for (int k = 0; k < 3; ++k) {
        rows[i][j] += W[3 + k] * pose.rotation[k][j] * unit_;
        rows[i][3 + j] += W[k] * J[j][k];
      }
    }
  }
}

}  // namespace kelvane
