// SPDX-License-Identifier: BSD-3-Clause
// The derivative of each rotation model, written once.
#include "rotations/rotation_models.h"

#include <cmath>

namespace kelvane {
namespace {

constexpr double zero_replacement = 1e-9;  // squares and fourth powers stay far from underflow

bool is_zero(const double* v) { return v[0] == 0.0 && v[1] == 0.0 && v[2] == 0.0; }

/// What a rotation by an angle is made of, from one sine and cosine, those of half the angle: 1 - cos(angle) then has
/// no cancellation at small angles.
struct Trigonometry {
  double sin, cos, one_minus_cos;

  explicit Trigonometry(double angle) {
    const double s = std::sin(0.5 * angle);
    const double c = std::cos(0.5 * angle);
    sin = 2.0 * s * c;
    cos = c * c - s * s;
    one_minus_cos = 2.0 * s * s;
  }
};

/// Whether a vector of this squared length has a direction to the last digits.
bool has_direction(double squared_length) { return squared_length > 1e-290 && squared_length < 1e290; }

double squared_norm(const double* v) { return v[0] * v[0] + v[1] * v[1] + v[2] * v[2]; }

/// out += factor [v]x, the matrix of the cross product with v
void add_cross(double factor, const double* v, double (&out)[3][3]) {
  out[0][1] -= factor * v[2];
  out[0][2] += factor * v[1];
  out[1][0] += factor * v[2];
  out[1][2] -= factor * v[0];
  out[2][0] -= factor * v[1];
  out[2][1] += factor * v[0];
}

/// out += factor (v w' + w v')
void add_symmetric_product(double factor, const double* v, const double* w, double (&out)[3][3]) {
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) out[i][k] += factor * (v[i] * w[k] + w[i] * v[k]);
  }
}

void set_diagonal(double value, double (&out)[3][3]) {
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) out[i][k] = i == k ? value : 0.0;
  }
}

constexpr double unit_vectors[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

/// dR/dr_j = -A r_j I + dA r_j [r]x + A [e_j]x + dB r_j r r' + B (e_j r' + r e_j')   (Eq. 11); the parts that are
/// multiplied by r_j are common to all j.
void set_derivative(int j, const double (&r)[3], double A, double B, const double (&common)[3][3], double (&dR)[3][3]) {
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) dR[i][k] = r[j] * common[i][k];
  }
  for (int k = 0; k < 3; ++k) {
    dR[j][k] += B * r[k];
    dR[k][j] += B * r[k];
  }
  const int next = (j + 1) % 3;
  const int last = (j + 2) % 3;
  dR[last][next] += A;
  dR[next][last] -= A;
}

/// The quaternion's rotation matrix before any normalisation, and its derivatives (Eq. 15).
Rotation_model unscaled_quaternion_model(double x, double y, double z, double w) {
  // Laid out as the matrices that they are.
  // clang-format off
  return {
      4,
      false,
      {{x * x - y * y - z * z + w * w, 2 * (x * y - z * w), 2 * (x * z + y * w)},
       {2 * (x * y + z * w), y * y - x * x - z * z + w * w, 2 * (y * z - x * w)},
       {2 * (x * z - y * w), 2 * (y * z + x * w), -x * x - y * y + z * z + w * w}},
      {{{ 2 * x,  2 * y,  2 * z}, { 2 * y, -2 * x, -2 * w}, { 2 * z,  2 * w, -2 * x}},
       {{-2 * y,  2 * x,  2 * w}, { 2 * x,  2 * y,  2 * z}, {-2 * w,  2 * z, -2 * y}},
       {{-2 * z, -2 * w,  2 * x}, { 2 * w, -2 * z,  2 * y}, { 2 * x,  2 * y,  2 * z}},
       {{ 2 * w, -2 * z,  2 * y}, { 2 * z,  2 * w, -2 * x}, {-2 * y,  2 * x,  2 * w}}}};
  // clang-format on
}

}  // namespace

