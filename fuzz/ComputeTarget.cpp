// A machine file, and behind its first NUL the requests: everything is computed of what was read.
// Each result and each error code is the one that the interface names for the machine, the position
// and the request; and where the machine is rigid, a solution brings the tool where it was wanted.

#include "Check.h"
#include "InputFile.h"
#include "KinematicOracle.h"
#include "MachineReading.h"
#include "RequestBytes.h"
#include "Target.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <list>
#include <stdexcept>
#include <string_view>
#include <vector>

using namespace Orvo;
using namespace Orvo::Fuzz;
using Kin::Entity;
using Kin::MachineCompute;
using Kin::MachinePosition;
using Kin::ProgramSystemCompute;
using Kin::Register;
using Kin::RotariesSolution;

namespace {

// Frames of all elements stand at the places of their ids and take 144 bytes a place, positions 8
// bytes a register: an id or a register of millions costs as much memory as the interface allows,
// and more time than an input is worth.
constexpr int LargestPlace = 65536;

constexpr std::size_t MostRequests = 6;
constexpr int MostValues = 12;
constexpr std::size_t MostProgramSystems = 4;
constexpr std::size_t MostElements = 200;

// A frame that is computed in another order differs by rounding only; a solution may be off by what
// the solver takes for the same direction or the same angle.
constexpr double SameFrameTolerance = 1e-6;
constexpr double SameDirectionTolerance = 0.1;
constexpr double SamePointTolerance = 0.01;

bool IsSameBits(const Matrix43& a, const Matrix43& b) {
  const double* const elementsA = a;
  const double* const elementsB = b;
  return std::equal(elementsA, elementsA + 16, elementsB, [](double x, double y) {
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
  });
}

bool IsSameBits(const Angle& a, const Angle& b) {
  return std::bit_cast<std::uint64_t>(a.GetRadian()) ==
             std::bit_cast<std::uint64_t>(b.GetRadian()) ||
         (std::isnan(a.GetRadian()) && std::isnan(b.GetRadian()));
}

/// Asks one calculator of one machine, and holds each answer against the oracle.
class Examination {
 public:
  explicit Examination(Kin::Machine* machine)
      : machine_(machine), calculator_(*machine), oracle_(*machine) {}

  void Examine(RequestBytes* request) {
    MachinePosition position = TakePosition(request);
    ExamineFrames(position);
    const ToolRequest tool = {request->TakeIndex() % 3, request->TakeIndex() % 3};
    const Vector3D offset = request->TakeVector();
    ExamineTool(position, tool, offset);
    const RotaryRequest rotary = {tool, request->TakeVector(), request->TakeIndex(),
                                  request->TakeIndex()};
    RotariesSolution solution;
    ExamineRotaries(position, rotary, &solution);
    const LinearRequest linear = {
        tool,
        offset,
        request->TakeVector(),
        {request->TakeIndex(), request->TakeIndex(), request->TakeIndex()}};
    Vector3D xyz;
    ExamineLinears(position, linear, &xyz);
    ExamineProgramSystems(position, rotary.direction, offset, linear.point);
    ExamineCollisions(rotary.r0, rotary.r1);
  }

 private:
  MachinePosition TakePosition(RequestBytes* request) const {
    MachinePosition position;
    machine_->Alloc(&position);
    const unsigned int kind = request->TakeByte();
    if (kind >= 248) {
      position.Alloc(Register(static_cast<int>(kind) - 250));
    }
    const int valueNb = std::min<int>(static_cast<int>(position.Size()), MostValues);
    for (int i = 0; i < valueNb; ++i) {
      position[Register(i)] = request->TakeNumber();
    }
    return position;
  }

  // The calculator's last failure is the expected one where the call failed as expected.
  void RequireOutcome(bool isDone, Kin::MachineComputeErrorType expected, const char* what) {
    Require(isDone == (expected == Kin::ComputeErrorNone), what);
    Require(isDone || calculator_.GetLastError() == expected, what);
  }

