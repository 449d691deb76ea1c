// SPDX-License-Identifier: BSD-3-Clause
// Texts, cells, fields and matrices of the host.
#pragma once

#include <mex.h>

#include <cstddef>
#include <string>

namespace kelvane::mex_engine {

/// A text; the empty one of an empty array, and where there is none. Throws Bad_argument, notText.
std::string text_in(const mxArray* array, const std::string& name);

/// Element i of a cell with i below its size; a host may leave it out, which reads as null.
inline const mxArray* element(const mxArray* cell, std::size_t i) { return mxGetCell(cell, static_cast<mwIndex>(i)); }

/// A field of element i of a struct, null where there is none.
inline const mxArray* field(const mxArray* array, std::size_t i, const char* name) {
  return mxGetField(array, static_cast<mwIndex>(i), name);
}

inline std::size_t num_elements(const mxArray* array) { return static_cast<std::size_t>(mxGetNumberOfElements(array)); }

/// Of a struct of one element that has the field, if any.
inline bool has_field(const mxArray* array, const char* name) {
  return mxIsStruct(array) && num_elements(array) == 1 && field(array, 0, name) != nullptr;
}

/// Zeros.
mxArray* created_matrix(std::size_t rows, std::size_t columns);
/// 1 x n, or [] where there are none.
mxArray* created_row(const double* values, std::size_t n);

}  // namespace kelvane::mex_engine
