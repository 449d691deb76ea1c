// SPDX-License-Identifier: BSD-3-Clause
// pose_estimation [--scenes N] [--cells REGEX] [--estimators REGEX] [--max-error PIXELS] [--sigmas K] [--csv FILE]:
// prints how many poses without a start, among outliers, are right, next to cv::solvePnPRansac, and what they take.
// Cells are named "volume,1,100,50": shape, noise, points, percentage wrong. The largest error is what each takes when
// nothing is said, 8 pixels for all; or PIXELS, or K times the noise.
#include <algorithm>
#include <ctime>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <opencv2/core/utility.hpp>
#include <regex>
#include <stdexcept>

#include "benchmarks/estimator.h"
#include "benchmarks/markdown.h"
#include "pose_estimation/estimate.h"

namespace {

using namespace bench;

std::map<std::string, std::string> options_of(int argc, char** argv) {
  std::map<std::string, std::string> options{{"--scenes", "1000"}, {"--cells", ""},   {"--estimators", ""},
                                             {"--max-error", "0"}, {"--sigmas", "0"}, {"--csv", "/dev/null"}};
  for (int i = 1; i < argc; i += 2) {
    const auto found = options.find(argv[i]);
    if (found == options.end() || i + 1 == argc) {
      throw std::invalid_argument(argv[i] + std::string(" is no option, or has no value"));
    }
    found->second = argv[i + 1];
  }
  return options;
}

/// Those who know which observations are right, and begin at the truth: nobody has more right.
Estimator oracle() {
  return {"oracle", [](const Estimation_scene& scene, double /*max_error*/) -> Estimated {
            if (scene.right.points.size() < 15) return {};
            return {true, {scene.refined(100).pose}};
          }};
}

Estimator ours() {
  return {"kelvane", [](const Estimation_scene& scene, double max_error) {
            kelvane::Estimate_options options;
            options.max_error = max_error;
            options.num_threads = 1;
            const auto found = estimate({scene.all.points, scene.all.pixels, Estimation_scene::camera()}, options);
            Estimated estimated{static_cast<int>(found.exit) > 0, {found.pose}};
            if (found.alternative) estimated.poses.push_back(found.alternative->pose);
            return estimated;
          }};
}

std::vector<Estimator> estimators_like(const std::regex& pattern) {
  std::vector<Estimator> estimators = opencv_estimators();
  estimators.push_back(oracle());
  estimators.insert(estimators.begin(), ours());
  const auto is_other = [&](const Estimator& each) { return !std::regex_search(each.name, pattern); };
  estimators.erase(std::remove_if(estimators.begin(), estimators.end(), is_other), estimators.end());
  return estimators;
}

/// Of one estimator in one cell.
struct Count {
  unsigned right = 0;  // whatever is claimed
  unsigned claimed = 0;
  unsigned wrong_claimed = 0;
  unsigned gross_claimed = 0;  // of those, beyond what noise explains
  double microseconds = 0;     // of the processor

  void add(const Estimation_scene& scene, const Estimated& found) {
    constexpr double right_below = 22.5;  // 99.9 % of chi^2 with 6 degrees of freedom
    constexpr double gross_beyond = 60;   // 5e-11 of it
    double squared = std::numeric_limits<double>::infinity();
    for (const kelvane::Pose& pose : found.poses) squared = std::min(squared, squared_distance(scene, pose));
    right += squared < right_below ? 1 : 0;
    claimed += found.is_claimed ? 1 : 0;
    wrong_claimed += found.is_claimed && squared >= right_below ? 1 : 0;
    gross_claimed += found.is_claimed && squared > gross_beyond ? 1 : 0;
  }
};

struct Row {
  Estimation_cell cell;
  std::vector<Count> counts;  // of each estimator
};

/// Of all threads of this process.
double processor_microseconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return 1e6 * static_cast<double>(now.tv_sec) + 1e-3 * static_cast<double>(now.tv_nsec);
}

