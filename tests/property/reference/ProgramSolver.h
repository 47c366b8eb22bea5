#pragma once

#include "property/reference/Calculator.h"
#include "property/reference/Model.h"

namespace Reference {

/// Moves an angle to the equivalent nearest a reference, and into a range where there is one. All
/// in radians. @p far tells that an angle was more than 10,000 turns away; its last bits are then
/// not settled.
double ClosestAngle(double angle, double reference, bool* far);
double ClosestAngle(double angle, double reference, double min, double max, bool* far);

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

  /// Tells whether the last rotary solution unwrapped over more than 10,000 turns.
  bool WasFar() const { return far_; }

 private:
  bool Unwrap(int reg, double current, double* angle);
  double Cost(const Position& pos, double alpha, double beta) const;

  const Machine& machine_;
  Program program_;
  Calculator calculator_;
  bool far_ = false;
};

}  // namespace Reference
