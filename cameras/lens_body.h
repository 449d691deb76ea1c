// SPDX-License-Identifier: BSD-3-Clause
// A camera with a lens, for a width of points or, with width 1, for one; see vector_lanes.h.
#pragma once

#include "cameras/lens.h"
#include "least_squares/vector_lanes.h"

// NOLINTNEXTLINE(google-build-namespaces): see vector_lanes.h
namespace {

using kelvane::Lens;

template <int width>
[[gnu::always_inline]] inline V<width> root(const V<width>& x) {
  if constexpr (width == 1) {
    return __builtin_sqrt(x);
  } else {
    V<width> result = x;
    for (int lane = 0; lane < width; ++lane) result[lane] = __builtin_sqrt(x[lane]);
    return result;
  }
}

template <int width>
[[gnu::always_inline]] inline V<width> absolute(const V<width>& x) {
  return x < V<width>{} ? -x : x;
}

/// The angle of (z, y) to the axis z, 0 to pi, for y >= 0: to two units in the last place, and the same bits at every
/// width. NaN at (0, 0). By the rational approximation of Moshier, Cephes atan.c.
template <int width>
[[gnu::always_inline]] inline V<width> angle_to_axis(const V<width>& y, const V<width>& z) {
  const V<width> zero = {};
  const V<width> w = absolute<width>(z);
  const auto is_steep = y > 2.41421356237309504880 * w;  // tan(3 pi / 8)
  const auto is_slanted = y > 0.66 * w;
  const V<width> base = is_steep ? zero + 1.57079632679489661923 : (is_slanted ? zero + 0.785398163397448309616 : zero);
  const V<width> rest = is_steep ? zero + 6.123233995736765886e-17 : (is_slanted ? zero + 3.06161699786838e-17 : zero);
  const V<width> t = (is_steep ? -w : (is_slanted ? y - w : y)) / (is_steep ? y : (is_slanted ? y + w : w));
  const V<width> s = t * t;
  const V<width> p =
      (((-8.750608600031904122785e-1 * s - 1.615753718733365076637e1) * s - 7.500855792314704667340e1) * s -
       1.228866684490136173410e2) *
          s -
      6.485021904942025371773e1;
  const V<width> q =
      ((((s + 2.485846490142306297962e1) * s + 1.650270098316988542046e2) * s + 4.328810604912902668951e2) * s +
       4.853903996359136964868e2) *
          s +
      1.945506571482613964425e2;
  const V<width> angle = base + (t + (t * (s * p / q) + rest));
  return z < zero ? 3.14159265358979323846 - angle + 1.2246467991473532e-16 : angle;
}

/// The place (a, b) of a point on the plane of the lens, and its derivatives by the point.
template <int width>
class Place_on_plane {
 public:
  V<width> a, b;

  [[gnu::always_inline]] Place_on_plane(const V<width> (&p)[3], const Lens& lens) {
    if (lens.is_angular) {
      set_angular(p[0], p[1], lens.forward * p[2], lens);
    } else {  // Eq. 60
      scale_ = 1.0 / (lens.forward * p[2]);
      a = p[0] * scale_;
      b = p[1] * scale_;
      a_z_ = -(a * scale_);
      b_z_ = -(b * scale_);
    }
    a_z_ *= lens.forward;
    b_z_ *= lens.forward;
  }

  /// From derivatives by the place to those by the point.
  [[gnu::always_inline]] void chain(const V<width>& by_a, const V<width>& by_b, const Lens& lens,
                                    V<width> (&by_point)[3]) const {
    by_point[0] = by_a * scale_;
    by_point[1] = by_b * scale_;
    by_point[2] = by_a * a_z_ + by_b * b_z_;
    if (!lens.is_angular) return;
    const V<width> along = outward_ * (by_a * cosine_ + by_b * sine_);
    by_point[0] += along * cosine_;
    by_point[1] += along * sine_;
  }

 private:
  // Eq. 61, in units of the largest coordinate, so that no square is too large or small.
  [[gnu::always_inline]] void set_angular(const V<width>& p_x, const V<width>& p_y, const V<width>& p_z,
                                          const Lens& lens) {
    const V<width> zero = {};
    const V<width> size_y = absolute<width>(p_y);
    const V<width> size_z = absolute<width>(p_z);
    V<width> unit = absolute<width>(p_x);
    unit = size_y > unit ? size_y : unit;
    unit = size_z > unit ? size_z : unit;
    const V<width> inverse_unit = 1.0 / unit;
    const V<width> x = p_x * inverse_unit;
    const V<width> y = p_y * inverse_unit;
    const V<width> z = p_z * inverse_unit;
    const V<width> rho = root<width>(x * x + y * y);
    const V<width> stretched = lens.stretch * rho;
    const V<width> common = lens.stretch / lens.omega / (z * z + stretched * stretched);
    const auto is_on_axis = rho == zero;
    const V<width> inverse_rho = 1.0 / (is_on_axis ? zero + 1.0 : rho);
    const V<width> ahead = z > zero ? z * common : zero + __builtin_nan("");
    const V<width> h = is_on_axis ? ahead : angle_to_axis<width>(stretched, z) / lens.omega * inverse_rho;
    a = h * x;
    b = h * y;
    scale_ = h * inverse_unit;
    cosine_ = x * inverse_rho;
    sine_ = y * inverse_rho;
    outward_ = is_on_axis ? zero : (z * common - h) * inverse_unit;
    a_z_ = -(common * inverse_unit * x);
    b_z_ = -(common * inverse_unit * y);
  }

