#include "property/KeptPair.h"

#include "compute/PrivateAccess.h"
#include "geometry/FrameKernel.h"
#include "geometry/VectorKernel.h"
#include "property/Compare.h"
#include "property/RandomGeometry.h"
#include "support/SameBits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace Orvo::Property {
namespace {

using Kin::RotariesSolution;
using Testing::AreSameBits;

bool AreSame(const double* a, const double* b, std::size_t count) {
  if (std::memcmp(a, b, count * sizeof(double)) == 0) {
    return true;
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (!AreSameBits(a[i], b[i])) {
      return false;
    }
  }
  return true;
}

bool AreSame(const Matrix43& a, const Matrix43& b) {
  return FrameAccess::Type(a) == FrameAccess::Type(b) &&
         AreSame(FrameAccess::Elements(a), FrameAccess::Elements(b), 16);
}

bool AreSame(const RotariesSolution& a, const RotariesSolution& b) {
  return a.Count == b.Count && a.FreeRegister == b.FreeRegister &&
         AreSameBits(a.Alpha1.GetRadian(), b.Alpha1.GetRadian()) &&
         AreSameBits(a.Beta1.GetRadian(), b.Beta1.GetRadian()) &&
         AreSameBits(a.Alpha2.GetRadian(), b.Alpha2.GetRadian()) &&
         AreSameBits(a.Beta2.GetRadian(), b.Beta2.GetRadian());
}

std::string TextOf(const double* numbers, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ", ") + Testing::HexText(numbers[i]);
  }
  return text;
}

std::string TextOf(const Vector3D& v) { return TextOf(static_cast<const double*>(v), 4); }

std::string TextOf(const Matrix43& frame) {
  return "kind " + std::to_string(FrameAccess::Type(frame)) + ": " +
         TextOf(FrameAccess::Elements(frame), 16);
}

std::string TextOf(const RotariesSolution& sol) {
  const double angles[] = {sol.Alpha1.GetRadian(), sol.Beta1.GetRadian(), sol.Alpha2.GetRadian(),
                           sol.Beta2.GetRadian()};
  return std::to_string(sol.Count) + " solutions, free register " +
         std::to_string(sol.FreeRegister) + ", " + TextOf(angles, 4);
}

std::string TextOf(const Kin::MachinePosition& pos) {
  return pos.Size() == 0 ? std::string("empty")
                         : TextOf(&pos[0], static_cast<std::size_t>(pos.Size()));
}

template <typename Result>
std::string TextOfBoth(const Result& kept, const Result& plain) {
  return "  kept  " + TextOf(kept) + "\n  plain " + TextOf(plain) + "\n";
}

// A frame that an output may hold before the call, of any kind.
Matrix43 Filler(Draw& draw) {
  Matrix43 frame;
  switch (draw.Int(0, 3)) {
    case 0:
      return frame;
    case 1:
      return ToOrvo(AnyFrame(draw));
    default:
      // Marked as an identity, with other numbers.
      static_cast<double*>(frame)[draw.Int(0, 15)] = 7.0;
      return frame;
  }
}

double AxisValue(Draw& draw) {
  static const double special[] = {0.0,     -0.0,   360.0, -360.0, 720.0, 1e-300,
                                   -1e-300, 5e-324, 90.0,  -90.0,  180.0, -180.0,
                                   270.0,   1e-16,  -1e-9, 1e15,   360e6, 1e-12};
  switch (draw.Int(0, 5)) {
    case 0:
      return draw.Of(special);
    case 1:
      return draw.Int(-4, 4) * 360.0;
    case 2:
      return AngleDeg(draw);
    default:
      return draw.Uniform(-400.0, 400.0);
  }
}

Vector3D Between(const Vector3D& a, const Vector3D& b, double share) {
  return Plus(a, Times(Minus(b, a), share));
}

Vector3D Shifted(Draw& draw, const Vector3D& v) {
  const double distance = std::pow(10.0, draw.Uniform(-17.0, -1.0));
  return Plus(v, Times(ToOrvo(UnitDirection(draw)), distance));
}

}  // namespace

KeptPair::KeptPair(const ChangingMachine& machine)
    : machine_(machine), calculators_{machine.Get(), machine.Get()}, scout_(machine.Get()) {
  Testing::KeepNothing(calculators_[1]);
  Testing::KeepNothing(scout_);
}

