// SPDX-License-Identifier: BSD-3-Clause
// What the engine reads and writes for a host: every class in every input, and the same points in the host's arrays.
#include <unistd.h>

#include <cmath>

#include "mex_host.h"
#include "support/captured_output.h"
#include "support/colmap_forms.h"
#include "support/model_folder.h"
#include "trust/engine_outcome.h"
#include "trust/kinds_of_arrays.h"
#include "trust/tested_call.h"

namespace {

using mex_host::field;
using mex_host::text;
using support::Model_folder;
using trust::Tested_call;

const char* const bal = "1 1 1\n0 0 1 2\n0 0 0 4 5 6 700 0 0\n7 8 -9\n";

/// In a folder of its own, where also lies what a hostile name makes.
class ModelCalls : public testing::Test {
 protected:
  ModelCalls() : here_(::getcwd(nullptr, 0)) {
    EXPECT_EQ(::chdir(folder_.path().c_str()), 0);
    for (const auto& [name, bytes] : support::small_model()) folder_.write(name, bytes);
    folder_.write("bal.txt", bal);
  }
  ~ModelCalls() override {
    EXPECT_EQ(::chdir(here_), 0);
    std::free(here_);
  }

  std::vector<Tested_call> good_calls() const {
    const mxArray folder = text(folder_.path());
    const mxArray poses = mex_host::real_matrix(12, 1, {1, 0, 0, 0, 1, 0, 0, 0, 1, 4, 5, 6});
    const mxArray file = text(folder_.path("bal.txt"));
    return {{"read_colmap", {text("read_colmap"), folder, mex_host::row({3})}},
            {"read_bal", {text("read_bal"), file}},
            {"write_colmap", {text("write_colmap"), folder, folder, mex_host::cell({text("c.jpg")}), poses}},
            {"write_bal", {text("write_bal"), file, file, mex_host::row({0}), poses}},
            {"write_file", {text("write_file"), text(folder_.path("new")), text("all of it")}}};
  }

  Model_folder folder_;
  char* here_;
};

TEST_F(ModelCalls, EndWellWithAnythingInAnyPlace) {
  const std::vector<trust::Named_array> arrays = trust::Kinds_of_arrays().all();
  support::Captured_output output;
  for (Tested_call call : good_calls()) {
    EXPECT_TRUE(call.run().output) << call.name << ": " << call.run().message;
    for (std::size_t i = 1; i < call.inputs.size(); ++i) {
      const mxArray good = call.inputs[i];
      for (const trust::Named_array& array : arrays) {
        SCOPED_TRACE(call.name + ", input " + std::to_string(i) + " is " + array.name);
        call.inputs[i] = array.array;
        for (const auto error_call : trust::all_error_calls) {
          const mex_host::Result result = call.run(error_call);
          EXPECT_TRUE(trust::is_in_order(result));
          EXPECT_TRUE(result.output || trust::engine::is_error(result)) << result.message;
        }
      }
      call.inputs[i] = good;
    }
  }
  EXPECT_EQ(output.text(), "");
}

TEST_F(ModelCalls, HandOverTheChosenImage) {
  const mex_host::Result result = good_calls()[0].run();
  ASSERT_TRUE(result.output) << result.message;
  const mxArray& views = *result.output;
  EXPECT_EQ(field(views, "id").values, (std::vector<double>{3}));
  EXPECT_EQ(field(views, "camera").values, (std::vector<double>{1}));
  const mxArray& camera = field(views, "cameras");
  EXPECT_EQ(field(camera, "parameters").values, (std::vector<double>{500, 320, 240}));
  EXPECT_EQ(field(camera, "image_size").values, (std::vector<double>{640, 480}));
  EXPECT_EQ(field(views, "points").elements.at(0).at(0).values, (std::vector<double>{4, 5, 6, 1, 2, 3}));
  EXPECT_EQ(field(views, "observations").elements.at(0).at(0).values, (std::vector<double>{1.5, 2.25, 3.125, 4}));
  EXPECT_EQ(field(views, "point_ids").elements.at(0).at(0).values, (std::vector<double>{8, 6}));
}

TEST_F(ModelCalls, WriteWhatTheyAreHanded) {
  const std::vector<Tested_call> calls = good_calls();
  for (std::size_t i = 2; i < calls.size(); ++i) EXPECT_TRUE(calls[i].run().output) << calls[i].run().message;
  EXPECT_NE(support::bytes_of("images.txt").find("\n4 1 0 0 0 -4 -5 -6 5 c.jpg\n"), std::string::npos);
  EXPECT_NE(support::bytes_of("bal.txt").find("700"), std::string::npos);
  EXPECT_EQ(support::bytes_of("new"), "all of it");
  Tested_call call = calls[2];
  call.inputs[4].values[0] = 2;
  EXPECT_EQ(call.run().identifier, "kelvane:notRotation");
  call.inputs[4].values[0] = std::nan("");
  EXPECT_EQ(call.run().identifier, "kelvane:notFinite");
}

}  // namespace