void rotation_vector_model(const double* vector, Rotation_model& model) {
  double r[3] = {vector[0], vector[1], vector[2]};
  if (is_zero(r)) r[0] = r[1] = r[2] = zero_replacement;

  const double theta_2 = squared_norm(r);
  const double theta = std::sqrt(theta_2);
  const auto [s, c, v] = Trigonometry(theta);
  const double inverse_2 = 1.0 / theta_2;

  // R = c I + A [r]x + B r r'                                            (Eq. 8)
  const double A = s / theta;
  const double B = v * inverse_2;
  // dA/dr_j = r_j dA, dB/dr_j = r_j dB, with no higher power of 1 / theta than needed   (Eqs. 9, 10)
  const double dA = (c - A) * inverse_2;
  const double dB = (A - 2.0 * B) * inverse_2;

  model.n = 3;
  model.turns = has_direction(theta_2);
  double common[3][3];  // dA [r]x + dB r r' - A I, the part of every dR/dr_j that is multiplied by r_j
  set_diagonal(c, model.R);
  set_diagonal(-A, common);
  add_cross(A, r, model.R);
  add_cross(dA, r, common);
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) {
      model.R[i][k] += B * (r[i] * r[k]);
      common[i][k] += dB * (r[i] * r[k]);
    }
  }
  for (int j = 0; j < 3; ++j) set_derivative(j, r, A, B, common, model.dR[j]);
}

void angle_axis_model(const double* a, Rotation_model& model) {
  const double norm_2 = squared_norm(a);
  const double inverse_norm = 1.0 / std::sqrt(norm_2);
  const double n[3] = {a[0] * inverse_norm, a[1] * inverse_norm, a[2] * inverse_norm};
  const auto [s, c, v] = Trigonometry(a[3]);

  // R = c I + s [n]x + v n n'                                            (Eq. 12)
  model.n = 4;
  model.turns = has_direction(norm_2);
  set_diagonal(c, model.R);
  add_cross(s, n, model.R);
  add_symmetric_product(0.5 * v, n, n, model.R);
  for (int j = 0; j < 3; ++j) {
    // dn/da_j = (e_j - n n_j) / |a|                                      (Eq. 13)
    double dn[3];
    for (int i = 0; i < 3; ++i) dn[i] = (unit_vectors[j][i] - n[i] * n[j]) * inverse_norm;
    set_diagonal(0.0, model.dR[j]);
    add_cross(s, dn, model.dR[j]);
    add_symmetric_product(v, dn, n, model.dR[j]);
  }
  // dR/dangle = -s I + c [n]x + s n n'                                   (Eq. 14)
  set_diagonal(-s, model.dR[3]);
  add_cross(c, n, model.dR[3]);
  add_symmetric_product(0.5 * s, n, n, model.dR[3]);
}

void quaternion_model(const double* quaternion, Rotation_model& model) {
  double q[4] = {quaternion[0], quaternion[1], quaternion[2], quaternion[3]};
  if (is_zero(q)) q[0] = q[1] = q[2] = zero_replacement;

  const double norm_2 = squared_norm(q) + q[3] * q[3];
  const double k = 1.0 / norm_2;
  model = unscaled_quaternion_model(q[0], q[1], q[2], q[3]);
  model.turns = has_direction(norm_2);
  // With N the matrix before division: R = k N, dR/dq_j = k dN/dq_j - 2 q_j k R   (Eq. 16)
  for (auto& row : model.R) {
    for (double& entry : row) entry *= k;
  }
  for (int j = 0; j < 4; ++j) {
    const double factor = 2.0 * q[j] * k;
    for (int i = 0; i < 3; ++i) {
      for (int l = 0; l < 3; ++l) model.dR[j][i][l] = k * model.dR[j][i][l] - factor * model.R[i][l];
    }
  }
}

void unit_quaternion_model(const double* q, Rotation_model& model) {
  model = unscaled_quaternion_model(q[0], q[1], q[2], q[3]);
  // The unit-quaternion diagonal is 1 - 2 (a^2 + b^2); here it is 1 - 2 a - 2 b, in value and derivative (Eqs. 17, 18).
  const int others[3][2] = {{1, 2}, {0, 2}, {0, 1}};
  for (int i = 0; i < 3; ++i) {
    const int a = others[i][0];
    const int b = others[i][1];
    model.R[i][i] = 1.0 + (-2.0 * q[a]) + (-2.0 * q[b]);
    for (int j = 0; j < 4; ++j) model.dR[j][i][i] = j == a || j == b ? -2.0 : 0.0;
  }
}

}  // namespace kelvane
