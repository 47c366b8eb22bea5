#include "PathSolver.h"

#include "MachineFile.h"

#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace OrvoTool {
namespace {

using Orvo::Vector3D;
using Orvo::Kin::Register;
using Orvo::Kin::RotariesSolution;

/// An axis is not outside of its range when only rounding has put it there: in the machine's unit
/// of length, or in degrees.
constexpr double RoundingOfAxes = 1e-9;

/// A rotary axis at its limit was set there by the solver when the direction misses by more than
/// this, in degrees.
constexpr double SnapDirectionDeg = 1e-6;

constexpr double DegreesPerRadian = 180.0 / 3.141592653589793;

/// Returns the angle between two unit directions in degrees, exact for small ones too.
double AngleBetweenDeg(Vector3D a, const Vector3D& b) {
  return std::atan2((a & b).Norm(), a * b) * DegreesPerRadian;
}

bool IsFinite(const Vector3D& v) {
  return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

double ExcessOf(const MainAxis& axis, double value) {
  if (!axis.isChecked) {
    return 0.0;
  }
  const double excess = std::max(axis.min - value, value - axis.max);
  return excess > RoundingOfAxes ? excess : 0.0;
}

/// Returns how far outside of its range a rotary axis is at the best of the equivalent values.
double ExcessOfBestTurn(const MainAxis& axis, double valueDeg) {
  const double lowestInside = valueDeg + 360.0 * std::ceil((axis.min - valueDeg) / 360.0);
  return std::min(ExcessOf(axis, lowestInside), ExcessOf(axis, lowestInside - 360.0));
}

}  // namespace

bool PointResult::IsSnapped() const {
  return std::find(isSnapped.begin(), isSnapped.end(), true) != isSnapped.end();
}

bool PointResult::IsOutOfRange() const {
  return outcome == Outcome::Reached &&
         std::any_of(excess.begin(), excess.end(), [](double e) { return e > 0.0; });
}

PathSolver::PathSolver(const Orvo::Kin::Machine& machine,
                       const Orvo::Kin::ProgramSystem& programSystem, const AxisNames& names,
                       const Vector3D& offset, const Vector3D& shift,
                       const Orvo::Kin::MachinePosition& start)
    : programSystem_(programSystem),
      solver_(machine, programSystem),
      compute_(machine),
      offset_(offset),
      shift_(shift),
      position_(start),
      next_(start) {
  for (int i = 0; i < 3; ++i) {
    AddAxis(machine, names, programSystem.GetMainLinear(i).GetVal(), false);
  }
  for (int i = 0; i < 2; ++i) {
    if (programSystem.GetMainRotary(i).IsDefined()) {
      AddAxis(machine, names, programSystem.GetMainRotary(i).GetVal(), true);
    }
  }
}

void PathSolver::AddAxis(const Orvo::Kin::Machine& machine, const AxisNames& names, int reg,
                         bool isRotary) {
  MainAxis axis;
  axis.reg = reg;
  axis.name = names.GetName(reg);
  axis.isRotary = isRotary;
  const Orvo::Kin::Entity* entity = machine.GetKinematic().GetEntity(Register(reg));
  if (entity != nullptr) {
    axis.isChecked = entity->GetCheckRangeAxis();
    axis.min = entity->GetRangeMin();
    axis.max = entity->GetRangeMax();
  }
  axes_.push_back(axis);
}

std::string PathSolver::FindFault() {
  const Vector3D direction(0.0, 0.0, 1.0);
  RotariesSolution solution;
  if (!compute_.ComputeToolIjkTcsToMcsAbc(
          position_, programSystem_.GetHeadIndex(), programSystem_.GetTableIndex(), direction,
          programSystem_.GetMainRotary(0), programSystem_.GetMainRotary(1), &solution)) {
    return std::string("its rotary axes can't be computed: ") +
           DescribeComputeError(compute_.GetLastError());
  }
  Vector3D xyz;
  if (!compute_.ComputeToolTcsToMcsXyz(
          position_, programSystem_.GetHeadIndex(), programSystem_.GetTableIndex(), offset_,
          programSystem_.GetMainLinear(0), programSystem_.GetMainLinear(1),
          programSystem_.GetMainLinear(2), shift_, &xyz)) {
    return std::string("its linear axes can't be computed: ") +
           DescribeComputeError(compute_.GetLastError());
  }
  return std::string();
}

double PathSolver::SumOfMoves(double alphaDeg, double betaDeg) const {
  const Register& r0 = programSystem_.GetMainRotary(0);
  const Register& r1 = programSystem_.GetMainRotary(1);
  return (r0.IsDefined() ? std::abs(alphaDeg - position_[r0]) : 0.0) +
         (r1.IsDefined() ? std::abs(betaDeg - position_[r1]) : 0.0);
}

bool PathSolver::TakeRotarySolution(const Vector3D& direction, PointResult* result) {
  RotariesSolution solution;
  if (!solver_.ComputeToolIjkTcsToMcsAbc(position_, direction, &solution) || solution.Count == 0) {
    return false;
  }
  result->solutionCount = solution.Count;
  double alphaDeg = solution.Alpha1.GetDegre();
  double betaDeg = solution.Beta1.GetDegre();
  if (solution.Count == 2) {
    // The shortest way has put the nearer solution first; the other policies leave the choice.
    const double otherAlphaDeg = solution.Alpha2.GetDegre();
    const double otherBetaDeg = solution.Beta2.GetDegre();
    if (programSystem_.GetRotariesCompute() != Orvo::Kin::RotariesComputeShortestWay &&
        SumOfMoves(otherAlphaDeg, otherBetaDeg) < SumOfMoves(alphaDeg, betaDeg)) {
      alphaDeg = otherAlphaDeg;
      betaDeg = otherBetaDeg;
    }
  }
  result->freeRegister = solution.FreeRegister;
  const bool isAlphaSet = SetRotary(programSystem_.GetMainRotary(0), alphaDeg, *result);
  const bool isBetaSet = SetRotary(programSystem_.GetMainRotary(1), betaDeg, *result);
  return isAlphaSet && isBetaSet;
}

bool PathSolver::SetRotary(const Register& reg, double valueDeg, const PointResult& result) {
  if (!reg.IsDefined()) {
    return true;
  }
  const auto axis = std::find_if(axes_.begin(), axes_.end(), [&reg](const MainAxis& a) {
    return a.isRotary && a.reg == reg.GetVal();
  });
  const double currentDeg = position_[reg];
  const bool keepsValue = result.freeRegister == reg.GetVal() && axis != axes_.end() &&
                          ExcessOf(*axis, currentDeg) == 0.0;
  next_[reg] = keepsValue ? currentDeg : valueDeg;
  return std::isfinite(valueDeg);
}

void PathSolver::FindRotaryExcess(const Vector3D& direction, PointResult* result) {
  result->outcome = Outcome::DirectionOutOfReach;
  RotariesSolution raw;
  if (!compute_.ComputeToolIjkTcsToMcsAbc(
          position_, programSystem_.GetHeadIndex(), programSystem_.GetTableIndex(), direction,
          programSystem_.GetMainRotary(0), programSystem_.GetMainRotary(1), &raw)) {
    return;
  }
  double smallestSum = 0.0;
  for (unsigned int i = 0; i < raw.Count; ++i) {
    std::array<double, MaxMainAxes> excess = {};
    double sum = 0.0;
    for (std::size_t a = 0; a < axes_.size(); ++a) {
      if (!axes_[a].isRotary) {
        continue;
      }
      const bool isAlpha = axes_[a].reg == programSystem_.GetMainRotary(0).GetVal();
      const Orvo::Angle& angle =
          isAlpha ? (i == 0 ? raw.Alpha1 : raw.Alpha2) : (i == 0 ? raw.Beta1 : raw.Beta2);
      excess[a] = ExcessOfBestTurn(axes_[a], angle.GetDegre());
      sum += excess[a];
    }
    if (sum > 0.0 && (smallestSum == 0.0 || sum < smallestSum)) {
      smallestSum = sum;
      result->excess = excess;
      result->outcome = Outcome::DirectionOutOfRange;
    }
  }
}

void PathSolver::CheckRanges(const Vector3D& xyz, PointResult* result) {
  bool linearInRange[3] = {true, true, true};
  solver_.CheckLinearRange(xyz, linearInRange);
  for (std::size_t a = 0; a < axes_.size(); ++a) {
    if (a < 3 && linearInRange[a]) {
      continue;
    }
    result->excess[a] = ExcessOf(axes_[a], next_[Register(axes_[a].reg)]);
  }
}

void PathSolver::CheckForward(const Vector3D& point, const Vector3D& direction,
                              PointResult* result) {
  Orvo::Matrix43 tableFromTip;
  if (!compute_.ComputeMcsToToolTcs(next_, programSystem_.GetHeadIndex(),
                                    programSystem_.GetTableIndex(), offset_, &tableFromTip)) {
    result->outcome = Outcome::PointOutOfReach;
    return;
  }
  result->tipResidual = tableFromTip.GetTrans().Distance(point);
  result->directionResidualDeg = AngleBetweenDeg(tableFromTip.GetW(), direction);
  if (!std::isfinite(result->tipResidual) || !std::isfinite(result->directionResidualDeg)) {
    result->outcome = Outcome::PointOutOfReach;
    return;
  }
  for (std::size_t a = 0; a < axes_.size(); ++a) {
    const MainAxis& axis = axes_[a];
    const double value = next_[Register(axis.reg)];
    result->isSnapped[a] = axis.isRotary && axis.isChecked &&
                           result->directionResidualDeg > SnapDirectionDeg &&
                           (std::abs(value - axis.min) <= RoundingOfAxes ||
                            std::abs(value - axis.max) <= RoundingOfAxes);
  }
}

PointResult PathSolver::Solve(const Vector3D& point, const Vector3D& direction) {
  PointResult result;
  Vector3D pointInTable = point;
  pointInTable += shift_;
  next_ = position_;
  if (!TakeRotarySolution(direction, &result)) {
    result.solutionCount = 0;
    FindRotaryExcess(direction, &result);
    return result;
  }
  Vector3D xyz;
  if (!solver_.ComputeToolTcsToMcsXyz(next_, offset_, pointInTable, &xyz) || !IsFinite(xyz)) {
    result.outcome = Outcome::PointOutOfReach;
    return result;
  }
  for (int i = 0; i < 3; ++i) {
    next_[programSystem_.GetMainLinear(i)] = xyz[i];
  }
  CheckForward(pointInTable, direction, &result);
  if (result.outcome == Outcome::Reached) {
    CheckRanges(xyz, &result);
    position_ = next_;
  }
  return result;
}

}  // namespace OrvoTool
