// SPDX-License-Identifier: BSD-3-Clause
// Pieces of sentences.
#include "mex_engine/sentence.h"

#include <algorithm>

namespace kelvane::mex_engine {

void refuse(const char* identifier, const std::string& sentence) { throw Bad_argument(identifier, "", sentence); }

std::string text(std::size_t number) { return std::to_string(number); }

std::string quoted(const std::string& name) {
  constexpr std::size_t most = 60;
  std::string shown = name.size() > most ? name.substr(0, most) + "..." : name;
  std::replace(shown.begin(), shown.end(), '\0', '?');  // the host would take it for the end of the sentence
  return "'" + shown + "'";
}

std::string text_of_size(std::size_t rows, std::size_t columns) { return text(rows) + " x " + text(columns); }

}  // namespace kelvane::mex_engine