/// Estimators take turns.
Row row_of(const Estimation_cell& cell, const std::vector<Estimator>& estimators, unsigned num_scenes,
           double max_error) {
  Row row{cell, std::vector<Count>(estimators.size())};
  for (unsigned i = 0; i < num_scenes; ++i) {
    const Estimation_scene scene(cell, i);
    for (std::size_t k = 0; k < estimators.size(); ++k) {
      const std::size_t turn = (i + k) % estimators.size();
      const double start = processor_microseconds();
      const Estimated found = estimators[turn].estimate(scene, max_error);
      row.counts[turn].microseconds += processor_microseconds() - start;
      row.counts[turn].add(scene, found);
    }
  }
  return row;
}

void write(const Row& row, const std::vector<Estimator>& estimators, unsigned num_scenes, std::ostream& csv) {
  for (std::size_t k = 0; k < estimators.size(); ++k) {
    const Count& count = row.counts[k];
    csv << row.cell.name() << ',' << estimators[k].name << ',' << num_scenes << ',' << count.right << ','
        << count.claimed << ',' << count.wrong_claimed << ',' << count.gross_claimed << ',' << count.microseconds
        << '\n';
  }
  csv.flush();  // as long runs are watched
}

/// A line for each cell and a column for each estimator, in which text_of(row, count) stands.
template <typename Text>
void print(const char* title, const std::vector<Row>& rows, const std::vector<Estimator>& estimators,
           const Text& text_of) {
  std::vector<std::string> header{"shape,noise,N,% wrong"};
  for (const Estimator& estimator : estimators) header.push_back(estimator.name);
  Table table(header);
  for (const Row& row : rows) {
    std::vector<std::string> line{row.cell.name()};
    for (const Count& count : row.counts) line.push_back(text_of(row, count));
    table.add(line);
  }
  std::cout << title << ":\n\n";
  table.print(std::cout);
}

void print_all(const std::vector<Row>& rows, const std::vector<Estimator>& estimators, unsigned num_scenes) {
  const auto part = [=](unsigned count) { return count == 0 ? "0" : number(100.0 * count / num_scenes); };
  print("Right, per cent, whatever is claimed", rows, estimators,
        [&](const Row& row, const Count& count) { return row.cell.is_solvable() ? part(count.right) : ""; });
  print("Wrong, but claimed to be right, per cent; in brackets those beyond all noise", rows, estimators,
        [&](const Row& /*row*/, const Count& count) {
          if (count.wrong_claimed == 0) return part(0);
          return part(count.wrong_claimed) + " (" + part(count.gross_claimed) + ")";
        });
  print("Processor time of a problem, microseconds", rows, estimators,
        [&](const Row& /*row*/, const Count& count) { return number(count.microseconds / num_scenes); });
  const auto is_default = [](const Estimator& estimator) { return estimator.name == "default"; };
  const auto reference =
      static_cast<std::size_t>(std::find_if(estimators.begin(), estimators.end(), is_default) - estimators.begin());
  if (reference == estimators.size()) return;
  print("The same as a part of OpenCV's default", rows, estimators, [&](const Row& row, const Count& count) {
    return number(count.microseconds / row.counts[reference].microseconds);
  });
}

void run(std::map<std::string, std::string> options) {
  const auto num_scenes = static_cast<unsigned>(std::stoul(options["--scenes"]));
  const std::vector<Estimator> estimators = estimators_like(std::regex(options["--estimators"]));
  const std::regex cells(options["--cells"]);
  const double sigmas = std::stod(options["--sigmas"]);
  std::ofstream csv(options["--csv"]);
  csv << "shape,sigma,points,percent_wrong,estimator,scenes,right,claimed,wrong_claimed,gross_claimed,microseconds\n";
  std::vector<Row> rows;
  for (const Estimation_cell& cell : all_estimation_cells()) {
    if (!std::regex_search(cell.name(), cells)) continue;
    const double max_error = sigmas > 0 ? sigmas * cell.sigma : std::stod(options["--max-error"]);
    rows.push_back(row_of(cell, estimators, num_scenes, max_error));
    write(rows.back(), estimators, num_scenes, csv);
  }
  std::cout << "## Estimates without a start\n\n";
  print_all(rows, estimators, num_scenes);
}

}  // namespace

int main(int argc, char** argv) {
  cv::setNumThreads(1);
  try {
    run(options_of(argc, argv));
  } catch (const std::exception& error) {
    std::cerr << "pose_estimation: " << error.what() << '\n';
    return 1;
  }
}
