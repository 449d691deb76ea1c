// SPDX-License-Identifier: BSD-3-Clause
// Every array of a call: its inputs, and what lies in their cells and fields, however deep.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "mex_host.h"

namespace trust {

/// What is done at a node, which may change and must be put back; the path says where it is: "input 2{1}.centre".
using At_node = std::function<void(mxArray& node, const std::string& path)>;

namespace detail {

inline void visit_nodes(mxArray& node, const std::string& path, const At_node& visit) {
  visit(node, path);
  for (std::size_t i = 0; i < node.elements.size(); ++i) {
    if (node.elements[i].empty()) continue;
    const std::size_t num_fields = node.field_names.size();
    const std::string name = num_fields == 0
                                 ? "{" + std::to_string(i + 1) + "}"
                                 : "(" + std::to_string(i / num_fields + 1) + ")." + node.field_names[i % num_fields];
    visit_nodes(node.elements[i][0], path + name, visit);
  }
}

}  // namespace detail

inline void visit_nodes(std::vector<mxArray>& inputs, const At_node& visit) {
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    detail::visit_nodes(inputs[i], "input " + std::to_string(i + 1), visit);
  }
}

}  // namespace trust
