#pragma once

/// @file
/// The enumerations of the machine model and of its computation.
///
/// All have `int` as underlying type. The words in quotes name the values in machine files.

namespace Orvo::Kin {

/// The role of an element in the machine.
enum EntityType : int {
  EntityTypeAxis = 0,   ///< "AXIS": a moving or fixed element of the kinematic chain
  EntityTypeTable = 1,  ///< "TABLE": carries the workpiece
  EntityTypeHead = 2    ///< "HEAD": carries the tool
};

/// How an element stands in the chain. Stored and persisted; nothing in the library acts on it.
enum EntityParallelType : int {
  EntityParallelTypeChain = 0,    ///< "CHAIN": a serial link of the chain
  EntityParallelTypeParallel = 1  ///< "PARALLEL": marked as parallel
};

/// The motion, or fixed placement, of an element relative to its parent.
///
/// Forward kinematics places LINEAR, ROTARY and POSITION links, takes IDENTITY for the identity
/// frame and refuses every other value.
enum EntityLinkType : int {
  EntityLinkTypeLinear = 0,        ///< "LINEAR": translation along a direction
  EntityLinkTypeRotary = 1,        ///< "ROTARY": rotation about an axis through a center
  EntityLinkTypePosition = 2,      ///< "POSITION": fixed placement by a frame
  EntityLinkTypeAbc = 3,           ///< "ABC": accepted and stored only
  EntityLinkTypeXyzAbc = 4,        ///< "XYZABC": accepted and stored only
  EntityLinkTypeIdentity = 5,      ///< "IDENTITY": the identity frame
  EntityLinkTypeXyzIjk = 6,        ///< "XYZIJK": accepted and stored only
  EntityLinkTypeXyzRepSpindl = 7,  ///< "XYZ_REPSPINDL": accepted and stored only
  EntityLinkTypeUndef = 8          ///< "UNDEF": no link yet
};

/// How a program system chooses among the rotary solutions.
///
/// Deliberate: the words are mixed-case, unlike those of the other enumerations, and a new
/// ProgramSystem starts with `RotariesComputeShortestWay`.
enum RotariesCompute : int {
  RotariesComputeDefault = 0,       ///< "Default": the solutions as computed
  RotariesComputeShortestWay = 1,   ///< "ShortestWay": unwrapped, filtered by range, nearest first
  RotariesComputeAlphaPositive = 2  ///< "AlphaPositive": as "Default"
};

/// The result of the last Machine::Finish. The first failing check, in the order parent cycle,
/// head, table, linear axes, sets the code.
enum MachineErrorType : int {
  MachineErrorNone = 0,           ///< the machine is valid
  MachineErrorNoHead = 1,         ///< no element is of the type HEAD
  MachineErrorNoTable = 2,        ///< no element is of the type TABLE
  MachineErrorFewLinearAxes = 3,  ///< fewer than three AXIS elements have a LINEAR link
  MachineErrorParentCycle = 4     ///< the parents of some elements form a cycle
};

/// The cause of the last failure of a MachineCompute.
enum MachineComputeErrorType : int {
  ComputeErrorNone = 0,           ///< nothing has failed so far
  ComputeErrorNotFinished = 1,    ///< the machine is not finished
  ComputeErrorNullOutput = 2,     ///< a required output pointer is null
  ComputeErrorEmptyPosition = 3,  ///< the machine position holds no value
  ComputeErrorNoHeadOrTable = 4,  ///< no such head or table, or no chain between them
  ComputeErrorRegister = 5,       ///< a register outside the position or, in the solvers, any other
                                  ///< fault of the requested registers, their axes or the chain
  ComputeErrorLinkType = 6,       ///< a link of a kind that can't be placed
  ComputeErrorNotAxis = 7,        ///< the element is not an axis
  ComputeErrorAxisLinkType = 8,   ///< the axis is neither linear nor rotary
  ComputeErrorNoSolution = 9      ///< the rotary solver failed
};

}  // namespace Orvo::Kin
