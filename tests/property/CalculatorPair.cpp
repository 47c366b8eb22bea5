#include "property/CalculatorPair.h"

#include "property/RandomGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <iterator>

namespace Orvo::Property {
namespace {

using Reference::Frame;
using Reference::Machine;
using Reference::Position;
using Reference::Vector;

int AnyIndex(Draw& draw) { return draw.Chance(0.95) ? 0 : draw.Int(-2, 2); }

// The registers of the axes of one kind, in the order of the list.
std::vector<int> RegistersOf(const Machine& machine, int linkType) {
  std::vector<int> out;
  for (const Reference::Element& e : machine.elements) {
    if (e.type == Reference::Axis && e.link.type == linkType) {
      out.push_back(e.reg);
    }
  }
  return out;
}

int Pick(Draw& draw, const std::vector<int>& registers, double soundness) {
  if (registers.empty() || !draw.Chance(soundness)) {
    return draw.Int(-2, 9);
  }
  return draw.Of(registers);
}

// A rotary axis seen from the table, and the tool, both at the values of a position.
struct Scene {
  bool valid = false;
  Vector tool;
  std::vector<Vector> axes;
};

Scene Look(const Machine& machine, const RotaryRequest& request) {
  Scene out;
  Reference::Calculator calculator(machine);
  Position zero = request.pos;
  for (const int reg : {request.r0, request.r1}) {
    if (zero.Holds(reg)) {
      zero[reg] = 0.0;
    }
  }
  Frame tableFromHead;
  if (!calculator.McsToToolTcs(zero, request.head, request.table, Vector(), &tableFromHead)) {
    return out;
  }
  Frame worldFromTable;
  calculator.PositionElement(*machine.TableAt(request.table), zero, &worldFromTable);
  out.tool = tableFromHead.Column(2);
  for (const int reg : {request.r0, request.r1}) {
    const Reference::Element* e = machine.ByRegister(reg);
    Vector dir;
    if (e != nullptr && calculator.WorldDirection(zero, *e, &dir)) {
      out.axes.push_back(worldFromTable.HInverse().ApplyToVector(dir));
    }
  }
  out.valid = true;
  return out;
}

// A direction at the limit of what two axes reach: the first turns the tool into the plane of both.
Vector LimitOfReach(Draw& draw, const Scene& scene) {
  const bool swap = draw.Chance(0.5);
  const Vector inner = scene.axes[swap ? 1 : 0];
  const Vector outer = scene.axes[swap ? 0 : 1];
  const Vector along = Reference::Scaled(inner, Reference::Dot(inner, scene.tool));
  const double radius = Reference::Norm(Reference::Difference(scene.tool, along));
  Vector side =
      Reference::Difference(outer, Reference::Scaled(inner, Reference::Dot(inner, outer)));
  if (!Reference::MakeUnit(&side, 0.001)) {
    return scene.tool;
  }
  const Vector limit =
      Reference::Sum(along, Reference::Scaled(side, draw.Chance(0.5) ? radius : -radius));
  Vector out = Turned(limit, outer, AngleDeg(draw));
  if (draw.Chance(0.7)) {
    const double distance = std::pow(10.0, draw.Uniform(-9.0, -2.0));
    out = Reference::Sum(out, Reference::Scaled(UnitDirection(draw), distance));
  }
  return out;
}

}  // namespace

std::string Text(const RotaryRequest& request) {
  return "head " + std::to_string(request.head) + ", table " + std::to_string(request.table) +
         ", r0 " + std::to_string(request.r0) + ", r1 " + std::to_string(request.r1) + "\n  pos " +
         Text(request.pos) + "\n  ijk " + Text(request.ijk) + "\n";
}

std::string Text(const LinearRequest& request) {
  return "head " + std::to_string(request.head) + ", table " + std::to_string(request.table) +
         ", registers " + std::to_string(request.registers[0]) + " " +
         std::to_string(request.registers[1]) + " " + std::to_string(request.registers[2]) +
         "\n  pos " + Text(request.pos) + "\n  offset " + Text(request.offset) + "\n  point " +
         Text(request.point) + "\n";
}

Vector AnyTarget(Draw& draw, const Machine& machine, const RotaryRequest& request) {
  const Scene scene = Look(machine, request);
  const int what = draw.Int(0, 19);
  if (!scene.valid || what < 3) {
    return AnyDirection(draw);
  }
  Vector out;
  if (what < 4) {
    out = scene.tool;
  } else if (what < 6 && !scene.axes.empty()) {
    out = draw.Of(scene.axes);
    if (draw.Chance(0.4)) {
      out = Reference::Negated(out);
    }
  } else if (what < 8 && scene.axes.size() == 2) {
    out = LimitOfReach(draw, scene);
  } else {
    // What some values of the axes give.
    RotaryRequest other = request;
    for (const int reg : {request.r0, request.r1}) {
      if (other.pos.Holds(reg)) {
        other.pos[reg] = AngleDeg(draw);
      }
    }
    Reference::Calculator calculator(machine);
    Frame tableFromHead;
    calculator.McsToToolTcs(other.pos, request.head, request.table, Vector(), &tableFromHead);
    out = tableFromHead.Column(2);
  }
  if (draw.Chance(0.15)) {
    const double distance = std::pow(10.0, draw.Uniform(-9.0, -2.0));
    out = Reference::Sum(out, Reference::Scaled(UnitDirection(draw), distance));
  }
  if (what < 6 && draw.Chance(0.3)) {
    // Beside it, about as far as what counts as the same.
    out = Reference::Sum(out, Reference::Scaled(UnitDirection(draw), draw.Uniform(0.0, 2e-5)));
  }
  if (draw.Chance(0.1)) {
    out = Reference::Scaled(out, draw.Uniform(0.1, 3.0));
  }
  for (double* const number : {&out.x, &out.y, &out.z}) {
    if (draw.IsNextAnEdge()) {
      *number = AnyNumber(draw);
    }
  }
  return out;
}

RotaryRequest AnyRotaryRequest(Draw& draw, const Machine& machine) {
  RotaryRequest out;
  out.pos = AnyPosition(draw, machine.registerNb);
  out.head = AnyIndex(draw);
  out.table = AnyIndex(draw);
  std::vector<int> registers = RegistersOf(machine, Reference::Rotary);
  draw.Shuffle(&registers);
  if (draw.Chance(0.8)) {
    out.r0 = registers.empty() ? -1 : registers[0];
    out.r1 = registers.size() < 2 ? -1 : registers[1];
    if (draw.Chance(0.3)) {
      std::swap(out.r0, out.r1);
    }
    if (draw.Chance(0.15)) {
      (draw.Chance(0.5) ? out.r0 : out.r1) = -1;
    }
  } else {
    out.r0 = Pick(draw, registers, 0.6);
    out.r1 = Pick(draw, registers, 0.6);
  }
  out.ijk = AnyTarget(draw, machine, out);
  return out;
}

LinearRequest AnyLinearRequest(Draw& draw, const Machine& machine) {
  LinearRequest out;
  out.pos = AnyPosition(draw, machine.registerNb);
  out.head = AnyIndex(draw);
  out.table = AnyIndex(draw);
  std::vector<int> registers = RegistersOf(machine, Reference::Linear);
  draw.Shuffle(&registers);
  const bool sound = draw.Chance(0.85);
  for (std::size_t i = 0; i < 3; ++i) {
    out.registers[i] = sound && i < registers.size() ? registers[i] : Pick(draw, registers, 0.7);
  }
  out.offset = draw.Chance(0.3) ? Vector() : Point(draw);
  out.point = draw.Chance(0.3) ? Vector() : Point(draw);
  return out;
}

Kin::MachineCompute& CalculatorPair::Handle() {
  takesHandle_ = !takesHandle_;
  return takesHandle_ ? handle_ : calculator_;
}

void CalculatorPair::ExpectSameError() {
  EXPECT_EQ(handle_.GetLastError(), twin_.GetLastError());
  EXPECT_EQ(calculator_.GetLastError(), twin_.GetLastError());
}

void CalculatorPair::RelativePosition(Draw& draw) {
  if (machines_.twin.elements.empty()) {
    return;
  }
  const std::ptrdiff_t place = draw.Int(0, static_cast<int>(machines_.twin.elements.size()) - 1);
  const Reference::Element& element = *std::next(machines_.twin.elements.begin(), place);
  const Kin::Entity& entity =
      *std::next(machines_.machine.GetKinematic().GetListEntity().begin(), place);
  const int reg = draw.Chance(0.8) ? element.reg : draw.Int(-3, 9);
  const Position pos = AnyPosition(draw, machines_.twin.registerNb);
  if (draw.Chance(0.02)) {
    EXPECT_EQ(Handle().ComputeRelativePosition(entity.GetEntityLink(), reg, ToOrvo(pos), nullptr),
              twin_.RelativePosition(element.link, reg, pos, nullptr));
    ExpectSameError();
    return;
  }
  Frame expected = draw.Chance(0.5) ? Frame() : AnyFrame(draw);
  Matrix43 frame = ToOrvo(expected);
  EXPECT_EQ(Handle().ComputeRelativePosition(entity.GetEntityLink(), reg, ToOrvo(pos), &frame),
            twin_.RelativePosition(element.link, reg, pos, &expected));
  EXPECT_TRUE(SameBits(frame, expected)) << "element " << element.id << "\n" << Text(pos);
  ExpectSameError();
}

void CalculatorPair::PositionEntity(Draw& draw) {
  if (machines_.twin.elements.empty()) {
    return;
  }
  const std::ptrdiff_t place = draw.Int(0, static_cast<int>(machines_.twin.elements.size()) - 1);
  const Reference::Element& element = *std::next(machines_.twin.elements.begin(), place);
  const Kin::Entity& entity =
      *std::next(machines_.machine.GetKinematic().GetListEntity().begin(), place);
  const Position pos = AnyPosition(draw, machines_.twin.registerNb);
  if (draw.Chance(0.02)) {
    EXPECT_EQ(Handle().ComputePositionEntity(entity, ToOrvo(pos), nullptr),
              twin_.PositionElement(element, pos, nullptr));
    ExpectSameError();
    return;
  }
  Frame expected = draw.Chance(0.5) ? Frame() : AnyFrame(draw);
  Matrix43 frame = ToOrvo(expected);
  EXPECT_EQ(Handle().ComputePositionEntity(entity, ToOrvo(pos), &frame),
            twin_.PositionElement(element, pos, &expected));
  EXPECT_TRUE(SameBits(frame, expected)) << "element " << element.id << "\n" << Text(pos);
  ExpectSameError();
}

void CalculatorPair::PositionMachine(Draw& draw) {
  const Position pos = AnyPosition(draw, machines_.twin.registerNb);
  if (draw.Chance(0.02)) {
    EXPECT_EQ(Handle().ComputePositionMachine(ToOrvo(pos), nullptr),
              twin_.PositionMachine(pos, nullptr));
    ExpectSameError();
    return;
  }
  if (draw.Chance(0.2)) {
    const int size = draw.Int(0, 12);
    const Frame filler = AnyFrame(draw);
    twinFrames_.clear();
    frames_.clear();
    for (int i = 0; i < size; ++i) {
      twinFrames_.push_back(filler);
      frames_.push_back(ToOrvo(filler));
    }
  }
  EXPECT_EQ(Handle().ComputePositionMachine(ToOrvo(pos), &frames_),
            twin_.PositionMachine(pos, &twinFrames_));
  ASSERT_EQ(frames_.size(), twinFrames_.size());
  for (std::size_t i = 0; i < frames_.size(); ++i) {
    EXPECT_TRUE(SameBits(frames_[i], twinFrames_[i])) << "slot " << i << "\n" << Text(pos);
  }
  ExpectSameError();
}

void CalculatorPair::McsToToolTcs(Draw& draw) {
  const Position pos = AnyPosition(draw, machines_.twin.registerNb);
  const int head = AnyIndex(draw);
  const int table = AnyIndex(draw);
  const Vector offset = draw.Chance(0.3) ? Vector() : Point(draw);
  if (draw.Chance(0.02)) {
    EXPECT_EQ(Handle().ComputeMcsToToolTcs(ToOrvo(pos), head, table, ToOrvo(offset), nullptr),
              twin_.McsToToolTcs(pos, head, table, offset, nullptr));
    ExpectSameError();
    return;
  }
  Frame expected = draw.Chance(0.5) ? Frame() : AnyFrame(draw);
  Matrix43 frame = ToOrvo(expected);
  EXPECT_EQ(Handle().ComputeMcsToToolTcs(ToOrvo(pos), head, table, ToOrvo(offset), &frame),
            twin_.McsToToolTcs(pos, head, table, offset, &expected));
  EXPECT_TRUE(SameBits(frame, expected)) << "head " << head << ", table " << table << "\n"
                                         << Text(pos) << Text(offset);
  ExpectSameError();
}

void CalculatorPair::Rotaries(const RotaryRequest& request) {
  Reference::Rotaries expected;
  expected.count = 7;
  expected.alpha1 = 1.5;
  Kin::RotariesSolution solution;
  solution.Count = 7;
  solution.Alpha1 = Angle(1.5);
  EXPECT_EQ(
      Handle().ComputeToolIjkTcsToMcsAbc(ToOrvo(request.pos), request.head, request.table,
                                         ToOrvo(request.ijk), request.r0, request.r1, &solution),
      twin_.SolveRotaries(request.pos, request.head, request.table, request.ijk, request.r0,
                          request.r1, &expected))
      << Text(request);
  EXPECT_TRUE(SameBits(solution, expected)) << Text(request);
  ExpectSameError();
}

void CalculatorPair::Linear(const LinearRequest& request) {
  Vector expected = {11.0, 12.0, 13.0, 14.0};
  Vector3D xyz = ToOrvo(expected);
  EXPECT_EQ(Handle().ComputeToolTcsToMcsXyz(ToOrvo(request.pos), request.head, request.table,
                                            ToOrvo(request.offset), request.registers[0],
                                            request.registers[1], request.registers[2],
                                            ToOrvo(request.point), &xyz),
            twin_.SolveLinear(request.pos, request.head, request.table, request.offset,
                              request.registers, request.point, &expected))
      << Text(request);
  EXPECT_TRUE(SameBits(xyz, expected)) << Text(request);
  ExpectSameError();
}

}  // namespace Orvo::Property
