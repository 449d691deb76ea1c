// SPDX-License-Identifier: BSD-3-Clause
// A small dense matrix for rotations and intrinsics.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "fw_tools/default_val.h"
#include "fw_tools/report.h"

namespace fw {

namespace site {
inline constexpr Site matrix_set_size{"fw_tools/matrix.h", 210,
                                      "void fw::matrix<T>::set_size(int, int) [with T = double]"};
}  // namespace site

/// A dense matrix; element (i, j) is row i, column j, from 0. It is minimal on purpose: element access and
/// multiplication check nothing, only resizing does. An empty matrix is always 0 by 0.
template <typename T>
class matrix {
 public:
  virtual ~matrix() { clear(); }

  /// The empty matrix.
  matrix() = default;
  /// A matrix of default values; raises what set_size() raises.
  matrix(int num_rows, int num_columns) { set_size(num_rows, num_columns); }
  /// The same elements in memory of its own.
  matrix(const matrix& source) { *this = source; }
  /// Leaves the source empty.
  matrix(matrix&& source) noexcept
      : dim1(std::exchange(source.dim1, 0)), dim2(std::exchange(source.dim2, 0)), rows(std::move(source.rows)) {}

  /// Resizes, then copies. Aliasing is not guarded against: assigned to itself, a matrix keeps its size and every
  /// element becomes the default value.
  matrix& operator=(const matrix& source);  // NOLINT(bugprone-unhandled-self-assignment): see the line above

  /// Drops all contents, also when the size stays the same, and fills with default values. A zero in either dimension
  /// gives the empty matrix.
  /// Raises "matrix::set_size() : tried to set size to ..." (fw_tools/matrix.h, 210) when a dimension is negative; the
  /// matrix is then empty.
  void set_size(int num_rows, int num_columns);
  /// Makes it the empty matrix.
  void clear();

  /// The number of rows.
  int get_dim1() const { return static_cast<int>(dim1); }
  /// The number of columns.
  int get_dim2() const { return static_cast<int>(dim2); }

  /// Element (row, column).
  T& get(unsigned int row, unsigned int column) { return rows[row][column]; }
  /// Element (row, column).
  const T& get(unsigned int row, unsigned int column) const { return rows[row][column]; }
  /// Overwrites element (row, column).
  void set(unsigned int row, unsigned int column, T value) { rows[row][column] = value; }
  /// The first element of a row, so that m[i][j] is element (i, j).
  T* operator[](unsigned int row) { return rows[row].get(); }
  /// The first element of a row.
  const T* operator[](unsigned int row) const { return rows[row].get(); }

  /// The matrix with element (j, i) in place of (i, j).
  matrix transpose() const;
  /// The product; the right operand must have at least as many rows as this matrix has columns. `a *= a` is correct.
  matrix& operator*=(const matrix& right);
  /// The product, as by operator*=.
  const matrix operator*(const matrix& right) const;
  /// The sum of element (i, i) over the rows, which must not outnumber the columns; 0 for an empty matrix.
  T trace() const;

 protected:
  unsigned int dim1 = 0;                         ///< rows
  unsigned int dim2 = 0;                         ///< columns
  std::unique_ptr<std::unique_ptr<T[]>[]> rows;  ///< row by row; null exactly when the matrix is empty
};

/// Writes the row count, a tab, the column count and a line end, then each row on a line, a tab after every element.
template <typename T>
std::ostream& operator<<(std::ostream& stream, const matrix<T>& m);

template <typename T>
matrix<T>& matrix<T>::operator=(const matrix& source) {  // NOLINT(bugprone-unhandled-self-assignment): as declared
  set_size(source.get_dim1(), source.get_dim2());
  for (unsigned int i = 0; i < dim1; ++i) {
    for (unsigned int j = 0; j < dim2; ++j) set(i, j, source.get(i, j));
  }
  return *this;
}

template <typename T>
void matrix<T>::set_size(int num_rows, int num_columns) {
  clear();
  if (num_rows < 0 || num_columns < 0) {
    raise(site::matrix_set_size, text("matrix::set_size() : tried to set size to ", num_rows, ",", num_columns));
  }
  if (num_rows == 0 || num_columns == 0) return;
  const auto row_count = static_cast<unsigned int>(num_rows);
  const auto column_count = static_cast<unsigned int>(num_columns);
  // Allocated aside: a failed allocation leaves an empty matrix and no row behind.
  auto new_rows = std::make_unique<std::unique_ptr<T[]>[]>(row_count);
  for (unsigned int i = 0; i < row_count; ++i) {
    new_rows[i].reset(new T[column_count]);
    for (unsigned int j = 0; j < column_count; ++j) default_val(new_rows[i][j]);
  }
  rows = std::move(new_rows);
  dim1 = row_count;
  dim2 = column_count;
}

template <typename T>
void matrix<T>::clear() {
  rows.reset();
  dim1 = 0;
  dim2 = 0;
}

template <typename T>
matrix<T> matrix<T>::transpose() const {
  matrix result(get_dim2(), get_dim1());
  for (unsigned int i = 0; i < dim1; ++i) {
    for (unsigned int j = 0; j < dim2; ++j) result.set(j, i, get(i, j));
  }
  return result;
}

template <typename T>
matrix<T>& matrix<T>::operator*=(const matrix& right) {
  const std::size_t m = dim1;
  const std::size_t n = dim2;
  const std::size_t p = right.dim2;
  std::vector<T> a(m * n);
  std::vector<T> b(n * p);
  for (std::size_t i = 0; i < m; ++i) std::copy_n(rows[i].get(), n, a.begin() + static_cast<std::ptrdiff_t>(i * n));
  for (std::size_t k = 0; k < n && p > 0; ++k) {
    std::copy_n(right.rows[k].get(), p, b.begin() + static_cast<std::ptrdiff_t>(k * p));
  }
  // Both operands are copied, so the product may be stored over either.
  set_size(static_cast<int>(m), static_cast<int>(p));
  for (unsigned int i = 0; i < dim1; ++i) {
    for (unsigned int j = 0; j < dim2; ++j) {
      T total = 0;
      for (std::size_t k = 0; k < n; ++k) total += a[i * n + k] * b[k * p + j];
      set(i, j, total);
    }
  }
  return *this;
}

template <typename T>
const matrix<T> matrix<T>::operator*(const matrix& right) const {
  matrix product(*this);
  product *= right;
  return product;
}

template <typename T>
T matrix<T>::trace() const {
  T total = 0;
  for (unsigned int i = 0; i < dim1; ++i) total += get(i, i);
  return total;
}

template <typename T>
std::ostream& operator<<(std::ostream& stream, const matrix<T>& m) {
  stream << m.get_dim1() << "\t" << m.get_dim2() << std::endl;
  for (int i = 0; i < m.get_dim1(); ++i) {
    const T* row = m[static_cast<unsigned int>(i)];
    for (int j = 0; j < m.get_dim2(); ++j) stream << row[j] << "\t";
    stream << std::endl;
  }
  return stream;
}

}  // namespace fw