  void ExamineFrames(const MachinePosition& position) {
    std::vector<Matrix43> frames;
    const bool isDone = calculator_.ComputePositionMachine(position, &frames);
    RequireOutcome(isDone,
                   !machine_->IsFinished() ? Kin::ComputeErrorNotFinished
                   : position.Size() == 0  ? Kin::ComputeErrorEmptyPosition
                                           : Kin::ComputeErrorNone,
                   "all frames of a finished machine are computed");
    Require(!isDone || static_cast<int>(frames.size()) == machine_->GetEntityIdMax().GetVal() + 1,
            "there is a frame for each id");
    std::size_t elementNb = 0;
    for (const Entity& entity : machine_->GetKinematic().GetListEntity()) {
      if (++elementNb > MostElements) {
        break;
      }
      Matrix43 parentFromEntity = NotAFrame();
      RequireOutcome(calculator_.ComputeRelativePosition(
                         entity.GetEntityLink(), entity.GetRegister(), position, &parentFromEntity),
                     KinematicOracle::LinkError(entity, position), "the frame of a link");
      Require(KinematicOracle::LinkError(entity, position) == Kin::ComputeErrorNone ||
                  parentFromEntity.IsIdentity(),
              "a link that fails gives the identity");
      RequireLinkFrame(entity, position, parentFromEntity);
      Matrix43 worldFromEntity = NotAFrame();
      const Kin::MachineComputeErrorType expected = KinematicOracle::ElementError(entity, position);
      RequireOutcome(calculator_.ComputePositionEntity(entity, position, &worldFromEntity),
                     expected, "the frame of an element");
      if (isDone && expected == Kin::ComputeErrorNone && oracle_.HasOwnIds(entity) &&
          KinematicOracle::IsRigid(entity, position)) {
        const auto place = static_cast<std::size_t>(entity.GetEntityId().GetVal());
        Require(frames[place].IsSame(worldFromEntity, SameFrameTolerance),
                "both ways give the same frame");
      }
    }
  }

  // What each kind of link leaves where it was, or where it puts it.
  static void RequireLinkFrame(const Entity& entity, const MachinePosition& position,
                               Matrix43 parentFromEntity) {
    if (!KinematicOracle::IsRigidLink(entity, position)) {
      return;
    }
    const Kin::EntityLink& link = entity.GetEntityLink();
    if (link.GetEntityLinkType() == Kin::EntityLinkTypePosition) {
      Require(IsSameBits(parentFromEntity, link.GetPosition()), "a placement is taken as it is");
    } else if (link.GetEntityLinkType() == Kin::EntityLinkTypeRotary) {
      Require(parentFromEntity.ApplyToPoint(link.GetCenter())
                      .IsSame(link.GetCenter(), SameFrameTolerance) &&
                  parentFromEntity.ApplyToVector3D(link.GetDir())
                      .IsSame(link.GetDir(), SameFrameTolerance),
              "a turn leaves its axis");
    } else if (link.GetEntityLinkType() == Kin::EntityLinkTypeLinear) {
      const double travel = link.GetZeroRef() + position[entity.GetRegister()];
      Vector3D dir = link.GetDir();
      Require(parentFromEntity.GetTrans() == dir * travel && parentFromEntity.IsTranslation(),
              "a travel goes along its direction");
    }
  }

  void ExamineTool(const MachinePosition& position, const ToolRequest& tool,
                   const Vector3D& offset) {
    Matrix43 frame = NotAFrame();
    const Kin::MachineComputeErrorType expected = oracle_.ToolError(position, tool);
    RequireOutcome(calculator_.ComputeMcsToToolTcs(position, Kin::HeadIndex(tool.head),
                                                   Kin::TableIndex(tool.table), offset, &frame),
                   expected, "the frame of the tool in the table");
    Require(expected == Kin::ComputeErrorNone || IsSameBits(frame, NotAFrame()),
            "a frame that can't be computed stays as it was");
  }

  void ExamineRotaries(const MachinePosition& position, const RotaryRequest& rotary,
                       RotariesSolution* solution) {
    const bool isDone = calculator_.ComputeToolIjkTcsToMcsAbc(
        position, Kin::HeadIndex(rotary.tool.head), Kin::TableIndex(rotary.tool.table),
        rotary.direction, Register(rotary.r0), Register(rotary.r1), solution);
    RequireOutcome(isDone, oracle_.RotaryError(position, rotary), "the rotary solver's verdict");
    if (!isDone) {
      return;
    }
    Require(solution->Count <= 2, "there are at most two solutions");
    Require(solution->Count < 2 || (rotary.r0 >= 0 && rotary.r1 >= 0),
            "two solutions take two axes");
    Require(solution->FreeRegister == -1 || solution->FreeRegister == rotary.r0 ||
                solution->FreeRegister == rotary.r1,
            "a free axis is one of the two");
    for (const Angle& angle :
         {solution->Alpha1, solution->Beta1, solution->Alpha2, solution->Beta2}) {
      Require(!(std::fabs(angle.GetDegre()) > 180.001), "a raw angle is within half a turn");
    }
    RequireDirections(position, rotary, *solution);
    RequireReached(position, rotary);
  }

