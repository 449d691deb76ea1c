// SPDX-License-Identifier: BSD-3-Clause
// Cameras with a lens: from a point of the camera frame to a pixel, and back.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kelvane {

/// The numbers that cameras are described by; f is both focal lengths.
enum class Lens_parameter {
  // clang-format off
  none, f, fx, fy, cx, cy, skew, k1, k2, k3, k4, k5, k6, k4_of_fisheye, p1, p2, s1, s2, s3, s4, tau_x, tau_y, omega
  // clang-format on
};
inline constexpr std::size_t max_lens_parameters = 19;  ///< of the general perspective

/// On which plane a lens distorts: where the ray meets the plane z = 1, or at a distance that goes with its angle.
enum class Lens_plane { perspective, fisheye, field_of_view };

/// A camera model: its name and the order of its parameters, COLMAP's for those of COLMAP. BAL looks down -z.
struct Lens_model {
  const char* name;                                    ///< in capitals
  Lens_plane plane;                                    ///< that of all cameras of the model
  bool is_of_colmap;                                   ///< or of BAL, or general
  bool looks_back;                                     ///< along -z
  Lens_parameter parameters[max_lens_parameters + 1];  ///< ends with none

  std::size_t num_parameters() const;  ///< without the end
};

/// All models, COLMAP's first, the general ones last.
const std::vector<Lens_model>& lens_models();
/// Throws std::invalid_argument with the nearest name, where there is none of the name.
const Lens_model& lens_model(std::string_view name);
/// "fx, fy, cx, cy"
std::string parameters_in_words(const Lens_model& model);

/// A camera in numbers. A point p of the camera frame has a place (a, b) on the plane (docs/derivations.md, Eqs. 60
/// and 61), which the lens moves to (x, y) (Eqs. 62 and 63), and that has the pixel (Eq. 64). Made by the functions
/// below.
struct Lens {
  const Lens_model* model;            ///< that it was made of
  double given[max_lens_parameters];  ///< in the model's order

  double forward;         ///< 1, or -1 where the camera looks down -z
  bool is_angular;        ///< whether distances on the plane are atan2(stretch |p_xy|, p_z) / omega
  double stretch;         ///< 1 for a fisheye
  double omega;           ///< radians; 1 for a fisheye
  bool is_bent;           ///< whether anything is moved
  bool is_radial;         ///< by radial terms alone
  double numerator[4];    ///< of r^2, r^4, r^6, r^8
  double denominator[3];  ///< of r^2, r^4, r^6
  double tangential[2];   ///< p1, p2
  double prism[4];        ///< s1 and s2 of x, s3 and s4 of y
  bool is_tilted;         ///< whether the sensor is
  double K[3][3];         ///< intrinsic matrix
  double to_pixel[3][3];  ///< K times the tilt of the sensor
  double fold;            ///< radius on the plane from which on a point has no image (Eq. 66)

  double parameter(Lens_parameter which) const;  ///< 0 where the model has none
};

/// Throws std::invalid_argument where their number is not the model's, one is not finite or a focal length is 0.
Lens make_lens(const Lens_model& model, const std::vector<double>& parameters);
/// K = [fx skew cx; 0 fy cy; 0 0 1] with OpenCV's coefficients: 0, 4, 5, 8, 12 or 14, of a fisheye 4, in the simplest
/// model that has them. Throws std::invalid_argument where there is another number of them.
Lens lens_of_opencv(const double (&K)[3][3], const std::vector<double>& coefficients, bool is_fisheye);
/// OpenCV's coefficients, as few as hold what the lens does. Throws std::invalid_argument where none do.
std::vector<double> opencv_coefficients(const Lens& lens);
/// The same camera in one of COLMAP's models. Throws std::invalid_argument where it has none.
Lens lens_of_colmap(const Lens& lens);

/// Whether it is a pinhole that looks down +z, as a matrix K tells.
bool is_pinhole(const Lens& lens);
/// The largest angle to the axis at which a point has an image, radians.
double largest_angle(const Lens& lens);
/// The distance from the principal point at which the image ends, in pixels along u; of the radial terms alone.
double fold_in_pixels(const Lens& lens);
/// Whether a corner of a picture from (0, 0) to (width, height) has no ray; of BAL's camera (0, 0) is in the middle.
bool folds_inside(const Lens& lens, double width, double height);

/// The pixel of a point of the camera frame, and its derivatives by the point where they are wanted. NaN where there is
/// no image: from the fold on, and in the plane of the centre where the lens is no fisheye. Otherwise a point behind
/// the camera has the pixel of the line through it and the centre.
void project(const Lens& lens, const double* point, double* pixel, double (*jacobian)[3] = nullptr);

/// The unit direction in the camera frame of what is seen at a pixel; false, and NaN, where it has none. The pixel is
/// met again to 1e-10, or its own rounding.
bool unproject(const Lens& lens, const double* pixel, double* direction);

/// Where a pinhole camera with the same K sees a direction; NaN where it is not in front.
void ideal_pixel(const Lens& lens, const double* direction, double* pixel);
/// The direction, of any length, that it sees at a pixel.
void ideal_direction(const Lens& lens, const double* pixel, double* direction);

}  // namespace kelvane
