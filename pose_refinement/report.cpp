// SPDX-License-Identifier: BSD-3-Clause
// Costs in the caller's world, the better of start and end, and the figures of each point.
#include "pose_refinement/report.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "pose_refinement/motion.h"

namespace kelvane {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// Sums over the points.
class Costs {
 public:
  explicit Costs(const Robust_loss& loss) : loss_(&loss) {}

  void add(double length, bool is_inlier) {
    robust += loss_->cost(length);
    plain += length * length;
    of_inliers += is_inlier ? length * length : 0.0;
  }
  /// Where it is not finite.
  Costs made_infinite() const {
    Costs costs = *this;
    if (!std::isfinite(robust)) costs.robust = infinity;
    return costs;
  }

  double robust = 0.0, plain = 0.0, of_inliers = 0.0;

 private:
  const Robust_loss* loss_;
};

/// The length of a residual up to which its point is an inlier.
double most_of_inliers(const Robust_loss& loss) {
  constexpr double num_sigma = 3.0;
  return loss.kind == Loss::none ? infinity : num_sigma * (loss.scale / loss.tuning());
}

class Reporter {
 public:
  Reporter(const Refine_input& input, const Descent_outcome& outcome)
      : input_(input), outcome_(outcome), most_of_inliers_(most_of_inliers(outcome.loss)) {}

  Refine_result run() {
    result_.loss_scale = outcome_.loss.scale;
    result_.num_left_out = input_.data.num_points() - input_.data.num_used();
    set_history();
    choose();
    is_determined_ = set_covariance(input_, outcome_.loss, sums_, lengths_, result_);
    set_exit();
    set_alternative();
    result_.message = exit_message(input_, result_, sums_);
    return std::move(result_);
  }

 private:
  double root(double cost) const { return std::sqrt(cost / static_cast<double>(input_.data.num_used())); }

  Rms root(const Costs& costs) const {
    return {root(costs.robust), root(costs.plain),
            std::sqrt(costs.of_inliers / static_cast<double>(result_.num_inliers))};
  }

  void set_history() {
    const World& world = input_.data.world();
    result_.history.reserve(outcome_.history.size());
    for (const Descent_entry& entry : outcome_.history) {
      result_.history.push_back({world.to_users(entry.pose), root(entry.cost), entry.turn, entry.shift * world.unit});
      input_.motion.restore(input_.fixed_start(), result_.history.back().pose);
    }
    result_.history.front().pose = input_.start;  // not to the other world and back
  }

  /// The last pose, unless another scale of the loss or rounding makes the start the better one.
  void choose() {
    found_ = result_.history.back().pose;
    result_.pose = found_;
    result_.exit = outcome_.exit;
    Costs after = with_prior(set_points(), found_);
    Costs before = with_prior(costs_of(input_.start), input_.start);
    result_.history.front().rms = root(before.robust);
    if (result_.history.size() > 1) result_.history.back().rms = root(after.robust);
    if (!(after.robust < before.robust)) {
      if (is_plainly_worse(after, before)) result_.exit = Refine_exit::uphill;
      found_ = input_.start;
      result_.pose = input_.problem.start;  // to the last bit
      before = after = with_prior(set_points(), found_);
    }
    result_.history.front().pose = input_.problem.start;
    result_.before = root(before);
    result_.after = root(after);
  }

  Costs with_prior(Costs costs, const Pose& pose) const {
    costs.robust += input_.prior.cost(input_.data.world().from_users(pose));
    return costs.made_infinite();
  }

  /// By more than rounding.
  bool is_plainly_worse(const Costs& after, const Costs& before) const {
    constexpr double rounding_of_cost = 1e-12;
    constexpr double hidden_by_rounding = 1e-6;
    const Pose& first = outcome_.history.front().pose;
    const Pose& last = outcome_.history.back().pose;
    const double way = std::hypot(angle_between(first, last), length_between(first, last));
    return after.robust > before.robust * (1.0 + rounding_of_cost) && way > hidden_by_rounding;
  }

  /// Calls visit(sights, residuals, lengths) for some points after the other, in the caller's world.
  template <typename Visit>
  void visit(const Pose& pose, const Visit& visit) const {
    alignas(cache_line) double residuals[Block::max_rows];
    double lengths[Sights::most_points];
    for (Sights sights : input_.data.sights()) {
      input_.data.restore_points(sights);
      input_.rows.residuals(sights, pose, residuals);
      lengths_of_sights(sights, input_.rows.sight_kernels(), residuals, lengths);
      visit(sights, residuals, lengths);
    }
  }

