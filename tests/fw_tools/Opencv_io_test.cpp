// SPDX-License-Identifier: BSD-3-Clause
// Text forms of OpenCV's types, written and read.
#include "fw_tools/Opencv_io.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "support/matchers.h"

namespace {

using fw::operator<<;
using fw::operator>>;

template <typename Value>
std::string written(const Value& value) {
  std::ostringstream stream;
  stream << value;
  return stream.str();
}

TEST(OpencvText, IsWrittenInBrackets) {
  EXPECT_EQ(written(cv::Size(640, 480)), "(640,480)");
  EXPECT_EQ(written(cv::Rect(1, 2, 3, 4)), "(1,2,3,4)");
  EXPECT_EQ(written(cv::Size(-1, 0)), "(-1,0)");
  EXPECT_EQ(fw::size_text(cv::Size(6, 12)), "(6,12)");
}

TEST(OpencvText, ReturnsItsStream) {
  std::ostringstream out;
  EXPECT_EQ(&(out << cv::Size(1, 2)), &out);
  EXPECT_EQ(&(out << cv::Rect()), &out);
  std::istringstream in("(1,2,3,4)(1,2,3,4)");
  cv::Rect rectangle;
  EXPECT_EQ(&(in >> rectangle), &in);
  cv::Size size;
  EXPECT_EQ(&(in >> size), &in);
}

TEST(OpencvText, FollowsTheSettingsOfTheStream) {
  std::ostringstream stream;
  stream << std::hex << std::showbase << cv::Size(16, 255);
  EXPECT_EQ(stream.str(), "(0x10,0xff)");
}

#if __has_include(<opencv2/core/types_c.h>)

TEST(LegacyText, HasABlankOnEitherSideOfARectangle) { EXPECT_EQ(written(cvRect(1, 2, 3, 4)), " (1,2,3,4) "); }

TEST(LegacyText, GivesSizeDepthAndChannelsOfAnImage) {
  IplImage image{};
  image.width = 640;
  image.height = 480;
  image.depth = IPL_DEPTH_8U;
  image.nChannels = 3;
  EXPECT_EQ(written(image), "(640,480,8,3)");
}

TEST(LegacyReader, ZeroesTheFieldsOfARectangle) {
  std::istringstream stream(" ( 3, 4,5 ,6)");
  CvRect rectangle = cvRect(7, 8, 9, 10);
  stream >> rectangle;
  EXPECT_EQ(written(rectangle), " (0,0,0,0) ");
  EXPECT_TRUE(stream.good());
}

TEST(LegacyReader, ZeroesFourHeaderFieldsOfAnImageOnly) {
  std::istringstream stream("(3,4,5,6)");
  IplImage image{};
  image.nSize = 17;
  image.width = image.height = image.depth = image.nChannels = image.widthStep = 9;
  stream >> image;
  EXPECT_EQ(written(image), "(0,0,0,0)");
  EXPECT_EQ(image.nSize, 17);
  EXPECT_EQ(image.widthStep, 9);
}

TEST(LegacyReader, NamesItsType) {
  std::istringstream a("x");
  CvRect rectangle = cvRect(0, 0, 0, 0);
  EXPECT_EQ(support::caught_by([&] { a >> rectangle; }).text, "CvRect input operator : first char was x not (\n");
  std::istringstream b("(1;");
  IplImage image{};
  EXPECT_EQ(support::caught_by([&] { b >> image; }).text,
            "IplImage input operator : non numeric character ; found when processing param 0 (only integers are "
            "allowed)\n");
}

#endif

TEST(RectangleReader, ZeroesTheFieldsAndLeavesTheStreamGood) {
  std::istringstream stream("(3,4,5,6)");
  cv::Rect rectangle(7, 8, 9, 10);
  stream >> rectangle;
  EXPECT_EQ(rectangle, cv::Rect(0, 0, 0, 0));
  EXPECT_TRUE(stream.good());
}

TEST(RectangleReader, StopsAfterTheFourthNumber) {
  std::istringstream stream("(3,4,5,6,7,8)");
  cv::Rect rectangle;
  stream >> rectangle;
  std::string rest;
  stream >> rest;
  EXPECT_EQ(rest, "7,8)");
}

TEST(RectangleReader, DoesNotStopAtTheBracket) {
  std::istringstream stream("(3)4),5,6,7");
  cv::Rect rectangle(9, 9, 9, 9);
  stream >> rectangle;
  EXPECT_EQ(rectangle, cv::Rect(0, 0, 0, 0));
  EXPECT_EQ(stream.get(), '6');
}

TEST(RectangleReader, KeepsFieldsThatTheTextDoesNotReach) {
  std::istringstream stream("(3,4");
  cv::Rect rectangle(7, 8, 9, 10);
  stream >> rectangle;
  EXPECT_EQ(rectangle, cv::Rect(0, 8, 9, 10));
  EXPECT_TRUE(stream.fail());
}

TEST(RectangleReader, KeepsWhatWasStoredBeforeAFailure) {
  std::istringstream stream("(3,4,x");
  cv::Rect rectangle(7, 8, 9, 10);
  EXPECT_EQ(support::caught_by([&] { stream >> rectangle; }).text,
            "cv::Rect input operator : non numeric character x found when processing param 2 (only integers are "
            "allowed)\n");
  EXPECT_EQ(rectangle, cv::Rect(0, 0, 9, 10));
}

TEST(SizeReader, LooksForMoreAfterTheBracket) {
  std::istringstream stream("(3,4)");
  cv::Size size(7, 8);
  stream >> size;
  EXPECT_EQ(size, cv::Size(0, 0));
  EXPECT_TRUE(stream.fail());
}

TEST(SizeReader, RefusesWhatFollowsTheBracket) {
  std::istringstream stream("(3,4) rest");
  cv::Size size(7, 8);
  EXPECT_EQ(support::caught_by([&] { stream >> size; }).text,
            "cv::Size input operator : non numeric character r found when processing param 2 (only integers are "
            "allowed)\n");
  EXPECT_EQ(size, cv::Size(0, 0));
}

TEST(SizeReader, GoesOnToTheFourthNumber) {
  std::istringstream stream("(3,4,5,6,7)");
  cv::Size size(7, 8);
  stream >> size;
  EXPECT_TRUE(stream.good());
  EXPECT_EQ(stream.get(), '7');
}

TEST(SizeReader, RefusesAnotherBracket) {
  std::istringstream stream("[1,2]");
  cv::Size size(7, 8);
  const support::Caught caught = support::caught_by([&] { stream >> size; });
  EXPECT_EQ(caught.text, "cv::Size input operator : first char was [ not (\n");
  EXPECT_EQ(caught.level, -1);  // std::logic_error, not a report
  EXPECT_EQ(size, cv::Size(7, 8));
}

TEST(SizeReader, RefusesAMinusSign) {
  std::istringstream stream("(1,-2)");
  cv::Size size;
  EXPECT_EQ(support::caught_by([&] { stream >> size; }).text,
            "cv::Size input operator : non numeric character - found when processing param 1 (only integers are "
            "allowed)\n");
}

TEST(TupleReaders, ThrowLogicErrors) {
  std::istringstream stream("[");
  cv::Size size;
  EXPECT_THROW(stream >> size, std::logic_error);
}

TEST(TupleReaders, ChangeNothingOnAStreamThatIsNotGood) {
  std::istringstream stream("(3,4,5,6)");
  stream.setstate(std::ios::failbit);
  cv::Rect rectangle(7, 8, 9, 10);
  stream >> rectangle;
  EXPECT_EQ(rectangle, cv::Rect(7, 8, 9, 10));
  stream.clear();
  EXPECT_EQ(stream.get(), '(');
}

TEST(TupleReaders, ChangeNothingAtTheEndOfTheStream) {
  std::istringstream stream;
  stream.peek();
  ASSERT_TRUE(stream.eof());
  cv::Size size(7, 8);
  EXPECT_NO_THROW(stream >> size);
  EXPECT_EQ(size, cv::Size(7, 8));
}

TEST(TupleReaders, TakeABracketWithoutDigitsForAField) {
  std::istringstream stream("(,,,)");
  cv::Rect rectangle(7, 8, 9, 10);
  stream >> rectangle;
  EXPECT_EQ(rectangle, cv::Rect(0, 0, 0, 0));
  EXPECT_TRUE(stream.good());
}

TEST(TupleReaders, RefuseAnEmptyText) {
  std::istringstream stream("  ");
  cv::Size size;
  EXPECT_EQ(support::caught_by([&] { stream >> size; }).text, "cv::Size input operator : first char was  not (\n");
}

TEST(TupleReaders, TakeEveryDigitAndNothingNextToThem) {
  const auto read = [](const std::string& text) {
    std::istringstream stream(text);
    cv::Rect rectangle;
    stream >> rectangle;
    return stream.good();
  };
  EXPECT_TRUE(read("(0123456789,0,9,90)"));
  EXPECT_THROW(read("(/,0,0,0)"), std::logic_error);  // the characters before 0 and behind 9
  EXPECT_THROW(read("(:,0,0,0)"), std::logic_error);
}

TEST(TupleReaders, SkipBlanksWhateverTheStreamSays) {
  std::istringstream stream("( 3 , 4 , 5 , 6 )");
  stream >> std::noskipws;
  cv::Rect rectangle(7, 8, 9, 10);
  stream >> rectangle;
  EXPECT_EQ(rectangle, cv::Rect(0, 0, 0, 0));
}

}  // namespace
