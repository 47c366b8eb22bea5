#pragma once

#include "property/reference/Calculator.h"
#include "property/reference/Model.h"

namespace Reference {

/// Moves an angle to the equivalent nearest a reference, and into a range where there is one. All
/// in radians. Where a value is more than 10,000 turns away, the last bits of the result are not
/// settled; @p farthest grows to the size of the farthest such value.
double ClosestAngle(double angle, double reference, double* farthest);
double ClosestAngle(double angle, double reference, double min, double max, double* farthest);

/// Solves for one program system of a machine.
class ProgramSolver {
 public:
  ProgramSolver(const Machine& machine, const Program& program)
      : machine_(machine), program_(program), calculator_(machine) {}

  bool SolveRotaries(const Position& pos, const Vector& ijk, Rotaries* solution);
  bool SolveLinear(const Position& pos, const Vector& offset, const Vector& point, Vector* xyz);

  /// The result of a range check; false in @p threw stands for an index outside the position.
  bool CheckRange(const Position& pos, bool* inRange, bool* threw);
  bool CheckRange(const Vector& xyz, bool* inRange);

  /// The farthest value, in radians, over more than 10,000 turns to which the last rotary solution
  /// unwrapped; 0 where there was none.
  double Farthest() const { return farthest_; }

 private:
  bool Unwrap(int reg, double current, double* angle);
  double Cost(const Position& pos, double alpha, double beta) const;

  const Machine& machine_;
  Program program_;
  Calculator calculator_;
  double farthest_ = 0.0;
};

}  // namespace Reference
