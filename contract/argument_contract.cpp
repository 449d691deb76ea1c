// SPDX-License-Identifier: BSD-3-Clause
// The checks of a call's arguments, in their published order.
#include "contract/argument_contract.h"

#include <limits>

#include "contract/sites.h"
#include "fw_tools/report.h"

namespace kelvane::contract {
namespace {

using fw::raise;
using fw::text;

// The fourth line has no newline of its own, so the fifth follows its last word directly; nor has the sixth.
constexpr const char* usage =
    "(1) a vector of 9/10 camera parameters (r1,r2,r3(,r4),t1,t2,t3, k11,k13,k23). The first 6/7 constitute the search "
    "vector x, ther others are constant intrinsics\n"
    "(2) a matrix of 3d points\n"
    "(3) a matrix of 2d points\n"
    "(4) a vector of stopping criteria (max_iters, min_x_step, min_y_step, use_finite_difference) optional"
    "(5) a flag indicating rotation type (0=aau, 1=aan, 2=qu, 3=qn,   10=aau-bv, 11=aan-bv, 12=qu-bv,   -1=qu,aau,aan, "
    "-2=aau,qu,aan,  -3=aan,qu,aau) optional, default=0\n"
    "(6) a vector of weights for the various equations (most useful for hybrid representation, or confidence of "
    "points) optional";

/// A sparse or complex array holds something else behind its data pointer, so it counts as another class.
bool is_real_double(const Input& input) { return input.is_double() && !input.is_sparse() && !input.is_complex(); }

bool is_vector(const Input& input) { return input.rows() == 1 || input.columns() == 1; }

/// "M by N"
std::string size_text(const Input& input) { return text(input.rows(), " by ", input.columns()); }

const Rotation_type* check_rotation_type(const Input& input) {
  // A row of any length passes; its first element counts.
  if (!(is_real_double(input) && input.rows() == 1 && input.columns() != 0)) {
    raise(site::rotation_type_scalar,
          text("Double scalar expected as rotation type, got ", size_text(input), " of ", input.class_name()));
  }
  const double value = input.scalar();
  const bool fits_int = value > std::numeric_limits<int>::min() - 1.0 && value < std::numeric_limits<int>::max() + 1.0;
  const Rotation_type* type = fits_int ? find_rotation_type(static_cast<int>(value)) : nullptr;
  if (type == nullptr) {
    raise(site::rotation_type_value,
          text("Rotation type must be from: (0=aau, 1=aan, 2=qu, 3=qn,   10=aau-bv, 11=aan-bv, 12=qu-bv,   "
               "-1=qu,aau,aan, -2=aau,qu,aan,  -3=aan,qu,aau), got an invalid value of ",
               value));
  }
  return type;
}

void check_camera_parameters(const Input& input, const Rotation_type& type) {
  if (!is_real_double(input)) raise(site::camera_class, "Input 1 should be an double vector");
  if (!is_vector(input)) {
    raise(site::camera_shape, text("Input 1 should be a vector, instead found sizes of ", size_text(input)));
  }
  const auto expected = static_cast<std::size_t>(type.rotation_size()) + 6;
  const std::size_t found = input.rows() * input.columns();
  if (found != expected) {
    raise(site::camera_size, text("Input 1 should be a vector of ", expected,
                                  " camera parameters (r1,r2,r3(,r4),t1,t2,t3, k11,k13,k23), instead it had ", found));
  }
}

/// Returns the number of points.
int check_points(const Input& input, const Rotation_type& type) {
  if (!is_real_double(input)) raise(site::points_class, "Input 2 should be an double matrix");
  // The text says N by 3 while 3 rows are required.
  if (input.rows() != 3) {
    raise(site::points_size, text("Input 2 should be a matrix of 3D points, with size N by 3. instead size of ",
                                  size_text(input), " was passed"));
  }
  const int equations_per_point = type.observation_size * type.num_representations;
  const int limit = std::numeric_limits<int>::max() / equations_per_point;  // equations are counted in an int
  if (input.columns() > static_cast<std::size_t>(limit)) {
    raise(site::points_number, text("Input 2 should have at most ", limit, " points for this rotation type, instead ",
                                    input.columns(), " were passed"));
  }
  return static_cast<int>(input.columns());
}

void check_observations(const Input& input, const Rotation_type& type, int num_points) {
  if (!is_real_double(input)) raise(site::observations_class, "Input 3 should be an double matrix");
  if (input.columns() != static_cast<std::size_t>(num_points) ||
      input.rows() != static_cast<std::size_t>(type.observation_size)) {
    // Both sizes are printed columns first, unlike in every other message.
    raise(site::observations_size,
          text("Input 3 should be a matrix of observations (pixel/bearing vecs), with size ", num_points, " by ",
               type.observation_size, ". instead size of ", input.columns(), " by ", input.rows(), " was passed"));
  }
}

[[noreturn]] void refuse_criteria_size(const fw::Site& site, const Input& input) {
  raise(site, text("Input 4 should be a vector of stopping criteria, with 4 elements. instead size of ",
                   size_text(input), " was passed"));
}

void check_stopping_criteria(const Input& input) {
  if (!is_real_double(input)) raise(site::criteria_class, "Input 4 should be an double vector");
  if (!is_vector(input)) refuse_criteria_size(site::criteria_shape, input);
  if (input.elements() != 4) refuse_criteria_size(site::criteria_size, input);
}

void check_weights(const Input& input, const Input& rotation_type, int num_equations) {
  const bool has_right_size = input.rows() * input.columns() == static_cast<std::size_t>(num_equations);
  if (is_real_double(input) && is_vector(input) && has_right_size) return;
  // Size and class are those of the rotation type, not of the weights.
  raise(site::weights_size, text("Double vector of length ", num_equations, " expected as weightings, got ",
                                 size_text(rotation_type), " of ", rotation_type.class_name()));
}

}  // namespace

Arguments check_arguments(int num_outputs, int num_inputs, const Input* const* inputs) {
  if (num_inputs < 3 || num_inputs > max_inputs) {
    raise(site::num_inputs, text("3 to 6 inputs required. Got ", num_inputs, " Arguments should be: \n", usage));
  }
  if (num_outputs != 1) raise(site::num_outputs, text("1 output required. Got ", num_outputs));

  Arguments accepted{};
  accepted.type = num_inputs >= 5 ? check_rotation_type(*inputs[4]) : find_rotation_type(0);
  check_camera_parameters(*inputs[0], *accepted.type);
  accepted.num_points = check_points(*inputs[1], *accepted.type);
  check_observations(*inputs[2], *accepted.type, accepted.num_points);
  if (num_inputs >= 4) check_stopping_criteria(*inputs[3]);
  if (num_inputs == 6) check_weights(*inputs[5], *inputs[4], accepted.num_equations());

  accepted.camera_parameters = inputs[0]->data();
  accepted.points = inputs[1]->data();
  accepted.observations = inputs[2]->data();
  if (num_inputs >= 4) accepted.stopping_criteria = inputs[3]->data();
  if (num_inputs == 6) accepted.weights = inputs[5]->data();
  return accepted;
}

}  // namespace kelvane::contract
