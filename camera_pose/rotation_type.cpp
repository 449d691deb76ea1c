// SPDX-License-Identifier: BSD-3-Clause
// The table of the ten rotation types.
#include "camera_pose/rotation_type.h"

namespace {

constexpr Rotation_type rotation_types[] = {
    {0, "aau", Representation::rotation_vector, 2, 1},
    {1, "aan", Representation::angle_axis, 2, 1},
    {2, "qu", Representation::quaternion, 2, 1},
    {3, "qn", Representation::quaternion, 2, 1},
    {10, "aau-bv", Representation::rotation_vector, 3, 1},
    {11, "aan-bv", Representation::angle_axis, 3, 1},
    {12, "qu-bv", Representation::quaternion, 3, 1},
    {-1, "qu,aau,aan", Representation::quaternion, 2, 3},
    {-2, "aau,qu,aan", Representation::rotation_vector, 2, 3},
    {-3, "aan,qu,aau", Representation::angle_axis, 2, 3},
};

}  // namespace

const Rotation_type* find_rotation_type(int id) {
  for (const Rotation_type& type : rotation_types) {
    if (type.id == id) return &type;
  }
  return nullptr;
}
