// SPDX-License-Identifier: BSD-3-Clause
// Rows or columns.
#include "mex_engine/read_points.h"

#include <algorithm>

#include "mex_engine/sentence.h"
#include "pose_refinement/observed_points.h"

namespace kelvane::mex_engine {
namespace {

Columns turned(Columns columns) {
  columns.numbers.transpose();
  columns.is_turned = true;
  return columns;
}

bool is(const Host_numbers& numbers, std::size_t rows, std::size_t columns) {
  return numbers.rows() == rows && numbers.columns() == columns;
}

}  // namespace

Columns read_observations(const mxArray* array, const mxArray* points) {
  Columns given{Host_numbers(array, "observations")};
  const std::size_t rows = given.numbers.rows();
  const std::size_t columns = given.numbers.columns();
  if (rows == 2 && columns == 2 && points != nullptr && mxGetM(points) != mxGetN(points)) {
    return mxGetM(points) == 3 ? std::move(given) : turned(std::move(given));
  }
  if (rows == 2 && columns == 2) {
    refuse(
        "ambiguous",
        "2 x 2 observations may be two columns or two rows, and two points do not determine a pose. Three points are "
        "the least.");
  }
  const bool is_in_columns = (rows == 2 || rows == 3) && columns != 2;
  if (!is_in_columns && columns != 2 && columns != 3) {
    refuse("size", "observations must be 2 x N or N x 2 (pixels) or 3 x N or N x 3 (bearing vectors); this is " +
                       text_of_size(rows, columns) + ".");
  }
  if (!is_in_columns) given = turned(std::move(given));
  return given;
}

Columns read_points(const mxArray* array, const Columns& observations) {
  Columns given{Host_numbers(array, "points")};
  const std::size_t n = observations.numbers.columns();
  const bool lies_in_rows = n == 3 && observations.is_turned && observations.numbers.rows() == 2;
  if (is(given.numbers, 3, n) && !lies_in_rows) return given;
  if (is(given.numbers, n, 3)) return turned(std::move(given));
  refuse("size", "points must be 3 x " + text(n) + " or " + text(n) + " x 3, as there are " + text(n) +
                     " observations; this is " + text_of_size(given.numbers.rows(), given.numbers.columns()) + ".");
}

Columns read_points(const mxArray* array) {
  Columns given{Host_numbers(array, "points")};
  given.numbers.checked_finite();
  if (given.numbers.rows() == 3) return given;
  if (given.numbers.columns() == 3) return turned(std::move(given));
  refuse("size",
         "points must be 3 x N or N x 3; this is " + text_of_size(given.numbers.rows(), given.numbers.columns()) + ".");
}

Columns read_weights(const mxArray* array, const Columns& observations) {
  Columns given{Host_numbers(array, "Weights")};
  const std::size_t d = observations.numbers.rows();
  const std::size_t n = observations.numbers.columns();
  const Host_numbers& numbers = given.numbers;
  const bool is_one_each = numbers.is_vector() && (numbers.size() == n || numbers.size() == d * n);
  if (numbers.size() == 0 || is_one_each) return given;
  if (is(numbers, n, d) && n != d) return turned(std::move(given));  // three directions come in columns
  if (is(numbers, d, n)) return given;
  refuse("size", "Weights must be one for each of the " + text(n) + " points, or " + text_of_size(d, n) +
                     ", one for each equation; this is " + text_of_size(numbers.rows(), numbers.columns()) + ".");
}

std::string place_of(const Bad_argument& error, const char* name, const Columns& columns) {
  const std::size_t rows = std::max<std::size_t>(1, columns.numbers.rows());
  std::size_t row = error.number() % rows;
  std::size_t column = error.number() / rows;
  if (error.where() == Bad_argument::Where::point) {
    const std::string point = text(error.number() + 1);
    return name + (columns.is_turned ? "(" + point + ", :)" : "(:, " + point + ")");
  }
  if (columns.is_turned) std::swap(row, column);
  return text_of_entry(name, row, column);
}

mxArray* written_columns(const Columns& columns) {
  const Host_numbers& numbers = columns.numbers;
  if (numbers.is_as_given()) return mxCreateDoubleMatrix(0, 0, mxREAL);
  mxArray* array =
      mxCreateDoubleMatrix(static_cast<mwSize>(numbers.rows()), static_cast<mwSize>(numbers.columns()), mxREAL);
  std::copy_n(numbers.data(), numbers.size(), mxGetPr(array));
  return array;
}

mxArray* written_directions(const Columns& columns) {
  const Host_numbers& numbers = columns.numbers;
  mxArray* array = mxCreateDoubleMatrix(3, static_cast<mwSize>(numbers.columns()), mxREAL);
  double* unit = mxGetPr(array);
  for (const double* b = numbers.data(); b != numbers.data() + numbers.size(); b += 3, unit += 3) {
    const double length = length_of_direction(b);  // as the refinement has it
    for (int k = 0; k < 3; ++k) unit[k] = b[k] / length;
  }
  return array;
}

}  // namespace kelvane::mex_engine
