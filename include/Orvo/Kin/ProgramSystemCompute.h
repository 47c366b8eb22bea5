#pragma once

#include <Orvo/Angle.h>
#include <Orvo/Export.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Vector3D.h>

#include <memory>

namespace Orvo::Kin {

class Machine;
class MachinePosition;
class ProgramSystem;
struct ProgramSystemComputeImplementation;

/// Solves for one program system: its head, table and axes, and its choice of rotary solutions.
///
/// Holds a copy of the program system and a calculator of its own. A copy is a second handle on
/// the same ones. The machine must outlive every handle and its tree must not change meanwhile.
/// One thread per object.
class ORVO_API ProgramSystemCompute {
 public:
  /// Makes a solver for a machine, which has to outlive it, and a copy of a program system. Nothing
  /// is checked here: the operations meet what is missing.
  ProgramSystemCompute(const Machine& machine, const ProgramSystem& programSystem);

  /// Makes a second handle on the same solver.
  ProgramSystemCompute(const ProgramSystemCompute& other);

  /// Lets go of the own solver and becomes a second handle on the other.
  ProgramSystemCompute& operator=(const ProgramSystemCompute& other);
  virtual ~ProgramSystemCompute();

  /// Computes the rotary values that turn the tool onto a direction, chosen by the program
  /// system's policy.
  ///
  /// "Default" and "AlphaPositive": the solutions of MachineCompute::ComputeToolIjkTcsToMcsAbc as
  /// they are. "ShortestWay": an arbitrary axis takes its current value; each angle goes to the
  /// equivalent nearest the current value, by whole turns, and into the axis's range where that is
  /// checked; there, angles up to 0.01 radian below the lower limit and up to 0.0001 radian above
  /// the upper one are set to the limit; solutions outside the ranges are dropped; of two that are
  /// left, the one with the smaller sum of moves comes first. A current value or a limit that is
  /// NaN or infinite moves no angle, and a limit that is NaN bounds none.
  ///
  /// @param pos  current axis values by register: lengths in the machine's unit, angles in degrees
  /// @param ijk  requested direction in the table's frame, from the tool tip towards the head
  /// @param sol  receives the solutions
  /// @return true on success, even without a solution: ask the count. False where
  ///   MachineCompute::ComputeToolIjkTcsToMcsAbc fails
  bool ComputeToolIjkTcsToMcsAbc(const MachinePosition& pos, const Vector3D& ijk,
                                 RotariesSolution* sol);

  /// Computes the values of the main linear axes that bring the tool point to a point, as
  /// MachineCompute::ComputeToolTcsToMcsXyz does. Ranges are not looked at.
  ///
  /// @param pos     axis values by register
  /// @param offset  the tool point lies at minus this in the head's frame
  /// @param point   the requested point in the table's frame
  /// @param xyz     receives the values of the main X, Y and Z axes
  bool ComputeToolTcsToMcsXyz(const MachinePosition& pos, const Vector3D& offset,
                              const Vector3D& point, Vector3D* xyz);

  /// Tells whether the main linear axes stand within their ranges, limits included. Axes that
  /// don't exist and axes whose range is not checked are within. NaN, as a value or as a limit, is
  /// never outside.
  ///
  /// @param pos      axis values by register
  /// @param inRange  may be null; else three flags, for X, Y and Z
  /// @throws std::out_of_range when a main linear register lies outside @p pos
  bool CheckLinearRange(const MachinePosition& pos, bool* const inRange);

  /// Does the same for three values of the main X, Y and Z axes.
  bool CheckLinearRange(const Vector3D& xyz, bool* const inRange);

 private:
  Angle ComputeClosestAngle(const Angle& angle, const Angle& reference);
  Angle ComputeClosestAngle(const Angle& angle, const Angle& reference, const Angle& min,
                            const Angle& max);

  std::shared_ptr<ProgramSystemComputeImplementation> implementation_;
};

}  // namespace Orvo::Kin
