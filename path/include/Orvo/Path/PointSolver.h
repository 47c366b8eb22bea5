#pragma once

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/Export.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/ToolPoint.h>
#include <Orvo/Vector3D.h>

#include <array>
#include <memory>
#include <vector>

namespace Orvo::Kin {
class Machine;
class MachinePosition;
class ProgramSystem;
}  // namespace Orvo::Kin

namespace Orvo::Path {

struct PointSolverImplementation;

/// One set of axis values for a point.
struct Answer {
  /// By place; rotary values lie from -180 to 180 degrees, whatever the ranges.
  AxisValues values = {};

  /// How far the tool direction is from the one asked for, in radians. Polished answers reach
  /// 1e-12 where doubles allow; what is above 1e-6 is no answer.
  double directionError = 0.0;

  /// 1 or -1, as the answer lies on one or the other branch of rotary solutions; 0 where they meet,
  /// in singular directions, and where fewer than two axes move the direction. Along a path a
  /// branch goes on without a jump as long as no singular direction is crossed.
  int branch = 0;

  /// Whether some equivalent of each rotary value, by whole turns, lies in the axis's range.
  bool isRotaryInRange = false;

  /// Whether the linear values exist and lie in their ranges.
  bool isLinearInRange = false;

  /// Whether the linear values exist; they are 0 otherwise.
  bool hasLinear = false;

  /// Tells whether all axes can be in range.
  bool IsInRange() const { return isRotaryInRange && isLinearInRange; }
};

/// Both answers for a point.
struct Answers {
  /// The answers; those beyond count are as they were made.
  std::array<Answer, 2> answers;

  /// How many there are: 0, 1 or 2.
  int count = 0;

  /// The angle between the direction and the nearer singular one, in radians: there the outer
  /// rotary axis may have any value. Pi / 2 where no such direction can be reached.
  double singularAngle = 1.5707963267948966;
};

/// How far forward kinematics comes out from what was asked for.
struct Residual {
  double tip = 0.0;        ///< a distance in the machine's unit
  double direction = 0.0;  ///< in radians
};

/// Solves and explains single requests for a program system, exactly.
///
/// The rotary solutions are those of Kin::MachineCompute, polished by Newton steps until forward
/// kinematics gives the direction back; a second one that its tolerances took for the first, near
/// singular directions, is there too. The linear values solve the general system of three axes, so
/// oblique ones are met as well. An axis too many, one that does not move the direction or is
/// parallel to the other rotary one, stays where it stood first. Ranges are those of the machine; a
/// value counts as inside up to 1e-9 beyond a limit.
///
/// The machine must outlive the solver and not change meanwhile. One thread per solver: each has a
/// calculator of its own.
class ORVO_PATH_API PointSolver {
 public:
  /// @param machine        a finished machine
  /// @param programSystem  one of its program systems
  /// @param offset         the tool point lies at minus this in the head's frame: (0, 0, L) for a
  ///   tool of the length L
  /// @param position       where the axes stand that the program system does not move
  PointSolver(const Kin::Machine& machine, const Kin::ProgramSystem& programSystem,
              const Vector3D& offset, const Kin::MachinePosition& position);

  /// Takes over; the other one may only be destroyed or assigned to afterwards.
  PointSolver(PointSolver&& other) noexcept;

  /// Takes over, in place of what this one was.
  PointSolver& operator=(PointSolver&& other) noexcept;
  ~PointSolver();

  /// Returns the axes.
  const MainAxes& GetAxes() const;

  /// Returns what is to be said of the program system: what doesn't fit, and oblique linear axes.
  const std::vector<Diagnosis>& GetFindings() const;

  /// Tells whether the program system can be computed with: no finding is a failure. The other
  /// members must not be called where it can't.
  bool IsUsable() const;

  /// Returns the place of the rotary axis that is free in singular directions, 3 or 4; -1 where
  /// there is none.
  int GetFreeAxis() const;

  /// Computes the answers for a point; none where the request is no finite point and direction.
  ///
  /// In a singular direction the free axis stands anywhere. Where that leaves an axis out of its
  /// range, the answers are those with the free axis where all ranges are kept, if there are any:
  /// nearest to where it stands at the start, and in the middle of the widest range of such values.
  Answers Solve(const ToolPoint& point);

  /// Computes the answer that holds the free axis and comes as near to the direction as the other
  /// one can bring it.
  /// @param heldDeg  the value of the free axis, in degrees; it comes out as given
  /// @return false where there is no free axis or no linear solution
  bool SolveHeld(const ToolPoint& point, double heldDeg, Answer* answer);

  /// Computes how the linear values of a point change when the point moves and the rotary axes
  /// stand: value i by the dot product of slope i and the move.
  /// @param values  only the rotary ones count
  /// @return false where the linear axes don't span space, or the chain is not one of two turns
  bool ComputeLinearSlopes(const AxisValues& values, std::array<Vector3D, 3>* slopes);

  /// Computes where forward kinematics puts the tool, in the table's frame; false where it fails.
  bool ComputeTool(const AxisValues& values, Vector3D* tip, Vector3D* direction);

  /// Tells how far forward kinematics comes out from a point; infinities where it fails.
  Residual Check(const ToolPoint& point, const AxisValues& values);

  /// Says why a point has no answer in range, from what Solve() gave; DiagnosisCode::None where it
  /// has one.
  Diagnosis Explain(const ToolPoint& point, const Answers& answers);

 private:
  std::unique_ptr<PointSolverImplementation> implementation_;
};

}  // namespace Orvo::Path
