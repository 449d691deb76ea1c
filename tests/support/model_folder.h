// SPDX-License-Identifier: BSD-3-Clause
// A folder for the files of a model, gone with the object.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <string>

namespace support {

using Files = std::map<std::string, std::string>;  ///< bytes by name

inline std::string bytes_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("no file " + path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void write_bytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  if (!file.flush()) throw std::runtime_error("no room for " + path);
}

class Model_folder {
 public:
  Model_folder() {
    std::random_device random;
    const std::filesystem::path parent = std::filesystem::temp_directory_path();
    do {
      path_ = (parent / ("kelvane-" + std::to_string(random()))).generic_string();
    } while (!std::filesystem::create_directory(path_));
  }
  /// With these files.
  explicit Model_folder(const Files& files) : Model_folder() {
    for (const auto& [name, bytes] : files) write(name, bytes);
  }
  ~Model_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Model_folder(const Model_folder&) = delete;
  Model_folder& operator=(const Model_folder&) = delete;

  const std::string& path() const { return path_; }
  std::string path(const std::string& name) const { return path_ + "/" + name; }
  void write(const std::string& name, const std::string& bytes) const { write_bytes(path(name), bytes); }

  /// All that is in it.
  Files files() const {
    Files found;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      found[entry.path().filename().string()] = bytes_of(entry.path().string());
    }
    return found;
  }

 private:
  std::string path_;
};

}  // namespace support
