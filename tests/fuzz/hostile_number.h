// SPDX-License-Identifier: BSD-3-Clause
// A number taken from a fuzzer's bytes.
#pragma once

#include <cstddef>

#include "fuzz/byte_source.h"
#include "trust/hostile_arrays.h"

namespace fuzz {

/// A value from the table, any bit pattern, a small whole number, or the old value changed a little or a lot.
inline double hostile_number(Byte_source& bytes, double old) {
  const std::size_t kind = bytes.choice(trust::hostile_values.size() + 4);
  if (kind < trust::hostile_values.size()) return trust::hostile_values[kind].value;
  switch (kind - trust::hostile_values.size()) {
    case 0:
      return bytes.raw_double();
    case 1:
      return static_cast<double>(bytes.byte()) - 128.0;
    case 2:
      return old + (static_cast<double>(bytes.byte()) - 128.0) * 1e-3;
    default:
      return old * static_cast<double>(bytes.byte());
  }
}

}  // namespace fuzz
