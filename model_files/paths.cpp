// SPDX-License-Identifier: BSD-3-Clause
// Texts of bytes, mostly UTF-8.
#include "model_files/paths.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

#include "model_files/system_calls.h"

namespace kelvane {
namespace {

constexpr std::size_t longest_name = 60;
constexpr std::size_t longest_path = 1000;  // leaves room for the sentence behind it

}  // namespace

bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

std::string shown_path(const std::string& path) {
  std::size_t first = path.size() > longest_path ? path.size() - longest_path : 0;
  while (first > 0 && first < path.size() && is_continuation(path[first])) ++first;  // no half of a character
  std::string text = (first > 0 ? "..." : "") + path.substr(first);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x20 || c == 0x7F) text[i] = '?';
    // Those of Latin 1, which terminals obey as well, are two bytes of UTF-8.
    const bool is_second = i > 0 && text[i - 1] == '\xC2' && c >= 0x80 && c < 0xA0;
    if (is_second) text[i - 1] = text[i] = '?';
  }
  return text;
}

std::string shown(const std::string& name) {
  if (name.size() <= longest_name) return shown_path(name);
  std::size_t size = longest_name;
  while (size > 0 && is_continuation(name[size])) --size;  // no half of a character
  return shown_path(name.substr(0, size)) + "...";
}

std::string path_in(const std::string& folder, const std::string& name) {
  const bool has_end = folder.empty() || folder.back() == '/';
  return folder + (has_end ? "" : "/") + name;
}

std::string real_path(const std::string& path) {
  errno = 0;
  const std::unique_ptr<char, void (*)(void*)> real(system_calls::realpath(path), std::free);
  if (!real && errno == ENOMEM) throw std::bad_alloc();
  return real ? real.get() : path;
}

bool is_there(const std::string& path) { return system_calls::access(path, F_OK) == 0; }

}  // namespace kelvane
