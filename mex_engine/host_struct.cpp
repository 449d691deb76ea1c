// SPDX-License-Identifier: BSD-3-Clause
// By the host's functions.
#include "mex_engine/host_struct.h"

#include <algorithm>

#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {

std::string text_in(const mxArray* array, const std::string& name) {
  if (array == nullptr) return {};
  if (num_elements(array) == 0 && (mxIsChar(array) || mxIsNumeric(array))) return {};
  if (!mxIsChar(array) || mxGetM(array) != 1 || mxGetNumberOfDimensions(array) > 2) {
    refuse("notText", name + " must be a text; this is of class " + mxGetClassName(array) + ".");
  }
  std::string value(num_elements(array) + 1, '\0');  // with the zero that the host writes
  if (mxGetString(array, value.data(), static_cast<mwSize>(value.size())) != 0) {
    refuse("notText", name + " must be a text of single bytes.");
  }
  value.pop_back();
  return value;
}

mxArray* created_matrix(std::size_t rows, std::size_t columns) {
  return mxCreateDoubleMatrix(static_cast<mwSize>(rows), static_cast<mwSize>(columns), mxREAL);
}

mxArray* created_row(const double* values, std::size_t n) {
  mxArray* row = created_matrix(n > 0 ? 1 : 0, n);
  std::copy_n(values, n, mxGetPr(row));
  return row;
}

}  // namespace kelvane::mex_engine