void KeptPair::DrawIndices(Draw& draw) {
  const int headNb = machine_.Get().GetHeadNb().GetVal();
  const int tableNb = machine_.Get().GetTableNb().GetVal();
  const bool isSound = draw.Chance(0.97);
  scene_.head = isSound && headNb > 0 ? draw.Int(0, headNb - 1) : draw.Int(-1, 3);
  scene_.table = isSound && tableNb > 0 ? draw.Int(0, tableNb - 1) : draw.Int(-1, 3);
}

void KeptPair::DrawRegisters(Draw& draw) {
  // Usually those of axes between head and table.
  const Kin::Kinematic& kinematic = machine_.Get().GetKinematic();
  std::vector<int> rotary;
  std::vector<int> linear;
  for (const Kin::Entity* end :
       {kinematic.GetEntityHead(scene_.head), kinematic.GetEntityTable(scene_.table)}) {
    for (; end != nullptr; end = end->GetParentEntity()) {
      const Kin::EntityLinkType type = end->GetEntityLink().GetEntityLinkType();
      if (type == Kin::EntityLinkTypeRotary) {
        rotary.push_back(end->GetRegister().GetVal());
      } else if (type == Kin::EntityLinkTypeLinear) {
        linear.push_back(end->GetRegister().GetVal());
      }
    }
  }
  if (draw.Chance(0.1)) {
    rotary = machine_.RegistersOf(Kin::EntityLinkTypeRotary);
    linear = machine_.RegistersOf(Kin::EntityLinkTypeLinear);
  }
  draw.Shuffle(&rotary);
  draw.Shuffle(&linear);
  const int bound = machine_.RegisterNb();
  for (std::size_t i = 0; i < 2; ++i) {
    scene_.rotaries[i] = i < rotary.size() ? rotary[i] : -1;
  }
  for (std::size_t i = 0; i < 3; ++i) {
    scene_.linears[i] = i < linear.size() ? linear[i] : -1;
  }
  switch (draw.Int(0, 15)) {
    case 0:
      scene_.rotaries[draw.Int(0, 1)] = draw.Int(-2, bound);
      break;
    case 1:
      scene_.rotaries[draw.Int(0, 1)] = -draw.Int(1, 2);
      break;
    case 2:
      scene_.rotaries[0] = scene_.rotaries[1];
      break;
    case 3:
      scene_.linears[draw.Int(0, 2)] = draw.Int(-2, bound);
      break;
    case 4:
      scene_.linears[0] = scene_.linears[draw.Int(1, 2)];
      break;
    case 5:
      scene_.rotaries[0] = draw.Of(scene_.linears);
      scene_.linears[0] = draw.Of(scene_.rotaries);
      break;
    default:
      break;
  }
}

void KeptPair::DrawScene(Draw& draw) {
  scene_.values.resize(static_cast<std::size_t>(std::max(machine_.RegisterNb(), 1)) +
                       (draw.Chance(0.1) ? 3 : 0));
  for (double& value : scene_.values) {
    value = AxisValue(draw);
  }
  DrawIndices(draw);
  DrawRegisters(draw);
  scene_.offset = ToOrvo(Point(draw));
  pos_ = DrawPosition(draw);
  Look();
}

double& KeptPair::AnyValue(Draw& draw) {
  const int last = static_cast<int>(scene_.values.size()) - 1;
  return scene_.values[static_cast<std::size_t>(draw.Int(0, last))];
}

void KeptPair::ChangeScene(Draw& draw, double edgeShare) {
  const auto value = [&draw, edgeShare] {
    return draw.Chance(edgeShare) ? AnyNumber(draw) : AxisValue(draw);
  };
  switch (draw.Int(0, 7)) {
    case 0:
    case 1:
      break;
    case 2:
      for (double& number : scene_.values) {
        number = value();
      }
      break;
    case 3: {
      // The other zero, or the least other value.
      double& number = AnyValue(draw);
      number = number == 0.0 ? -number : std::nextafter(number, 0.0);
      break;
    }
    default:
      for (int i = draw.Int(1, 3); i > 0; --i) {
        AnyValue(draw) = value();
      }
      break;
  }
  if (draw.Chance(0.1)) {
    DrawIndices(draw);
    if (draw.Chance(0.7)) {
      DrawRegisters(draw);
    }
  }
  if (draw.Chance(0.05)) {
    DrawRegisters(draw);
  }
  if (draw.Chance(0.05)) {
    std::swap(scene_.rotaries[0], scene_.rotaries[1]);
  }
  if (draw.Chance(0.3)) {
    scene_.offset = draw.Chance(0.3) ? Vector3D(0.0, -0.0, 0.0) : ToOrvo(Point(draw));
  }
  if (draw.Chance(0.05)) {
    scene_.offset[draw.Int(0, 2)] *= -1.0;
  }
  if (draw.Chance(edgeShare)) {
    scene_.offset[draw.Int(0, 2)] = AnyNumber(draw);
  }
  pos_ = DrawPosition(draw);
  if (draw.Chance(0.3)) {
    Look();
  }
}

