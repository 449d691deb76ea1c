// SPDX-License-Identifier: BSD-3-Clause
// Report layout: where an error is found, and where a caller adds its context to one on the way up.
#pragma once

#include <exception>
#include <sstream>
#include <string>

#include "fw_tools/exception_l.h"

/// The toolkit (folder fw_tools) and the optimisation framework (fw_opt).
namespace fw {

/// The source position that a report cites. All three are published text that users search for, so they are constants
/// and stay the same wherever the code moves.
struct Site {
  const char* file;       ///< path of a source file, as published
  int line;               ///< of that file, as published
  const char* signature;  ///< of the function, as the compiler spells it
};

/// An empty stream in the classic locale: the digits of a report do not depend on the locale of the host process.
std::ostringstream classic_stream();

/// The values one after the other, each with the stream's default formatting.
template <typename... Values>
std::string text(const Values&... values) {
  std::ostringstream stream = classic_stream();
  (stream << ... << values);
  return stream.str();
}

/// Throws a level-0 report, an exception_l of three lines:
///
///     file(line)
///     signature
///     Details: details
///
[[noreturn, gnu::cold, gnu::noinline]] void raise(const Site& site, const std::string& details);

/// Throws `caught` again, one level higher, below a block of the same three lines that is indented by one tab for each
/// level.
[[noreturn, gnu::cold, gnu::noinline]] void reraise(const exception_l& caught, const Site& site,
                                                    const std::string& context);

/// The same for an exception of another library, which carries no level: no tabs, and the new report has level 0.
[[noreturn, gnu::cold, gnu::noinline]] void reraise(const std::exception& caught, const Site& site,
                                                    const std::string& context);

}  // namespace fw

/// The foot of a function-try-block: adds one context block to whatever escapes the function.
#define FW_ADD_CONTEXT(site, context)     \
  catch (const fw::exception_l& caught) { \
    fw::reraise(caught, site, context);   \
  }                                       \
  catch (const std::exception& caught) {  \
    fw::reraise(caught, site, context);   \
  }
