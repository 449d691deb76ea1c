// SPDX-License-Identifier: BSD-3-Clause
// The host's side of a call.
#include "mex_host.h"

#include <algorithm>
#include <atomic>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "host_call.h"

namespace mex_host {
namespace {

thread_local Call* current = nullptr;

struct Shortage {
  Host_work work = Host_work::creating;
  long calls_left = -1;  // negative: none fails
  bool has_failed = false;
};
thread_local Shortage shortage;

constexpr std::size_t num_guards = 4;  // slots for outputs that nobody has asked for

/// Holds no object with a destructor, so that the error call may jump out of the module to here.
bool run(Call& call, int num_outputs, mxArray** outputs, int num_inputs, const mxArray** inputs) {
  if (call.error_call == Error_call::jumps) {
    if (setjmp(call.return_point) != 0) return false;
    mexFunction(num_outputs, outputs, num_inputs, inputs);
    return true;
  }
  try {
    mexFunction(num_outputs, outputs, num_inputs, inputs);
    return true;
  } catch (const Host_error&) {
    return false;
  } catch (const Host_shortage&) {
    call.has_host_failed = true;
    return false;
  }
}

/// Takes over what the module has assigned, of which each has to be an array of its own.
void collect_outputs(Call& call, const std::vector<mxArray*>& outputs, Result& result) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (outputs[i] == nullptr) continue;
    if (i > 0) result.has_assigned_other_outputs = true;
    if (i + num_guards >= outputs.size()) forbid("mexFunction", "assigned an output that nobody has asked for");
    const auto found = place_of(outputs[i]);
    if (found == call.created.end()) {
      forbid("mexFunction", "gave an output that is not the module's own, or is another one too");
      continue;
    }
    if (i == 0) result.output = std::move((*found)[0]);
    if (i > 0 && result.other_outputs.size() == i - 1) result.other_outputs.push_back(std::move((*found)[0]));
    call.created.erase(found);
  }
}

}  // namespace

Call& current_call() {
  if (current == nullptr) {
    std::fputs("a function of the host was called from a thread that it did not call\n", stderr);
    std::abort();
  }
  return *current;
}

void forbid(const char* function, const char* what) {
  const bool was_in_module = std::exchange(is_in_module, false);
  std::string& first = current_call().forbidden_access;
  if (first.empty()) first = std::string(function) + " " + what;
  is_in_module = was_in_module;
}

bool is_to_fail(Host_work work) {
  if (work != shortage.work || shortage.calls_left < 0 || shortage.calls_left-- > 0) return false;
  shortage.has_failed = true;
  return true;
}

void throw_shortage() { throw Host_shortage(); }

std::vector<mxArray::Place>::iterator place_of(const mxArray* array) {
  auto& created = current_call().created;  // the newest are the likeliest
  const auto found = std::find_if(created.rbegin(), created.rend(),
                                  [=](const mxArray::Place& place) { return place.data() == array; });
  return found == created.rend() ? created.end() : found.base() - 1;
}

Failing_host::Failing_host(Host_work work, long count) { shortage = {work, count, false}; }
Failing_host::~Failing_host() { shortage.calls_left = -1; }
bool Failing_host::has_failed() const { return shortage.has_failed; }

Result call(const std::vector<mxArray>& inputs, int num_outputs, Error_call error_call) {
  std::vector<const mxArray*> pointers;
  for (const mxArray& input : inputs) pointers.push_back(&input);
  return call_by_address(pointers, num_outputs, error_call);
}

Result call_by_address(const std::vector<const mxArray*>& inputs, int num_outputs, Error_call error_call) {
  static std::atomic<unsigned long> num_calls = 0;
  Call this_call;
  this_call.error_call = error_call;
  this_call.number = ++num_calls;
  current = &this_call;
  std::vector<mxArray> before;
  for (const mxArray* input : inputs) before.push_back(*input);
  std::vector<const mxArray*> input_pointers = inputs;
  std::vector<mxArray*> outputs(static_cast<std::size_t>(std::max(num_outputs, 1)) + num_guards, nullptr);

  is_in_module = true;
  const bool has_returned =
      run(this_call, num_outputs, outputs.data(), static_cast<int>(inputs.size()), input_pointers.data());
  is_in_module = false;

  Result result;
  collect_outputs(this_call, outputs, result);
  if (has_returned && !this_call.created.empty()) forbid("mexFunction", "made an array that it left to itself");
  result.identifier = this_call.identifier;
  result.message = this_call.message;
  result.has_host_failed = this_call.has_host_failed;
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
  call_->matrix_sizes.clear();
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
