#include "path/FreeAxis.h"

#include "path/Turns.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace Orvo::Path {
namespace {

/// Off a circle by less than this, of its size, a linear value lies on it.
constexpr double CircleTolerance = 1e-9;

/// How far a direction may be from being singular, in radians.
constexpr double NoDeviation = 1e-12;

/// A linear value while the free axis turns.
struct Circle {
  double middle = 0.0;
  double cosine = 0.0;
  double sine = 0.0;

  double At(double deg) const {
    return middle + (cosine * std::cos(RadFromDeg(deg)) + sine * std::sin(RadFromDeg(deg)));
  }
  double Size() const { return std::abs(middle) + std::hypot(cosine, sine); }
};

using Circles = std::array<Circle, FirstRotary>;

class FreeAxis {
 public:
  FreeAxis(PointSolverImplementation& own, const Vec3& tip, const Vec3& direction)
      : own_(own), tip_(tip), direction_(direction), place_(FirstRotary + own.reach.GetOuter()) {}

  double StartDeg() const { return own_.start[place_]; }

  /// Computes the answer for a value of the free axis.
  Answer At(double deg) const {
    Answer answer;
    own_.Hold(tip_, direction_, deg, &answer);
    return answer;
  }

  static bool IsGood(const Answer& answer) {
    return answer.IsInRange() && answer.directionError <= NoDeviation;
  }

  /// Returns all values, from -180 to 180 degrees, where a range begins or ends, in order.
  std::vector<double> FindEdges() const {
    std::vector<double> edges = {std::remainder(StartDeg(), 360.0)};
    Circles circles;
    if (FindCircles(&circles)) {
      for (std::size_t i = 0; i < FirstRotary; ++i) {
        const MainAxis& axis = own_.axes.axes[i];
        if (axis.isPresent && axis.isChecked) {
          AddMeetings(circles[i], axis.min, &edges);
          AddMeetings(circles[i], axis.max, &edges);
        }
      }
    } else {
      for (int deg = -180; deg < 180; ++deg) {
        edges.push_back(deg);
      }
    }
    const MainAxis& axis = own_.axes.axes[place_];
    if (axis.isPresent && axis.isChecked) {
      edges.push_back(std::remainder(axis.min, 360.0));
      edges.push_back(std::remainder(axis.max, 360.0));
    }
    std::erase_if(edges, [](double edge) { return !std::isfinite(edge); });
    std::sort(edges.begin(), edges.end());
    return edges;
  }

 private:
  bool FindCircles(Circles* circles) const {
    const Answer quarters[] = {At(0.0), At(90.0), At(180.0), At(-90.0)};
    const double others[] = {37.0, 161.0, -77.0};
    const Answer checks[] = {At(others[0]), At(others[1]), At(others[2])};
    for (std::size_t i = 0; i < FirstRotary; ++i) {
      const auto at = [&](std::size_t quarter) { return quarters[quarter].values[i]; };
      Circle& circle = (*circles)[i];
      circle.middle = 0.25 * ((at(0) + at(2)) + (at(1) + at(3)));
      circle.cosine = 0.5 * (at(0) - at(2));
      circle.sine = 0.5 * (at(1) - at(3));
      for (std::size_t k = 0; k < 3; ++k) {
        if (!(std::abs(circle.At(others[k]) - checks[k].values[i]) <=
              CircleTolerance * (1.0 + circle.Size()))) {
          return false;
        }
      }
    }
    return std::all_of(std::begin(quarters), std::end(quarters),
                       [](const Answer& answer) { return answer.hasLinear; });
  }

  static void AddMeetings(const Circle& circle, double limit, std::vector<double>* edges) {
    const double radius = std::hypot(circle.cosine, circle.sine);
    const double cosine = (limit - circle.middle) / radius;
    // A circle that just touches its limit does so once.
    if (!(std::abs(cosine) <= 1.0 + CircleTolerance)) {
      return;
    }
    const double top = std::atan2(circle.sine, circle.cosine);
    const double aside = std::acos(std::clamp(cosine, -1.0, 1.0));
    edges->push_back(std::remainder(DegFromRad(top + aside), 360.0));
    edges->push_back(std::remainder(DegFromRad(top - aside), 360.0));
  }

  PointSolverImplementation& own_;
  const Vec3& tip_;
  const Vec3& direction_;
  std::size_t place_;
};

}  // namespace

bool FindFreeAnswers(PointSolverImplementation& own, const Vec3& tip, const Vec3& direction,
                     Answers* answers) {
  const FreeAxis axis(own, tip, direction);
  const std::vector<double> edges = axis.FindEdges();
  Answer nearest;
  double least = 0.0;
  Answer widest;
  double most = 0.0;
  bool isFound = false;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Answer atEdge = axis.At(edges[i]);
    const double way = std::abs(std::remainder(edges[i] - axis.StartDeg(), 360.0));
    if (FreeAxis::IsGood(atEdge) && (!isFound || way < least)) {
      nearest = atEdge;
      least = way;
      isFound = true;
    }
    const double next = i + 1 < edges.size() ? edges[i + 1] : edges[0] + 360.0;
    const double width = next - edges[i];
    if (width > most) {
      const Answer middle = axis.At(std::remainder(edges[i] + 0.5 * width, 360.0));
      if (FreeAxis::IsGood(middle)) {
        widest = middle;
        most = width;
      }
    }
  }
  if (!isFound && most == 0.0) {
    return false;
  }
  answers->count = 0;
  for (const Answer* answer : {isFound ? &nearest : nullptr, most > 0.0 ? &widest : nullptr}) {
    if (answer != nullptr) {
      answers->answers[static_cast<std::size_t>(answers->count++)] = *answer;
    }
  }
  return true;
}

}  // namespace Orvo::Path
