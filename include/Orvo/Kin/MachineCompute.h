#pragma once

#include <Orvo/Export.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <memory>
#include <vector>

namespace Orvo::Kin {

class Entity;
class Machine;
struct MachineComputeImplementation;
struct RotariesSolution;
struct RotaryDirections;

/// Computes where the elements of a finished machine stand, and which axis values bring the tool
/// to a direction or a point.
///
/// World frames stand in the frame of the root of the machine's tree. Positions hold lengths in
/// the machine's unit and angles in degrees, by register.
///
/// Deliberate: for the two solvers, an axis whose register lies beyond a position that is shorter
/// than an earlier one stands where the earlier one had it. Alloc() positions by the machine.
///
/// Any doubles may stand in the machine, in positions and in requests. NaN and infinities pass
/// through the arithmetic into the results and are no failure of their own; they leave nothing
/// behind for the next call. A requested direction that holds NaN has no rotary solution.
///
/// An operation that fails returns false and keeps the cause as GetLastError(); a later success
/// does not reset it.
///
/// From call to call a calculator keeps what the values of the axes don't change, and the frames of
/// the links whose values stayed. No result depends on it: setters of the machine's elements and
/// links make it void, and it holds for any head, table, registers and position. Its size is linear
/// in the elements on the ways to the root, for each of up to sixteen pairs of head and table, with
/// the axes that are solved. An operation whose keeping gets no memory does without.
///
/// A copy is a second handle on the same calculator, what it keeps and the last error included. The
/// machine must outlive every handle and its tree must not change meanwhile. One thread per
/// calculator; separate calculators of one machine may run at the same time.
class ORVO_API MachineCompute {
 public:
  /// Makes a calculator of a machine. Whether it is finished is asked by the operations.
  MachineCompute(const Machine& machine);

  /// Makes a second handle on the same calculator.
  MachineCompute(const MachineCompute& other);

  /// Lets go of the own calculator and becomes a second handle on the other.
  MachineCompute& operator=(const MachineCompute& other);
  virtual ~MachineCompute();

  /// Returns the cause of the most recent failure, or ComputeErrorNone.
  MachineComputeErrorType GetLastError();

  /// Computes the frame of one link, parentFromElement, for the value of its register.
  ///
  /// LINEAR: the translation by direction * (zero reference + value). ROTARY: the turn by the value
  /// about the line through the center along the direction; it has no zero reference. POSITION:
  /// the fixed frame. IDENTITY: the identity.
  ///
  /// @param link   the link
  /// @param reg    the register that drives it
  /// @param pos    axis values by register
  /// @param frame  receives the frame; the identity on failure
  /// @return true on success. Otherwise false, with the first of these as GetLastError():
  ///   - ComputeErrorNullOutput: frame is null
  ///   - ComputeErrorRegister: the link is LINEAR or ROTARY and its register lies outside pos
  ///   - ComputeErrorLinkType: the link is of another kind
  bool ComputeRelativePosition(const EntityLink& link, const Register& reg,
                               const MachinePosition& pos, Matrix43* frame);

  /// Computes the world frame of one element from the links between the root and it.
  ///
  /// @param entity  an element of this calculator's machine
  /// @param pos     axis values by register
  /// @param frame   receives worldFromEntity; on a failing link, the product of those below it
  /// @return true on success. Otherwise false, with the first of these as GetLastError():
  ///   - ComputeErrorNullOutput: frame is null
  ///   - ComputeErrorEmptyPosition: pos holds no value
  ///   - ComputeErrorRegister, ComputeErrorLinkType: a link failed, see ComputeRelativePosition()
  /// @par Cost
  /// One frame product per ancestor; allocates nothing.
  bool ComputePositionEntity(const Entity& entity, const MachinePosition& pos, Matrix43* frame);

  /// Computes the world frames of all elements.
  ///
  /// @param pos     axis values by register
  /// @param frames  receives worldFromEntity at the place of each id, and gets the size largest id
  ///   + 1; new places that no element uses hold the identity, old ones what they held. Of equal
  ///   ids only the one first reached from the root counts. Elements without an id have no place.
  /// @return true on success. Deliberate: a link that fails counts as the identity, sets
  ///   GetLastError() and leaves the result true. Otherwise false, with the first of these:
  ///   - ComputeErrorNotFinished: the machine is not finished
  ///   - ComputeErrorNullOutput: frames is null
  ///   - ComputeErrorEmptyPosition: pos holds no value
  /// @par Cost
  /// One frame product for each element below an axis whose value changed since the last call, and
  /// a copy for each other one. The first call also orders the elements, for the calculator's life;
  /// later ones allocate nothing while @p frames has room. Deliberate: the size of @p frames
  /// is that of the largest id, 2.7 GB at worst, however few elements there are. Who does not know
  /// the machine asks Machine::GetEntityIdMax() first, or takes ComputePositionEntity().
  bool ComputePositionMachine(const MachinePosition& pos, std::vector<Matrix43>* frames);

  /// Computes the frame that carries coordinates of a head, counted from the tool point, into the
  /// coordinates of a table.
  ///
  /// @param pos     axis values by register
  /// @param head    the head
  /// @param table   the table
  /// @param offset  the tool point lies at minus this in the head's frame: (0, 0, L) for a tool of
  ///   the length L
  /// @param frame   receives tableFromHead * (translation by -offset); unchanged on failure
  /// @return true on success. Otherwise false, with the first of these as GetLastError():
  ///   - ComputeErrorNotFinished: the machine is not finished
  ///   - ComputeErrorNullOutput: frame is null
  ///   - ComputeErrorNoHeadOrTable: no such head or table
  ///   - what ComputePositionEntity() fails with, for the head and then for the table
  /// @par Cost
  /// Linear in the chains to the root; of their frame products only those that follow the first
  /// axis whose value changed since the last call. Allocates for a head and a table that were not
  /// among the latest sixteen.
  bool ComputeMcsToToolTcs(const MachinePosition& pos, const HeadIndex& head,
                           const TableIndex& table, const Vector3D& offset, Matrix43* frame);

