// SPDX-License-Identifier: BSD-3-Clause
// In a text word by word, so that what lies between the numbers stays.
#include "model_files/edited_copy.h"

#include <algorithm>
#include <cstring>

#include "model_files/decimal.h"
#include "model_files/text_source.h"

namespace kelvane {
namespace {

/// Writes what lies between, then the number; returns what is behind it.
std::size_t replace_number(const Model_file& from, std::size_t done, std::size_t offset, double number,
                           Atomic_file& to) {
  to.write(from.bytes() + done, offset - done);
  if (from.kind() == Model_file::Kind::binary) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    to.write(bytes, sizeof bytes);
    return offset + sizeof number;
  }
  to.write(text_of_decimal(number));
  return static_cast<std::size_t>(read_decimal(from.bytes() + offset).end - from.bytes());
}

}  // namespace

void write_edited(const Model_file& from, std::vector<Edit> edits, Atomic_file& to) {
  std::sort(edits.begin(), edits.end(), [](const Edit& a, const Edit& b) { return a.offset < b.offset; });
  const bool is_text = from.kind() == Model_file::Kind::text;
  std::size_t done = 0;
  for (const Edit& edit : edits) {
    std::size_t offset = edit.offset;
    for (const double number : edit.numbers) {
      done = replace_number(from, done, offset, number, to);
      offset = is_text ? offset_of_word(from, done, 0) : done;
    }
  }
  to.write(from.bytes() + done, from.size() - done);
}

}  // namespace kelvane
