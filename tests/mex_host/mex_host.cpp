// SPDX-License-Identifier: BSD-3-Clause
// The host's side of a call.
#include "mex_host.h"

#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

// One call at a time on each thread.
struct mex_host::Call {
  Error_call error_call = Error_call::throws;
  std::jmp_buf return_point = {};
  std::string identifier;
  std::string message;
  std::string forbidden_access;
  std::vector<std::unique_ptr<mxArray>> created;
};

namespace {

using mex_host::Call;

struct Host_error : std::runtime_error {
  using std::runtime_error::runtime_error;
};

thread_local Call* current = nullptr;

/// The host's own work during a call of one of its functions that may allocate.
class In_host {
 public:
  In_host() { mex_host::is_in_module = false; }
  ~In_host() { mex_host::is_in_module = true; }
  In_host(const In_host&) = delete;
  In_host& operator=(const In_host&) = delete;
};

void check_access(const mxArray* array, const char* function) {
  const bool has_data = array->class_name == "double" && !array->is_sparse && !array->is_complex;
  if (!has_data && current->forbidden_access.empty()) current->forbidden_access = function;
}

/// Holds no object with a destructor, so that the error call may jump out of the module to here.
bool run(Call& call, int num_outputs, mxArray** outputs, int num_inputs, const mxArray** inputs) {
  if (call.error_call == mex_host::Error_call::jumps) {
    if (setjmp(call.return_point) != 0) return false;
    mexFunction(num_outputs, outputs, num_inputs, inputs);
    return true;
  }
  try {
    mexFunction(num_outputs, outputs, num_inputs, inputs);
    return true;
  } catch (const Host_error&) {
    return false;
  }
}

void store_error(const char* identifier, const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int size = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::vector<char> text(static_cast<std::size_t>(size) + 1);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  current->identifier = identifier;
  current->message = text.data();
}

bool is_same(const mxArray& a, const mxArray& b) {
  return a.rows == b.rows && a.columns == b.columns && a.values.size() == b.values.size() &&
         (a.values.empty() || std::memcmp(a.values.data(), b.values.data(), a.values.size() * sizeof(double)) == 0);
}

}  // namespace

bool mxIsDouble(const mxArray* array) {
  if (array->throws_int) throw 1;
  return array->class_name == "double";
}

bool mxIsSparse(const mxArray* array) { return array->is_sparse; }
bool mxIsComplex(const mxArray* array) { return array->is_complex; }
mwSize mxGetM(const mxArray* array) { return array->rows; }
mwSize mxGetN(const mxArray* array) { return array->columns; }
mwSize mxGetNumberOfElements(const mxArray* array) { return array->rows * array->columns; }
const char* mxGetClassName(const mxArray* array) { return array->class_name.c_str(); }

double* mxGetPr(const mxArray* array) {
  check_access(array, "mxGetPr");
  return const_cast<double*>(array->values.data());
}

double mxGetScalar(const mxArray* array) {
  check_access(array, "mxGetScalar");
  return array->values.at(0);
}

mxArray* mxCreateDoubleMatrix(mwSize rows, mwSize columns, mxComplexity /*complexity*/) {
  const In_host in_host;
  current->created.push_back(
      std::make_unique<mxArray>(mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns))));
  return current->created.back().get();
}

// No object with a destructor here: a jump would not destroy it.
void mexErrMsgIdAndTxt(const char* identifier, const char* format, ...) {
  mex_host::is_in_module = false;
  std::va_list arguments;
  va_start(arguments, format);
  store_error(identifier, format, arguments);
  va_end(arguments);
  if (current->error_call == mex_host::Error_call::jumps) std::longjmp(current->return_point, 1);
  throw Host_error("host error");
}

namespace mex_host {

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

Result call(const std::vector<mxArray>& inputs, int num_outputs, Error_call error_call) {
  std::vector<const mxArray*> pointers;
  for (const mxArray& input : inputs) pointers.push_back(&input);
  return call_by_address(pointers, num_outputs, error_call);
}

Result call_by_address(const std::vector<const mxArray*>& inputs, int num_outputs, Error_call error_call) {
  Call this_call;
  this_call.error_call = error_call;
  current = &this_call;
  std::vector<mxArray> before;
  for (const mxArray* input : inputs) before.push_back(*input);
  std::vector<const mxArray*> input_pointers = inputs;
  std::vector<mxArray*> output_pointers(static_cast<std::size_t>(num_outputs > 0 ? num_outputs : 1), nullptr);

  is_in_module = true;
  run(this_call, num_outputs, output_pointers.data(), static_cast<int>(inputs.size()), input_pointers.data());
  is_in_module = false;

  Result result;
  if (output_pointers[0] != nullptr) result.output = *output_pointers[0];
  for (std::size_t i = 1; i < output_pointers.size(); ++i) {
    if (output_pointers[i] != nullptr) result.has_assigned_other_outputs = true;
  }
  result.identifier = this_call.identifier;
  result.message = this_call.message;
  result.forbidden_access = this_call.forbidden_access;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    if (!is_same(*inputs[i], before[i])) result.has_changed_inputs = true;
  }
  current = nullptr;
  return result;
}

Prepared_call::Prepared_call(std::vector<mxArray> the_inputs)
    : inputs_(std::move(the_inputs)), call_(std::make_unique<Call>()) {
  for (const mxArray& input : inputs_) input_pointers_.push_back(&input);
}

Prepared_call::~Prepared_call() = default;

void Prepared_call::operator()(decltype(&mexFunction) entry) {
  call_->created.clear();
  current = call_.get();
  try {
    entry(1, &output_, static_cast<int>(inputs_.size()), input_pointers_.data());
  } catch (const Host_error&) {
    current = nullptr;
    throw std::runtime_error(call_->message);
  }
  current = nullptr;
}

}  // namespace mex_host
