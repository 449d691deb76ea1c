// SPDX-License-Identifier: BSD-3-Clause
// A call of kelvane_engine decoded from bytes: a good one of some kind and size, spoiled step by step at any depth of
// its cells and structs.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/byte_source.h"
#include "fuzz/hostile_number.h"
#include "mex_host.h"
#include "trust/engine_calls.h"
#include "trust/hostile_arrays.h"

namespace fuzz {

/// Six header bytes (points, kind of input, question, error call and whether to be left at once, inputs left out,
/// outputs), then steps until the bytes end: which array, by an input and what lies in it, what to do with it, and the
/// step's own operands.
class Spoiled_engine_call {
 public:
  explicit Spoiled_engine_call(Byte_source& bytes) {
    namespace engine = trust::engine;
    const std::size_t num_points = bytes.choice(max_points + 1);
    const std::size_t kind = bytes.choice(engine::kinds_of_problem.size());
    call_ = engine::good_call(engine::all_questions[bytes.choice(engine::all_questions.size())], kind, num_points);
    const std::size_t manner = bytes.choice(4);
    error_call_ = trust::all_error_calls[manner % 2];
    const std::size_t seconds = engine::place_of_states(call_.inputs) + 1;
    if (manner >= 2 && call_.inputs.size() > seconds) call_.inputs[seconds] = mex_host::scalar(0.0);
    const std::size_t num_left_out = bytes.choice(call_.inputs.size());
    call_.num_outputs = all_num_outputs[bytes.choice(all_num_outputs.size())];
    while (!bytes.is_empty()) spoil(chosen(bytes), bytes);
    call_.inputs.resize(call_.inputs.size() - num_left_out);
  }

  mex_host::Result run() const { return call_.run(error_call_); }
  /// Whether states are asked for.
  bool descends() const { return asks("descend") || asks("search"); }
  /// Once more, from where a result says that it was left.
  mex_host::Result go_on(const mxArray& states) {
    const std::size_t place = trust::engine::place_of_states(call_.inputs);
    if (descends()) call_.inputs[0] = mex_host::text(asks("descend") ? "refine" : "estimate");
    if (call_.inputs.size() > place) call_.inputs[place] = states;
    return run();
  }

 private:
  static constexpr std::array<int, 5> all_num_outputs{1, 3, 0, 40, -1};
  static constexpr std::size_t max_points = 20;
  static constexpr std::size_t max_size = 12;
  static constexpr std::size_t max_depth = 3;

  bool asks(const char* question) const {
    return !call_.inputs.empty() && mex_host::is_same(call_.inputs[0], mex_host::text(question));
  }

  /// An input, or what lies in it: a zero stays where it is.
  mxArray& chosen(Byte_source& bytes) {
    mxArray* node = &call_.inputs[bytes.choice(call_.inputs.size())];
    for (std::size_t depth = 0; depth < max_depth && !node->elements.empty(); ++depth) {
      const std::size_t way = bytes.choice(node->elements.size() + 1);
      if (way == 0 || node->elements[way - 1].empty()) break;
      node = &node->elements[way - 1][0];
    }
    return *node;
  }

  void spoil(mxArray& node, Byte_source& bytes) {
    switch (bytes.choice(12)) {
      case 0:  // one entry
        if (!node.values.empty()) {
          double& entry = node.values[(bytes.byte() * std::size_t{256} + bytes.byte()) % node.values.size()];
          entry = hostile_number(bytes, entry);
        }
        break;
      case 1:  // all entries
        node.values.assign(node.values.size(), hostile_number(bytes, 1.0));
        break;
      case 2:  // numbers of another class; sparse ones are of no other
        if (!node.values.empty() && !node.is_sparse)
          node = mex_host::converted(node, trust::other_classes[bytes.choice(10)]);
        break;
      case 3:
        if (!node.values.empty() && !node.is_sparse) node = mex_host::sparse(node);
        break;
      case 4:
        node.is_complex = !node.is_complex;
        break;
      case 5:
        reshape(node, bytes);
        break;
      case 6: {  // what stands elsewhere
        const mxArray other = chosen(bytes);
        node = other;
        break;
      }
      case 7:  // left out
        if (!node.elements.empty()) node.elements[bytes.choice(node.elements.size())].clear();
        break;
      case 8:  // a field by another name, perhaps that of another one
        if (!node.field_names.empty()) {
          const std::string name = node.field_names[bytes.choice(node.field_names.size())];
          node.field_names[bytes.choice(node.field_names.size())] = bytes.choice(2) == 0 ? name : name + "s";
        }
        break;
      case 9:
        node = mex_host::text(text_from(bytes));
        break;
      case 10:
        node = mex_host::cell({node});
        break;
      default:  // nothing that can be read
        node = mex_host::other_class(bytes.choice(2) == 0 ? "function_handle" : "An_object");
    }
  }

  /// Another shape, of two or three dimensions, or another number of elements.
  static void reshape(mxArray& node, Byte_source& bytes) {
    const std::size_t rows = bytes.choice(max_size);
    const std::size_t columns = bytes.choice(max_size);
    const std::size_t pages = 1 + bytes.choice(3);
    if (node.class_name == "cell" || node.class_name == "struct") {
      const std::size_t num_fields = node.class_name == "cell" ? 1 : node.field_names.size();
      const std::vector<mxArray::Place> old = node.elements;
      node.rows = rows;
      node.columns = columns;
      node.sizes.clear();
      node.elements.resize(node.size() * num_fields);
      for (std::size_t i = 0; i < node.elements.size() && !old.empty(); ++i) node.elements[i] = old[i % old.size()];
      return;
    }
    // A new vector, so that there is nothing behind its last entry.
    node = mex_host::real_matrix(rows, columns * pages,
                                 std::vector<double>(rows * columns * pages, hostile_number(bytes, 1.0)));
    if (pages > 1) node = mex_host::reshaped(std::move(node), {rows, columns, pages});
  }

  /// A name that means something somewhere, or bytes.
  static std::string text_from(Byte_source& bytes) {
    static constexpr std::array<const char*, 19> names{"refine",
                                                       "project",
                                                       "pose",
                                                       "matrix4x4",
                                                       "rotation_centre",
                                                       "rotation_vector",
                                                       "quaternion_xyzw",
                                                       "opencv",
                                                       "colmap",
                                                       "rigidtform3d",
                                                       "axis_angle",
                                                       "huber",
                                                       "tukey",
                                                       "camera_from_world",
                                                       "world_from_camera",
                                                       "FULL_OPENCV",
                                                       "FOV",
                                                       "fisheye",
                                                       "pixels"};
    const std::size_t which = bytes.choice(names.size() + 1);
    if (which < names.size()) return names[which];
    std::string text(bytes.choice(max_size), ' ');
    for (char& c : text) c = static_cast<char>(bytes.byte());
    return text;
  }

  trust::Tested_call call_;
  mex_host::Error_call error_call_;
};

}  // namespace fuzz
