// SPDX-License-Identifier: BSD-3-Clause
// Every class, shape and value at every place of a call of kelvane_engine, cells and fields included: what was asked
// for or an error, in silence, and the other problems of the call as without it.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/captured_output.h"
#include "support/long_round.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"
#include "trust/hostile_arrays.h"
#include "trust/kinds_of_arrays.h"
#include "trust/nodes.h"

namespace {

using mex_host::Result;
using trust::Tested_call;
namespace engine = trust::engine;

/// Whether a place is a problem's own: no other problem is to suffer from what lies there.
bool is_of_problem(const std::string& number, const std::string& path) {
  return path.size() > 9 && path.substr(7, 3) == "{" + number + "}";
}

/// Made once, as that takes longer than many calls.
const std::vector<trust::Named_array>& every_kind() {
  static const std::vector<trust::Named_array> arrays = trust::Kinds_of_arrays().all();
  return arrays;
}

class EngineInputs : public testing::TestWithParam<Tested_call> {
 protected:
  EngineInputs() : call_(GetParam()), whole_(call_.run()) {}

  void SetUp() override {
    ASSERT_TRUE(engine::gives_results(whole_));
    if (is_refinement()) second_row_ = engine::row_of(*whole_.output, 1);
  }

  bool is_refinement() const { return engine::are_results(*whole_.output); }

  /// At all that is shared, and the first problem's own.
  void visit_nodes(const trust::At_node& visit) {
    trust::visit_nodes(call_.inputs, [&](mxArray& node, const std::string& path) {
      if (!is_refinement() || !is_of_problem("2", path)) visit(node, path);
    });
  }

  /// Calls with a changed node.
  Result expect_good_end(const std::string& path) {
    const Result result = call_.run(trust::all_error_calls[num_calls_++ % 2]);
    EXPECT_TRUE(engine::ends_well(result));
    if (!is_refinement() || !is_of_problem("1", path)) return result;
    const bool has_second = result.output && engine::num_results(*result.output) == 2;
    EXPECT_TRUE(has_second) << result.message;
    if (has_second) {
      EXPECT_TRUE(trust::is_same(engine::row_of(*result.output, 1), second_row_));
    }
    return result;
  }

