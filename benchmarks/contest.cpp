// SPDX-License-Identifier: BSD-3-Clause
// The order in which competitors take their turns.
#include "benchmarks/contest.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "benchmarks/timing.h"

namespace bench {
namespace {

using Field = std::vector<std::unique_ptr<Competitor>>;  // every entry with one scene

// Enough for the luck of one scene, such as steps that a peer refuses, not to decide. Long calls need their time.
int num_scenes(int num_points) { return std::clamp(40000 / num_points, 1, 16); }

void note_outcomes(const Scene& scene, const Task& task, const Field& field, std::vector<Result>& results) {
  for (std::size_t k = 0; k < field.size(); ++k) {
    field[k]->refine();
    const double rms = equation_rms(scene, task.type, field[k]->refined());
    const double share = 1.0 / num_scenes(scene.num_points);
    results[k].rms = std::sqrt(results[k].rms * results[k].rms + share * rms * rms);
    results[k].num_jacobians += share * field[k]->num_jacobians();
    results[k].refined.push_back(field[k]->refined());
  }
}

void time_once(const Field& field, std::size_t first, const std::vector<int>& num_calls, std::vector<Result>& results) {
  for (std::size_t i = 0; i < field.size(); ++i) {
    const std::size_t k = (first + i) % field.size();
    results[k].ns.push_back(ns_per_call(num_calls[k], [&] { field[k]->refine(); }));
  }
}

}  // namespace

const Result* Contest::find(const std::string& name) const {
  const auto found = std::find_if(results.begin(), results.end(), [&](const Result& r) { return r.name == name; });
  return found == results.end() ? nullptr : &*found;
}

double Contest::ns_per_point(const Result& result) const {
  return median(result.ns) / num_points / task.num_iterations();
}

Contest hold_contest(const std::vector<Entry>& entries, const Task& task, int num_points, const Effort& effort) {
  constexpr unsigned seed = 20240229;
  std::vector<Scene> scenes;
  for (int s = 0; s < num_scenes(num_points); ++s) {
    scenes.push_back(random_scene(num_points, seed + static_cast<unsigned>(s)));
  }
  Contest contest{task, num_points, {}};
  for (const Entry& entry : entries) contest.results.push_back({entry.name, {}, 0, 0, {}});

  std::vector<Field> fields;
  for (const Scene& scene : scenes) {
    Field field;
    for (const Entry& entry : entries) field.push_back(entry.make(scene, task));
    note_outcomes(scene, task, field, contest.results);
    fields.push_back(std::move(field));
  }
  std::vector<int> num_calls;
  for (const auto& competitor : fields[0]) num_calls.push_back(calls_in_batch([&] { competitor->refine(); }));

  const double end = seconds_now() + effort.seconds;
  for (int i = 0; i < effort.min_repetitions || seconds_now() < end; ++i) {
    const auto turn = static_cast<std::size_t>(i);
    time_once(fields[turn % fields.size()], turn % entries.size(), num_calls, contest.results);
  }
  return contest;
}

double median_ratio(const Result& a, const Result& b) {
  std::vector<double> ratios;
  for (std::size_t i = 0; i < a.ns.size(); ++i) ratios.push_back(a.ns[i] / b.ns[i]);
  return median(std::move(ratios));
}

double largest_difference(const Result& a, const Result& b) {
  double largest = 0;
  for (std::size_t s = 0; s < a.refined.size(); ++s) {
    largest = std::max(largest, cv::norm(a.refined[s], b.refined[s], cv::NORM_INF));
  }
  return largest;
}

}  // namespace bench