  // Where the tool points now is a direction that the axes can reach.
  void RequireReached(const MachinePosition& position, const RotaryRequest& rotary) {
    Matrix43 tableFromTool;
    if (!machine_->IsFinished() || rotary.r0 < 0 || rotary.r1 < 0 ||
        !oracle_.IsRigidRotary(position, rotary) ||
        !oracle_.AreApartOrParallel(&calculator_, position, rotary) ||
        !calculator_.ComputeMcsToToolTcs(position, Kin::HeadIndex(rotary.tool.head),
                                         Kin::TableIndex(rotary.tool.table), NullVector,
                                         &tableFromTool)) {
      return;
    }
    RotariesSolution solution;
    Require(calculator_.ComputeToolIjkTcsToMcsAbc(
                position, Kin::HeadIndex(rotary.tool.head), Kin::TableIndex(rotary.tool.table),
                tableFromTool.GetW(), Register(rotary.r0), Register(rotary.r1), &solution) &&
                solution.Count > 0,
            "the direction in which the tool points can be reached");
  }

  // Puts each solution into the machine and looks where the tool points.
  void RequireDirections(const MachinePosition& position, const RotaryRequest& rotary,
                         const RotariesSolution& solution) {
    Vector3D wanted = rotary.direction;
    if (!machine_->IsFinished() || !oracle_.IsRigidRotary(position, rotary) ||
        !KinematicOracle::IsOrdinary(wanted) || !wanted.MakeUnit(0.01)) {
      return;
    }
    // Fewer than two axes take a direction of unit length.
    if ((rotary.r0 < 0 || rotary.r1 < 0) && !(rotary.direction.Distance(wanted) < 1e-6)) {
      return;
    }
    for (unsigned int i = 0; i < solution.Count; ++i) {
      const double alpha = (i == 0 ? solution.Alpha1 : solution.Alpha2).GetDegre();
      const double beta = (i == 0 ? solution.Beta1 : solution.Beta2).GetDegre();
      // Far away, whole turns leave no digits to the angle.
      if (!(std::fabs(alpha) < 1e6) || !(std::fabs(beta) < 1e6)) {
        continue;
      }
      MachinePosition solved(position);
      if (rotary.r0 >= 0) {
        solved[Register(rotary.r0)] = alpha;
      }
      if (rotary.r1 >= 0) {
        solved[Register(rotary.r1)] = beta;
      }
      Matrix43 tableFromTool;
      Require(calculator_.ComputeMcsToToolTcs(solved, Kin::HeadIndex(rotary.tool.head),
                                              Kin::TableIndex(rotary.tool.table), NullVector,
                                              &tableFromTool),
              "a solved position can be computed");
      const double tolerance =
          rotary.r0 < 0 && rotary.r1 < 0 ? AlignedTolerance : SameDirectionTolerance;
      Require(tableFromTool.GetW().Distance(wanted) < tolerance,
              "a rotary solution turns the tool onto the direction");
    }
  }

  void ExamineLinears(const MachinePosition& position, const LinearRequest& linear, Vector3D* xyz) {
    const bool isDone = calculator_.ComputeToolTcsToMcsXyz(
        position, Kin::HeadIndex(linear.tool.head), Kin::TableIndex(linear.tool.table),
        linear.offset, Register(linear.registers[0]), Register(linear.registers[1]),
        Register(linear.registers[2]), linear.point, xyz);
    const Kin::MachineComputeErrorType expected = oracle_.LinearError(position, linear);
    if (expected != Kin::ComputeErrorNone || isDone) {
      RequireOutcome(isDone, expected, "the linear solver's verdict");
    } else {
      Require(
          !oracle_.HasAllAxes(linear) && calculator_.GetLastError() == Kin::ComputeErrorRegister,
          "the linear solver fails late for a missing axis only");
    }
    if (!isDone || !oracle_.IsRigidLinear(&calculator_, position, linear)) {
      return;
    }
    MachinePosition solved(position);
    for (int i = 0; i < 3; ++i) {
      solved[Register(linear.registers[i])] = (*xyz)[i];
    }
    Matrix43 tableFromTool;
    Require(calculator_.ComputeMcsToToolTcs(solved, Kin::HeadIndex(linear.tool.head),
                                            Kin::TableIndex(linear.tool.table), linear.offset,
                                            &tableFromTool),
            "a solved position can be computed");
    Require(tableFromTool.GetTrans().Distance(linear.point) < SamePointTolerance,
            "a linear solution brings the tool to the point");
  }