Kin::MachinePosition KeptPair::DrawPosition(Draw& draw) const {
  std::size_t size = scene_.values.size();
  switch (draw.Int(0, 39)) {
    case 0:
      size = static_cast<std::size_t>(draw.Int(0, static_cast<int>(size)));
      break;
    case 1:
      size -= 1;
      break;
    case 2:
      size += static_cast<std::size_t>(draw.Int(1, 4));
      break;
    default:
      break;
  }
  Kin::MachinePosition pos;
  pos.Alloc(static_cast<unsigned long long>(size));
  for (std::size_t i = 0; i < size; ++i) {
    pos[static_cast<int>(i)] = i < scene_.values.size() ? scene_.values[i] : 1.0;
  }
  if (size != 0 && draw.Chance(0.02)) {
    static const double odd[] = {std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity(), 1e308};
    pos[draw.Int(0, static_cast<int>(size) - 1)] = draw.Of(odd);
  }
  return pos;
}

void KeptPair::Look() {
  Kin::MachinePosition zero;
  zero.Alloc(static_cast<unsigned long long>(scene_.values.size()));
  for (std::size_t i = 0; i < scene_.values.size(); ++i) {
    const int reg = static_cast<int>(i);
    const bool isSolved = reg == scene_.rotaries[0] || reg == scene_.rotaries[1];
    zero[reg] = isSolved ? 0.0 : scene_.values[i];
  }
  Matrix43 tableFromHead;
  if (!scout_.ComputeMcsToToolTcs(zero, scene_.head, scene_.table, NullVector, &tableFromHead)) {
    return;
  }
  tool_ = tableFromHead.GetW();
  const Kin::Kinematic& kinematic = machine_.Get().GetKinematic();
  Matrix43 worldFromTable;
  scout_.ComputePositionEntity(*kinematic.GetEntityTable(scene_.table), zero, &worldFromTable);
  Matrix43 tableFromWorld = worldFromTable.HInverse();
  for (int i = 0; i < 2; ++i) {
    const Kin::Entity* const axis = kinematic.GetEntity(Kin::Register(scene_.rotaries[i]));
    axes_[i] = AxisZ;
    if (axis != nullptr && axis->GetParentEntity() != nullptr) {
      Matrix43 worldFromParent;
      scout_.ComputePositionEntity(*axis->GetParentEntity(), zero, &worldFromParent);
      axes_[i] = tableFromWorld.ApplyToVector3D(
          worldFromParent.ApplyToVector3D(axis->GetEntityLink().GetDir()));
    }
  }
}

Vector3D KeptPair::DrawTarget(Draw& draw) {
  Vector3D target;
  switch (draw.Int(0, 15)) {
    case 0:
      return ToOrvo(AnyDirection(draw));
    case 1:
      return ToOrvo(AnyVector(draw));
    case 2:
      target = draw.Chance(0.7) ? tool_ : Times(tool_, -1.0);
      break;
    case 3:
      target = Times(axes_[draw.Int(0, 1)], draw.Chance(0.5) ? 1.0 : -1.0);
      break;
    case 4:
    case 5: {
      // The tool turned into the plane of both axes: as far as they reach.
      const bool isSwapped = draw.Chance(0.5);
      const Vector3D& inner = axes_[isSwapped ? 1 : 0];
      const Vector3D& outer = axes_[isSwapped ? 0 : 1];
      const Vector3D along = Times(inner, Dot(inner, tool_));
      Vector3D side = Minus(outer, Times(inner, Dot(inner, outer)));
      side.MakeUnit(1e-9);
      const double radius = Length(Minus(tool_, along));
      target = Plus(along, Times(side, draw.Chance(0.5) ? radius : -radius));
      target = Plus(target, Times(outer, std::pow(10.0, draw.Uniform(-9.0, -1.0)) *
                                             (draw.Chance(0.5) ? 1.0 : -1.0)));
      break;
    }
    case 6: {
      // Next to the shortest length that counts as a direction.
      target = ToOrvo(UnitDirection(draw));
      double size = 0.001;
      for (int i = draw.Int(0, 2); i > 0; --i) {
        size = std::nextafter(size, draw.Chance(0.5) ? 1.0 : 0.0);
      }
      return Times(target, size);
    }
    default: {
      Matrix43 turns[2];
      for (int i = 0; i < 2; ++i) {
        Angle angle;
        angle.SetDegre(AxisValue(draw));
        turns[i].SetRotation(axes_[i], angle);
      }
      target = draw.Chance(0.5) ? turns[0].ApplyToVector3D(turns[1].ApplyToVector3D(tool_))
                                : turns[1].ApplyToVector3D(turns[0].ApplyToVector3D(tool_));
      break;
    }
  }
  if (draw.Chance(0.4)) {
    target = Shifted(draw, target);
  }
  if (draw.Chance(0.2)) {
    target = Times(target, draw.Uniform(0.0005, 3.0));
  }
  return target;
}

