// SPDX-License-Identifier: BSD-3-Clause
// The host's functions that make, fill and free arrays, and its error call.
#include <algorithm>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include "host_call.h"

namespace {

using mex_host::Call;
using mex_host::current_call;
using mex_host::Error_call;
using mex_host::forbid;

/// The way out of a host that has no memory left. No object with a destructor here, nor in what calls this first: a
/// jump would not destroy it.
void leave_if_short() {
  if (!mex_host::is_to_fail(mex_host::Host_work::creating)) return;
  mex_host::is_in_module = false;
  if (current_call().error_call == Error_call::jumps) {
    current_call().has_host_failed = true;
    std::longjmp(current_call().return_point, 1);
  }
  mex_host::throw_shortage();
}

void mark(mxArray& array, unsigned long call) {
  array.made_in_call = call;
  for (mxArray::Place& place : array.elements) {
    if (!place.empty()) mark(place[0], call);
  }
}

/// Calls `make` for an array that the module gets.
template <typename Make>
mxArray* created(const Make& make) {
  const mex_host::In_host in_host;
  Call& call = current_call();
  mxArray::Place place(1, make());
  mark(place[0], call.number);
  call.created.push_back(std::move(place));
  return call.created.back().data();
}

/// Moves what the module has made to where it belongs.
void put(mxArray* array, std::size_t place, mxArray* value, const char* function) {
  const mex_host::In_host in_host;
  Call& call = current_call();
  const auto found = mex_host::place_of(value);
  if (array->made_in_call != call.number) return forbid(function, "into an array that is not the module's own");
  if (place >= array->elements.size()) return forbid(function, "where there is no place");
  if (!array->elements[place].empty()) return forbid(function, "where something lies already");
  if (found == call.created.end())
    return forbid(function, "of an array that is not the module's own, or lies elsewhere");
  if (value == array) return forbid(function, "of an array into itself");
  array->elements[place] = std::move(*found);
  call.created.erase(found);
}

void store_error(const char* identifier, const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int size = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::vector<char> text(static_cast<std::size_t>(size) + 1);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  current_call().identifier = identifier;
  current_call().message = text.data();
}

}  // namespace

mxArray* mxCreateDoubleMatrix(mwSize rows, mwSize columns, mxComplexity /*complexity*/) {
  leave_if_short();
  return created([=] { return mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns)); });
}

mxArray* mxCreateDoubleScalar(double value) {
  leave_if_short();
  return created([=] { return mex_host::scalar(value); });
}

mxArray* mxCreateLogicalMatrix(mwSize rows, mwSize columns) {
  leave_if_short();
  return created([=] {
    return mex_host::converted(mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns)), "logical");
  });
}

mxArray* mxCreateString(const char* text) {
  leave_if_short();
  return created([=] { return mex_host::text(text); });
}

mxArray* mxCreateCellMatrix(mwSize rows, mwSize columns) {
  leave_if_short();
  return created([=] {
    mxArray array = mex_host::other_class("cell", rows, columns);
    array.elements.resize(array.size());
    return array;
  });
}

mxArray* mxCreateStructMatrix(mwSize rows, mwSize columns, int num_fields, const char** names) {
  leave_if_short();
  return created([=] {
    mxArray array = mex_host::other_class("struct", rows, columns);
    array.field_names.assign(names, names + num_fields);
    array.elements.resize(array.size() * array.field_names.size());
    return array;
  });
}

mxArray* mxDuplicateArray(const mxArray* array) {
  leave_if_short();
  return created([=] { return *array; });
}

void mxSetCell(mxArray* array, mwIndex index, mxArray* value) {
  if (array->class_name != "cell") return forbid("mxSetCell", "of no cell");
  put(array, index, value, "mxSetCell");
}

void mxSetFieldByNumber(mxArray* array, mwIndex index, int field, mxArray* value) {
  const std::size_t num_fields = array->field_names.size();
  if (field < 0 || static_cast<std::size_t>(field) >= num_fields) {
    return forbid("mxSetFieldByNumber", "where there is no field");
  }
  put(array, index * num_fields + static_cast<std::size_t>(field), value, "mxSetFieldByNumber");
}

void mxDestroyArray(mxArray* array) {
  const mex_host::In_host in_host;
  const auto found = mex_host::place_of(array);
  if (found == current_call().created.end())
    return forbid("mxDestroyArray", "of an array that is not the module's own");
  current_call().created.erase(found);
}

// No object with a destructor here: a jump would not destroy it.
void mexErrMsgIdAndTxt(const char* identifier, const char* format, ...) {
  mex_host::is_in_module = false;
  std::va_list arguments;
  va_start(arguments, format);
  store_error(identifier, format, arguments);
  va_end(arguments);
  if (current_call().error_call == Error_call::jumps) std::longjmp(current_call().return_point, 1);
  throw mex_host::Host_error("host error");
}
