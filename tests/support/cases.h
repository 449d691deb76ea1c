// SPDX-License-Identifier: BSD-3-Clause
// Rotations by regime and random scenes, each case reproducible from a literal seed and its number.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace support {

/// Numbers from a literal seed, the same with every standard library.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine(seed) {}
  double uniform(double low, double high) {
    return low + (high - low) * (static_cast<double>(engine() >> 11U) * 0x1p-53);
  }
  /// Every order of magnitude between 10^low and 10^high alike.
  double magnitude(double low, double high) { return std::pow(10.0, uniform(low, high)); }
  std::vector<double> vector_in_cube(std::size_t size, double half_width) {
    std::vector<double> v(size);
    for (double& entry : v) entry = uniform(-half_width, half_width);
    return v;
  }
  std::vector<double> direction(std::size_t size) {
    for (;;) {
      std::vector<double> v = vector_in_cube(size, 1.0);
      double squared_length = 0.0;
      for (const double entry : v) squared_length += entry * entry;
      if (squared_length < 0.01 || squared_length > 1.0) continue;
      for (double& entry : v) entry /= std::sqrt(squared_length);
      return v;
    }
  }

 private:
  std::mt19937_64 engine;
};

/// Where the angle of a rotation lies.
enum class Regime { identity, tiny, small, ordinary, near_pi, exactly_pi, large, along_an_axis };
constexpr std::array all_regimes = {Regime::identity, Regime::tiny,       Regime::small, Regime::ordinary,
                                    Regime::near_pi,  Regime::exactly_pi, Regime::large, Regime::along_an_axis};
constexpr std::array regime_names = {"identity", "tiny",       "small", "ordinary",
                                     "near pi",  "exactly pi", "large", "along an axis"};

constexpr double pi = 3.14159265358979323846;

inline double random_angle(Regime regime, Random& random) {
  switch (regime) {
    case Regime::identity:
      return 0.0;
    case Regime::tiny:
      return random.magnitude(-60.0, -8.0);
    case Regime::small:
      return random.magnitude(-8.0, 0.0);
    case Regime::near_pi:
      return pi + random.uniform(-1.0, 1.0) * random.magnitude(-15.0, -2.0);
    case Regime::exactly_pi:
      return pi;
    case Regime::large:
      return random.uniform(-50.0, 50.0);
    case Regime::ordinary:
    case Regime::along_an_axis:
      break;
  }
  return random.uniform(-pi, pi);
}

/// Unit axis, then angle.
inline std::vector<double> random_angle_axis(Regime regime, Random& random) {
  std::vector<double> a = random.direction(3);
  if (regime == Regime::along_an_axis) {
    const auto k = static_cast<std::size_t>(random.uniform(0.0, 3.0));
    for (std::size_t i = 0; i < 3; ++i) a[i] = i == k ? 1.0 : 0.0;
  }
  a.push_back(random_angle(regime, random));
  return a;
}

inline std::vector<double> rotation_vector_from(const std::vector<double>& unit_angle_axis) {
  const auto& a = unit_angle_axis;
  return {a[0] * a[3], a[1] * a[3], a[2] * a[3]};
}

inline std::vector<double> quaternion_from(const std::vector<double>& unit_angle_axis) {
  const auto& a = unit_angle_axis;
  const double s = std::sin(0.5 * a[3]);
  const double w = a[3] == pi ? 0.0 : std::cos(0.5 * a[3]);  // the nearest double to pi stands for pi
  return {a[0] * s, a[1] * s, a[2] * s, w};
}

/// The first `count` entries multiplied.
inline std::vector<double> scaled(std::vector<double> v, std::size_t count, double factor) {
  for (std::size_t i = 0; i < count; ++i) v[i] *= factor;
  return v;
}

/// One random case: its own generator, and what to print when it fails.
struct Case {
  std::uint64_t seed;
  std::uint64_t number;
  Regime regime;
  Random random;

  /// The regimes take turns.
  Case(std::uint64_t suite_seed, std::uint64_t case_number)
      : seed(suite_seed),
        number(case_number),
        regime(all_regimes[case_number % all_regimes.size()]),
        random(suite_seed + case_number) {}

  friend std::ostream& operator<<(std::ostream& stream, const Case& which) {
    return stream << "case " << which.number << " of seed " << which.seed << ", rotation "
                  << regime_names[static_cast<std::size_t>(which.regime)];
  }
};

struct Intrinsics {
  double f, cx, cy;
};

/// A camera between fisheye and telephoto lens, in pixels.
inline Intrinsics random_intrinsics(Random& random) {
  return {random.magnitude(2.0, 3.6), random.uniform(0.0, 2000.0), random.uniform(0.0, 2000.0)};
}

/// A point 1 to 10 units from the centre t, so no digits are lost in X - t, and at least 11 degrees in front of the
/// plane through t at right angles to `forward` (of any length), so none are lost in the depth.
inline std::vector<double> random_point(Random& random, const std::vector<double>& t,
                                        const std::vector<double>& forward) {
  const double length = std::hypot(forward[0], forward[1], forward[2]);
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const std::vector<double> d = random.direction(3);
    if (d[0] * forward[0] + d[1] * forward[1] + d[2] * forward[2] < 0.2 * length) continue;
    const double distance = random.uniform(1.0, 10.0);
    return {t[0] + distance * d[0], t[1] + distance * d[1], t[2] + distance * d[2]};
  }
  throw std::runtime_error("no point in view of a camera without a forward direction");
}

}  // namespace support