  /// Computes the values of up to two rotary axes that turn the tool onto a direction.
  ///
  /// The tool direction is +Z of the head's frame. The other axes stand as @p pos has them. The
  /// solutions are raw: from -180 to 180 degrees each, whatever the ranges; ProgramSystemCompute
  /// chooses among them.
  ///
  /// @param pos    axis values by register
  /// @param head   the head
  /// @param table  the table
  /// @param ijk    requested direction in the table's frame, from the tool tip towards the head; of
  ///   unit length for fewer than two axes. For two, of any length; shorter than 0.001 it counts as
  ///   (1, 0, 0)
  /// @param r0     register of the alpha axis; undefined: there is none
  /// @param r1     register of the beta axis; undefined: there is none
  /// @param sol    receives the solutions; it is reset first and stays partly filled on failure
  /// @return true on success, even without a solution: ask the count. Otherwise false, with the
  ///   first of these as GetLastError():
  ///   - ComputeErrorNullOutput: sol is null
  ///   - ComputeErrorEmptyPosition: pos holds no value
  ///   - ComputeErrorRegister: r0 or r1 lies outside pos, or they are equal
  ///   - ComputeErrorNoHeadOrTable: no such head or table, or no common root
  ///   - ComputeErrorRegister: an axis with the register on the chain is not rotary, or there is
  ///     none
  ///   - ComputeErrorNotAxis: the register belongs to a head or a table
  /// @par Cost
  /// Linear in the chains to the root; of their frame products only those that follow the first
  /// axis whose value changed since the last call. Allocates for a head, a table and registers that
  /// were not among the latest sixteen, and for a longer position.
  bool ComputeToolIjkTcsToMcsAbc(const MachinePosition& pos, const HeadIndex& head,
                                 const TableIndex& table, const Vector3D& ijk, const Register& r0,
                                 const Register& r1, RotariesSolution* sol);

  /// Computes the values of the three linear axes that bring the tool point to a point.
  ///
  /// The rotary axes stand as @p pos has them. Axes of the head side and of the table side may be
  /// mixed. Deliberate: the directions of the three axes are taken for orthonormal; for oblique
  /// ones the same transposed solution comes back.
  ///
  /// @param pos      axis values by register
  /// @param head     the head
  /// @param table    the table
  /// @param offset   the tool point lies at minus this in the head's frame
  /// @param x, y, z  registers of the three axes
  /// @param point    the requested point in the table's frame
  /// @param xyz      receives the values for the three registers
  /// @return true on success. Otherwise false, with the first of these as GetLastError():
  ///   - ComputeErrorNotFinished: the machine is not finished
  ///   - ComputeErrorNullOutput: xyz is null
  ///   - ComputeErrorRegister: a register is undefined
  ///   - ComputeErrorEmptyPosition: pos holds no value
  ///   - ComputeErrorRegister: a register lies outside pos
  ///   - ComputeErrorNoHeadOrTable: no such head or table, or no common root
  ///   - ComputeErrorRegister: the chain does not hold exactly three places of linear axes with
  ///     these registers, the direction of one can't be computed, or (with the output written)
  ///     a value above 0.001 in size would be needed of an axis that is not on the chain
  /// @par Cost
  /// Linear in the chains to the root; of their frame products only those that follow the first
  /// axis whose value changed since the last call. Allocates for a head, a table and registers that
  /// were not among the latest sixteen, and for a longer position.
  bool ComputeToolTcsToMcsXyz(const MachinePosition& pos, const HeadIndex& head,
                              const TableIndex& table, const Vector3D& offset, const Register& x,
                              const Register& y, const Register& z, const Vector3D& point,
                              Vector3D* xyz);

 private:
  bool ComputeWorldEntityDir(const MachinePosition& pos, const Entity& entity, Vector3D* dir);
  bool ComputeAngles(const Vector3D& axis1, const Vector3D& axis2, const Vector3D& tool,
                     const Vector3D& target, const Register& reg1, const Register& reg2,
                     RotariesSolution* sol);
  void SwapSolAlphaBeta(RotariesSolution* sol);
  ORVO_LOCAL bool ComputeAllFramesAnew(const MachinePosition& pos, std::vector<Matrix43>* frames);
  ORVO_LOCAL bool ComputeTableFromHeadAnew(const MachinePosition& pos, const HeadIndex& head,
                                           const TableIndex& table, const Vector3D& offset,
                                           Matrix43* frame);
  ORVO_LOCAL bool ComputeRotariesAnew(const MachinePosition& pos, const HeadIndex& head,
                                      const TableIndex& table, const Vector3D& ijk,
                                      const Register& r0, const Register& r1,
                                      RotariesSolution* sol);
  ORVO_LOCAL bool ComputeLinearsAnew(const MachinePosition& pos, const HeadIndex& head,
                                     const TableIndex& table, const Vector3D& offset,
                                     const Register registers[3], const Vector3D& point,
                                     Vector3D* xyz);
  ORVO_LOCAL bool FindRotaryDirections(const MachinePosition& pos, const Register registers[2],
                                       RotaryDirections* directions);
  void BuildAxisChain(const HeadIndex& head, const TableIndex& table);
  bool Fail(MachineComputeErrorType error);

  std::shared_ptr<MachineComputeImplementation> implementation_;
};

}  // namespace Orvo::Kin
