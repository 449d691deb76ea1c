// SPDX-License-Identifier: BSD-3-Clause
// Names as they may be told.
#include "model_files/paths.h"

namespace {

TEST(Shown, HasNoControlCharacters) {
  EXPECT_EQ(kelvane::shown("a\x1B[31m\n\x7F b"), "a?[31m?? b");
  EXPECT_EQ(kelvane::shown("a\xC2\x9B"
                           "b\xC3\xA4"),
            "a??b\xC3\xA4");
  EXPECT_EQ(kelvane::shown(std::string("a\0b", 3)), "a?b");
  EXPECT_EQ(kelvane::shown_path("/a\nb"), "/a?b");
  EXPECT_EQ(kelvane::shown_path(std::string(5000, 'x') + "/name"), "..." + std::string(995, 'x') + "/name");
}

TEST(Shown, CutsALongNameBetweenCharacters) {
  EXPECT_EQ(kelvane::shown(std::string(60, 'x')), std::string(60, 'x'));
  EXPECT_EQ(kelvane::shown(std::string(61, 'x')), std::string(60, 'x') + "...");
  EXPECT_EQ(kelvane::shown(std::string(59, 'x') + "\xC3\xA4z"), std::string(59, 'x') + "...");
}

}  // namespace
