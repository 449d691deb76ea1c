// SPDX-License-Identifier: BSD-3-Clause
// The stand-in host notices what a module must not do to it, so that the tests on it can fail.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "mex_host.h"

namespace {

using mex_host::Error_call;
using mex_host::Failing_host;
using mex_host::Host_work;
using mex_host::Result;
using mex_host::scalar;

using Module = std::function<void(mxArray** outputs, const mxArray* const* inputs)>;
Module module;  // what mexFunction does

/// An input of every kind that holds something, in this order.
std::vector<mxArray> inputs = {scalar(3.0),
                               mex_host::cell({scalar(4.0)}),
                               mex_host::structure({{"a", mex_host::text("word")}}),
                               mex_host::sparse(mex_host::row({0.0, 5.0})),
                               mex_host::converted(mex_host::row({1.0, 300.0}), "uint8"),
                               mex_host::other_class("function_handle")};
enum Input { number, cell, structure, sparse, integers, handle };

Result call(const Module& the_module, Error_call error_call = Error_call::throws, int num_outputs = 1) {
  module = the_module;
  return mex_host::call(inputs, num_outputs, error_call);
}

std::string forbidden(const Module& the_module) { return call(the_module).forbidden_access; }

const char* one_field[] = {"a"};

TEST(StandInHost, AllowsWhatHostsAllow) {
  const Result result = call(
      [](mxArray** out, const mxArray* const* in) {
        out[0] = mxCreateStructMatrix(1, 1, 1, one_field);
        mxArray* const value = mxCreateCellMatrix(1, 2);
        mxSetFieldByNumber(out[0], 0, 0, value);
        mxSetCell(value, 1, mxDuplicateArray(in[number]));  // into what lies in another already
        mxDestroyArray(mxCreateString("gone"));
        out[1] = mxCreateDoubleScalar(mxGetPr(mxGetCell(in[cell], 0))[0] + mxGetPr(in[sparse])[0]);
        char text[8] = {};
        EXPECT_EQ(mxGetString(mxGetField(in[structure], 0, "a"), text, sizeof text), 0);
        EXPECT_STREQ(text, "word");
        EXPECT_EQ(mxGetString(mxGetField(in[structure], 0, "a"), text, 4), 1);
        EXPECT_STREQ(text, "wor");
        EXPECT_EQ(mxGetField(in[structure], 0, "b"), nullptr);
        EXPECT_EQ(mxGetJc(in[sparse])[2], 1U);
        EXPECT_EQ(static_cast<unsigned char*>(mxGetData(in[integers]))[1], 255U);
        EXPECT_EQ(mxGetClassID(in[integers]), mxUINT8_CLASS);
        EXPECT_EQ(mxGetDimensions(in[integers])[1], 2U);
        EXPECT_FALSE(mxIsNumeric(in[handle]));
      },
      Error_call::throws, 2);
  EXPECT_EQ(result.forbidden_access, "");
  EXPECT_FALSE(result.has_changed_inputs);
  EXPECT_TRUE(mex_host::is_same(mex_host::field(*result.output, "a").elements.at(1).at(0), inputs[number]));
  EXPECT_EQ(result.other_outputs.at(0).values, std::vector<double>{9.0});
}

TEST(StandInHost, NoticesQuestionsWithoutAnAnswer) {
  const auto asked = [](const std::function<void(const mxArray* const*)>& question) {
    return forbidden([&](mxArray**, const mxArray* const* in) { question(in); });
  };
  EXPECT_EQ(asked([](const auto* in) { mxGetPr(in[handle]); }), "mxGetPr of an array without such data");
  EXPECT_EQ(asked([](const auto* in) { mxGetPr(in[integers]); }), "mxGetPr of an array without such data");
  EXPECT_EQ(asked([](const auto* in) { mxGetData(in[handle]); }), "mxGetData of an array without such data");
  EXPECT_EQ(asked([](const auto* in) { mxGetData(mxGetField(in[structure], 0, "a")); }),
            "mxGetData of an array without such data");
  EXPECT_EQ(asked([](const auto* in) { mxGetLogicals(in[number]); }), "mxGetLogicals of an array without such data");
  EXPECT_EQ(asked([](const auto* in) { mxGetIr(in[number]); }), "mxGetIr of what is not sparse");
  EXPECT_EQ(asked([](const auto* in) { mxGetJc(in[handle]); }), "mxGetJc of what is not sparse");
  EXPECT_EQ(asked([](const auto* in) { mxGetCell(in[number], 0); }), "mxGetCell of no cell");
  EXPECT_EQ(asked([](const auto* in) { mxGetCell(in[cell], 1); }), "mxGetCell of what holds nothing there");
  EXPECT_EQ(asked([](const auto* in) { mxGetField(in[structure], 1, "a"); }), "mxGetField of what holds nothing there");
  EXPECT_EQ(asked([](const auto* in) { mxGetFieldByNumber(in[structure], 0, -1); }),
            "mxGetFieldByNumber by a number that no field has");
  EXPECT_EQ(asked([](const auto* in) { mxGetFieldByNumber(in[cell], 0, 0); }), "mxGetFieldByNumber of no struct");
}

TEST(StandInHost, NoticesArraysInTheWrongPlace) {
  const auto set = [](const std::function<void(mxArray*, mxArray*, const mxArray* const*)>& work) {
    return forbidden([&](mxArray** out, const mxArray* const* in) {
      out[0] = mxCreateCellMatrix(1, 2);
      work(out[0], mxCreateDoubleScalar(1.0), in);
    });
  };
  const std::string not_own = " of an array that is not the module's own";
  EXPECT_EQ(set([](auto* a, auto* x, auto) { mxSetCell(a, 0, x), mxSetCell(a, 0, mxCreateString("")); }),
            "mxSetCell where something lies already");
  EXPECT_EQ(set([](auto* a, auto* x, auto) { mxSetCell(a, 0, x), mxSetCell(a, 1, x); }),
            "mxSetCell" + not_own + ", or lies elsewhere");
  EXPECT_EQ(set([](auto* a, auto*, auto in) { mxSetCell(a, 0, const_cast<mxArray*>(in[number])); }),
            "mxSetCell" + not_own + ", or lies elsewhere");
  EXPECT_EQ(set([](auto* a, auto*, auto in) { mxSetCell(a, 0, mxGetCell(in[cell], 0)); }),
            "mxSetCell" + not_own + ", or lies elsewhere");
  EXPECT_EQ(set([](auto* a, auto* x, auto) { mxSetCell(a, 2, x); }), "mxSetCell where there is no place");
  EXPECT_EQ(set([](auto* a, auto*, auto) { mxSetCell(a, 0, a); }), "mxSetCell of an array into itself");
  EXPECT_EQ(set([](auto*, auto* x, auto in) { mxSetCell(const_cast<mxArray*>(in[cell]), 0, x); }),
            "mxSetCell into an array that is not the module's own");
  EXPECT_EQ(set([](auto* a, auto* x, auto) { mxSetFieldByNumber(a, 0, 0, x); }),
            "mxSetFieldByNumber where there is no field");
  EXPECT_EQ(set([](auto*, auto*, auto in) { mxDestroyArray(const_cast<mxArray*>(in[number])); }),
            "mxDestroyArray" + not_own);
  EXPECT_EQ(set([](auto*, auto*, auto) {}), "mexFunction made an array that it left to itself");
}

TEST(StandInHost, NoticesOutputsThatAreNone) {
  EXPECT_EQ(forbidden([](auto* out, auto in) { out[0] = const_cast<mxArray*>(in[number]); }),
            "mexFunction gave an output that is not the module's own, or is another one too");
  EXPECT_EQ(call([](auto* out, auto) { out[0] = out[1] = mxCreateDoubleScalar(1.0); }, Error_call::throws, 2)
                .forbidden_access,
            "mexFunction gave an output that is not the module's own, or is another one too");
  EXPECT_EQ(forbidden([](auto* out, auto) { out[1] = mxCreateDoubleScalar(1.0); }),
            "mexFunction assigned an output that nobody has asked for");
}

TEST(StandInHostDeathTest, NoticesThreadsThatItHasNotCalled) {
  EXPECT_DEATH(std::thread([] { mxGetM(&inputs[number]); }).join(), "from a thread that it did not call");
}

TEST(StandInHost, NoticesChangedInputs) {
  for (const Input place : {number, sparse}) {
    const std::vector<mxArray> before = inputs;
    const Result result = call([=](auto*, auto in) { mxGetPr(in[place])[0] = -0.0; });
    EXPECT_TRUE(result.has_changed_inputs);
    inputs = before;
  }
  EXPECT_FALSE(call([](auto*, auto in) { mxGetPr(in[number])[0] = 3.0; }).has_changed_inputs);
}

TEST(StandInHost, RunsOutOfMemoryWhereItIsTold) {
  int num_made = 0;
  const Module makes_three = [&](mxArray** out, const mxArray* const* in) {
    num_made = 0;
    out[0] = mxCreateCellMatrix(1, 2);
    ++num_made;
    mxSetCell(out[0], 0, mxDuplicateArray(in[number]));
    ++num_made;
    mxSetCell(out[0], 1, mxCreateDoubleMatrix(1, 1, mxREAL));
    ++num_made;
  };
  for (const Error_call error_call : {Error_call::throws, Error_call::jumps}) {
    for (int count = 0; count < 4; ++count) {
      const Failing_host host(Host_work::creating, count);
      const Result result = call(makes_three, error_call);
      EXPECT_EQ(num_made, count == 3 ? 3 : count);
      EXPECT_EQ(host.has_failed(), count < 3);
      EXPECT_EQ(result.has_host_failed, count < 3);
      EXPECT_EQ(result.forbidden_access, "");
    }
  }
  const Failing_host host(Host_work::reading, 1);
  call([](auto*, auto in) {
    EXPECT_EQ(mxGetM(in[number]), 1U);
    EXPECT_THROW(mxGetM(in[number]), std::bad_alloc);
  });
  EXPECT_TRUE(host.has_failed());
}

}  // namespace

void mexFunction(int /*nlhs*/, mxArray* plhs[], int /*nrhs*/, const mxArray* prhs[]) { module(plhs, prhs); }
