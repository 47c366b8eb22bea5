#pragma once

#include "AxisNames.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Vector3D.h>

#include <array>
#include <string>
#include <vector>

namespace OrvoTool {

/// An axis that a program system moves, with what is needed of it.
struct MainAxis {
  int reg = -1;
  std::string name;
  bool isRotary = false;
  bool isChecked = false;  ///< whether its range counts
  double min = 0.0;        ///< in the machine's unit of length, or in degrees
  double max = 0.0;
};

/// The most axes that a program system moves: three linear and two rotary ones.
constexpr std::size_t MaxMainAxes = 5;

/// How a point went.
enum class Outcome : int {
  Reached,              ///< the machine gets there; perhaps outside the range of an axis
  DirectionOutOfReach,  ///< no values of the rotary axes give the direction
  DirectionOutOfRange,  ///< only values outside the range of a rotary axis do
  PointOutOfReach       ///< the linear axes have no solution
};

/// What came out for one point.
struct PointResult {
  Outcome outcome = Outcome::Reached;

  /// The number of rotary solutions: 0, 1 or 2.
  unsigned int solutionCount = 0;

  /// By place in PathSolver::GetAxes(): how far outside of its range the axis is, 0 if it isn't.
  std::array<double, MaxMainAxes> excess = {};

  /// By place: the axis stands at a limit a little short of what the direction asks for.
  std::array<bool, MaxMainAxes> isSnapped = {};

  /// The register of a rotary axis that could have any value and kept the one it had, or -1.
  int freeRegister = -1;

  double tipResidual = 0.0;  ///< distance from the point asked for to the one computed back
  double directionResidualDeg = 0.0;  ///< the same for the direction

  bool IsSnapped() const;
  bool IsOutOfRange() const;
};

/// Turns points of a path into axis values, one after the other: each solution is the one nearest
/// to the position that came before.
class PathSolver {
 public:
  /// @param machine        a finished machine; must outlive this object
  /// @param programSystem  a program system of it
  /// @param offset         the tool offset: (0, 0, L) for a tool of the length L
  /// @param shift          added to each point: where the path's origin lies in the table's frame
  /// @param start          the position before the first point
  PathSolver(const Orvo::Kin::Machine& machine, const Orvo::Kin::ProgramSystem& programSystem,
             const AxisNames& names, const Orvo::Vector3D& offset, const Orvo::Vector3D& shift,
             const Orvo::Kin::MachinePosition& start);

  /// Returns why this program system can't be computed with, or an empty text.
  std::string FindFault();

  /// Returns the axes that the program system moves, linear ones first.
  const std::vector<MainAxis>& GetAxes() const { return axes_; }

  /// Returns the current position. A point that can't be reached leaves it as it was.
  const Orvo::Kin::MachinePosition& GetPosition() const { return position_; }

  /// Solves the next point.
  /// @param point      in the frame of the path
  /// @param direction  unit direction from the tip towards the spindle, in the same frame
  PointResult Solve(const Orvo::Vector3D& point, const Orvo::Vector3D& direction);

 private:
  void AddAxis(const Orvo::Kin::Machine& machine, const AxisNames& names, int reg, bool isRotary);
  bool TakeRotarySolution(const Orvo::Vector3D& direction, PointResult* result);
  bool SetRotary(const Orvo::Kin::Register& reg, double valueDeg, const PointResult& result);
  void FindRotaryExcess(const Orvo::Vector3D& direction, PointResult* result);
  double SumOfMoves(double alphaDeg, double betaDeg) const;
  void CheckRanges(const Orvo::Vector3D& xyz, PointResult* result);
  void CheckForward(const Orvo::Vector3D& point, const Orvo::Vector3D& direction,
                    PointResult* result);

  Orvo::Kin::ProgramSystem programSystem_;
  Orvo::Kin::ProgramSystemCompute solver_;
  Orvo::Kin::MachineCompute compute_;
  std::vector<MainAxis> axes_;
  Orvo::Vector3D offset_;
  Orvo::Vector3D shift_;
  Orvo::Kin::MachinePosition position_;
  Orvo::Kin::MachinePosition next_;
};

}  // namespace OrvoTool