  void ExamineProgramSystems(const MachinePosition& position, const Vector3D& direction,
                             const Vector3D& offset, const Vector3D& point) {
    std::size_t nb = 0;
    for (const Kin::ProgramSystem& programSystem : machine_->GetListProgramSystem()) {
      if (++nb > MostProgramSystems) {
        break;
      }
      const ToolRequest tool = {programSystem.GetHeadIndex().GetVal(),
                                programSystem.GetTableIndex().GetVal()};
      const RotaryRequest rotary = {tool, direction, programSystem.GetMainRotary(0).GetVal(),
                                    programSystem.GetMainRotary(1).GetVal()};
      RotariesSolution raw;
      ExamineRotaries(position, rotary, &raw);
      ProgramSystemCompute solver(*machine_, programSystem);
      RotariesSolution chosen;
      const bool isDone = solver.ComputeToolIjkTcsToMcsAbc(position, direction, &chosen);
      Require(isDone == (oracle_.RotaryError(position, rotary) == Kin::ComputeErrorNone),
              "a program system solves what the calculator solves");
      // Of a position that is too short for the machine, a calculator fills up the rest with what
      // it was asked before, so that two of them may differ.
      if (isDone && Holds(position)) {
        ExamineChoice(position, programSystem, rotary, raw, chosen);
      }

      const LinearRequest linear = {
          tool,
          offset,
          point,
          {programSystem.GetMainLinear(0).GetVal(), programSystem.GetMainLinear(1).GetVal(),
           programSystem.GetMainLinear(2).GetVal()}};
      Vector3D xyz;
      Vector3D ofProgramSystem;
      ExamineLinears(position, linear, &xyz);
      const bool isSolved =
          solver.ComputeToolTcsToMcsXyz(position, offset, point, &ofProgramSystem);
      Require(!isSolved || oracle_.LinearError(position, linear) == Kin::ComputeErrorNone,
              "a program system solves no more than the calculator");
      ExamineRanges(&solver, position, linear, isSolved ? ofProgramSystem : point);
    }
  }

  // Tells whether a position has a value for each register of the machine.
  bool Holds(const MachinePosition& position) const {
    return KinematicOracle::Holds(position, machine_->GetRegisterNb().GetVal() - 1);
  }

  void ExamineChoice(const MachinePosition& position, const Kin::ProgramSystem& programSystem,
                     const RotaryRequest& rotary, const RotariesSolution& raw,
                     const RotariesSolution& chosen) {
    Kin::ProgramSystem copy(programSystem);
    if (copy.GetRotariesCompute() != Kin::RotariesComputeShortestWay) {
      Require(raw.Count == chosen.Count && raw.FreeRegister == chosen.FreeRegister &&
                  IsSameBits(raw.Alpha1, chosen.Alpha1) && IsSameBits(raw.Beta1, chosen.Beta1) &&
                  IsSameBits(raw.Alpha2, chosen.Alpha2) && IsSameBits(raw.Beta2, chosen.Beta2),
              "other policies take the solutions as they are");
      return;
    }
    Require(chosen.Count <= raw.Count, "a choice adds no solution");
    const int registers[2] = {rotary.r0, rotary.r1};
    for (unsigned int i = 0; i < chosen.Count; ++i) {
      const Angle angles[2] = {i == 0 ? chosen.Alpha1 : chosen.Alpha2,
                               i == 0 ? chosen.Beta1 : chosen.Beta2};
      for (int axis = 0; axis < 2; ++axis) {
        const Entity* const entity = machine_->GetKinematic().GetEntity(Register(registers[axis]));
        if (entity == nullptr || !entity->GetCheckRangeAxis()) {
          continue;
        }
        Angle min;
        min.SetDegre(entity->GetRangeMin());
        Angle max;
        max.SetDegre(entity->GetRangeMax());
        Require(!(angles[axis] < min) && !(angles[axis] > max),
                "a solution that is kept lies within the ranges");
      }
    }
    if (KinematicOracle::IsOrdinary(position)) {
      RequireDirections(position, rotary, chosen);
    }
  }

