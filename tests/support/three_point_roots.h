// SPDX-License-Identifier: BSD-3-Clause
// Distances of three points from a camera in long double: the quartic of Grunert 1841 in the notation of Haralick et
// al. 1994, whose real roots are bracketed by those of its derivatives.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace support {

using Long = long double;
using Distances = std::array<Long, 3>;

/// Coefficients from the constant on.
using Polynomial = std::vector<Long>;

inline Polynomial product(const Polynomial& a, const Polynomial& b) {
  Polynomial c(a.size() + b.size() - 1);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) c[i + j] += a[i] * b[j];
  }
  return c;
}

inline Polynomial sum(Polynomial a, const Polynomial& b, Long factor_of_b) {
  a.resize(std::max(a.size(), b.size()));
  for (std::size_t i = 0; i < b.size(); ++i) a[i] += factor_of_b * b[i];
  return a;
}

inline Long value(const Polynomial& f, Long x) {
  Long y = 0;
  for (std::size_t i = f.size(); i-- > 0;) y = y * x + f[i];
  return y;
}

/// Between 0 and 1, where the sign changes: halved often, then by the secant as long as it stays inside.
inline std::vector<Long> roots_in_unit(const Polynomial& f) {
  if (f.size() < 2) return {};
  Polynomial slope(f.size() - 1);
  for (std::size_t i = 1; i < f.size(); ++i) slope[i - 1] = static_cast<Long>(i) * f[i];
  std::vector<Long> ends = roots_in_unit(slope);
  ends.insert(ends.begin(), 0);
  ends.push_back(1);
  std::vector<Long> roots;
  for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
    Long low = ends[i], high = ends[i + 1];
    const bool is_low_positive = value(f, low) > 0;
    if (is_low_positive == (value(f, high) > 0)) continue;
    for (int n = 0; n < 24; ++n) {
      const Long middle = (low + high) / 2;
      (value(f, middle) > 0) == is_low_positive ? low = middle : high = middle;
    }
    Long x = (low + high) / 2;
    for (int n = 0; n < 6; ++n) x = std::clamp(x - value(f, x) / value(slope, x), low, high);
    roots.push_back(x);
  }
  return roots;
}

/// The triangle of a three-point problem; each number at the index of the opposite corner.
struct Long_triangle {
  Distances square, cosine;

  Long_triangle(const double (&points)[3][3], const double (&directions)[3][3]) : square{}, cosine{} {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t i = (k + 1) % 3, j = (k + 2) % 3;
      Long lengths[2] = {};
      for (std::size_t m = 0; m < 3; ++m) {
        const Long side = Long{points[i][m]} - Long{points[j][m]};
        square[k] += side * side;
        cosine[k] += Long{directions[i][m]} * Long{directions[j][m]};
        lengths[0] += Long{directions[i][m]} * Long{directions[i][m]};
        lengths[1] += Long{directions[j][m]} * Long{directions[j][m]};
      }
      cosine[k] /= std::sqrt(lengths[0] * lengths[1]);
    }
  }

  Long error(const Distances& s, std::size_t k) const {
    const Long a = s[(k + 1) % 3], b = s[(k + 2) % 3];
    return a * a + b * b - 2 * a * b * cosine[k] - square[k];
  }

  /// The inverse of the derivative of the errors by the distances.
  std::array<Distances, 3> inverse_slope(const Distances& s) const {
    Long J[3][3] = {};
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t i = (k + 1) % 3, j = (k + 2) % 3;
      J[k][i] = 2 * (s[i] - cosine[k] * s[j]);
      J[k][j] = 2 * (s[j] - cosine[k] * s[i]);
    }
    std::array<Distances, 3> inverse{};
    const auto minor = [&J](std::size_t r, std::size_t c) {
      const std::size_t a = (r + 1) % 3, b = (r + 2) % 3, d = (c + 1) % 3, e = (c + 2) % 3;
      return J[a][d] * J[b][e] - J[a][e] * J[b][d];
    };
    const Long determinant = J[0][0] * minor(0, 0) + J[0][1] * minor(0, 1) + J[0][2] * minor(0, 2);
    for (std::size_t r = 0; r < 3; ++r) {
      for (std::size_t c = 0; c < 3; ++c) inverse[r][c] = minor(c, r) / determinant;
    }
    return inverse;
  }

  /// What the rounding of doubles in the equations may do to the distances, in parts of the longest.
  Long sensitivity(const Distances& s) const {
    const Long longest = *std::max_element(s.begin(), s.end());
    Long most = 0;
    for (const Distances& row : inverse_slope(s)) {
      most = std::max(most, std::abs(row[0]) + std::abs(row[1]) + std::abs(row[2]));
    }
    return 0x1p-52L * most * longest;
  }
};

/// All real and positive ones. Of a double solution none or both are found.
inline std::vector<Distances> three_point_roots(const Long_triangle& t) {
  const Long a = t.square[0] / t.square[1], c = t.square[2] / t.square[1];
  const Polynomial w = {1, -2 * t.cosine[1], 1};   // b^2 / s_1^2, by v = s_3 / s_1
  const Polynomial N = sum({1, 0, -1}, w, a - c);  // u = s_2 / s_1 = N / D
  const Polynomial D = {2 * t.cosine[2], -2 * t.cosine[0]};
  const Polynomial f =
      sum(sum(product(N, N), product(N, D), -2 * t.cosine[2]), product(product(D, D), sum({1}, w, -c)), 1);
  std::vector<Long> all = roots_in_unit(f);
  for (const Long inverse : roots_in_unit({f.rbegin(), f.rend()})) {
    if (inverse > 0) all.push_back(1 / inverse);
  }
  std::vector<Distances> roots;
  for (const Long v : all) {
    const Long u = value(N, v) / value(D, v);
    const Long first = std::sqrt(t.square[1] / value(w, v));
    Distances s = {first, u * first, v * first};
    for (int n = 0; n < 3; ++n) {  // as the division may have cost digits
      const auto inverse = t.inverse_slope(s);
      const Distances error = {t.error(s, 0), t.error(s, 1), t.error(s, 2)};
      for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) s[i] -= inverse[i][k] * error[k];
      }
    }
    if (u > 0 && v > 0) roots.push_back(s);
  }
  return roots;
}

}  // namespace support
