// SPDX-License-Identifier: BSD-3-Clause
// Names of a user's own beside the library: nothing of ours but the published Camera_position_* and the namespaces fw
// and kelvane is global, so that neither takes the other's definition. These once were ours.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "contract/refinement.h"
#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_grad_func_hybrid.h"
#include "framework/camera_position_opt_func.h"
#include "fw_opt/linear_taylor_solver.h"
#include "fw_tools/Opencv_io.h"
#include "fw_tools/rotation.h"
#include "fw_tools/rotation_jacobians.h"

enum class Representation { of_the_user };

struct Rotation_type {
  Representation representation;
  char of_the_user[1000];
};

struct Intrinsics {
  Intrinsics(double f, double cx, double cy);
  double sum;
};

class Packed_points {
 public:
  Packed_points(const double* points, std::size_t count);
  ~Packed_points();
  std::size_t size() const;

 private:
  std::size_t size_;
};

namespace site {
int refinement = 1;
}
namespace framework {
struct Entries_of_matrix {
  int of_the_user = 2;
};
}  // namespace framework
namespace pose_refinement {
int refine() { return 3; }
}  // namespace pose_refinement

const Rotation_type* find_rotation_type(int id) {
  static const Rotation_type type{};
  return id == 5 ? &type : nullptr;
}
Intrinsics::Intrinsics(double f, double cx, double cy) : sum(f + cx + cy) {}
Packed_points::Packed_points(const double* /*points*/, std::size_t count) : size_(count) {}
Packed_points::~Packed_points() { size_ = 0; }
std::size_t Packed_points::size() const { return size_; }

namespace {

TEST(Names, OfTheUserAreHis) {
  EXPECT_NE(find_rotation_type(5), nullptr);
  EXPECT_EQ(find_rotation_type(0), nullptr);
  EXPECT_EQ(Intrinsics(1, 2, 3).sum, 6.0);
  EXPECT_EQ(Packed_points(nullptr, 7).size(), 7U);
  EXPECT_EQ(site::refinement + framework::Entries_of_matrix().of_the_user + pose_refinement::refine(), 6);
}

TEST(Names, OfTheLibraryAreItsOwn) {
  const std::vector<double> points = {-1, -1, 0, 1, -1, 0.2, 1, 1, 0, -1, 1, 0.4, 0, 0, 1};
  const std::vector<double> camera = {0.1, 0.2, 0.3, 0, 0, -4, 800, 320, 240};
  const std::vector<double> pixels(10, 300.0);
  kelvane::contract::Arguments arguments{};
  arguments.type = kelvane::find_rotation_type(0);
  ASSERT_NE(arguments.type, nullptr);
  arguments.num_points = 5;
  arguments.camera_parameters = camera.data();
  arguments.points = points.data();
  arguments.observations = pixels.data();
  EXPECT_EQ(kelvane::contract::refine(arguments, kelvane::contract::Settings(arguments)).size(), 6U);
}

}  // namespace
