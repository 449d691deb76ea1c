// SPDX-License-Identifier: BSD-3-Clause
// mexFunction on the stand-in host: outputs, errors and what must not happen.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mex_host.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using mex_host::Error_call;
using mex_host::real_matrix;
using mex_host::row;
using mex_host::scalar;

/// Camera-frame points in front of a camera at the origin that looks along z, and their pixels.
struct Scene {
  std::vector<double> points;
  std::vector<double> pixels;
  std::size_t size = 8;

  Scene() {
    for (std::size_t i = 0; i < size; ++i) {
      const auto k = static_cast<double>(i);
      const double X = 0.3 * (i % 2 == 0 ? -1.0 : 1.0) + 0.01 * k;
      const double Y = 0.2 * (i % 4 < 2 ? -1.0 : 1.0) - 0.02 * k;
      const double Z = 2.0 + 0.3 * static_cast<double>(i % 3);
      points.insert(points.end(), {X, Y, Z});
      pixels.insert(pixels.end(), {500 * X / Z + 320, 500 * Y / Z + 240});
    }
  }

  /// Inputs 1 to 3 from a start with the rotation `r` at the centre (0.05, -0.03, 0.02).
  std::vector<mxArray> inputs(std::vector<double> r) const {
    r.insert(r.end(), {0.05, -0.03, 0.02, 500, 320, 240});
    return {row(r), real_matrix(3, size, points), real_matrix(2, size, pixels)};
  }
};

std::vector<mxArray> with(std::vector<mxArray> inputs, std::initializer_list<mxArray> more) {
  inputs.insert(inputs.end(), more);
  return inputs;
}

TEST(Gateway, ReturnsTheRefinedPoseAsARow) {
  const auto result = mex_host::call(Scene().inputs({0.02, 0.01, -0.03}));
  ASSERT_TRUE(result.output) << result.message;
  EXPECT_EQ(result.output->rows, 1U);
  EXPECT_EQ(result.output->columns, 6U);
  EXPECT_TRUE(support::is_close(result.output->values, std::vector<double>(6, 0.0), tolerance::solved));
  EXPECT_FALSE(result.has_changed_inputs);
}

TEST(Gateway, ReturnsSevenColumnsForFourRotationEntries) {
  const auto inputs = with(Scene().inputs({0.1, 0.2, 1.1, 0.01}), {row({0, 0, -1e9, 0}), scalar(1)});
  const auto result = mex_host::call(inputs);
  ASSERT_TRUE(result.output) << result.message;
  EXPECT_EQ(result.output->rows, 1U);
  EXPECT_EQ(result.output->columns, 7U);
}

TEST(Gateway, ReadsAColumnOfCameraParametersInStorageOrder) {
  auto inputs = Scene().inputs({0.02, 0.01, -0.03});
  const auto from_row = mex_host::call(inputs);
  inputs[0] = mex_host::column(inputs[0].values);
  const auto from_column = mex_host::call(inputs);
  ASSERT_TRUE(from_row.output);
  ASSERT_TRUE(from_column.output);
  EXPECT_EQ(from_row.output->values, from_column.output->values);
}

class GatewayError : public testing::TestWithParam<Error_call> {};

TEST_P(GatewayError, CarriesIdentifierAndReportAndAssignsNothing) {
  auto inputs = Scene().inputs({0, 0, 0});
  inputs[1] = real_matrix(8, 3, inputs[1].values);
  const auto result = mex_host::call(inputs, 1, GetParam());
  EXPECT_FALSE(result.output);
  EXPECT_EQ(result.identifier, "Mex:exception");
  EXPECT_EQ(result.message,
            support::block("kelvane_mex.cpp", 1807, "void mexFunction(int, mxArray**, int, const mxArray**)",
                           "Input 2 should be a matrix of 3D points, with size N by 3. instead size of 8 by 3 was "
                           "passed"));
  EXPECT_FALSE(result.has_changed_inputs);
}

TEST_P(GatewayError, PassesPercentSignsAndLongTextsThrough) {
  const std::string name = "%s%n" + std::string(100000, 'x') + "100%";
  const auto inputs = with(Scene().inputs({0, 0, 0}), {row({0, 0, 0, 0}), mex_host::other_class(name)});
  const auto result = mex_host::call(inputs, 1, GetParam());
  EXPECT_EQ(result.message,
            support::block("kelvane_mex.cpp", 1764, "void mexFunction(int, mxArray**, int, const mxArray**)",
                           "Double scalar expected as rotation type, got 1 by 1 of " + name));
}

