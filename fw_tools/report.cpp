// SPDX-License-Identifier: BSD-3-Clause
// The only place that lays out report text.
#include "fw_tools/report.h"

#include <locale>

namespace fw {
namespace {

std::string block(const Site& site, const std::string& details, const std::string& indent) {
  return text(indent, site.file, "(", site.line, ")\n", indent, site.signature, "\n", indent, "Details: ", details,
              "\n");
}

}  // namespace

std::ostringstream classic_stream() {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  return stream;
}

void raise(const Site& site, const std::string& details) { throw exception_l(block(site, details, ""), 0); }

void reraise(const exception_l& caught, const Site& site, const std::string& context) {
  const int level = caught.get_level() + 1;
  const std::string indent(static_cast<std::size_t>(level), '\t');
  throw exception_l(block(site, context, indent) + caught.what() + "\n", level);
}

void reraise(const std::exception& caught, const Site& site, const std::string& context) {
  throw exception_l(block(site, context, "") + caught.what() + "\n", 0);
}

}  // namespace fw
