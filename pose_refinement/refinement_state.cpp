// SPDX-License-Identifier: BSD-3-Clause
// A row: what there is once, then the entries of the history one after the other.
#include "pose_refinement/refinement_state.h"

#include <algorithm>
#include <cmath>

#include "pose_refinement/bad_argument.h"

namespace kelvane {
namespace {

constexpr double mark = 2003.0;  // of this layout; another one gets another number
constexpr std::size_t num_once = 10;
constexpr std::size_t num_per_entry = 16;
constexpr double on_the_way = 100.0;  // in place of an exit
/// At which a descent comes to its own end; another one may follow.
constexpr Refine_exit ends_of_descent[] = {Refine_exit::step, Refine_exit::rounding, Refine_exit::decrease,
                                           Refine_exit::uphill};
/// Where somebody else ends it.
constexpr Refine_exit ends_from_outside[] = {Refine_exit::max_iterations, Refine_exit::stopped};

void append(const Descent_entry& entry, std::vector<double>& row) {
  row.insert(row.end(), &entry.pose.rotation[0][0], &entry.pose.rotation[0][0] + 9);
  row.insert(row.end(), entry.pose.centre, entry.pose.centre + 3);
  row.insert(row.end(), {entry.cost, entry.scale, entry.turn, entry.shift});
}

Descent_entry entry_of(const double* row) {
  Descent_entry entry{{}, row[12], row[13], row[14], row[15]};
  std::copy_n(row, 9, &entry.pose.rotation[0][0]);
  std::copy_n(row + 9, 3, entry.pose.centre);
  return entry;
}

template <std::size_t size>
std::optional<Refine_exit> exit_among(const Refine_exit (&exits)[size], double number) {
  for (const Refine_exit exit : exits) {
    if (static_cast<int>(exit) == number) return exit;
  }
  return {};
}

std::optional<Refine_exit> exit_of(double number, bool is_final) {
  if (number == on_the_way) return {};
  std::optional<Refine_exit> exit = exit_among(ends_from_outside, number);
  if (!exit && is_final) exit = exit_among(ends_of_descent, number);
  if (!exit) refuse_state();
  return exit;
}

/// Of an exit, a scale, a number of entries, which is 0 where there is no such descent, and what follows.
std::optional<First_descent> first_of(const double* row, std::size_t num_entries) {
  const double count = row[2];
  if (count == 0.0) return {};
  if (!(count >= 1.0 && count <= static_cast<double>(num_entries) && count == std::floor(count))) refuse_state();
  const std::optional<Refine_exit> exit = exit_among(ends_of_descent, row[0]);
  if (!exit || !(row[3] == 0.0 || row[3] == 1.0)) refuse_state();
  const Other_side next = row[3] == 0.0 ? Other_side::behind : Other_side::tilted;
  if (next == Other_side::tilted && static_cast<int>(*exit) <= 0) refuse_state();
  return First_descent{*exit, row[1], static_cast<std::size_t>(count), next};
}

}  // namespace

void refuse_state() {
  throw Bad_argument("state", "state", " is not that of a refinement of this problem with these options.");
}

std::vector<double> row_of(const Refinement_state& state) {
  const Descent_state& descent = state.descent;
  const First_descent first = state.first.value_or(First_descent{Refine_exit::step, 0.0, 0, Other_side::behind});
  std::vector<double> row;
  row.reserve(num_once + num_per_entry * descent.history.size());
  row.insert(row.end(), {mark, descent.loss.scale, descent.least_scale, descent.is_final ? 1.0 : 0.0,
                         descent.is_settled ? 1.0 : 0.0, static_cast<double>(first.exit), first.scale,
                         static_cast<double>(first.num_entries), first.next == Other_side::behind ? 0.0 : 1.0,
                         descent.exit ? static_cast<double>(*descent.exit) : on_the_way});
  for (const Descent_entry& entry : descent.history) append(entry, row);
  return row;
}

Refinement_state state_of_row(const double* row, std::size_t size, Loss loss) {
  if (size < num_once + num_per_entry || (size - num_once) % num_per_entry != 0 || row[0] != mark) refuse_state();
  const auto is_flag = [](double value) { return value == 0.0 || value == 1.0; };
  if (!(row[1] >= 0.0 && row[2] >= 0.0 && std::isfinite(row[2])) || !is_flag(row[3]) || !is_flag(row[4])) {
    refuse_state();
  }
  const std::size_t num_entries = (size - num_once) / num_per_entry;
  Refinement_state state{{{loss, row[1]}, row[2], row[3] != 0.0, row[4] != 0.0}, first_of(row + 5, num_entries)};
  state.descent.exit = exit_of(row[9], state.descent.is_final);
  state.descent.history.reserve(num_entries);
  for (std::size_t i = 0; i < num_entries; ++i) {
    state.descent.history.push_back(entry_of(row + num_once + num_per_entry * i));
  }
  return state;
}

}  // namespace kelvane
