#pragma once

#include <Orvo/Kin/ProgramSystem.h>

#include <string>

namespace Orvo::Kin {

/// The contents of a ProgramSystem.
struct ProgramSystemImplementation {
  std::wstring name;
  TableIndex tableIndex;
  HeadIndex headIndex;
  Register mainLinear[3];
  Register mainRotary[2];
  RotariesCompute rotariesCompute = RotariesComputeShortestWay;
};

}  // namespace Orvo::Kin