  Tested_call call_;
  const Result whole_;
  mxArray second_row_;
  std::size_t num_calls_ = 0;
};

TEST_P(EngineInputs, OfEveryKindEndWellInEveryPlace) {
  const std::vector<trust::Named_array>& arrays = every_kind();
  // With instrumentation a part of them at each place, another one at the next.
  const std::size_t stride = arrays.size() / support::count_for_round(arrays.size());
  std::size_t first = 0;
  support::Captured_output output;
  visit_nodes([&](mxArray& node, const std::string& path) {
    const mxArray good = node;
    for (std::size_t k = first++ % stride; k < arrays.size(); k += stride) {
      SCOPED_TRACE(path + " is " + arrays[k].name);
      node = arrays[k].array;
      expect_good_end(path);
    }
    node = good;
  });
  EXPECT_EQ(output.text(), "");
  EXPECT_GE(num_calls_, arrays.size() / stride * call_.inputs.size());
}

TEST_P(EngineInputs, WithHostileNumbersEndWellAtEveryEntry) {
  support::Captured_output output;
  std::size_t num_places = 0;
  visit_nodes([&](mxArray& node, const std::string& path) {
    for (std::size_t entry = 0; entry < node.values.size(); ++entry) {
      const double good = node.values[entry];
      for (const trust::Named_value& value : trust::values_for_place(num_places++)) {
        SCOPED_TRACE(path + ", number " + std::to_string(entry) + " is " + value.name);
        node.values[entry] = value.value;
        expect_good_end(path);
      }
      node.values[entry] = good;
    }
  });
  EXPECT_EQ(output.text(), "");
}

/// Fields that are missing, left out of a cell, twice there, or of nobody.
TEST_P(EngineInputs, WithOtherFieldsEndWell) {
  support::Captured_output output;
  visit_nodes([&](mxArray& node, const std::string& path) {
    const mxArray good = node;
    for (std::size_t i = 0; i < good.elements.size(); ++i) {
      SCOPED_TRACE(path + ", element " + std::to_string(i));
      node.elements[i].clear();
      expect_good_end(path);
      node = good;
    }
    for (std::size_t i = 0; i < good.field_names.size(); ++i) {
      SCOPED_TRACE(path + ", field " + std::to_string(i));
      node.field_names[i] = "nobody's";
      expect_good_end(path);
      node.field_names[i] = good.field_names[(i + 1) % good.field_names.size()];  // two of one name
      expect_good_end(path);
      node = good;
    }
    for (const std::size_t size : {0U, 2U, 3U}) {
      if (good.elements.empty() || size == good.size()) continue;
      SCOPED_TRACE(path + " has the size " + std::to_string(size));
      node.columns = size;
      node.rows = 1;
      node.elements.clear();
      while (node.elements.size() < size * good.elements.size() / good.size()) {
        node.elements.push_back(good.elements[node.elements.size() % good.elements.size()]);
      }
      expect_good_end(path);
      node = good;
    }
  });
  EXPECT_EQ(output.text(), "");
}

/// A result without the inputs as they were read: they are left out where the caller's array is as good.
Result without_inputs(Result result) {
  if (!result.output) return result;
  mxArray& output = *result.output;
  for (std::size_t i = 0; engine::are_results(output) && i < output.field_names.size(); ++i) {
    const std::string& name = output.field_names[i];
    if (name == "points" || name == "observations") output.elements[i].clear();
  }
  return result;
}

/// An option that is no more than a number, and given a truth value: taken for a slip.
bool is_refused_option(const std::string& path, const std::string& class_name) {
  const auto is_any_of = [&path](const std::vector<const char*>& names) {
    return std::any_of(names.begin(), names.end(),
                       [&path](const char* name) { return path.find(name) != std::string::npos; });
  };
  const bool is_of_search = is_any_of({"MaxReprojectionError", "MaxAngle", "MaxNumTrials", "Seed"});
  const bool is_matrix = is_any_of({"Weights", "ObservationCovariance", "Prior", "Fixed"});
  return class_name == "logical" && (is_of_search || path.rfind("input 6", 0) == 0) && !is_matrix;
}

/// Numbers are numbers, whatever the class or the storage.
TEST_P(EngineInputs, AreReadInEveryClassAlike) {
  visit_nodes([&](mxArray& node, const std::string& path) {
    if (node.values.empty()) return;
    const mxArray good = node;
    for (const char* name :
         {"single", "int8", "uint8", "int16", "uint16", "int32", "uint32", "int64", "uint64", "logical"}) {
      SCOPED_TRACE(path + " as " + name);
      const mxArray other = mex_host::converted(good, name);
      node = mex_host::doubles_of(other);
      const Result expected = without_inputs(expect_good_end(path));
      node = other;
      const Result result = without_inputs(expect_good_end(path));
      EXPECT_NE(trust::is_same(result, expected), is_refused_option(path, name));
    }
    SCOPED_TRACE(path + " as sparse");
    node = mex_host::sparse(good);
    EXPECT_TRUE(trust::is_same(without_inputs(expect_good_end(path)), without_inputs(whole_)));
    node = good;
  });
}

TEST_P(EngineInputs, MayBeOneArrayAtEveryPosition) {
  support::Captured_output output;
  for (const auto& [name, array] : every_kind()) {
    SCOPED_TRACE(name);
    std::vector<const mxArray*> inputs(call_.inputs.size(), &array);
    EXPECT_TRUE(engine::ends_well(mex_host::call_by_address(inputs, 1, mex_host::Error_call::throws)));
    inputs[0] = &call_.inputs[0];
    EXPECT_TRUE(engine::ends_well(mex_host::call_by_address(inputs, call_.num_outputs, mex_host::Error_call::jumps)));
  }
  EXPECT_EQ(output.text(), "");
}

std::string test_name(const testing::TestParamInfo<Tested_call>& info) {
  std::string name;
  bool is_start = true;
  for (const char c : info.param.name) {
    if (c == ' ' || c == ',') {
      is_start = true;
    } else {
      name.push_back(is_start && c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c);
      is_start = false;
    }
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Calls, EngineInputs, testing::ValuesIn(engine::good_calls()), test_name);

}  // namespace
