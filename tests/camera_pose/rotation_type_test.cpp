// SPDX-License-Identifier: BSD-3-Clause
// The table of the ten rotation types.
#include "camera_pose/rotation_type.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <set>
#include <string>

namespace {

struct Expected {
  int id;
  const char* name;
  int rotation_size, observation_size, num_representations;
  double difference_step;

  friend std::ostream& operator<<(std::ostream& stream, const Expected& type) { return stream << type.name; }
};

constexpr Expected expected_types[] = {
    {0, "aau", 3, 2, 1, 0.0314},         {1, "aan", 4, 2, 1, 0.0314},        {2, "qu", 4, 2, 1, 0.314},
    {3, "qn", 4, 2, 1, 0.314},           {10, "aau-bv", 3, 3, 1, 0.0314},    {11, "aan-bv", 4, 3, 1, 0.0314},
    {12, "qu-bv", 4, 3, 1, 0.314},       {-1, "qu,aau,aan", 4, 2, 3, 0.314}, {-2, "aau,qu,aan", 3, 2, 3, 0.0314},
    {-3, "aan,qu,aau", 4, 2, 3, 0.0314},
};

class RotationTypeTable : public testing::TestWithParam<Expected> {};

TEST_P(RotationTypeTable, HoldsTheSizesOfTheType) {
  const kelvane::Rotation_type* type = kelvane::find_rotation_type(GetParam().id);
  ASSERT_NE(type, nullptr);
  EXPECT_EQ(type->id, GetParam().id);
  EXPECT_STREQ(type->name, GetParam().name);
  EXPECT_EQ(type->rotation_size(), GetParam().rotation_size);
  EXPECT_EQ(type->num_dimensions(), GetParam().rotation_size + 3);
  EXPECT_EQ(type->observation_size, GetParam().observation_size);
  EXPECT_EQ(type->is_bearing(), GetParam().observation_size == 3);
  EXPECT_EQ(type->num_representations, GetParam().num_representations);
  EXPECT_EQ(type->difference_step(), GetParam().difference_step);
}

TEST_P(RotationTypeTable, ReadsTheSearchVectorAsTheFirstRepresentationOfTheName) {
  const std::string name = GetParam().name;
  const auto expected = name.rfind("aau", 0) == 0   ? kelvane::Representation::rotation_vector
                        : name.rfind("aan", 0) == 0 ? kelvane::Representation::angle_axis
                                                    : kelvane::Representation::quaternion;
  EXPECT_EQ(kelvane::find_rotation_type(GetParam().id)->representation, expected);
}

INSTANTIATE_TEST_SUITE_P(AllTypes, RotationTypeTable, testing::ValuesIn(expected_types));

TEST(RotationType, HasNoRowForAnyOtherNumber) {
  std::set<int> ids;
  for (const Expected& type : expected_types) ids.insert(type.id);
  for (int id = -1000; id <= 1000; ++id)
    EXPECT_EQ(kelvane::find_rotation_type(id) != nullptr, ids.count(id) == 1) << id;
  EXPECT_EQ(kelvane::find_rotation_type(std::numeric_limits<int>::max()), nullptr);
  EXPECT_EQ(kelvane::find_rotation_type(std::numeric_limits<int>::min()), nullptr);
}

}  // namespace