  void ExamineRanges(ProgramSystemCompute* solver, const MachinePosition& position,
                     const LinearRequest& linear, const Vector3D& xyz) {
    bool expected[3];
    bool flags[3];
    bool isExpected = false;
    for (const Vector3D& asked : {xyz, oracle_.Limits(linear, &Entity::GetRangeMin),
                                  oracle_.Limits(linear, &Entity::GetRangeMax)}) {
      isExpected = oracle_.AreWithinRanges(linear, asked, expected);
      std::transform(expected, expected + 3, flags, std::logical_not<>());
      Require(solver->CheckLinearRange(asked, flags) == isExpected &&
                  solver->CheckLinearRange(asked, nullptr) == isExpected &&
                  std::equal(flags, flags + 3, expected),
              "values are held against the ranges");
    }

    Vector3D values;
    bool isInPosition = true;
    for (int i = 0; i < 3; ++i) {
      if (!KinematicOracle::Holds(position, linear.registers[i])) {
        isInPosition = false;
        break;
      }
      values[i] = position[Register(linear.registers[i])];
    }
    isExpected = oracle_.AreWithinRanges(linear, values, expected);
    bool isThrown = false;
    bool isWithin = false;
    try {
      isWithin = solver->CheckLinearRange(position, flags);
    } catch (const std::out_of_range&) {
      isThrown = true;
    }
    Require(isThrown == !isInPosition, "a register outside the position is refused");
    Require(isThrown || (isWithin == isExpected && std::equal(flags, flags + 3, expected)),
            "a position is held against the ranges");
  }

  void ExamineCollisions(int a, int b) {
    Kin::CollisionCheck& check = machine_->GetCollisionCheckMod();
    const bool wasOn = check.GetMachineMachine(a, b);
    Require(check.GetMachineMachine(b, a) == wasOn && !check.GetMachineMachine(a, a),
            "pairs have no order");
    check.SetMachineMachine(a, b, true);
    std::list<Kin::EntityId> partners;
    check.GetListMachineMachine(b, &partners, true);
    const bool isListed = std::any_of(partners.begin(), partners.end(),
                                      [a](const Kin::EntityId& id) { return id.GetVal() == a; });
    Require(check.GetMachineMachine(b, a) == (a != b) && isListed == (a != b),
            "a pair that is switched on is in the list");
    check.SetMachineMachine(b, a, wasOn);
    Require(check.GetMachineMachine(a, b) == wasOn, "a pair that is switched off is gone");
    const bool wasStock = check.GetMachineStock(a);
    check.SetMachineStock(a, !wasStock);
    Require(check.GetMachineStock(a) != wasStock, "an element changes sides");
    check.SetMachineStock(a, wasStock);
  }

  // What no result is.
  static Matrix43 NotAFrame() {
    Matrix43 frame;
    frame.SetTrans(Vector3D(7.0, 8.0, 9.0));
    return frame;
  }

  // Without axes, a cosine above 0.99 counts as the direction.
  static constexpr double AlignedTolerance = 0.15;

  Kin::Machine* machine_;
  MachineCompute calculator_;
  KinematicOracle oracle_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputFile file("compute.xml");
  const std::string_view input = TextOf(data, size);
  const std::size_t textSize = std::min(input.find('\0'), input.size());
  file.Write(input.substr(0, textSize));
  RequestBytes request(input.substr(std::min(textSize + 1, input.size())));

  Kin::Machine machine;
  ReadNewMachine(&machine, file.Path());
  if (machine.GetEntityIdMax().GetVal() > LargestPlace ||
      machine.GetRegisterNb().GetVal() > LargestPlace) {
    return 0;
  }
  Examination examination(&machine);
  std::size_t requestNb = 0;
  do {
    examination.Examine(&request);
  } while (!request.IsAtEnd() && ++requestNb < MostRequests);
  return 0;
}
