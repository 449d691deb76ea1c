// SPDX-License-Identifier: BSD-3-Clause
// The host's functions that look at an array.
#include <algorithm>
#include <array>
#include <cstring>

#include "host_call.h"

namespace {

using mex_host::current_call;
using mex_host::forbid;

// By mxClassID.
constexpr std::array<const char*, 17> class_names{"",       "cell",   "struct", "logical", "char",           "void",
                                                  "double", "single", "int8",   "uint8",   "int16",          "uint16",
                                                  "int32",  "uint32", "int64",  "uint64",  "function_handle"};

/// What each of them begins with.
const mxArray& looked_at(const mxArray* array) {
  current_call();
  if (mex_host::is_to_fail(mex_host::Host_work::reading)) mex_host::throw_shortage();
  return *array;
}

const std::string& class_of(const mxArray* array) {
  const mxArray& asked = looked_at(array);
  if (asked.throws_int) throw 1;
  return asked.class_name;
}

bool is_number(mxClassID id) { return id >= mxDOUBLE_CLASS && id <= mxUINT64_CLASS; }

/// A sparse array of a test that has no places for its numbers has none.
bool has_doubles(const mxArray& array) {
  return array.class_name == "double" && !array.is_complex && (!array.is_sparse || !array.column_starts.empty());
}

/// Numbers or truth values of other classes.
bool has_bytes(const mxArray& array) {
  return array.class_name != "double" && array.class_name != "char" && !array.is_complex &&
         (!array.bytes.empty() || array.size() == 0);
}

mxArray* content(const mxArray& array, std::size_t place, const char* function) {
  if (place >= array.elements.size()) {
    forbid(function, "of what holds nothing there");
    return nullptr;
  }
  const mxArray::Place& found = array.elements[place];
  return found.empty() ? nullptr : const_cast<mxArray*>(found.data());
}

mxArray* field_of(const mxArray& array, mwIndex index, std::size_t field, const char* function) {
  if (array.class_name != "struct") forbid(function, "of no struct");
  if (field >= array.field_names.size()) forbid(function, "by a number that no field has");
  return content(array, index * array.field_names.size() + field, function);
}

mwIndex* places(const mxArray* array, const std::vector<std::size_t>& numbers, const char* function) {
  if (!looked_at(array).is_sparse || array->column_starts.empty()) forbid(function, "of what is not sparse");
  return const_cast<mwIndex*>(numbers.data());
}

}  // namespace

bool mxIsClass(const mxArray* array, const char* name) { return class_of(array) == name; }
bool mxIsDouble(const mxArray* array) { return class_of(array) == "double"; }
bool mxIsStruct(const mxArray* array) { return class_of(array) == "struct"; }
bool mxIsCell(const mxArray* array) { return class_of(array) == "cell"; }
bool mxIsChar(const mxArray* array) { return class_of(array) == "char"; }
bool mxIsLogical(const mxArray* array) { return class_of(array) == "logical"; }
bool mxIsNumeric(const mxArray* array) { return is_number(mxGetClassID(array)); }
bool mxIsSparse(const mxArray* array) { return looked_at(array).is_sparse; }
bool mxIsComplex(const mxArray* array) { return looked_at(array).is_complex; }
const char* mxGetClassName(const mxArray* array) { return looked_at(array).class_name.c_str(); }

mxClassID mxGetClassID(const mxArray* array) {
  const auto* const found = std::find(class_names.begin(), class_names.end(), class_of(array));
  return found == class_names.end() ? mxUNKNOWN_CLASS : static_cast<mxClassID>(found - class_names.begin());
}

mwSize mxGetM(const mxArray* array) { return looked_at(array).rows; }
mwSize mxGetN(const mxArray* array) { return looked_at(array).columns; }
mwSize mxGetNumberOfElements(const mxArray* array) { return looked_at(array).size(); }
mwSize mxGetNumberOfDimensions(const mxArray* array) {
  return looked_at(array).sizes.empty() ? 2 : array->sizes.size();
}

const mwSize* mxGetDimensions(const mxArray* array) {
  if (!looked_at(array).sizes.empty()) return array->sizes.data();
  const mex_host::In_host in_host;
  auto& sizes = current_call().matrix_sizes;
  sizes.push_front({array->rows, array->columns});
  return sizes.front().data();
}

double* mxGetPr(const mxArray* array) {
  if (!has_doubles(looked_at(array))) forbid("mxGetPr", "of an array without such data");
  return const_cast<double*>(array->values.data());
}

double mxGetScalar(const mxArray* array) {
  if (!has_doubles(looked_at(array)) && !has_bytes(*array)) forbid("mxGetScalar", "of an array without such data");
  const mex_host::In_host in_host;
  if (!array->bytes.empty()) return mex_host::doubles_of(*array).values.at(0);
  return array->values.at(0);
}

void* mxGetData(const mxArray* array) {
  if (has_doubles(looked_at(array))) return mxGetPr(array);
  if (!has_bytes(*array)) forbid("mxGetData", "of an array without such data");
  return const_cast<unsigned char*>(array->bytes.data());
}

mxLogical* mxGetLogicals(const mxArray* array) {
  if (class_of(array) != "logical" || !has_bytes(*array)) forbid("mxGetLogicals", "of an array without such data");
  return reinterpret_cast<mxLogical*>(const_cast<unsigned char*>(array->bytes.data()));
}

mwIndex* mxGetIr(const mxArray* array) { return places(array, array->row_numbers, "mxGetIr"); }
mwIndex* mxGetJc(const mxArray* array) { return places(array, array->column_starts, "mxGetJc"); }

int mxGetString(const mxArray* array, char* text, mwSize size) {
  if (class_of(array) != "char") return 1;
  if (array->bytes.size() != array->size() || size == 0) {
    forbid("mxGetString", "of nothing, or into nothing");
    return 1;
  }
  const std::size_t length = std::min(size - 1, array->bytes.size());
  if (length > 0) std::memcpy(text, array->bytes.data(), length);
  text[length] = '\0';
  return length == array->bytes.size() ? 0 : 1;
}

mxArray* mxGetCell(const mxArray* array, mwIndex index) {
  if (class_of(array) != "cell") forbid("mxGetCell", "of no cell");
  return content(*array, index, "mxGetCell");
}

int mxGetNumberOfFields(const mxArray* array) { return static_cast<int>(looked_at(array).field_names.size()); }

int mxGetFieldNumber(const mxArray* array, const char* name) {
  const auto& names = looked_at(array).field_names;
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

mxArray* mxGetFieldByNumber(const mxArray* array, mwIndex index, int field) {
  return field_of(looked_at(array), index, static_cast<std::size_t>(field), "mxGetFieldByNumber");
}

mxArray* mxGetField(const mxArray* array, mwIndex index, const char* name) {
  const int field = mxGetFieldNumber(array, name);
  return field < 0 ? nullptr : field_of(*array, index, static_cast<std::size_t>(field), "mxGetField");
}
