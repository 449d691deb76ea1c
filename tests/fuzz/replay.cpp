// SPDX-License-Identifier: BSD-3-Clause
// Runs a fuzz target on stored inputs, without a fuzzer: replay FOLDER... takes every file in the folders.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz/target.h"

int main(int argc, char** argv) {
  int num_files = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::cout << entry.path().filename().string() << std::endl;  // flushed: the target may abort
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++num_files;
    }
  }
  std::cout << num_files << " files replayed\n";
  return num_files > 0 ? 0 : 1;
}
