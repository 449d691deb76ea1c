// SPDX-License-Identifier: BSD-3-Clause
// Arrays of every kind that hold what their class says, for a module that reads more than full real doubles.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "mex_host.h"
#include "trust/hostile_arrays.h"

namespace trust {

/// Every class in every of a few shapes, arrays of more than two dimensions, nested ones, and texts.
class Kinds_of_arrays {
 public:
  std::vector<Named_array> all() && {
    for (const auto& [rows, columns] : few_shapes) {
      shape_ = std::to_string(rows) + " by " + std::to_string(columns) + " ";
      add_doubles(rows, columns);
      add_other_classes(rows, columns);
    }
    add_special_ones();
    return std::move(arrays_);
  }

 private:
  static constexpr std::array<std::pair<std::size_t, std::size_t>, 11> few_shapes{
      {{0, 0}, {1, 1}, {1, 3}, {3, 1}, {3, 3}, {3, 5}, {5, 3}, {2, 5}, {1, 6}, {1, 7}, {4, 4}}};

  void add(const std::string& name, const mxArray& array) { arrays_.push_back({shape_ + name, array}); }

  static mxArray ones(std::size_t rows, std::size_t columns) {
    return mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns, 1.0));
  }

  static mxArray complex(mxArray array) {
    array.is_complex = true;
    return array;
  }

  /// With every element `value`, or without any value.
  static mxArray filled(const std::string& class_name, std::size_t rows, std::size_t columns, const mxArray* value) {
    mxArray array = mex_host::other_class(class_name, rows, columns);
    if (class_name == "struct") array.field_names = {"rotation"};
    array.elements.resize(array.size());
    for (mxArray::Place& place : array.elements)
      place.assign(value == nullptr ? 0 : 1, value == nullptr ? array : *value);
    return array;
  }

  void add_doubles(std::size_t rows, std::size_t columns) {
    for (const Named_value& value : hostile_values) {
      add(std::string("of ") + value.name,
          mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns, value.value)));
    }
    add("complex", complex(ones(rows, columns)));
    add("sparse", mex_host::sparse(ones(rows, columns)));
    add("sparse complex", complex(mex_host::sparse(ones(rows, columns))));
    add("sparse zeros", mex_host::sparse(mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns))));
    add("sparse logical", mex_host::converted(mex_host::sparse(ones(rows, columns)), "logical"));
  }

  void add_other_classes(std::size_t rows, std::size_t columns) {
    const mxArray one = ones(1, 1);
    for (const char* name : other_classes) {
      const std::string class_name = name;
      if (class_name == "cell" || class_name == "struct") {
        add(class_name + " of numbers", filled(class_name, rows, columns, &one));
        add(class_name + " of nothing", filled(class_name, rows, columns, nullptr));
        if (class_name == "struct") add("struct without fields", mex_host::other_class(name, rows, columns));
      } else if (class_name == "char") {
        mxArray text = mex_host::other_class(name, rows, columns);
        text.bytes.assign(rows * columns, 'a');
        add(class_name, text);
      } else if (class_name == "function_handle") {
        add(class_name, mex_host::other_class(name, rows, columns));
      } else {
        add(class_name, mex_host::converted(ones(rows, columns), class_name));
      }
    }
    add("object", mex_host::other_class("An_object", rows, columns));
  }

  void add_special_ones() {
    shape_.clear();
    for (const std::vector<std::size_t>& sizes :
         {std::vector<std::size_t>{2, 2, 2}, {1, 1, 5}, {3, 0, 2}, {3, 5, 1, 2}}) {
      std::size_t size = 1;
      for (const std::size_t length : sizes) size *= length;
      shape_ = std::to_string(sizes.size()) + " dimensions ";
      const mxArray one = ones(1, 1);
      for (const mxArray& array : {ones(1, size), mex_host::converted(ones(1, size), "single"),
                                   filled("cell", 1, size, &one), filled("struct", 1, size, &one)}) {
        add(array.class_name, mex_host::reshaped(array, sizes));
      }
    }
    shape_ = "text ";
    for (const std::string& text :
         {std::string("pose"), std::string("opencv"), std::string("matrix4x4"), std::string("camera_from_world"),
          std::string("tukey"), std::string("refine"), std::string("%s%n"), std::string("a\0b", 3),
          std::string("\xff\xfe"), std::string(100000, 'x')}) {
      add(text.substr(0, 20), mex_host::text(text));
    }
    mxArray nested = ones(1, 1);
    for (int depth = 0; depth < 100; ++depth) nested = mex_host::cell({nested});
    add("in cells", nested);
    shape_ = "huge ";
    for (const std::size_t rows : {std::size_t{1} << 33U, std::size_t{1} << 60U, std::size_t{1} << 62U}) {
      mxArray array = mex_host::sparse(ones(1, 4));  // at the far ends of columns whose sizes add up to 0 at last
      array.rows = rows;
      for (std::size_t& row : array.row_numbers) row = rows - 1;
      add("sparse, rows " + std::to_string(rows), array);
    }
    shape_.clear();
    add("two fields of one name", mex_host::structure({{"rotation", ones(3, 3)}, {"rotation", nested}}));
  }

  std::vector<Named_array> arrays_;
  std::string shape_;
};

}  // namespace trust
