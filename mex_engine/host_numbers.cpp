// SPDX-License-Identifier: BSD-3-Clause
// From any class of numbers to doubles.
#include "mex_engine/host_numbers.h"

#include <cmath>
#include <cstdint>

#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

constexpr double most_of_sparse = 134217728.0;  // a gigabyte of numbers, most of which would be zeros

}  // namespace

std::string text_of_entry(const std::string& name, std::size_t row, std::size_t column) {
  return name + "(" + text(row + 1) + ", " + text(column + 1) + ")";
}

Host_numbers::Host_numbers(const mxArray* array, const char* name, Shape shape)
    : name_(name), rows_(static_cast<std::size_t>(mxGetM(array))), columns_(static_cast<std::size_t>(mxGetN(array))) {
  if (!mxIsNumeric(array) && !mxIsLogical(array)) {
    refuse("notNumeric", std::string(name) + " must be numbers; this is of class " + mxGetClassName(array) + ".");
  }
  if (mxIsComplex(array)) refuse("complex", std::string(name) + " must be real; there is an imaginary part.");
  const auto num_dimensions = static_cast<std::size_t>(mxGetNumberOfDimensions(array));
  if (num_dimensions == 3 && shape == Shape::pages) {
    num_pages_ = static_cast<std::size_t>(mxGetDimensions(array)[2]);
  } else if (num_dimensions > 2) {
    std::string size;
    for (std::size_t i = 0; i < num_dimensions; ++i) {
      size += (i == 0 ? "" : " x ") + text(static_cast<std::size_t>(mxGetDimensions(array)[i]));
    }
    refuse("size", std::string(name) + " must be a matrix; this is " + size + ".");
  }
  convert_class(array);
}

std::string Host_numbers::text_of_shape() const {
  if (num_pages_ == 1) return text_of_size(rows_, columns_);
  return text_of_size(rows_, num_pages_ == 0 ? 0 : columns_ / num_pages_) + " x " + text(num_pages_);
}

void Host_numbers::convert_class(const mxArray* array) {
  if (mxIsSparse(array)) return convert_sparse(array);
  switch (mxGetClassID(array)) {
    case mxDOUBLE_CLASS:
      is_as_given_ = true;
      data_ = mxGetPr(array);
      return;
    case mxSINGLE_CLASS:
      return convert<float>(array);
    case mxLOGICAL_CLASS:
      return convert<mxLogical>(array);
    case mxINT8_CLASS:
      return convert<std::int8_t>(array);
    case mxUINT8_CLASS:
      return convert<std::uint8_t>(array);
    case mxINT16_CLASS:
      return convert<std::int16_t>(array);
    case mxUINT16_CLASS:
      return convert<std::uint16_t>(array);
    case mxINT32_CLASS:
      return convert<std::int32_t>(array);
    case mxUINT32_CLASS:
      return convert<std::uint32_t>(array);
    case mxINT64_CLASS:
      return convert<std::int64_t>(array);
    case mxUINT64_CLASS:
      return convert<std::uint64_t>(array);
    default:
      refuse("notNumeric", std::string(name_) + " must be numbers; this is of class " + mxGetClassName(array) + ".");
  }
}

template <typename T>
void Host_numbers::convert(const mxArray* array) {
  const T* values = static_cast<const T*>(mxGetData(array));
  own_.resize(size());
  for (std::size_t i = 0; i < size(); ++i) own_[i] = static_cast<double>(values[i]);
  data_ = own_.data();
}

void Host_numbers::convert_sparse(const mxArray* array) {
  // In doubles, as the number of elements may be more than the largest whole number.
  if (static_cast<double>(rows_) * static_cast<double>(columns_) > most_of_sparse) {
    refuse("size", std::string(name_) + " is sparse and too large: " + text_of_size(rows_, columns_) +
                       ". Hand over a full matrix.");
  }
  const mwIndex* row = mxGetIr(array);
  const mwIndex* first = mxGetJc(array);
  const bool is_logical = mxIsLogical(array);
  own_.resize(size());
  for (std::size_t c = 0; c < columns_; ++c) {
    for (auto i = static_cast<std::size_t>(first[c]); i < static_cast<std::size_t>(first[c + 1]); ++i) {
      own_[c * rows_ + static_cast<std::size_t>(row[i])] = is_logical ? 1.0 : mxGetPr(array)[i];
    }
  }
  data_ = own_.data();
}

void Host_numbers::transpose() {
  std::vector<double> turned(size());
  for (std::size_t c = 0; c < columns_; ++c) {
    for (std::size_t r = 0; r < rows_; ++r) turned[r * columns_ + c] = data_[c * rows_ + r];
  }
  own_.swap(turned);
  std::swap(rows_, columns_);
  data_ = own_.data();
  is_as_given_ = false;
}

const Host_numbers& Host_numbers::checked_finite() const {
  for (std::size_t i = 0; i < size(); ++i) {
    if (std::isfinite(data_[i])) continue;
    refuse("notFinite", text_of_entry(name_, i % rows_, i / rows_) + " is " + text_of(data_[i]) +
                            ". All of it must be finite numbers.");
  }
  return *this;
}

const Host_numbers& Host_numbers::checked_vector(std::size_t wanted) const {
  checked_finite();
  if (!is_vector() || size() != wanted) {
    refuse("size", std::string(name_) + " must be a vector of " + text(wanted) + " elements; this is " +
                       text_of_size(rows_, columns_) + ".");
  }
  return *this;
}

}  // namespace kelvane::mex_engine
