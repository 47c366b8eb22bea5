#pragma once

#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PathOptions.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/ToolPoint.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace Orvo::Path::Testing {

/// Goes through everything that may be taken at each point of a small path, without any cleverness,
/// and knows nothing of how paths are solved. Points must not be singular and must have answers.
class Exhaustive {
 public:
  Exhaustive(PointSolver& solver, const PathMeasure& measure)
      : solver_(solver), measure_(measure) {}

  /// Returns the smallest cost from a start through all points; infinity where there is no way.
  double FindBest(const AxisValues& start, const std::vector<ToolPoint>& points) {
    options_.clear();
    for (const ToolPoint& point : points) {
      options_.push_back(OptionsOf(point));
    }
    best_ = std::numeric_limits<double>::infinity();
    Go(0, start, 0, 0.0);
    return best_;
  }

 private:
  struct Option {
    AxisValues values;
    int branch;
  };

  std::vector<Option> OptionsOf(const ToolPoint& point) {
    std::vector<Option> options;
    const Answers answers = solver_.Solve(point);
    for (int s = 0; s < answers.count; ++s) {
      const Answer& answer = answers.answers[static_cast<std::size_t>(s)];
      for (int a = -6; a <= 6; ++a) {
        for (int c = -6; c <= 6; ++c) {
          Option option = {answer.values, answer.branch};
          option.values[3] += 360.0 * a;
          option.values[4] += 360.0 * c;
          if (IsInside(option.values, a, c)) {
            options.push_back(option);
          }
        }
      }
    }
    return options;
  }

  bool IsInside(const AxisValues& values, int a, int c) const {
    const int turns[] = {0, 0, 0, a, c};
    for (std::size_t i = 0; i < MainAxisNb; ++i) {
      const MainAxis& axis = solver_.GetAxes().axes[i];
      if (!axis.isPresent) {
        if (turns[i] != 0) {
          return false;
        }
      } else if (values[i] < axis.min - 1e-9 || values[i] > axis.max + 1e-9) {
        return false;
      }
    }
    return true;
  }

  double CostOf(const AxisValues& from, const AxisValues& to, int fromBranch, int toBranch) const {
    double sum = 0.0;
    double longest = 0.0;
    for (std::size_t i = 0; i < MainAxisNb; ++i) {
      sum += std::fabs(to[i] - from[i]) * measure_.weights[i];
      longest = std::max(longest, std::fabs(to[i] - from[i]) / measure_.speeds[i]);
    }
    double cost = measure_.kind == MeasureKind::Travel ? sum : longest;
    cost += fromBranch != 0 && fromBranch == -toBranch ? measure_.branchChangeCost : 0.0;
    const bool unwinds =
        std::fabs(to[3] - from[3]) > 180.0 + 1e-9 || std::fabs(to[4] - from[4]) > 180.0 + 1e-9;
    return cost + (unwinds ? measure_.unwindingCost : 0.0);
  }

  void Go(std::size_t point, const AxisValues& from, int branch, double cost) {
    if (point == options_.size()) {
      best_ = std::min(best_, cost);
      return;
    }
    for (const Option& option : options_[point]) {
      Go(point + 1, option.values, option.branch,
         cost + CostOf(from, option.values, branch, option.branch));
    }
  }

  PointSolver& solver_;
  const PathMeasure& measure_;
  std::vector<std::vector<Option>> options_;
  double best_ = 0.0;
};

}  // namespace Orvo::Path::Testing
