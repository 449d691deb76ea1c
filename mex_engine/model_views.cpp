// SPDX-License-Identifier: BSD-3-Clause
// Plain data only where the host is called: its functions may throw or jump.
#include "mex_engine/model_views.h"

#include <algorithm>
#include <utility>

#include "mex_engine/host_struct.h"

namespace kelvane::mex_engine {
namespace {

constexpr const char* view_fields[] = {"name",      "id",      "pose",   "points",  "observations",
                                       "point_ids", "cameras", "camera", "warnings"};

class Views_answer final : public Answer {
 public:
  explicit Views_answer(Model_views views) : views_(std::move(views)) {}

  void write(int /*num_outputs*/, mxArray* outputs[]) const override {
    constexpr int count = sizeof view_fields / sizeof view_fields[0];
    outputs[0] = mxCreateStructMatrix(1, 1, count, const_cast<const char**>(view_fields));
    mxArray* const cells[] = {cell(), cell(), cell()};
    put_points(cells);
    mxArray* const fields[] = {
        created_names(),
        columns(1, [](const Model_view& view, double* to) { *to = view.id; }),
        columns(12, put_pose),
        cells[0],
        cells[1],
        cells[2],
        created_cameras(views_.cameras.data(), views_.cameras.size()),
        columns(1, [](const Model_view& view, double* to) { *to = 1.0 + static_cast<double>(view.camera); }),
        created_warnings()};
    for (int i = 0; i < count; ++i) mxSetFieldByNumber(outputs[0], 0, i, fields[i]);
  }

 private:
  /// The rotation's columns, then the centre.
  static void put_pose(const Model_view& view, double* to) {
    for (int i = 0; i < 9; ++i) *to++ = view.pose.rotation[i % 3][i / 3];
    std::copy_n(view.pose.centre, 3, to);
  }

  template <typename Put>
  mxArray* columns(std::size_t rows, const Put& put) const {
    mxArray* matrix = created_matrix(rows, views_.views.size());
    for (std::size_t k = 0; k < views_.views.size(); ++k) put(views_.views[k], mxGetPr(matrix) + rows * k);
    return matrix;
  }

  mxArray* cell() const { return mxCreateCellMatrix(1, static_cast<mwSize>(views_.views.size())); }

  /// Points, observations and ids of each view.
  void put_points(mxArray* const (&cells)[3]) const {
    for (std::size_t k = 0; k < views_.views.size(); ++k) {
      const std::size_t n = views_.views[k].num_points;
      mxArray* const arrays[] = {created_matrix(3, n), created_matrix(2, n), created_matrix(1, n)};
      views_.put_points(k, mxGetPr(arrays[0]), mxGetPr(arrays[1]), mxGetPr(arrays[2]));
      for (int i = 0; i < 3; ++i) mxSetCell(cells[i], static_cast<mwIndex>(k), arrays[i]);
    }
  }

  mxArray* created_names() const {
    mxArray* names = cell();
    mwIndex k = 0;
    for (const Model_view& view : views_.views) mxSetCell(names, k++, mxCreateString(view.name.c_str()));
    return names;
  }

  mxArray* created_warnings() const {
    mxArray* cell = mxCreateCellMatrix(2, static_cast<mwSize>(views_.warnings.size() / 2));
    mwIndex k = 0;
    for (const std::string& text : views_.warnings) mxSetCell(cell, k++, mxCreateString(text.c_str()));
    return cell;
  }

  Model_views views_;
};

}  // namespace

std::unique_ptr<Answer> answer_of(Model_views views) { return std::make_unique<Views_answer>(std::move(views)); }

}  // namespace kelvane::mex_engine
