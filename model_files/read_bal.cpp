// SPDX-License-Identifier: BSD-3-Clause
// Number by number, wherever lines end.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "model_files/bal_model.h"
#include "model_files/paths.h"
#include "model_files/text_source.h"

namespace kelvane {
namespace {

using std::to_string;

/// The numbers of a file, on any lines.
class Numbers_on_lines {
 public:
  explicit Numbers_on_lines(const Model_file& file) : source_(file), file_(file) {}

  double number() {
    find();
    return source_.number();
  }
  std::int64_t whole() {
    find();
    return source_.signed_whole();
  }
  std::size_t offset() {
    has_more();
    return source_.offset();
  }
  bool has_more() {
    while (!source_.has_more()) {
      if (!source_.next_line()) return false;
    }
    return true;
  }

  /// How many the file must have, from here on known.
  void announce(std::uint64_t expected) { expected_ = expected; }
  [[noreturn]] void fail_header() const {
    file_.fail(static_cast<std::size_t>(file_.begin() - file_.bytes()),
               "a file begins with three whole numbers: of cameras, points and observations.");
  }
  void check_end() {
    if (!has_more()) return;
    const std::size_t start = offset();
    for (; has_more(); ++count_) static_cast<void>(source_.number());
    file_.fail(start, to_string(count_) + " numbers are more than the " + to_string(expected_) +
                          " that the first line announces.");
  }

 private:
  void find() {
    if (!has_more()) {
      // At the last thing that is there, not behind the line ends.
      std::size_t end = file_.size();
      while (end > 0 && std::strchr(" \t\r\n\v\f", file_.bytes()[end - 1]) != nullptr) --end;
      file_.fail(end, "the file ends after " + to_string(count_) + " of " + to_string(expected_) + " numbers.");
    }
    ++count_;
  }

  Text_source source_;
  const Model_file& file_;
  std::uint64_t count_ = 0, expected_ = 3;
};

/// One of the three in the first line.
std::uint64_t read_size(Numbers_on_lines& numbers, const Model_file& file) {
  if (!numbers.has_more()) numbers.fail_header();
  const std::size_t start = numbers.offset();
  const Decimal decimal = read_decimal(file.bytes() + start);
  const bool is_whole = decimal.kind == Decimal::Kind::number && decimal.value >= 0.0 && decimal.value < 4294967296.0 &&
                        decimal.value == static_cast<double>(static_cast<std::uint64_t>(decimal.value));
  if (decimal.kind == Decimal::Kind::number && !is_whole) numbers.fail_header();
  return static_cast<std::uint64_t>(numbers.whole());
}

std::uint32_t read_index(Numbers_on_lines& numbers, const Model_file& file, const char* what, std::uint64_t count) {
  const std::size_t start = numbers.offset();
  const std::int64_t index = numbers.whole();
  if (static_cast<std::uint64_t>(index) >= count) {  // or below 0
    file.fail(start, std::string("there is no ") + what + " " + to_string(index) + "; the last one is " +
                         to_string(static_cast<std::int64_t>(count) - 1) + ".");
  }
  return static_cast<std::uint32_t>(index);
}

void read_camera(Numbers_on_lines& numbers, const Model_file& file, Bal_model& model) {
  std::array<double, 9> camera{};
  model.pose_offsets.push_back(numbers.offset());
  for (int i = 0; i < 9; ++i) {
    const std::size_t start = numbers.offset();
    camera[static_cast<std::size_t>(i)] = numbers.number();
    if (i < 3 && std::fabs(camera[static_cast<std::size_t>(i)]) > 1e150) {
      file.fail(start, "the rotation of camera " + to_string(model.cameras.size()) + " has no finite angle.");
    }
    if (i != 6 || camera[6] > 0.0) continue;
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%g", camera[6]));
    file.fail(start, "the focal length of camera " + to_string(model.cameras.size()) + " is " + text +
                         "; it must be above 0.");
  }
  model.cameras.push_back(camera);
}

}  // namespace

Bal_model read_bal(const Model_file& file) {
  if (std::strncmp(file.begin(), "BZh", 3) == 0) {
    throw File_error(shown_path(file.path()) + " is compressed. Run bunzip2 on it first.");
  }
  Numbers_on_lines numbers(file);
  std::uint64_t sizes[3];
  for (std::uint64_t& size : sizes) size = read_size(numbers, file);
  numbers.announce(3 + 9 * sizes[0] + 3 * sizes[1] + 4 * sizes[2]);
  Bal_model model;
  // What is announced may not be there: room for as much as the file can hold, two characters to a number.
  const std::size_t most = file.size() / 2;
  model.observations.reserve(std::min<std::size_t>(sizes[2], most / 4));
  model.points.reserve(std::min<std::size_t>(sizes[1], most / 3));
  for (std::uint64_t i = 0; i < sizes[2]; ++i) {
    Bal_observation seen;
    seen.camera = read_index(numbers, file, "camera", sizes[0]);
    seen.point = read_index(numbers, file, "point", sizes[1]);
    for (double& entry : seen.pixel) entry = numbers.number();
    model.observations.push_back(seen);
  }
  for (std::uint64_t i = 0; i < sizes[0]; ++i) read_camera(numbers, file, model);
  for (std::uint64_t i = 0; i < sizes[1]; ++i) {
    std::array<double, 3> point{};
    for (double& entry : point) entry = numbers.number();
    model.points.push_back(point);
  }
  numbers.check_end();
  return model;
}

}  // namespace kelvane