TEST_P(GatewayError, StacksTheContextOfEveryLayer) {
  // The objective of a bearing type wants the identity as K, and only the solver asks it.
  std::vector<mxArray> inputs{row({0, 0, 0, 0, 0, 0, 1, 0.5, 0}), real_matrix(3, 3, std::vector<double>(9, 1.0)),
                              real_matrix(3, 3, std::vector<double>(9, 1.0)), row({0, 0, 0, 0}), scalar(10)};
  const auto result = mex_host::call(inputs, 1, GetParam());
  const std::string vector = "std::vector<double, std::allocator<double> >";
  const std::string in_solver = "(const " + vector + "&, const " + vector + "&";
  EXPECT_EQ(
      result.message,
      support::block("kelvane_mex.cpp", 2003, "void mexFunction(int, mxArray**, int, const mxArray**)",
                     "Num points=3 num_eqs=9 (vals of -1 mean not initialised)", 3) +
          support::block("fw_opt/solver.cpp", 80, "virtual " + vector + " fw::Solver::optimise" + in_solver + ")", "",
                         2) +
          support::block(
              "fw_opt/linear_taylor_solver.cpp", 200,
              "virtual void fw::Linear_taylor_solver::inner_optimise" + in_solver + ", " + vector + "&, double&, int)",
              "", 1) +
          support::block("kelvane_mex.cpp", 1662,
                         "virtual std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>&) "
                         "const",
                         "For bearing vectors, expected k to be identity, instead got 3\t3\n1\t0\t0.5\t\n0\t1\t0\t\n"
                         "0\t0\t1\t\n") +
          "\n\n\n");
  EXPECT_FALSE(result.output);
}

TEST_P(GatewayError, NeverAsksForTheDataOfARefusedArray) {
  const auto good = with(Scene().inputs({0, 0, 0}), {row({0, 0, 0, 0}), scalar(0), row(std::vector<double>(16, 1.0))});
  for (std::size_t position = 0; position < good.size(); ++position) {
    for (const char* name : {"function_handle", "cell", "struct", "single", "int32", "char", "logical"}) {
      SCOPED_TRACE(name + std::string(" as input ") + std::to_string(position + 1));
      auto inputs = good;
      inputs[position] = mex_host::other_class(name, good[position].rows, good[position].columns);
      const auto result = mex_host::call(inputs, 1, GetParam());
      EXPECT_EQ(result.identifier, "Mex:exception");
      EXPECT_EQ(result.forbidden_access, "");
      EXPECT_FALSE(result.output);
    }
  }
}

TEST_P(GatewayError, RefusesSparseAndComplexLikeAnotherClass) {
  auto inputs = Scene().inputs({0, 0, 0});
  auto sparse = inputs;
  sparse[0].is_sparse = true;
  auto complex = inputs;
  complex[0].is_complex = true;
  const std::string expected =
      support::block("kelvane_mex.cpp", 1790, "void mexFunction(int, mxArray**, int, const mxArray**)",
                     "Input 1 should be an double vector");
  EXPECT_EQ(mex_host::call(sparse, 1, GetParam()).message, expected);
  EXPECT_EQ(mex_host::call(complex, 1, GetParam()).message, expected);
}

TEST_P(GatewayError, IsToldAlsoWhereAHostThrowsWhatIsNoException) {
  auto inputs = Scene().inputs({0, 0, 0});
  inputs[1].throws_int = true;
  const auto result = mex_host::call(inputs, 1, GetParam());
  EXPECT_EQ(result.identifier, "Mex:exception");
  EXPECT_EQ(result.message, "unknown exception");
  EXPECT_FALSE(result.output);
}

TEST_P(GatewayError, LeavesTheNextCallAsItWas) {
  const Scene scene;
  const auto before = mex_host::call(scene.inputs({0.02, 0.01, -0.03}));
  mex_host::call({}, 1, GetParam());
  const auto after = mex_host::call(scene.inputs({0.02, 0.01, -0.03}));
  ASSERT_TRUE(before.output);
  ASSERT_TRUE(after.output);
  EXPECT_EQ(before.output->values, after.output->values);
}

TEST_P(GatewayError, RefusesEveryOtherNumberOfInputsAndOutputs) {
  const auto good = with(Scene().inputs({0, 0, 0}),
                         {row({0, 0, 0, 0}), scalar(0), row(std::vector<double>(16, 1.0)), scalar(0), scalar(0)});
  for (const std::size_t count : {0U, 1U, 2U, 7U, 8U}) {
    const std::vector<mxArray> inputs(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(count));
    const auto result = mex_host::call(inputs, 1, GetParam());
    EXPECT_NE(result.message.find("3 to 6 inputs required. Got " + std::to_string(count) + " "), std::string::npos);
  }
  for (const int count : {0, 2}) {
    const auto result = mex_host::call(Scene().inputs({0, 0, 0}), count, GetParam());
    EXPECT_NE(result.message.find("1 output required. Got " + std::to_string(count) + "\n"), std::string::npos);
    EXPECT_FALSE(result.output);
  }
}

INSTANTIATE_TEST_SUITE_P(Hosts, GatewayError, testing::Values(Error_call::throws, Error_call::jumps),
                         [](const auto& host) { return host.param == Error_call::throws ? "Throws" : "Jumps"; });

}  // namespace
