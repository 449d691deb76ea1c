// SPDX-License-Identifier: BSD-3-Clause
// Names of files, and names in errors.
#pragma once

#include <string>

namespace kelvane {

/// A name from a file as it may be told: no control characters, and cut where it is longer than any name.
std::string shown(const std::string& name);
/// A file's name as it may be told: the end of it, where it is very long.
std::string shown_path(const std::string& path);

/// Whether a byte of UTF-8 goes on with the character before it.
bool is_continuation(char c);

/// The name of a file in a folder.
std::string path_in(const std::string& folder, const std::string& name);
bool is_there(const std::string& path);
/// Without links; what is not there as it is.
std::string real_path(const std::string& path);

}  // namespace kelvane
