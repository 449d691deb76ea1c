// SPDX-License-Identifier: BSD-3-Clause
// COLMAP's files by hand: a small model as text, and any text as the binary file that COLMAP would write of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace support {

using Files = std::map<std::string, std::string>;

/// Two cameras, two images, three points, without frames.
inline Files small_model() {
  return {{"cameras.txt",
           "# Number of cameras: 2\n1 SIMPLE_PINHOLE 640 480 500 320 240\n5 RADIAL 64 48 50 32 24 0.1 0.02\n"},
          {"images.txt",
           "# Number of images: 2, mean observations per image: 1.5\n"
           "3 0.6 0 0.8 0 1 2 3 1 a b.jpg\n1.5 2.25 8 9 9 -1 3.125 4 6\n"
           "4 1 0 0 0 -1 2 3 5 c.jpg\n\n"},
          {"points3D.txt", "6 1 2 3 10 20 30 0.5 3 2\n8 4 5 6 9 9 9 0.25 3 0\n9 7 8 9 1 2 3 0.125\n"}};
}

/// The same with a rig for each camera.
inline Files small_model_with_frames() {
  Files files = small_model();
  files["rigs.txt"] = "# Number of rigs: 2\n1 1 CAMERA 1\n2 1 CAMERA 5\n";
  files["frames.txt"] = "11 1 0.8 0.6 0 0 4 5 6 1 CAMERA 1 3\n12 2 0 1 0 0 7 8 9 1 CAMERA 5 4\n";
  return files;
}

/// Little-endian, one after the other.
class Bytes {
 public:
  template <typename T>
  Bytes& add(T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    text_.append(bytes, sizeof value);
    return *this;
  }
  Bytes& add_text(const std::string& text) {
    text_ += text;
    text_ += '\0';
    return *this;
  }
  const std::string& text() const { return text_; }
  void insert_count(std::uint64_t count) { text_.insert(0, Bytes().add(count).text()); }

 private:
  std::string text_;
};

/// Words of a line as numbers of a type.
class Line {
 public:
  explicit Line(const std::string& text) : words_(text) {}
  template <typename T>
  bool move(Bytes& to) {
    std::string word;
    if (!(words_ >> word)) return false;
    if constexpr (std::is_same_v<T, double>) to.add(std::strtod(word.c_str(), nullptr));
    if constexpr (!std::is_same_v<T, double>) to.add(static_cast<T>(std::strtoull(word.c_str(), nullptr, 10)));
    return true;
  }
  template <typename T>
  void move(int count, Bytes& to) {
    for (int i = 0; i < count; ++i) move<T>(to);
  }
  std::string word() {
    std::string word;
    words_ >> word;
    return word;
  }
  std::string rest() {
    std::string rest;
    std::getline(words_ >> std::ws, rest);
    return rest;
  }

 private:
  std::istringstream words_;
};

/// Of the models that the tests use.
inline std::int32_t number_of_camera_model(const std::string& name) {
  const std::vector<std::string> names = {"SIMPLE_PINHOLE", "PINHOLE", "SIMPLE_RADIAL", "RADIAL", "OPENCV"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i] == name) return static_cast<std::int32_t>(i);
  }
  return -1;
}

inline void move_sensor(Line& line, Bytes& to) {
  to.add<std::int32_t>(line.word() == "CAMERA" ? 0 : 1);
  line.move<std::uint32_t>(to);
}

/// One record; of an image both lines.
inline void move_record(const std::string& name, Line line, const std::string& pixels, Bytes& to) {
  Bytes list;
  std::uint64_t count = 0;
  if (name == "cameras") {
    line.move<std::uint32_t>(to);
    to.add(number_of_camera_model(line.word()));
    line.move<std::uint64_t>(2, to);
    line.move<double>(99, to);
  } else if (name == "images") {
    line.move<std::uint32_t>(to);
    line.move<double>(7, to);
    line.move<std::uint32_t>(to);
    to.add_text(line.rest());
    for (Line words(pixels); words.move<double>(list); ++count) {
      words.move<double>(list);
      words.move<std::uint64_t>(list);
    }
    to.add(count);
    for (const char c : list.text()) to.add(c);
  } else if (name == "points3D") {
    line.move<std::uint64_t>(to);
    line.move<double>(3, to);
    line.move<std::uint8_t>(3, to);
    line.move<double>(to);
    for (; line.move<std::uint32_t>(list); ++count) line.move<std::uint32_t>(list);
    to.add(count);
    for (const char c : list.text()) to.add(c);
  } else if (name == "rigs") {
    line.move<std::uint32_t>(to);
    const std::string sensors = line.word();
    to.add(static_cast<std::uint32_t>(std::stoul(sensors)));
    for (unsigned long i = 0; i < std::stoul(sensors); ++i) {
      move_sensor(line, to);
      if (i == 0) continue;
      const bool has_pose = line.word() == "1";
      to.add<std::uint8_t>(has_pose ? 1 : 0);
      if (has_pose) line.move<double>(7, to);
    }
  } else {
    line.move<std::uint32_t>(2, to);
    line.move<double>(7, to);
    const std::string data = line.word();
    to.add(static_cast<std::uint32_t>(std::stoul(data)));
    for (unsigned long i = 0; i < std::stoul(data); ++i) {
      move_sensor(line, to);
      line.move<std::uint64_t>(to);
    }
  }
}

/// What COLMAP writes of a text file by that name, without its ending.
inline std::string binary_of(const std::string& name, const std::string& text) {
  std::istringstream lines(text);
  Bytes bytes;
  std::uint64_t count = 0;
  for (std::string line, pixels; std::getline(lines, line);) {
    if (line.find_first_not_of(" \t\r") == std::string::npos || line[line.find_first_not_of(" \t")] == '#') continue;
    if (name == "images") std::getline(lines, pixels);
    move_record(name, Line(line), pixels, bytes);
    ++count;
  }
  bytes.insert_count(count);
  return bytes.text();
}

/// Of all files.
inline Files binary_of(const Files& texts) {
  Files files;
  for (const auto& [name, text] : texts) {
    const std::string stem = name.substr(0, name.find('.'));
    files[stem + ".bin"] = binary_of(stem, text);
  }
  return files;
}

}  // namespace support