bool KeptPair::Explain(bool isSame, const char* call, const std::string& request) {
  ADD_FAILURE() << call << (isSame ? "" : ": the results differ") << ", last errors "
                << calculators_[0].GetLastError() << " and " << calculators_[1].GetLastError()
                << ", call " << callNb_ << ", head " << scene_.head << ", table " << scene_.table
                << "\n  position " << TextOf(pos_) << "\n"
                << request;
  return false;
}

bool KeptPair::CallMachine(Draw& draw) {
  if (draw.Chance(0.05)) {
    const std::size_t size = static_cast<std::size_t>(draw.Int(0, 12));
    // New ones, since an identity is not assigned to an identity.
    frames_[0] = std::vector<Matrix43>(size, Filler(draw));
    frames_[1] = std::vector<Matrix43>(frames_[0]);
  } else if (!frames_[0].empty() && draw.Chance(0.1)) {
    const int last = static_cast<int>(frames_[0].size()) - 1;
    const auto place = static_cast<std::size_t>(draw.Int(0, last));
    const Matrix43 filler = Filler(draw);
    for (std::vector<Matrix43>& frames : frames_) {
      std::destroy_at(&frames[place]);
      ::new (&frames[place]) Matrix43(filler);
    }
  }
  std::vector<Matrix43>* outputs[Nb] = {&frames_[0], &frames_[1]};
  if (draw.Chance(0.01)) {
    outputs[0] = outputs[1] = nullptr;
  }
  const bool kept = calculators_[0].ComputePositionMachine(pos_, outputs[0]);
  const bool plain = calculators_[1].ComputePositionMachine(pos_, outputs[1]);
  bool isSame = kept == plain && frames_[0].size() == frames_[1].size();
  std::string difference;
  for (std::size_t i = 0; isSame && i < frames_[0].size(); ++i) {
    isSame = AreSame(frames_[0][i], frames_[1][i]);
    if (!isSame) {
      difference = "  slot " + std::to_string(i) + "\n" + TextOfBoth(frames_[0][i], frames_[1][i]);
    }
  }
  return (isSame && calculators_[0].GetLastError() == calculators_[1].GetLastError()) ||
         Explain(isSame, "frames of the machine", difference);
}

bool KeptPair::CallTool(Draw& draw) {
  Matrix43 frames[Nb];
  frames[0] = Filler(draw);
  std::memcpy(static_cast<void*>(&frames[1]), static_cast<const void*>(&frames[0]),
              sizeof(Matrix43));
  const bool hasOutput = !draw.Chance(0.01);
  bool results[Nb];
  for (int i = 0; i < Nb; ++i) {
    results[i] = calculators_[i].ComputeMcsToToolTcs(pos_, scene_.head, scene_.table, scene_.offset,
                                                     hasOutput ? &frames[i] : nullptr);
  }
  const bool isSame = results[0] == results[1] && AreSame(frames[0], frames[1]);
  return (isSame && calculators_[0].GetLastError() == calculators_[1].GetLastError()) ||
         Explain(isSame, "frame of the tool",
                 "  offset " + TextOf(scene_.offset) + "\n" + TextOfBoth(frames[0], frames[1]));
}

bool KeptPair::CallEntity(Draw& draw) {
  if (machine_.Elements().empty()) {
    return true;
  }
  const Kin::Entity& entity = *draw.Of(machine_.Elements());
  Matrix43 frames[Nb];
  bool results[Nb];
  for (int i = 0; i < Nb; ++i) {
    results[i] = calculators_[i].ComputePositionEntity(entity, pos_, &frames[i]);
  }
  const bool isSame = results[0] == results[1] && AreSame(frames[0], frames[1]);
  return (isSame && calculators_[0].GetLastError() == calculators_[1].GetLastError()) ||
         Explain(isSame, "frame of an element", TextOfBoth(frames[0], frames[1]));
}

