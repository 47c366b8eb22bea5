#pragma once

#include "property/Compare.h"
#include "property/Draw.h"
#include "property/RandomMachine.h"
#include "property/reference/Calculator.h"

#include <Orvo/Kin/MachineCompute.h>

#include <array>
#include <string>
#include <vector>

namespace Orvo::Property {

/// A request for rotary values.
struct RotaryRequest {
  Reference::Position pos;
  int head = 0;
  int table = 0;
  Reference::Vector ijk;
  int r0 = -1;
  int r1 = -1;
};

/// A request for linear values.
struct LinearRequest {
  Reference::Position pos;
  int head = 0;
  int table = 0;
  Reference::Vector offset;
  std::array<int, 3> registers = {-1, -1, -1};
  Reference::Vector point;
};

/// Two calculators on the two forms of one machine, which are asked the same and must answer the
/// same: result, output bits, and the last failure after every call.
class CalculatorPair {
 public:
  explicit CalculatorPair(const MachinePair& machines)
      : machines_(machines),
        calculator_(machines.machine),
        handle_(calculator_),
        twin_(machines.twin) {}

  void RelativePosition(Draw& draw);
  void PositionEntity(Draw& draw);
  void PositionMachine(Draw& draw);
  void McsToToolTcs(Draw& draw);
  void Rotaries(const RotaryRequest& request);
  void Linear(const LinearRequest& request);

 private:
  /// The calculator and a copy of it in turn: both are handles on the same one.
  Kin::MachineCompute& Handle();

  void ExpectSameError();

  const MachinePair& machines_;
  Kin::MachineCompute calculator_;
  Kin::MachineCompute handle_;
  bool takesHandle_ = false;
  Reference::Calculator twin_;
  std::vector<Matrix43> frames_;
  std::vector<Reference::Frame> twinFrames_;
};

/// Draws a request that has something to do with the machine: reachable directions, poles, limits
/// of reach, axes, and registers that fit or do not.
RotaryRequest AnyRotaryRequest(Draw& draw, const Reference::Machine& machine);
LinearRequest AnyLinearRequest(Draw& draw, const Reference::Machine& machine);

/// Draws a direction in the table's frame for the axes of a request.
Reference::Vector AnyTarget(Draw& draw, const Reference::Machine& machine,
                            const RotaryRequest& request);

std::string Text(const RotaryRequest& request);
std::string Text(const LinearRequest& request);

}  // namespace Orvo::Property
