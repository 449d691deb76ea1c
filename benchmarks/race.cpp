// SPDX-License-Identifier: BSD-3-Clause
// Whose turn it is, and medians.
#include "benchmarks/race.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <iomanip>
#include <sstream>

namespace bench {
namespace {

constexpr std::size_t min_repetitions = 7;

double ns_per_call(int num_calls, const Contestant& contestant) {
  const double start = processor_seconds();
  for (int i = 0; i < num_calls; ++i) contestant.call();
  return (processor_seconds() - start) * 1e9 / num_calls;
}

/// About a millisecond: long enough for the clock and for the first call's cold caches not to count.
int calls_in_batch(const Contestant& contestant) {
  return static_cast<int>(std::ceil(1e6 / std::min(1e6, ns_per_call(3, contestant))));
}

double quantile(std::vector<double> values, double part) {
  const auto place = values.begin() + std::lround(part * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

/// Of all that they found from the first one's, after a call of each, which warms the caches.
double most_apart(const Field& field) {
  double most = 0;
  for (const Contestant& contestant : field) {
    contestant.call();
    const kelvane::Matrix_pose a = matrix_of(contestant.found(), kelvane::Pose_frame::world_from_camera);
    const kelvane::Matrix_pose b = matrix_of(field[0].found(), kelvane::Pose_frame::world_from_camera);
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 4; ++j) most = std::max(most, std::abs(a[i][j] - b[i][j]));
    }
  }
  return most;
}

/// Times by contestant and repetition. Each repetition takes another scene, and starts with another contestant.
std::vector<std::vector<double>> race(const std::vector<Field>& fields, double seconds) {
  const std::size_t size = fields[0].size();
  std::vector<int> num_calls;
  for (const Contestant& each : fields[0]) num_calls.push_back(calls_in_batch(each));
  std::vector<std::vector<double>> times(size);
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  for (std::size_t turn = 0; turn < min_repetitions || std::chrono::steady_clock::now() < end; ++turn) {
    const Field& field = fields[turn % fields.size()];
    for (std::size_t i = 0; i < size; ++i) {
      const std::size_t k = (turn + i) % size;
      times[k].push_back(ns_per_call(num_calls[k], field[k]));
    }
  }
  return times;
}

}  // namespace

double processor_seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void print_table(const std::vector<std::vector<std::string>>& rows, std::ostream& out) {
  for (std::size_t r = 0; r < rows.size(); ++r) {
    for (const std::string& cell : rows[r]) out << "| " << cell << ' ';
    out << "|\n";
    for (std::size_t c = 0; r == 0 && c < rows[0].size(); ++c) out << (c == 0 ? "| --- |" : " --: |");
    if (r == 0) out << '\n';
  }
  out << '\n';
}

std::string number(double value, int digits) {
  std::ostringstream text;
  text << std::setprecision(value < 100 ? digits : 6) << (value < 100 ? value : std::round(value));
  return text.str();
}

void Comparison::add(const std::string& label, const Cell& cell, double work,
                     const std::function<Field(const Scene&)>& field_of) {
  std::vector<std::unique_ptr<Scene>> scenes;
  std::vector<Field> fields;
  for (unsigned i = 0; i < std::clamp(40000 / cell.num_points, 1U, 16U); ++i) {
    scenes.push_back(std::make_unique<Scene>(cell, i));
    fields.push_back(field_of(*scenes.back()));
    most_apart_ = std::max(most_apart_, most_apart(fields.back()));
  }
  if (rows_.empty()) {
    rows_.push_back({"N"});
    for (const Contestant& each : fields[0]) rows_[0].push_back(each.name);
  }
  const std::vector<std::vector<double>> times = race(fields, seconds_);
  rows_.push_back({label, number(quantile(times[0], 0.5) / work)});
  for (std::size_t k = 1; k < times.size(); ++k) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < times[k].size(); ++i) ratios.push_back(times[k][i] / times[0][i]);
    const double spread = 0.5 * (quantile(ratios, 0.75) - quantile(ratios, 0.25));
    rows_.back().push_back(number(quantile(ratios, 0.5)) + " ± " + number(spread, 2));
  }
}

void Comparison::print(const std::string& title, const std::string& unit, std::ostream& out) const {
  out << "## " << title << "\n\n" << rows_[0][1] << " in " << unit << ", the others in times of it:\n\n";
  print_table(rows_, out);
  out << "Largest difference of a rotation or centre from the first one's: " << number(most_apart_) << ".\n\n";
}

}  // namespace bench
