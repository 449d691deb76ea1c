// SPDX-License-Identifier: BSD-3-Clause
// Those that take part, ours and others', how they are timed against each other, and the tables in which it is told.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/scene.h"
#include "mex.h"

namespace bench {

/// A call that takes part.
struct Contestant {
  std::string name;
  std::function<void()> call;            ///< all that is timed
  std::function<kelvane::Pose()> found;  ///< by the last call
};

/// Those that are timed in turn; the first is what the others are measured by.
using Field = std::vector<Contestant>;

/// Markdown, the first row above the line.
void print_table(const std::vector<std::vector<std::string>>& rows, std::ostream& out);
/// So many significant digits, and all of those before the point.
std::string number(double value, int digits = 3);

/// Seconds of processor time of this process, which stands still while others have the processor.
double processor_seconds();

/// A table of races: the first one's time, and how many times of it each other takes, with half of the distance between
/// the quartiles.
class Comparison {
 public:
  explicit Comparison(double seconds) : seconds_(seconds) {}

  /// A race in some scenes of a kind, up to 16, in each of which the same take part; times are divided by `work`.
  void add(const std::string& label, const Cell& cell, double work, const std::function<Field(const Scene&)>& field_of);
  void print(const std::string& title, const std::string& unit, std::ostream& out) const;

 private:
  double seconds_;
  std::vector<std::vector<std::string>> rows_;
  double most_apart_ = 0;
};

/// What a refinement is asked to do.
struct Method {
  double loss_scale = 0;      ///< of Huber's loss, pixels; 0: least squares
  int max_iterations = 10;    ///< all of them, unless there is a tolerance
  double step_tolerance = 0;  ///< 0: none
};

/// A whole call of mexFunction in the stand-in host, ten iterations: checks, copies, result, and the host's part of it.
Contestant module_call(const std::string& name, decltype(&mexFunction) entry, const Scene& scene);
/// The same of a file built for a host. Throws std::runtime_error when it cannot be loaded.
decltype(&mexFunction) loaded_module(const std::string& file);
/// kelvane::refine, with its covariance and all else that it tells.
Contestant engine(const Scene& scene, const Method& method);

/// cv::solvePnPRefineLM and cv::solvePnPRefineVVS, ten iterations.
Contestant opencv_lm(const Scene& scene);
Contestant opencv_vvs(const Scene& scene);
/// ceres::Solve: one dense block, or one for each point with its loss.
Contestant ceres_solver(const Scene& scene, const Method& method);
/// ceres::TinySolver, with residuals reweighted by hand where there is a loss.
Contestant tiny_solver(const std::string& name, const Scene& scene, const Method& method);
/// The same source compiled with -march=native, in a library that shows nothing else.
__attribute__((visibility("default"))) Contestant tiny_solver_native(const std::string& name, const Scene& scene,
                                                                     const Method& method);

/// A pose without a start, among wrong observations.
struct Estimated {
  bool is_claimed = false;           ///< the estimator says that the pose may be used
  std::vector<kelvane::Pose> poses;  ///< none, one, or two of which either may be right
};

struct Estimator {
  std::string name;
  std::function<Estimated(const Scene& scene)> estimate;
};

/// cv::solvePnPRansac with its default of 8 pixels: as it is called, UsacParams with its 5,000 trials, and all flags
/// with its 100, then with 10,000 and a confidence of 0.9999. The first four are those of the short table.
std::vector<Estimator> opencv_estimators();

/// Tables of so many scenes a row: points in a volume and a noise of 1 pixel, or all shapes, noises and estimators.
void print_estimates(unsigned num_scenes, bool all, std::ostream& out);

}  // namespace bench
