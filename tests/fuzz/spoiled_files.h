// SPDX-License-Identifier: BSD-3-Clause
// Good files, spoiled step by step as a fuzzer's bytes say.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <string>

#include "fuzz/byte_source.h"

namespace fuzz {

using Files = std::map<std::string, std::string>;

inline void require(bool is_true, const char* what) {
  if (is_true) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

/// Words and characters that change what a text means.
inline std::string piece(Byte_source& bytes) {
  static const char* const pieces[] = {"-",
                                       "+",
                                       ".",
                                       "e",
                                       "1e",
                                       "nan",
                                       "inf",
                                       "1e-310",
                                       "1e400",
                                       "\n",
                                       "\r\n",
                                       "\t",
                                       " ",
                                       "#",
                                       "0",
                                       "-1",
                                       "4294967296",
                                       "18446744073709551615",
                                       "9007199254740993",
                                       "\xEF\xBB\xBF",
                                       "CAMERA",
                                       "IMU",
                                       "OPENCV",
                                       "1 2 3 ",
                                       "\n\n"};
  return pieces[bytes.choice(std::size(pieces))];
}

/// One step: a byte set, cut out, or put in, a piece put in or a number doubled; or the file ended, or made anew of
/// what is left.
inline void spoil(Byte_source& bytes, std::string& file) {
  const std::size_t step = bytes.choice(7);
  const std::size_t place = 256U * bytes.byte() + bytes.byte();
  const std::size_t at = file.empty() ? 0 : place % (file.size() + 1);
  const auto value = static_cast<char>(bytes.byte());
  if (step == 0 && at < file.size()) file[at] = value;
  if (step == 1) file.erase(at, static_cast<unsigned char>(value) % 9U);
  if (step == 2) file.insert(at, 1, value);
  if (step == 3) file.insert(at, piece(bytes));
  if (step == 4) file.insert(at, file.substr(at, static_cast<unsigned char>(value)));
  if (step == 5) file.resize(at);
  if (step == 6) file = bytes.rest();
}

/// Until the bytes are used up.
inline Files spoiled(Byte_source& bytes, Files files) {
  while (!bytes.is_empty()) {
    const auto file = std::next(files.begin(), static_cast<std::ptrdiff_t>(bytes.choice(files.size())));
    spoil(bytes, file->second);
  }
  return files;
}

}  // namespace fuzz
