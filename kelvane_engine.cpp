// SPDX-License-Identifier: BSD-3-Clause
// The gateway between the m-files and the engine.
#include <mex.h>

#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "mex_engine/answer.h"
#include "mex_engine/sentence.h"
#include "model_files/model_file.h"

// The host's header leaves the entry hidden where everything is compiled hidden.
extern "C" __attribute__((visibility("default"))) void mexFunction(int nlhs, mxArray* plhs[], int nrhs,
                                                                   const mxArray* prhs[]);

namespace {

namespace mex_engine = kelvane::mex_engine;

/// What a call leaves behind for the time after it: whatever the host does, the next call finds and frees it.
struct Call {
  std::unique_ptr<mex_engine::Answer> answer;
  std::string identifier, message;
};
std::unique_ptr<Call> call;

/// What is told in its stead where there is no memory for a Call.
constexpr const char* out_of_memory = "out of memory";

void answer_or_fail(int num_outputs, int num_inputs, const mxArray* const* inputs) noexcept {
  try {
    call = std::make_unique<Call>();
    try {
      call->answer = mex_engine::answer_to(num_outputs, num_inputs, inputs);
    } catch (const kelvane::Bad_argument& error) {
      call->identifier = std::string("kelvane:") + error.identifier();
      call->message = error.what();
    } catch (const kelvane::File_error& error) {
      call->identifier = "kelvane:file";
      call->message = error.what();
    } catch (const std::bad_alloc&) {
      call.reset();
    } catch (const std::exception& error) {
      call->identifier = "kelvane:engine";
      call->message = error.what();
    }
  } catch (...) {
    call.reset();
  }
}

}  // namespace

// Plain data only: the host's error call may throw or jump, and neither may find an object to destroy here.
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]) {
  answer_or_fail(nlhs, nrhs, prhs);
  if (call == nullptr) mexErrMsgIdAndTxt("kelvane:memory", "%s", out_of_memory);
  if (call->answer == nullptr) {
    // On the stack: the call is to leave nothing when the error is raised.
    char identifier[64];
    char message[2048];  // no sentence is half as long
    std::snprintf(identifier, sizeof identifier, "%s", call->identifier.c_str());
    std::snprintf(message, sizeof message, "%s", call->message.c_str());
    call.reset();
    mexErrMsgIdAndTxt(identifier, "%s", message);
  }
  call->answer->write(nlhs, plhs);
  call.reset();
}
