// SPDX-License-Identifier: BSD-3-Clause
// The three blocks of the hybrid Jacobians, and what is reported where they do not fit.
#include "framework/camera_position_grad_func_hybrid.h"

#include <cstddef>

#include "camera_pose/rotation_type.h"
#include "fw_tools/Opencv_io.h"

namespace {

constexpr const char* file = "kelvane_mex.cpp";
constexpr const char* of_aau = "Size mismatch for aau grads. output roi was ";
constexpr const char* of_aan = "Size mismatch for aan grads. output roi was ";
constexpr const char* of_quat = "Size mismatch for quat grads. output roi was ";
constexpr const char* qu_aau_aan =
    "virtual int Camera_position_grad_func_qu_aau_aan::operator()(const std::vector<double>&, cv::Mat&, int) const";
constexpr const char* aau_qu_aan =
    "virtual int Camera_position_grad_func_aau_qu_aan::operator()(const std::vector<double>&, cv::Mat&, int) const";
constexpr const char* aan_qu_aau =
    "virtual int Camera_position_grad_func_aan_qu_aau::operator()(const std::vector<double>&, cv::Mat&, int) const";

}  // namespace

Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid(const std::vector<std::vector<double>>& points,
                                                                   const fw::matrix<double>& K, fw::Opt_func* the_base)
    : aau(points, K, nullptr), aan(points, K, nullptr), qu(points, K, nullptr) {
  base = the_base;  // last, as nothing can fail any more
}

int Camera_position_grad_func_hybrid::write_blocks(int rotation_type, const Size_report (&reports)[2],
                                                   const std::vector<double>& x, cv::Mat& J, int start) const {
  const kelvane::Rotation_type& type = *kelvane::find_rotation_type(rotation_type);
  if (qu.points.empty()) return 0;
  const int n = qu.write_block(type, 0, x, J.ptr<double>() + start);
  cv::Mat blocks[2];
  cv::Mat rows[2];
  for (int k = 0; k < 2; ++k) {
    blocks[k].create(n, type.num_dimensions(), CV_64F);
    qu.write_block(type, static_cast<std::size_t>(k) + 1, x, blocks[k].ptr<double>());
    rows[k] = J.rowRange(start + (k + 1) * n, start + (k + 2) * n);
  }
  for (int k = 0; k < 2; ++k) {
    const auto& [site, words] = reports[k];
    if (words == nullptr || blocks[k].size() == rows[k].size()) continue;
    fw::raise(site, words + fw::size_text(rows[k].size()) + " but input was " + fw::size_text(blocks[k].size()));
  }
  for (int k = 0; k < 2; ++k) blocks[k].copyTo(rows[k]);
  return 3 * n;
}

int Camera_position_grad_func_qu_aau_aan::operator()(const std::vector<double>& x, cv::Mat& J, int start) const try {
  return write_blocks(-1, {{{file, 1451, qu_aau_aan}, of_aau}, {}}, x, J, start);
}
FW_ADD_CONTEXT((fw::Site{file, 1457, qu_aau_aan}), "")

int Camera_position_grad_func_aau_qu_aan::operator()(const std::vector<double>& x, cv::Mat& J, int start) const try {
  return write_blocks(-2, {{{file, 1543, aau_qu_aan}, of_quat}, {{file, 1545, aau_qu_aan}, of_aan}}, x, J, start);
}
FW_ADD_CONTEXT((fw::Site{file, 1549, aau_qu_aan}), "")

int Camera_position_grad_func_aan_qu_aau::operator()(const std::vector<double>& x, cv::Mat& J, int start) const try {
  // The words name other representations than the blocks.
  return write_blocks(-3, {{{file, 1635, aan_qu_aau}, of_aau}, {{file, 1637, aan_qu_aau}, of_aan}}, x, J, start);
}
FW_ADD_CONTEXT((fw::Site{file, 1641, aan_qu_aau}), "")
