#pragma once

#include "path/ChainModel.h"
#include "path/RotaryReach.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Path/PointSolver.h>

#include <array>
#include <vector>

namespace Orvo::Path {

struct PointSolverImplementation {
  PointSolverImplementation(const Kin::Machine& machine, const Kin::ProgramSystem& programSystem,
                            const Vector3D& offset, const Kin::MachinePosition& position);

  using Seeds = std::array<std::array<double, 2>, 2>;

  int FindSeeds(const Vec3& direction, double singularAngle, Seeds* seeds);

  /// Computes the answer with the free axis at a value, for a unit direction; there must be such an
  /// axis.
  bool Hold(const Vec3& tip, const Vec3& direction, double heldDeg, Answer* answer);
  bool Complete(const Vec3& point, const std::array<double, 2>& rad, Answer* answer);
  bool CompleteByCalculator(const Vec3& point, Answer* answer);
  void Rate(Answer* answer) const;

  Kin::MachineCompute compute;
  Kin::ProgramSystem programSystem;
  MainAxes axes;
  Vector3D offset;
  Kin::MachinePosition base;     ///< where the other axes stand, the main ones at 0
  AxisValues start;              ///< where the main ones stand at first
  Kin::MachinePosition scratch;  ///< for single calls
  ChainModel model;
  RotaryReach reach;
  std::vector<Diagnosis> findings;
  bool isUsable = false;
};

/// Takes the direction of a request at unit length; false where the request is none.
bool TakeRequest(const ToolPoint& point, Vec3* tip, Vec3* direction);

/// Finds what doesn't fit in a program system: its head, table, registers and axes.
std::vector<Diagnosis> FindMisfits(const Kin::Machine& machine,
                                   const Kin::ProgramSystem& programSystem, const MainAxes& axes);

}  // namespace Orvo::Path
