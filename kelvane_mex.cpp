// SPDX-License-Identifier: BSD-3-Clause
// The gateway that MATLAB and GNU Octave call.
#include <mex.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <vector>

#include "contract/argument_contract.h"
#include "contract/refinement.h"

// The host's header leaves the entry hidden where everything is compiled hidden.
extern "C" __attribute__((visibility("default"))) void mexFunction(int nlhs, mxArray* plhs[], int nrhs,
                                                                   const mxArray* prhs[]);

// Weak: a host without these loads the module all the same.
extern "C" __attribute__((weak)) decltype(mxIsSparse) mxIsSparse;
extern "C" __attribute__((weak)) decltype(mxIsComplex) mxIsComplex;

namespace {

namespace contract = kelvane::contract;
using contract::max_inputs;

/// An input array behind the host's functions, each asked only when needed.
class Host_input final : public contract::Input {
 public:
  explicit Host_input(const mxArray* array = nullptr) : array_(array) {}
  bool is_double() const override { return mxIsDouble(array_); }
  bool is_sparse() const override { return &mxIsSparse != nullptr && mxIsSparse(array_); }
  bool is_complex() const override { return &mxIsComplex != nullptr && mxIsComplex(array_); }
  std::size_t rows() const override { return static_cast<std::size_t>(mxGetM(array_)); }
  std::size_t columns() const override { return static_cast<std::size_t>(mxGetN(array_)); }
  std::size_t elements() const override { return static_cast<std::size_t>(mxGetNumberOfElements(array_)); }
  const char* class_name() const override { return mxGetClassName(array_); }
  const double* data() const override { return mxGetPr(array_); }
  double scalar() const override { return mxGetScalar(array_); }

 private:
  const mxArray* array_;
};

/// What a call leaves behind: plain data, so that nothing is lost when the host's error call does not return.
struct Outcome {
  char* report = nullptr;  // from malloc; null: the call succeeded, or no memory was left for the report
  bool has_failed = false;
  int num_values = 0;
  double values[7] = {};
};

std::vector<double> refine(int num_outputs, int num_inputs, const mxArray* const* arrays) {
  Host_input inputs[max_inputs];
  const contract::Input* views[max_inputs] = {};
  for (int i = 0; i < num_inputs && i < max_inputs; ++i) {
    inputs[i] = Host_input(arrays[i]);
    views[i] = &inputs[i];
  }
  const auto arguments = contract::check_arguments(num_outputs, num_inputs, views);
  return contract::refine(arguments, contract::Settings(arguments));
}

void run(int num_outputs, int num_inputs, const mxArray* const* arrays, Outcome& outcome) noexcept {
  try {
    const std::vector<double> x = refine(num_outputs, num_inputs, arrays);
    outcome.num_values = static_cast<int>(x.size());
    std::memcpy(outcome.values, x.data(), x.size() * sizeof(double));
  } catch (const std::exception& error) {
    outcome.has_failed = true;
    outcome.report = strdup(error.what());
  } catch (...) {
    outcome.has_failed = true;
    outcome.report = strdup("unknown exception");
  }
}

}  // namespace

// Plain data only: the host's error call may throw or jump, and neither may find an object to destroy here.
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]) {
  Outcome outcome;
  run(nlhs, nrhs, prhs, outcome);
  if (outcome.has_failed) {
    // On the stack, whole: the heap copy must be gone before the error is raised.
    const char* report = outcome.report != nullptr ? outcome.report : "std::bad_alloc";
    const std::size_t size = std::strlen(report) + 1;
    char* text = static_cast<char*>(__builtin_alloca(size));
    std::memcpy(text, report, size);
    std::free(outcome.report);
    mexErrMsgIdAndTxt("Mex:exception", "%s", text);
  }
  plhs[0] = mxCreateDoubleMatrix(1, static_cast<mwSize>(outcome.num_values), mxREAL);
  std::memcpy(mxGetPr(plhs[0]), outcome.values, static_cast<std::size_t>(outcome.num_values) * sizeof(double));
}
