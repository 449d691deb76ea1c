// SPDX-License-Identifier: BSD-3-Clause
// Errors of the door, and numbers in their sentences.
#pragma once

#include <cstddef>
#include <string>

#include "pose_refinement/bad_argument.h"

namespace kelvane::mex_engine {

/// An error whose whole text is the sentence. The identifier comes behind "kelvane:".
[[noreturn, gnu::cold, gnu::noinline]] void refuse(const char* identifier, const std::string& sentence);

std::string text(std::size_t number);

/// A name as it was given, cut where it is too long to be one.
std::string quoted(const std::string& name);

/// "3 x 5"
std::string text_of_size(std::size_t rows, std::size_t columns);

}  // namespace kelvane::mex_engine
