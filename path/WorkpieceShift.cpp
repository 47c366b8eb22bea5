#include "path/WorkpieceShift.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Orvo::Path {
namespace {

constexpr std::size_t MaxConditions = 1U << 20U;
constexpr double Tolerance = 1e-9;
constexpr int MaxRounds = 64;

bool SolveThree(const std::array<Vec3, 3>& n, const std::array<double, 3>& b, Vec3* x) {
  const double determinant = Dot(n[0], Cross(n[1], n[2]));
  if (!(std::abs(determinant) > 1e-12)) {
    return false;
  }
  *x = (Cross(n[1], n[2]) * b[0] + (Cross(n[2], n[0]) * b[1] + Cross(n[0], n[1]) * b[2])) *
       (1.0 / determinant);
  return true;
}

/// The point nearest to the origin on one, two or three planes.
bool NearestOn(const std::vector<Vec3>& n, const std::vector<double>& b, Vec3* x) {
  if (n.size() == 1) {
    *x = n[0] * b[0];
    return true;
  }
  if (n.size() == 2) {
    const Vec3 along = Cross(n[0], n[1]);
    return Norm(along) > 1e-9 && SolveThree({n[0], n[1], Unit(along)}, {b[0], b[1], 0.0}, x);
  }
  return SolveThree({n[0], n[1], n[2]}, {b[0], b[1], b[2]}, x);
}

}  // namespace

void WorkpieceShift::Add(const Vec3& normal, double room) {
  const double norm = Norm(normal);
  if (!(norm > 0.0)) {
    return;
  }
  conditions_.push_back({normal * (1.0 / norm), room / norm});
  if (conditions_.size() >= 2 * MaxConditions) {
    const auto middle = conditions_.begin() + static_cast<std::ptrdiff_t>(MaxConditions);
    std::nth_element(conditions_.begin(), middle, conditions_.end(),
                     [](const Condition& a, const Condition& b) { return a.room < b.room; });
    leastDropped_ = std::min(leastDropped_, middle->room);
    conditions_.resize(MaxConditions);
  }
}

bool WorkpieceShift::FindAmong(const std::vector<Condition>& conditions, Vec3* move) {
  // The shortest move touches one, two or three of the conditions, or none.
  const auto isGood = [&conditions](const Vec3& x) {
    return std::all_of(conditions.begin(), conditions.end(),
                       [&x](const Condition& c) { return Dot(c.normal, x) <= c.room + Tolerance; });
  };
  *move = Vec3();
  if (isGood(*move)) {
    return true;
  }
  bool isFound = false;
  const auto consider = [&](const std::vector<Vec3>& n, const std::vector<double>& b) {
    Vec3 x;
    if (NearestOn(n, b, &x) && (!isFound || Dot(x, x) < Dot(*move, *move)) && isGood(x)) {
      *move = x;
      isFound = true;
    }
  };
  const std::vector<Condition>& c = conditions;
  for (std::size_t i = 0; i < c.size(); ++i) {
    consider({c[i].normal}, {c[i].room});
    for (std::size_t j = 0; j < i; ++j) {
      consider({c[i].normal, c[j].normal}, {c[i].room, c[j].room});
      for (std::size_t k = 0; k < j; ++k) {
        consider({c[i].normal, c[j].normal, c[k].normal}, {c[i].room, c[j].room, c[k].room});
      }
    }
  }
  return isFound;
}

// Cutting planes (Kelley, "The Cutting-Plane Method for Solving Convex Programs", 1960): solves for
// a few conditions and adds the one that the solution meets worst.
bool WorkpieceShift::Find(Vec3* move) const {
  std::vector<Condition> few;
  *move = Vec3();
  for (int round = 0; round < MaxRounds; ++round) {
    double worst = Tolerance;
    const Condition* worstCondition = nullptr;
    for (const Condition& condition : conditions_) {
      const double excess = Dot(condition.normal, *move) - condition.room;
      if (excess > worst) {
        worst = excess;
        worstCondition = &condition;
      }
    }
    if (worstCondition == nullptr) {
      return Norm(*move) <= leastDropped_;
    }
    few.push_back(*worstCondition);
    if (!FindAmong(few, move)) {
      return false;
    }
  }
  return false;
}

}  // namespace Orvo::Path