  /// With the inliers of the result.
  Costs costs_of(const Pose& pose) const {
    Costs costs(outcome_.loss);
    visit(pose, [&](const Sights& sights, const double* /*residuals*/, const double* lengths) {
      for (std::size_t i = 0; i < sights.num_points; ++i) {
        costs.add(lengths[i], result_.is_inlier[sights.index[i]] != 0);
      }
    });
    return costs;
  }

  /// Everything that is told of each point of the pose.
  Costs set_points() {
    result_.residuals.assign(input_.data.d() * input_.data.num_points(), std::numeric_limits<double>::quiet_NaN());
    result_.is_inlier.assign(input_.data.num_points(), 0);
    result_.num_behind = result_.num_inliers = 0;
    sums_ = {};
    lengths_.clear();
    lengths_.reserve(input_.data.num_used());
    Costs costs(outcome_.loss);
    visit(found_, [&](const Sights& sights, const double* residuals, const double* lengths) {
      set_residuals(sights, residuals);
      for (std::size_t i = 0; i < sights.num_points; ++i) {
        set_weight(sights.index[i], lengths[i]);
        costs.add(lengths[i], lengths[i] <= most_of_inliers_);
      }
    });
    return costs;
  }

  void set_residuals(const Sights& sights, const double* residuals) {
    double depths[Sights::most_points];
    input_.rows.facing(sights, found_, depths);
    for (std::size_t i = 0; i < sights.num_points; ++i) {
      double* to = &result_.residuals[sights.d * sights.index[i]];
      for (std::size_t k = 0; k < sights.d; ++k) to[k] = residuals[sights.row(i, k)];
      result_.num_behind += sights.d == 2 && depths[i] <= 0.0 ? 1 : 0;
    }
  }

  void set_weight(std::size_t i, double s) {
    const double w = outcome_.loss.weight(s);
    const bool is_inlier = !(s > most_of_inliers_);
    result_.is_inlier[i] = is_inlier ? 1 : 0;
    result_.num_inliers += is_inlier ? 1 : 0;
    sums_.weight_and_slope += w + outcome_.loss.slope_times_length(s) / 2.0;
    sums_.pull += (w * s) * (w * s);
    sums_.num_pulling += w > 0.0 ? 1 : 0;
    lengths_.push_back(s);
  }

  void set_exit() {
    const bool has_come_to_end = result_.exit != Refine_exit::max_iterations && result_.exit != Refine_exit::stopped;
    if (result_.exit == Refine_exit::no_cost) return;
    if (!is_determined_) {
      result_.exit = Refine_exit::undetermined;
    } else if (has_come_to_end && result_.num_behind > 0 &&
               Pose_cost(input_).is_behind(input_.data.world().from_users(found_))) {
      result_.exit = Refine_exit::behind;
    }
  }

  void set_alternative() {
    if (!outcome_.alternative || !is_determined_) return;
    result_.alternative = {input_.data.world().to_users(outcome_.alternative->pose), root(outcome_.alternative->cost)};
    input_.motion.restore(input_.fixed_start(), result_.alternative->pose);
    if (static_cast<int>(result_.exit) > 0 && fits_as_well(outcome_.alternative->cost)) {
      result_.exit = Refine_exit::ambiguous;
    }
  }

  /// Whether the other pose is the true one with a probability of one in a thousand or more: exp(-D / 2) of that of the
  /// result for costs that differ by D, in units of the noise. Where nothing tells the noise, rounding does.
  bool fits_as_well(double cost) const {
    const double least_odds = 2.0 * std::log(1000.0);
    const double sigma = result_.noise_sigma;
    const double of_noise = std::isfinite(sigma) ? least_odds * sigma * sigma : 0.0;
    return cost - outcome_.history.back().cost <= of_noise + Pose_cost(input_).rounding();
  }

  const Refine_input& input_;
  const Descent_outcome& outcome_;
  const double most_of_inliers_;
  Pose found_;
  Point_sums sums_;
  std::vector<double> lengths_;  // of the residuals of the result
  bool is_determined_ = false;
  Refine_result result_;
};

}  // namespace

Refine_result report(const Refine_input& input, const Descent_outcome& outcome) {
  return Reporter(input, outcome).run();
}

}  // namespace kelvane