  V<width> scale_, a_z_, b_z_;              // across the direction from the axis, and by the depth
  V<width> outward_{}, cosine_{}, sine_{};  // more along that direction, of a plane of angles
};

/// Where the lens moves a place on its plane, and the derivatives by the place (Eqs. 62 and 63).
template <int width>
struct Moved_place {
  V<width> x, y, x_a, x_b, y_a, y_b;

  [[gnu::always_inline]] Moved_place(const V<width>& a, const V<width>& b, const Lens& lens)
      : x(a), y(b), x_a(V<width>{} + 1.0), x_b{}, y_a{}, y_b(x_a) {
    if (!lens.is_bent) return;
    const V<width> s = a * a + b * b;
    const double* n = lens.numerator;
    const double* d = lens.denominator;
    V<width> rest = V<width>{} + n[1];
    V<width> slope_of_rest = rest + n[1];
    if (n[2] != 0.0 || n[3] != 0.0) {
      rest += s * (n[2] + s * n[3]);
      slope_of_rest += s * (3.0 * n[2] + s * (4.0 * n[3]));
    }
    V<width> c = 1.0 + s * (n[0] + s * rest);
    V<width> slope = n[0] + s * slope_of_rest;  // of c by s
    if (d[0] != 0.0 || d[1] != 0.0 || d[2] != 0.0) {
      const V<width> inverse = 1.0 / (1.0 + s * (d[0] + s * (d[1] + s * d[2])));
      c *= inverse;
      slope = (slope - c * (d[0] + s * (2.0 * d[1] + s * (3.0 * d[2])))) * inverse;
    }
    const V<width> twice = 2.0 * slope;
    x = a * c;
    y = b * c;
    x_a = c + twice * a * a;
    x_b = y_a = twice * a * b;
    y_b = c + twice * b * b;
    if (!lens.is_radial) add_others(a, b, s, lens);
  }

 private:
  [[gnu::always_inline]] void add_others(const V<width>& a, const V<width>& b, const V<width>& s, const Lens& lens) {
    const double p1 = lens.tangential[0];
    const double p2 = lens.tangential[1];
    const double* e = lens.prism;
    const V<width> ab = 2.0 * a * b;
    const V<width> turned = 2.0 * (p1 * a + p2 * b);
    const V<width> of_x = 2.0 * e[0] + 4.0 * e[1] * s;
    const V<width> of_y = 2.0 * e[2] + 4.0 * e[3] * s;
    x += p1 * ab + p2 * (s + 2.0 * a * a) + s * (e[0] + s * e[1]);
    y += p1 * (s + 2.0 * b * b) + p2 * ab + s * (e[2] + s * e[3]);
    x_a += 2.0 * p1 * b + 6.0 * p2 * a + of_x * a;
    x_b += turned + of_x * b;
    y_a += turned + of_y * a;
    y_b += 6.0 * p1 * b + 2.0 * p2 * a + of_y * b;
  }
};

/// The pixel of a place on the plane, NaN from the fold on, and its derivatives by the place (Eq. 64).
template <int width>
struct Lens_pixel {
  V<width> u, v, u_a, u_b, v_a, v_b;

  [[gnu::always_inline]] Lens_pixel(const V<width>& a, const V<width>& b, const Lens& lens) {
    const V<width> zero = {};
    const Moved_place<width> moved(a, b, lens);
    const auto& G = lens.to_pixel;
    const V<width> s = a * a + b * b;
    const V<width> no_number = s < lens.fold * lens.fold ? zero : zero + __builtin_nan("");  // NaN is not below
    u = G[0][0] * moved.x + G[0][1] * moved.y + G[0][2] + no_number;
    v = G[1][1] * moved.y + G[1][2] + no_number;
    u_a = G[0][0] * moved.x_a + G[0][1] * moved.y_a;
    u_b = G[0][0] * moved.x_b + G[0][1] * moved.y_b;
    v_a = G[1][1] * moved.y_a;
    v_b = G[1][1] * moved.y_b;
    if (lens.is_tilted) tilt(moved, G);
  }

 private:
  [[gnu::always_inline]] void tilt(const Moved_place<width>& moved, const double (&G)[3][3]) {
    const V<width> inverse = 1.0 / (G[2][0] * moved.x + G[2][1] * moved.y + G[2][2]);
    const V<width> w_a = G[2][0] * moved.x_a + G[2][1] * moved.y_a;
    const V<width> w_b = G[2][0] * moved.x_b + G[2][1] * moved.y_b;
    u *= inverse;
    v = (v + G[1][0] * moved.x) * inverse;
    u_a = (u_a - u * w_a) * inverse;
    u_b = (u_b - u * w_b) * inverse;
    v_a = (v_a + G[1][0] * moved.x_a - v * w_a) * inverse;
    v_b = (v_b + G[1][0] * moved.x_b - v * w_b) * inverse;
  }
};

}  // namespace
