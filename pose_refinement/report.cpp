// SPDX-License-Identifier: BSD-3-Clause
// Costs in the caller's world, the better of start and end, and the figures of each point.
#include "pose_refinement/report.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "pose_refinement/motion.h"

namespace kelvane {
namespace {

class Reporter {
 public:
  Reporter(const Report_input& input, const Descent_outcome& outcome) : input_(input), outcome_(outcome) {}

  Refine_result run() {
    result_.loss_scale = outcome_.loss.scale;
    result_.num_left_out = input_.data.num_points() - input_.data.num_used();
    set_history();
    choose();
    is_determined_ = set_covariance(input_, outcome_.loss, sums_, lengths_, result_);
    set_exit();
    result_.message = exit_message(input_, result_, sums_);
    return std::move(result_);
  }

 private:
  /// Sums over the points.
  struct Costs {
    double robust = 0.0, plain = 0.0, of_inliers = 0.0;
  };

  double root(double cost) const { return std::sqrt(cost / static_cast<double>(input_.data.num_used())); }

  Rms root(const Costs& costs) const {
    return {root(costs.robust), root(costs.plain),
            std::sqrt(costs.of_inliers / static_cast<double>(result_.num_inliers))};
  }

  void set_history() {
    const World& world = input_.data.world();
    Pose_cost own(input_.data, input_.rows);
    for (const Descent_entry& entry : outcome_.history) {
      const bool is_told = entry.scale == outcome_.loss.scale;
      const double cost = is_told ? entry.cost : own.cost(entry.pose, outcome_.loss);
      result_.history.push_back({world.to_users(entry.pose), root(cost), entry.turn, entry.shift * world.unit});
    }
    result_.history.front().pose = input_.problem.start;  // not to the other world and back
  }

  /// The last pose, unless another scale of the loss or rounding makes the start the better one.
  void choose() {
    constexpr double rounding_of_cost = 1e-12;
    constexpr double hidden_by_rounding = 1e-6;
    found_ = result_.history.size() > 1 ? result_.history.back().pose : input_.start;
    result_.pose = found_;
    result_.exit = outcome_.exit;
    Costs after = set_points();
    Costs before = costs_of(input_.start);
    result_.history.front().rms = root(before.robust);
    if (result_.history.size() > 1) result_.history.back().rms = root(after.robust);
    if (!(after.robust < before.robust)) {
      const Pose& first = outcome_.history.front().pose;
      const Pose& last = outcome_.history.back().pose;
      const double way = std::hypot(angle_between(first, last), length_between(first, last));
      if (after.robust > before.robust * (1.0 + rounding_of_cost) && way > hidden_by_rounding) {
        result_.exit = Refine_exit::uphill;
      }
      found_ = input_.start;
      result_.pose = input_.problem.start;  // to the last bit
      after = set_points();
      before = costs_of(input_.start);
    }
    result_.before = root(before);
    result_.after = root(after);
  }

  /// Calls visit(sights, residuals, lengths) for some points after the other, in the caller's world.
  template <typename Visit>
  void visit(const Pose& pose, const Visit& visit) const {
    alignas(cache_line) double residuals[Block::max_rows];
    double lengths[Sights::most_points];
    for (Sights sights : input_.data.sights()) {
      input_.data.restore_points(sights);
      input_.rows.residuals(sights, pose, residuals);
      lengths_of_sights(sights, residuals, lengths);
      visit(sights, residuals, lengths);
    }
  }

  /// With the inliers of the result.
  Costs costs_of(const Pose& pose) const {
    Costs costs;
    visit(pose, [&](const Sights& sights, const double* /*residuals*/, const double* lengths) {
      for (std::size_t i = 0; i < sights.num_points; ++i) {
        const double s = lengths[i];
        costs.robust += outcome_.loss.cost(s);
        costs.plain += s * s;
        costs.of_inliers += result_.is_inlier[sights.index[i]] != 0 ? s * s : 0.0;
      }
    });
    if (!std::isfinite(costs.robust)) costs.robust = std::numeric_limits<double>::infinity();
    return costs;
  }

  /// Everything that is told of each point.
  Costs set_points() {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const std::size_t d = input_.data.d();
    const Robust_loss& loss = outcome_.loss;
    const double noise = loss.scale / loss.tuning();
    const double most = loss.kind == Loss::none ? std::numeric_limits<double>::infinity() : 3.0 * noise;
    result_.residuals.assign(d * input_.data.num_points(), nan);
    result_.is_inlier.assign(input_.data.num_points(), 0);
    result_.num_behind = result_.num_inliers = 0;
    sums_ = {};
    lengths_.clear();
    lengths_.reserve(input_.data.num_used());
    visit(found_, [&](const Sights& sights, const double* residuals, const double* lengths) {
      double depths[Sights::most_points];
      Camera_rows::depths(sights, found_, depths);
      for (std::size_t i = 0; i < sights.num_points; ++i) {
        const double s = lengths[i];
        const double w = loss.weight(s);
        const bool is_inlier = s <= most;
        for (std::size_t k = 0; k < d; ++k) result_.residuals[d * sights.index[i] + k] = residuals[sights.row(i, k)];
        result_.is_inlier[sights.index[i]] = is_inlier ? 1 : 0;
        result_.num_inliers += is_inlier ? 1 : 0;
        result_.num_behind += d == 2 && depths[i] <= 0.0 ? 1 : 0;
        sums_.weight_and_slope += w + loss.slope_times_length(s) / 2.0;
        sums_.pull += (w * s) * (w * s);
        sums_.num_pulling += w > 0.0 ? 1 : 0;
        lengths_.push_back(s);
      }
    });
    Costs costs;
    for (std::size_t i = 0; i < lengths_.size(); ++i) {
      const double s = lengths_[i];
      costs.robust += loss.cost(s);
      costs.plain += s * s;
      costs.of_inliers += s <= most ? s * s : 0.0;
    }
    if (!std::isfinite(costs.robust)) costs.robust = std::numeric_limits<double>::infinity();
    return costs;
  }

  void set_exit() {
    constexpr double half = 0.5;
    if (result_.exit == Refine_exit::no_cost) return;
    if (!is_determined_) {
      result_.exit = Refine_exit::undetermined;
    } else if (result_.num_behind > 0 &&
               Pose_cost(input_.data, input_.rows).part_behind(input_.data.world().from_users(found_)) > half) {
      result_.exit = Refine_exit::behind;
    }
  }

  const Report_input& input_;
  const Descent_outcome& outcome_;
  Pose found_;
  Point_sums sums_;
  std::vector<double> lengths_;  // of the residuals of the result
  bool is_determined_ = false;
  Refine_result result_;
};

}  // namespace

Refine_result report(const Report_input& input, const Descent_outcome& outcome) {
  return Reporter(input, outcome).run();
}

}  // namespace kelvane
