// SPDX-License-Identifier: BSD-3-Clause
// benchmark SECONDS [MODULE]: prints races as Markdown, each row for so many seconds. MODULE is another build of the
// module, whose calls are timed in turn with ours.
// benchmark --estimates N [--all]: counts right estimates in N scenes a row.
#include <iostream>
#include <opencv2/core/utility.hpp>

#include "benchmarks/race.h"

namespace {

using namespace bench;

/// Points in a volume.
Cell points(unsigned num_points, unsigned percent_wrong = 0) { return {Cell::volume, 0.5, num_points, percent_wrong}; }

void race_ten_iterations(double seconds, const std::string& module_file) {
  const auto other = module_file.empty() ? nullptr : loaded_module(module_file);
  Comparison comparison(seconds);
  for (const unsigned N : {6U, 10U, 20U, 50U, 100U, 300U, 1000U, 3000U, 10000U, 30000U, 100000U}) {
    comparison.add(std::to_string(N), points(N), 10.0 * N, [&](const Scene& scene) {
      Field field{module_call("kelvane", &mexFunction, scene),
                  tiny_solver("TinySolver", scene, {}),
                  tiny_solver_native("TinySolver native", scene, {}),
                  ceres_solver(scene, {}),
                  opencv_lm(scene),
                  opencv_vvs(scene)};
      if (other != nullptr) field.push_back(module_call("other", other, scene));
      return field;
    });
  }
  comparison.print("Ten iterations", "ns per point and iteration", std::cout);
}

void race_until_still(double seconds) {
  Comparison comparison(seconds);
  for (const double loss_scale : {0.0, 1.0}) {
    const bool is_huber = loss_scale > 0;
    const Method method{loss_scale, 100, 1e-9};
    for (const unsigned N : {20U, 100U, 1000U, 10000U, 100000U}) {
      const std::string label =
          (is_huber ? "Huber's loss, every tenth wrong, " : "least squares, ") + std::to_string(N);
      comparison.add(label, points(N, is_huber ? 10 : 0), 1e3, [&](const Scene& scene) {
        return Field{engine(scene, method), ceres_solver(scene, method), tiny_solver("TinySolver", scene, method)};
      });
    }
  }
  comparison.print("Until the pose is still", "microseconds", std::cout);
}

void run(const std::vector<std::string>& arguments) {
  cv::setNumThreads(1);
  if (arguments.at(0) == "--estimates") {
    return print_estimates(static_cast<unsigned>(std::stoul(arguments.at(1))), arguments.size() > 2, std::cout);
  }
  const double seconds = std::stod(arguments[0]);
  race_ten_iterations(seconds, arguments.size() > 1 ? arguments[1] : "");
  race_until_still(seconds);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "benchmark: " << error.what() << '\n';
    return 1;
  }
}
