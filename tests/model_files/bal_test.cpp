// SPDX-License-Identifier: BSD-3-Clause
// Files of Bundle Adjustment in the Large.
#include "model_files/bal_model.h"

#include "model_files/write_poses.h"
#include "support/model_folder.h"

namespace {

using kelvane::Bal_model;
using kelvane::File_error;
using kelvane::Model_file;

const char* const good = "2 1 2\n0 0 1.5 2\n1 0 3 4\n1 2 3\n4 5 6\n700 0.1 0.2\n-1\t-2 -3 -4 -5 -6 800 0 0\r\n7 8 9";

Bal_model model_of(const std::string& text) {
  return read_bal(Model_file("FILE", Model_file::Kind::text, text.data(), text.size()));
}

std::string message_of(const std::string& text) {
  try {
    model_of(text);
  } catch (const File_error& error) {
    return error.what();
  }
  return {};
}

std::string with(const std::string& piece, const std::string& other) {
  std::string text = good;
  return text.replace(text.find(piece), piece.size(), other);
}

TEST(Bal, HoldsWhatIsInTheFile) {
  for (const char* mark : {"", "\xEF\xBB\xBF"}) {
    const Bal_model model = model_of(std::string(mark) + good);
    ASSERT_EQ(model.observations.size(), 2U);
    EXPECT_EQ(model.observations[1].camera, 1U);
    EXPECT_EQ(model.observations[0].pixel[0], 1.5);
    EXPECT_EQ(model.cameras.at(1), (std::array<double, 9>{-1, -2, -3, -4, -5, -6, 800, 0, 0}));
    EXPECT_EQ(model.points.at(0), (std::array<double, 3>{7, 8, 9}));
  }
  EXPECT_TRUE(model_of("0 0 0").cameras.empty());
}

TEST(Bal, TellsWhereItIsBroken) {
  EXPECT_EQ(message_of(with("1.5", "1.5.2")), "FILE, line 2, column 5: '1.5.2' is not a number.");
  EXPECT_EQ(message_of(with("1.5", "1e999")), "FILE, line 2, column 5: '1e999' is not a finite number.");
  EXPECT_EQ(message_of(with("700", "1e-310")),
            "FILE, line 6, column 1: '1e-310' is below 2.2e-308: too small for a measurement.");
  EXPECT_EQ(message_of(with("1 2 3\n", "1 -1e200 3\n")),
            "FILE, line 4, column 3: the rotation of camera 0 has no finite angle.");
  EXPECT_EQ(message_of(with("700", "0")),
            "FILE, line 6, column 1: the focal length of camera 0 is 0; it must be above 0.");
  EXPECT_EQ(message_of(with("1 0 3", "2 0 3")), "FILE, line 3, column 1: there is no camera 2; the last one is 1.");
  EXPECT_EQ(message_of(with("1 0 3", "1 -1 3")), "FILE, line 3, column 3: there is no point -1; the last one is 0.");
  EXPECT_EQ(message_of(with("1 0 3", "1 0.5 3")),
            "FILE, line 3, column 3: '0.5' is not a whole number from 0 to 9223372036854775807.");
  EXPECT_EQ(message_of(with("1 0 3", "1 -x 3")), "FILE, line 3, column 3: '-x' is not a number.");
  EXPECT_EQ(message_of(with(" 9", "\n\n")), "FILE, line 8, column 4: the file ends after 31 of 32 numbers.");
  EXPECT_EQ(message_of(with(" 9", " 9 10\n11")),
            "FILE, line 8, column 7: 34 numbers are more than the 32 that the first line announces.");
  EXPECT_EQ(message_of(with(" 9", " 9 end")), "FILE, line 8, column 7: 'end' is not a number.");
  EXPECT_EQ(message_of(""),
            "FILE, line 1, column 1: a file begins with three whole numbers: of cameras, points and observations.");
  EXPECT_EQ(message_of("-1 0 0"),
            "FILE, line 1, column 1: a file begins with three whole numbers: of cameras, points and observations.");
  EXPECT_EQ(message_of("BZh9"), "FILE is compressed. Run bunzip2 on it first.");
  EXPECT_EQ(message_of(good), "");
}

/// Room is made for what can be in the file.
TEST(Bal, DoesNotBelieveItsFirstLine) {
  EXPECT_EQ(message_of("4000000000 4000000000 4000000000\n0 0 1 2"),
            "FILE, line 2, column 8: the file ends after 7 of 64000000003 numbers.");
}

TEST(Bal, IsWrittenBackWithNewPoses) {
  const support::Model_folder folder(support::Files{{"a", good}});
  kelvane::write_bal(folder.path("b"), folder.path("a"), {{1, {0.1, 0.2, 0.3, 1e-7, 5e20, -6}}});
  EXPECT_EQ(support::bytes_of(folder.path("b")),
            with("-1\t-2 -3 -4 -5 -6",
                 "0.10000000000000001\t0.20000000000000001 0.29999999999999999 9.9999999999999995e-08 5e+20 -6"));
  kelvane::write_bal(folder.path("b"), folder.path("b"), {});
  EXPECT_EQ(model_of(support::bytes_of(folder.path("b"))).cameras[1][0], 0.1);
  EXPECT_EQ(folder.files().size(), 2U);
  EXPECT_THROW(kelvane::write_bal(folder.path("b"), folder.path("a"), {{2, {}}}), File_error);
  EXPECT_THROW(kelvane::write_bal(folder.path("b"), folder.path("a"), {{1, {}}, {1, {}}}), File_error);
}

}  // namespace
