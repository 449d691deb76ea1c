// SPDX-License-Identifier: BSD-3-Clause
// Counts right poses, and wrong ones that are told as right.
#include "benchmarks/race.h"

#include <algorithm>
#include <limits>
#include <ostream>

#include "pose_estimation/estimate.h"

namespace bench {
namespace {

Estimated ours(const Scene& scene) {
  kelvane::Estimate_options options;
  options.num_threads = 1;
  const auto found = estimate({scene.all.points, scene.all.pixels, Scene::camera()}, options);
  Estimated estimated{static_cast<int>(found.exit) > 0, {found.pose}};
  if (found.alternative) estimated.poses.push_back(found.alternative->pose);
  return estimated;
}

/// Who knows which observations are right, and begins at the truth: nobody has more right.
Estimated oracle(const Scene& scene) {
  if (scene.right.points.size() < 15) return {};
  return {true, {scene.refined_truth(100).pose}};
}

std::vector<Estimator> estimators(bool all) {
  std::vector<Estimator> chosen = opencv_estimators();
  if (!all) chosen.resize(4);
  chosen.insert(chosen.begin(), {"`kelvane::estimate`", ours});
  if (all) chosen.push_back({"oracle", oracle});
  return chosen;
}

/// Of one estimator.
struct Count {
  unsigned right = 0;  // whatever is claimed
  unsigned wrong_claimed = 0;
  unsigned gross_claimed = 0;  // of those, beyond what noise explains
  double seconds = 0;          // of the processor

  void add(const Scene& scene, const Estimated& found) {
    constexpr double right_below = 22.5;  // 99.9 % of chi^2 with 6 degrees of freedom
    constexpr double gross_beyond = 60;   // 5e-11 of it
    double squared = std::numeric_limits<double>::infinity();
    for (const kelvane::Pose& pose : found.poses) squared = std::min(squared, squared_distance(scene, pose));
    right += squared < right_below ? 1 : 0;
    wrong_claimed += found.is_claimed && squared >= right_below ? 1 : 0;
    gross_claimed += found.is_claimed && squared > gross_beyond ? 1 : 0;
  }
};

/// Estimators take turns.
std::vector<Count> counts_of(const Cell& cell, const std::vector<Estimator>& estimators, unsigned num_scenes) {
  std::vector<Count> counts(estimators.size());
  for (unsigned i = 0; i < num_scenes; ++i) {
    const Scene scene(cell, i);
    for (std::size_t k = 0; k < estimators.size(); ++k) {
      const std::size_t turn = (i + k) % estimators.size();
      const double start = processor_seconds();
      const Estimated found = estimators[turn].estimate(scene);
      counts[turn].seconds += processor_seconds() - start;
      counts[turn].add(scene, found);
    }
  }
  return counts;
}

/// A table with a row for each number of points and part of wrong ones; adds what is claimed to the totals.
void print_cells(Cell cell, const std::vector<Estimator>& estimators, unsigned num_scenes, std::vector<Count>& totals,
                 std::ostream& out) {
  const bool is_short = estimators.size() == 5;
  std::vector<std::vector<std::string>> rows{{"Right, % (processor time, ms)"}};
  for (const Estimator& estimator : estimators) rows[0].push_back(estimator.name);
  for (const unsigned num_points : {10U, 30U, 100U, 1000U}) {
    for (const unsigned percent_wrong : {0U, 30U, 50U, 70U, 90U}) {
      cell.num_points = num_points;
      cell.percent_wrong = percent_wrong;
      if (is_short && (num_points == 10 || cell.num_right() < 5)) continue;
      const std::vector<Count> counts = counts_of(cell, estimators, num_scenes);
      rows.push_back({"N = " + std::to_string(num_points) + ", " + std::to_string(percent_wrong) + " % wrong"});
      for (std::size_t k = 0; k < counts.size(); ++k) {
        const std::string part = cell.num_right() < 5 ? "-" : number(100.0 * counts[k].right / num_scenes);
        rows.back().push_back(part + " (" + number(1e3 * counts[k].seconds / num_scenes, 2) + ")");
        totals[k].wrong_claimed += counts[k].wrong_claimed;
        totals[k].gross_claimed += counts[k].gross_claimed;
      }
    }
  }
  print_table(rows, out);
}

}  // namespace

void print_estimates(unsigned num_scenes, bool all, std::ostream& out) {
  const std::vector<Estimator> chosen = estimators(all);
  std::vector<Count> totals(chosen.size());
  static const char* const shapes[] = {"in a volume", "beside a plane", "on a plane"};
  out << "## Estimates without a start\n\n";
  for (const auto shape : {Cell::volume, Cell::shallow, Cell::flat}) {
    for (const double sigma : {0.3, 1.0, 3.0}) {
      if (!all && (shape != Cell::volume || sigma != 1.0)) continue;
      out << num_scenes << " scenes a row, points " << shapes[shape] << ", noise of " << sigma << " pixels:\n\n";
      print_cells({shape, sigma, 0, 0}, chosen, num_scenes, totals, out);
    }
  }
  out << "Wrong poses that are told as right, those too far off for noise in brackets:";
  for (std::size_t k = 0; k < chosen.size(); ++k) {
    out << (k == 0 ? " " : ", ") << totals[k].wrong_claimed << " (" << totals[k].gross_claimed << ") of "
        << chosen[k].name;
  }
  out << ".\n\n";
}

}  // namespace bench
