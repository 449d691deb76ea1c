// SPDX-License-Identifier: BSD-3-Clause
// Storage of a report's text and level.
#include "fw_tools/exception_l.h"

namespace fw {

exception_l::exception_l(const std::string& message, int level)
    : message_(std::make_shared<const std::string>(message)), level_(level) {}

exception_l::~exception_l() = default;

const char* exception_l::what() const noexcept { return message_->c_str(); }

}  // namespace fw
