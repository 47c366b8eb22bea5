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
/// and knows nothing of how paths are solved. Points without any answer are passed over.
class Exhaustive {
 public:
  /// @param coneDeg  where the free axis is held; none where that is below 0
  Exhaustive(PointSolver& solver, const PathMeasure& measure, double coneDeg)
      : solver_(solver), measure_(measure), coneDeg_(coneDeg) {}

  /// Returns the smallest cost from a start through all points; infinity where there is no way.
  double FindBest(const AxisValues& start, const std::vector<ToolPoint>& points) {
    points_ = points;
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
      AddTurns(answer.values, answer.branch, 6, 6, &options);
    }
    return options;
  }

  void AddTurns(const AxisValues& values, int branch, int mostA, int mostC,
                std::vector<Option>* options) const {
    for (int a = -mostA; a <= mostA; ++a) {
      for (int c = -mostC; c <= mostC; ++c) {
        Option option = {values, branch};
        option.values[3] += 360.0 * a;
        option.values[4] += 360.0 * c;
        if (IsInside(option.values, a, c)) {
          options->push_back(option);
        }
      }
    }
  }

  // With the free axis where it stands; none where the point isn't singular or others leave their
  // ranges then.
  std::vector<Option> HeldOptionsOf(const ToolPoint& point, const AxisValues& from) {
    std::vector<Option> options;
    const int place = solver_.GetFreeAxis();
    if (place < 0 || coneDeg_ < 0.0 ||
        !(solver_.Solve(point).singularAngle <=
          std::max(coneDeg_ * 3.14159265358979 / 180, 1e-12))) {
      return options;
    }
    Answer answer;
    if (solver_.SolveHeld(point, from[static_cast<std::size_t>(place)], &answer)) {
      AddTurns(answer.values, 0, place == 3 ? 0 : 6, place == 4 ? 0 : 6, &options);
    }
    return options;
  }

  bool IsInside(const AxisValues& values, int a, int c) const {
    const int turns[] = {0, 0, 0, a, c};
    for (std::size_t i = 0; i < MainAxisNb; ++i) {
      const MainAxis& axis = solver_.GetAxes().axes[i];
      if (!axis.isPresent || !axis.isChecked) {
        if (turns[i] != 0 && !axis.isPresent) {
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
    const std::vector<Option> held = HeldOptionsOf(points_[point], from);
    const std::vector<Option>& options = held.empty() ? options_[point] : held;
    if (options.empty()) {
      Go(point + 1, from, branch, cost);
    }
    for (const Option& option : options) {
      Go(point + 1, option.values, option.branch,
         cost + CostOf(from, option.values, branch, option.branch));
    }
  }

  PointSolver& solver_;
  const PathMeasure& measure_;
  double coneDeg_;
  std::vector<ToolPoint> points_;
  std::vector<std::vector<Option>> options_;
  double best_ = 0.0;
};

}  // namespace Orvo::Path::Testing
