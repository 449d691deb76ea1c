// SPDX-License-Identifier: BSD-3-Clause
// The arrays of the stand-in host, and what makes them for a test.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mex.h"

/// An array of the host, column-major. It has the data that it was given, and no other may be asked for.
struct mxArray {
  /// Where an array lies: none, or one, which keeps its address when the place is moved.
  using Place = std::vector<mxArray>;

  std::size_t rows = 0;
  std::size_t columns = 0;     // of an N-d array all but the rows, multiplied, as hosts say
  std::vector<double> values;  // of doubles
  std::string class_name = "double";
  bool is_sparse = false;
  bool is_complex = false;
  bool throws_int = false;                 // when asked for its class, as no host should
  std::vector<std::size_t> sizes = {};     // of an N-d array; none: a matrix
  std::vector<unsigned char> bytes = {};   // of other numbers, of truth values and of text
  std::vector<std::size_t> row_numbers;    // of a sparse array
  std::vector<std::size_t> column_starts;  // likewise
  std::vector<std::string> field_names;    // of a struct
  std::vector<Place> elements;             // of a cell, or the fields of one element after the other of a struct
  unsigned long made_in_call = 0;          // by the module; 0: by a test

  std::size_t size() const { return rows * columns; }
};

namespace mex_host {

mxArray real_matrix(std::size_t rows, std::size_t columns, std::vector<double> column_major_values);
mxArray row(std::vector<double> values);
mxArray column(std::vector<double> values);
mxArray scalar(double value);
/// An array of another class, whose data must not be asked for.
mxArray other_class(const std::string& class_name, std::size_t rows = 1, std::size_t columns = 1);

/// The same numbers in another class: single, an integer, logical.
mxArray converted(const mxArray& doubles, const std::string& class_name);
/// The other way round.
mxArray doubles_of(const mxArray& numbers);
/// The same numbers in sparse storage, with room for two more, as hosts leave it.
mxArray sparse(const mxArray& doubles);
/// With other sizes, three or more, whose product is as before.
mxArray reshaped(mxArray array, std::vector<std::size_t> sizes);
/// A row of characters, 0 by 0 where there are none.
mxArray text(const std::string& characters);
/// A row of what it holds.
mxArray cell(std::vector<mxArray> elements);
/// One element with these fields.
mxArray structure(const std::vector<std::pair<std::string, mxArray>>& fields);

/// What lies in a cell, or in a field of one element of a struct; throws std::out_of_range where nothing does.
const mxArray& element(const mxArray& cell, std::size_t index);
const mxArray& field(const mxArray& structure, std::string_view name, std::size_t index = 0);
/// The characters of a text, one row after the other.
std::string characters(const mxArray& text);
/// Equal in all that a module can see, to the last bit.
bool is_same(const mxArray& a, const mxArray& b);

}  // namespace mex_host
