// SPDX-License-Identifier: BSD-3-Clause
// A host's array of numbers, of any class, as doubles.
#pragma once

#include <mex.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kelvane::mex_engine {

/// A real matrix, column by column. A full one of doubles is read where it lies, any other is copied.
class Host_numbers {
 public:
  /// What a host's array may be.
  enum class Shape {
    matrix,  ///< two dimensions
    pages    ///< or three: all columns of all pages, one page behind the other
  };

  /// Throws Bad_argument: notNumeric, complex, or size where it has more dimensions. The name is for errors.
  Host_numbers(const mxArray* array, const char* name, Shape shape = Shape::matrix);
  Host_numbers(Host_numbers&&) = default;  // what is copied stays where it is
  Host_numbers& operator=(Host_numbers&&) = default;

  std::size_t rows() const { return rows_; }
  std::size_t columns() const { return columns_; }
  std::size_t num_pages() const { return num_pages_; }
  std::size_t size() const { return rows_ * columns_; }
  bool is_vector() const { return size() > 0 && (rows_ == 1 || columns_ == 1); }
  const double* data() const { return data_; }
  double operator()(std::size_t row, std::size_t column) const { return data_[column * rows_ + row]; }
  const char* name() const { return name_; }
  /// "2 x 3", or "2 x 3 x 4".
  std::string text_of_shape() const;

  /// Whether the host's array can stand for what is read, without a copy.
  bool is_as_given() const { return is_as_given_; }
  /// Turns rows into columns.
  void transpose();

  /// Throws Bad_argument, notFinite, with the place of the first that is not.
  const Host_numbers& checked_finite() const;
  /// Likewise, and size where it is no vector of so many.
  const Host_numbers& checked_vector(std::size_t size) const;

 private:
  template <typename T>
  void convert(const mxArray* array);
  void convert_sparse(const mxArray* array);
  void convert_class(const mxArray* array);

  const char* name_;
  std::size_t rows_, columns_;
  std::size_t num_pages_ = 1;
  const double* data_ = nullptr;
  std::vector<double> own_;
  bool is_as_given_ = false;
};

/// "points(2, 3)": how hosts name an entry.
std::string text_of_entry(const std::string& name, std::size_t row, std::size_t column);

}  // namespace kelvane::mex_engine
