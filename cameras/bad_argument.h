// SPDX-License-Identifier: BSD-3-Clause
// What is wrong with an argument, so that each door can tell it in its own words.
#pragma once

#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace kelvane {

/// An argument that cannot be used. what() is for C++: numbers from 0. Another door puts its own name and number before
/// the sentence, which begins with its own blank or colon.
class Bad_argument : public std::invalid_argument {
 public:
  /// Of what the sentence tells.
  enum class Where {
    whole,  ///< the argument: name, sentence
    entry,  ///< one of its numbers: name[number], sentence
    point   ///< what belongs to one point: name without its s, "of point" number, sentence
  };

  /// Of a whole argument. The identifier, a constant as "notFinite", says what kind of mistake this is.
  Bad_argument(const char* identifier, const std::string& name, const std::string& sentence);
  /// Of an entry, or of a point.
  Bad_argument(const char* identifier, const std::string& name, Where where, std::size_t number,
               const std::string& sentence);

  const char* identifier() const { return identifier_; }
  const std::string& name() const { return name_; }
  Where where() const { return where_; }
  std::size_t number() const { return number_; }  ///< from 0; of a point: which point
  const std::string& sentence() const { return sentence_; }

 private:
  const char* identifier_;
  std::string name_;
  Where where_;
  std::size_t number_;
  std::string sentence_;
};

/// For sentences: as printf's %g, but NaN, Inf and -Inf. No stream: it would keep quiet where memory runs out.
std::string text_of(double value, int num_digits = 6);

/// Throws that this entry of an argument is no finite number.
[[noreturn, gnu::cold]] void refuse_not_finite(const char* name, std::size_t number, double value);

/// Throws that where one of these entries is none.
inline void check_finite(const char* name, const double* values, std::size_t first, std::size_t end) {
  for (std::size_t i = first; i < end; ++i) {
    if (!std::isfinite(values[i])) refuse_not_finite(name, i, values[i]);
  }
}

}  // namespace kelvane
