// SPDX-License-Identifier: BSD-3-Clause
// kelvane_engine('write_colmap', folder, model, names, poses)
// kelvane_engine('write_bal', file, source, numbers of cameras, poses)
// kelvane_engine('write_file', file, text)
// Each column of poses has a rotation's columns, camera to world, and a centre.
#include <algorithm>

#include "mex_engine/answer.h"
#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"
#include "model_files/atomic_file.h"
#include "model_files/write_poses.h"
#include "pose_refinement/pose.h"

namespace kelvane::mex_engine {
namespace {

/// The number of poses that were written.
class Count final : public Answer {
 public:
  explicit Count(std::size_t count) : count_(count) {}
  void write(int /*num_outputs*/, mxArray* outputs[]) const override {
    outputs[0] = mxCreateDoubleMatrix(1, 1, mxREAL);
    *mxGetPr(outputs[0]) = static_cast<double>(count_);
  }

 private:
  std::size_t count_;
};

std::vector<Pose> read_poses(const mxArray* array) {
  const Host_numbers numbers(array, "poses");
  if (numbers.rows() != 12 && numbers.size() != 0) refuse("inputs", "poses must have 12 rows.");
  std::vector<Pose> poses(numbers.columns());
  for (std::size_t k = 0; k < poses.size(); ++k) {
    const double* column = numbers.data() + 12 * k;
    for (std::size_t i = 0; i < 9; ++i) poses[k].rotation[i % 3][i / 3] = column[i];
    std::copy_n(column + 9, 3, poses[k].centre);
    poses[k] = checked(poses[k]);
  }
  return poses;
}

Colmap_pose colmap_pose_of(const Pose& pose) {
  const Quaternion_pose given = quaternion_of(pose, Pose_frame::camera_from_world);
  Colmap_pose written;
  for (std::size_t i = 0; i < 4; ++i) written.q[(i + 1) % 4] = given.q[i];
  std::copy(given.s.begin(), given.s.end(), written.t);
  return written;
}

Bal_pose bal_pose_of(std::size_t camera, const Pose& pose) {
  const Rotation_vector_pose given = rotation_vector_of(pose, Pose_frame::camera_from_world);
  Bal_pose written{camera, {}};
  std::copy(given.r.begin(), given.r.end(), written.numbers);
  std::copy(given.s.begin(), given.s.end(), written.numbers + 3);
  return written;
}

void check_count(std::size_t count, const std::vector<Pose>& poses) {
  if (count != poses.size()) refuse("inputs", "There must be a pose for each name.");
}

}  // namespace

std::unique_ptr<Answer> write_colmap_model(const Inputs& inputs) {
  const std::vector<Pose> poses = read_poses(inputs[3]);
  if (!mxIsCell(inputs[2])) refuse("inputs", "The names must be a cell.");
  check_count(num_elements(inputs[2]), poses);
  std::vector<Named_pose> named;
  for (std::size_t k = 0; k < poses.size(); ++k) {
    named.push_back({text_in(element(inputs[2], k), "The name of an image"), colmap_pose_of(poses[k])});
  }
  write_colmap(text_in(inputs[0], "folder"), text_in(inputs[1], "model"), named);
  return std::make_unique<Count>(poses.size());
}

std::unique_ptr<Answer> write_bal_file(const Inputs& inputs) {
  const std::vector<Pose> poses = read_poses(inputs[3]);
  const Host_numbers cameras(inputs[2], "cameras");
  check_count(cameras.size(), poses);
  std::vector<Bal_pose> numbered;
  for (std::size_t k = 0; k < poses.size(); ++k) {
    const double camera = cameras.data()[k];
    if (!(camera >= 0.0 && camera < 4294967296.0)) refuse("inputs", "The cameras must be numbers of 0 or more.");
    numbered.push_back(bal_pose_of(static_cast<std::size_t>(camera), poses[k]));
  }
  write_bal(text_in(inputs[0], "file"), text_in(inputs[1], "model"), numbered);
  return std::make_unique<Count>(poses.size());
}

std::unique_ptr<Answer> write_text_file(const Inputs& inputs) {
  write_whole(text_in(inputs[0], "file"), text_in(inputs[1], "The text"));
  return std::make_unique<Count>(0);
}

}  // namespace kelvane::mex_engine
