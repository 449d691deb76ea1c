// SPDX-License-Identifier: BSD-3-Clause
// From the published order of equations to the packed one.
#include "fw_opt/packed_equations.h"

namespace fw {

bool Packed_layout::operator==(const Packed_layout& other) const {
  return num_items == other.num_items && num_outputs == other.num_outputs && num_stacks == other.num_stacks;
}

void Packed_layout::pack(const double* published, double* packed) const {
  for (std::size_t stack = 0; stack < num_stacks; ++stack) {
    for (std::size_t first = 0; first < num_items; first += group_size, packed += group_size * num_outputs) {
      for (std::size_t lane = 0; lane < group_size; ++lane) {
        const bool is_filling = first + lane >= num_items;
        for (std::size_t output = 0; output < num_outputs; ++output) {
          packed[output * group_size + lane] = is_filling ? 0.0 : *published++;
        }
      }
    }
  }
}

void Packed_layout::unpack(const double* packed, double* published) const {
  for (std::size_t stack = 0; stack < num_stacks; ++stack) {
    for (std::size_t i = 0; i < num_items; ++i) {
      const double* item = packed + (stack * num_groups() + i / group_size) * group_size * num_outputs + i % group_size;
      for (std::size_t output = 0; output < num_outputs; ++output) *published++ = item[output * group_size];
    }
  }
}

}  // namespace fw