bool KeptPair::CallRotaries(const Vector3D& ijk) {
  ++callNb_;
  RotariesSolution solutions[Nb];
  bool results[Nb];
  for (int i = 0; i < Nb; ++i) {
    RotariesSolution& sol = solutions[i];
    sol.Count = 7;
    sol.FreeRegister = 8;
    sol.Alpha1 = sol.Beta1 = sol.Alpha2 = sol.Beta2 = Angle(1.5);
    results[i] = calculators_[i].ComputeToolIjkTcsToMcsAbc(
        pos_, scene_.head, scene_.table, ijk, scene_.rotaries[0], scene_.rotaries[1], &sol);
  }
  const bool isSame = results[0] == results[1] && AreSame(solutions[0], solutions[1]);
  return (isSame && calculators_[0].GetLastError() == calculators_[1].GetLastError()) ||
         Explain(isSame, "rotary solution",
                 "  registers " + std::to_string(scene_.rotaries[0]) + ", " +
                     std::to_string(scene_.rotaries[1]) + "\n  target " + TextOf(ijk) + "\n" +
                     TextOfBoth(solutions[0], solutions[1]));
}

bool KeptPair::CallLinear(Draw& draw) {
  const Vector3D point = draw.Chance(0.02) ? ToOrvo(AnyVector(draw)) : ToOrvo(Point(draw));
  Vector3D xyz[Nb];
  bool results[Nb];
  const bool hasOutput = !draw.Chance(0.01);
  for (int i = 0; i < Nb; ++i) {
    xyz[i] = Vector3D(11.0, 12.0, 13.0);
    xyz[i][3] = 14.0;
    results[i] = calculators_[i].ComputeToolTcsToMcsXyz(
        pos_, scene_.head, scene_.table, scene_.offset, scene_.linears[0], scene_.linears[1],
        scene_.linears[2], point, hasOutput ? &xyz[i] : nullptr);
  }
  const bool isSame = results[0] == results[1] && AreSame(xyz[0], xyz[1], 4);
  return (isSame && calculators_[0].GetLastError() == calculators_[1].GetLastError()) ||
         Explain(isSame, "linear solution",
                 "  registers " + std::to_string(scene_.linears[0]) + ", " +
                     std::to_string(scene_.linears[1]) + ", " + std::to_string(scene_.linears[2]) +
                     "\n  offset " + TextOf(scene_.offset) + "\n  point " + TextOf(point) + "\n" +
                     TextOfBoth(xyz[0], xyz[1]));
}

bool KeptPair::Call(Draw& draw) {
  const int what = draw.Int(0, 15);
  if (what >= 8) {
    return CallRotaries(DrawTarget(draw));
  }
  ++callNb_;
  return what == 0  ? CallEntity(draw)
         : what < 3 ? CallMachine(draw)
         : what < 5 ? CallTool(draw)
                    : CallLinear(draw);
}

bool KeptPair::CallAtThreshold(Draw& draw) {
  const Vector3D ends[2] = {DrawTarget(draw), DrawTarget(draw)};
  RotariesSolution sol;
  // What tells solutions apart: how many there are, and whether the two are one.
  const auto kindAt = [&](double share) {
    scout_.ComputeToolIjkTcsToMcsAbc(pos_, scene_.head, scene_.table,
                                     Between(ends[0], ends[1], share), scene_.rotaries[0],
                                     scene_.rotaries[1], &sol);
    const bool isOne = AreSameBits(sol.Alpha1.GetRadian(), sol.Alpha2.GetRadian()) &&
                       AreSameBits(sol.Beta1.GetRadian(), sol.Beta2.GetRadian());
    return (sol.Count * 2 + (isOne ? 1 : 0)) * 1000 + static_cast<unsigned int>(sol.FreeRegister);
  };
  double low = 0.0;
  double high = 1.0;
  const unsigned int kind = kindAt(low);
  if (kindAt(high) == kind) {
    return CallRotaries(ends[0]);
  }
  for (double middle = 0.5; middle > low && middle < high; middle = low + (high - low) / 2) {
    (kindAt(middle) == kind ? low : high) = middle;
  }
  for (const double share : {low, high, std::nextafter(low, 0.0), std::nextafter(high, 1.0)}) {
    if (!CallRotaries(Between(ends[0], ends[1], share))) {
      return false;
    }
  }
  return true;
}

}  // namespace Orvo::Property
