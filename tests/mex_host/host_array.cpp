// SPDX-License-Identifier: BSD-3-Clause
// Arrays as tests make and compare them.
#include "host_array.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace mex_host {
namespace {

/// As hosts convert: rounded, and at the end of the range where it is too large.
template <typename Number>
Number as(double value) {
  if constexpr (std::is_integral_v<Number>) {
    if (std::isnan(value)) return 0;
    if (value >= static_cast<double>(std::numeric_limits<Number>::max())) return std::numeric_limits<Number>::max();
    if (value <= static_cast<double>(std::numeric_limits<Number>::min())) return std::numeric_limits<Number>::min();
    return static_cast<Number>(std::llround(value));
  } else if constexpr (std::is_same_v<Number, float>) {
    return std::fabs(value) <= std::numeric_limits<float>::max() || !std::isfinite(value)
               ? static_cast<float>(value)
               : std::copysign(std::numeric_limits<float>::infinity(), static_cast<float>(std::copysign(1.0, value)));
  }
}

template <>
bool as<bool>(double value) {
  return value != 0.0;
}

template <typename Number>
std::vector<unsigned char> bytes_of(const std::vector<double>& values) {
  std::vector<unsigned char> bytes(values.size() * sizeof(Number));
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto number = as<Number>(values[i]);
    std::memcpy(&bytes[i * sizeof(Number)], &number, sizeof(Number));
  }
  return bytes;
}

template <typename Number>
std::vector<double> values_of(const std::vector<unsigned char>& bytes) {
  std::vector<double> values(bytes.size() / sizeof(Number));
  for (std::size_t i = 0; i < values.size(); ++i) {
    Number number;
    std::memcpy(&number, &bytes[i * sizeof(Number)], sizeof(Number));
    values[i] = static_cast<double>(number);
  }
  return values;
}

/// How a class of numbers is stored.
struct Storage {
  const char* class_name;
  std::vector<unsigned char> (*bytes_of)(const std::vector<double>&);
  std::vector<double> (*values_of)(const std::vector<unsigned char>&);
};

template <typename Number>
constexpr Storage storage(const char* name) {
  return {name, &bytes_of<Number>, &values_of<Number>};
}

const Storage& storage_of(const std::string& name) {
  static constexpr Storage all[] = {storage<bool>("logical"),       storage<float>("single"),
                                    storage<std::int8_t>("int8"),   storage<std::uint8_t>("uint8"),
                                    storage<std::int16_t>("int16"), storage<std::uint16_t>("uint16"),
                                    storage<std::int32_t>("int32"), storage<std::uint32_t>("uint32"),
                                    storage<std::int64_t>("int64"), storage<std::uint64_t>("uint64")};
  for (const Storage& one : all) {
    if (name == one.class_name) return one;
  }
  throw std::invalid_argument(name + " holds no numbers");
}

const mxArray& in(const std::vector<mxArray::Place>& places, std::size_t index) { return places.at(index).at(0); }

template <typename Value>
bool has_same_bits(const std::vector<Value>& a, const std::vector<Value>& b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Value)) == 0);
}

}  // namespace

mxArray real_matrix(std::size_t rows, std::size_t columns, std::vector<double> column_major_values) {
  mxArray array;
  array.rows = rows;
  array.columns = columns;
  array.values = std::move(column_major_values);
  return array;
}

mxArray row(std::vector<double> values) {
  const std::size_t size = values.size();
  return real_matrix(1, size, std::move(values));
}

mxArray column(std::vector<double> values) {
  const std::size_t size = values.size();
  return real_matrix(size, 1, std::move(values));
}

mxArray scalar(double value) { return real_matrix(1, 1, {value}); }

mxArray other_class(const std::string& class_name, std::size_t rows, std::size_t columns) {
  mxArray array = real_matrix(rows, columns, {});
  array.class_name = class_name;
  return array;
}

mxArray converted(const mxArray& doubles, const std::string& class_name) {
  mxArray array = doubles;
  array.class_name = class_name;
  array.bytes = storage_of(class_name).bytes_of(doubles.values);
  array.values.clear();
  return array;
}

mxArray doubles_of(const mxArray& numbers) {
  mxArray array = numbers;
  array.class_name = "double";
  array.values = storage_of(numbers.class_name).values_of(numbers.bytes);
  array.bytes.clear();
  return array;
}

mxArray sparse(const mxArray& doubles) {
  mxArray array = real_matrix(doubles.rows, doubles.columns, {});
  array.is_sparse = true;
  array.column_starts = {0};
  for (std::size_t i = 0; i < doubles.values.size(); ++i) {
    if (doubles.values[i] != 0.0) {
      array.values.push_back(doubles.values[i]);
      array.row_numbers.push_back(i % doubles.rows);
    }
    if (i % doubles.rows == doubles.rows - 1) array.column_starts.push_back(array.values.size());
  }
  array.column_starts.resize(doubles.columns + 1, array.values.size());
  // What lies in the room that is left is nobody's.
  array.values.insert(array.values.end(), 2, std::numeric_limits<double>::quiet_NaN());
  array.row_numbers.insert(array.row_numbers.end(), 2, std::numeric_limits<std::size_t>::max());
  return array;
}

mxArray reshaped(mxArray array, std::vector<std::size_t> sizes) {
  const std::size_t size = array.size();
  array.rows = sizes.at(0);
  array.columns = 1;
  for (std::size_t i = 1; i < sizes.size(); ++i) array.columns *= sizes[i];
  if (sizes.size() < 3 || array.size() != size) throw std::invalid_argument("no sizes of this array");
  array.sizes = std::move(sizes);
  return array;
}

mxArray text(const std::string& characters) {
  mxArray array = other_class("char", characters.empty() ? 0 : 1, characters.size());
  array.bytes.assign(characters.begin(), characters.end());
  return array;
}

mxArray cell(std::vector<mxArray> elements) {
  mxArray array = other_class("cell", 1, elements.size());
  for (mxArray& element : elements) array.elements.push_back({std::move(element)});
  return array;
}

mxArray structure(const std::vector<std::pair<std::string, mxArray>>& fields) {
  mxArray array = other_class("struct");
  for (const auto& [name, value] : fields) {
    array.field_names.push_back(name);
    array.elements.push_back({value});
  }
  return array;
}

const mxArray& element(const mxArray& cell, std::size_t index) { return in(cell.elements, index); }

const mxArray& field(const mxArray& structure, std::string_view name, std::size_t index) {
  const auto& names = structure.field_names;
  const auto number = static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
  if (number == names.size()) throw std::out_of_range("no field " + std::string(name));
  return in(structure.elements, index * names.size() + number);
}

std::string characters(const mxArray& text) { return {text.bytes.begin(), text.bytes.end()}; }

bool is_same(const mxArray& a, const mxArray& b) {
  const auto is_same_place = [](const mxArray::Place& x, const mxArray::Place& y) {
    return x.size() == y.size() && (x.empty() || is_same(x[0], y[0]));
  };
  return a.rows == b.rows && a.columns == b.columns && a.sizes == b.sizes && a.class_name == b.class_name &&
         a.is_sparse == b.is_sparse && a.is_complex == b.is_complex && has_same_bits(a.values, b.values) &&
         a.bytes == b.bytes && a.row_numbers == b.row_numbers && a.column_starts == b.column_starts &&
         a.field_names == b.field_names &&
         std::equal(a.elements.begin(), a.elements.end(), b.elements.begin(), b.elements.end(), is_same_place);
}

}  // namespace mex_host
