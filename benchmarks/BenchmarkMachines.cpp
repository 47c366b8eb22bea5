#include "BenchmarkMachines.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>

namespace Orvo::Benchmarks {

namespace {

using namespace Orvo::Kin;

// As many positions and requests as a ring has; enough that no two calls in a row agree, few enough
// for the first-level cache.
constexpr int RingSize = 64;

Matrix43 Shift(double x, double y, double z) {
  Matrix43 frame;
  frame.SetTrans(Vector3D(x, y, z));
  return frame;
}

Matrix43 Tilt(const Vector3D& axis, double degrees, double x, double y, double z) {
  Angle angle;
  angle.SetDegre(degrees);
  Matrix43 frame;
  frame.SetRotation(axis, angle);
  frame.SetTrans(Vector3D(x, y, z));
  return frame;
}

/// Adds elements one below the other; each axis takes the next register.
class Builder {
 public:
  explicit Builder(Machine* machine) : machine_(machine) {}

  EntityId Static(const EntityId& parent, const Matrix43& frame) {
    Entity* const entity = machine_->AddEntityStatic(L"static", parent);
    entity->GetEntityLinkMod()->SetEntityLinkPosition(frame);
    return entity->GetEntityId();
  }

  EntityId Linear(const EntityId& parent, const Vector3D& dir, Register* reg) {
    return Axis(machine_->AddEntityLinear(L"linear", parent, dir), -2000.0, 2000.0, reg);
  }

  EntityId Rotary(const EntityId& parent, const Vector3D& center, const Vector3D& dir,
                  Register* reg) {
    return Axis(machine_->AddEntityRotary(L"rotary", parent, center, dir), -720.0, 720.0, reg);
  }

  void Head(const EntityId& parent, const Matrix43& frame) {
    machine_->AddEntityHead(L"head", parent, frame);
  }

  void Table(const EntityId& parent, const Matrix43& frame) {
    machine_->AddEntityTable(L"table", parent, frame);
  }

 private:
  EntityId Axis(Entity* entity, double min, double max, Register* reg) {
    const Register mine(registerNb_++);
    entity->SetRegister(mine);
    entity->SetRange(min, max);
    if (reg != nullptr) {
      *reg = mine;
    }
    return entity->GetEntityId();
  }

  Machine* machine_;
  int registerNb_ = 0;
};

/// The registers of a program system.
struct Mains {
  Register x, y, z, r0, r1;
};

// A rotary value well away from 0 and from half a turn, where branches meet, and within the range.
double RotaryValue(const Machine& machine, const Register& reg, double fraction) {
  const Entity& axis = *machine.GetKinematic().GetEntity(reg);
  const double min = axis.GetCheckRangeAxis() ? std::max(axis.GetRangeMin(), -90.0) : -90.0;
  const double max = axis.GetCheckRangeAxis() ? std::min(axis.GetRangeMax(), 90.0) : 90.0;
  return (max >= -min ? max : min) * (0.3 + 0.4 * fraction);
}

// The values that the axes get: large steps for the axes of the program system, and small ones for
// all others, which stand still along the path.
void FillRings(Subject* subject) {
  std::mt19937_64 generator(20261121);
  const auto draw = [&generator](double size) {
    // By hand, so that every standard library draws the same.
    return size * (2.0 * static_cast<double>(generator() >> 11U) / 9007199254740992.0 - 1.0);
  };
  const ProgramSystem& ps = subject->programSystem;
  MachinePosition rest;
  subject->machine.Alloc(&rest);
  const auto move = [subject, &ps, &draw](MachinePosition* position) {
    for (int i = 0; i < 3; ++i) {
      (*position)[ps.GetMainLinear(i)] = draw(100.0);
    }
    for (int i = 0; i < 2; ++i) {
      const Register& reg = ps.GetMainRotary(i);
      (*position)[reg] = RotaryValue(subject->machine, reg, 0.5 + draw(0.5));
    }
  };
  for (int i = 0; i < RingSize; ++i) {
    MachinePosition position = rest;
    for (int reg = 0; reg < static_cast<int>(rest.Size()); ++reg) {
      position[Register(reg)] = draw(5.0);
    }
    move(&position);
    subject->positions.push_back(position);
  }
  MachineCompute compute(subject->machine);
  MachinePosition position = subject->positions.front();
  for (int i = 0; i < RingSize; ++i) {
    Request request;
    request.current = position;
    move(&position);
    Matrix43 tableFromToolPoint;
    if (!compute.ComputeMcsToToolTcs(position, ps.GetHeadIndex(), ps.GetTableIndex(),
                                     subject->offset, &tableFromToolPoint)) {
      throw std::runtime_error(subject->name + ": no frame from head to table");
    }
    request.ijk = tableFromToolPoint.GetW();
    request.point = tableFromToolPoint.GetTrans();
    subject->requests.push_back(request);
  }
}

Subject Finished(const std::string& name, const Machine& machine, const Mains& mains) {
  Subject subject;
  subject.name = name;
  subject.machine = machine;
  if (!subject.machine.Finish()) {
    throw std::runtime_error(name + ": not a valid machine");
  }
  subject.programSystem.SetHeadIndex(0);
  subject.programSystem.SetTableIndex(0);
  subject.programSystem.SetMainLinear(mains.x, mains.y, mains.z);
  subject.programSystem.SetMainRotary(mains.r0, mains.r1);
  subject.offset = Vector3D(0.0, 0.0, 75.0);
  FillRings(&subject);
  return subject;
}

}  // namespace

Subject MakeM5() {
  Machine machine;
  Builder add(&machine);
  Mains mains;
  const EntityId bed = add.Static(-1, Shift(0.0, 0.0, -400.0));
  const EntityId x = add.Linear(bed, AxisX, &mains.x);
  const EntityId y = add.Linear(x, AxisY, &mains.y);
  const EntityId z = add.Linear(y, AxisZ, &mains.z);
  add.Head(z, Shift(0.0, 12.5, 600.0));
  const EntityId cradle = add.Static(bed, Shift(35.0, -20.0, 210.0));
  const EntityId a = add.Rotary(cradle, Vector3D(0.0, 0.0, 55.0), AxisX, &mains.r0);
  const EntityId c = add.Rotary(a, Vector3D(1.5, -0.5, 0.0), AxisZ, &mains.r1);
  add.Table(c, Shift(0.0, 0.0, 80.0));
  return Finished("M5", machine, mains);
}

Subject MakeHeadTable() {
  Machine machine;
  Builder add(&machine);
  Mains mains;
  const EntityId bed = add.Static(-1, Shift(0.0, 0.0, -400.0));
  const EntityId x = add.Linear(bed, AxisX, &mains.x);
  const EntityId y = add.Linear(x, AxisY, &mains.y);
  const EntityId z = add.Linear(y, AxisZ, &mains.z);
  const EntityId b = add.Rotary(z, Vector3D(0.0, 0.0, 700.0), AxisY, &mains.r0);
  add.Head(b, Shift(0.0, 0.0, 600.0));
  const EntityId carrier = add.Static(bed, Shift(35.0, -20.0, 210.0));
  const EntityId c = add.Rotary(carrier, Vector3D(1.5, -0.5, 0.0), AxisZ, &mains.r1);
  add.Table(c, Shift(0.0, 0.0, 80.0));
  return Finished("HeadTable", machine, mains);
}

Subject MakeM12() {
  Machine machine;
  Builder add(&machine);
  Mains mains;
  const EntityId bed = add.Static(-1, Shift(0.0, 0.0, -500.0));
  // The upper carriage with the milling head.
  const EntityId upper = add.Static(bed, Tilt(AxisX, 30.0, 0.0, 200.0, 700.0));
  const EntityId z = add.Linear(upper, AxisZ, &mains.z);
  const EntityId x = add.Linear(z, AxisX, &mains.x);
  const EntityId column = add.Static(x, Tilt(AxisX, -30.0, 0.0, 0.0, 90.0));
  const EntityId slide = add.Static(column, Tilt(AxisX, 30.0, 0.0, 10.0, 0.0));
  const EntityId y = add.Linear(slide, AxisY, &mains.y);
  const EntityId upright = add.Static(y, Tilt(AxisX, -30.0, 0.0, 0.0, 40.0));
  const EntityId b = add.Rotary(upright, Vector3D(0.0, 0.0, 150.0), AxisY, &mains.r0);
  const EntityId spindle = add.Static(b, Shift(0.0, 0.0, 60.0));
  add.Head(spindle, Shift(0.0, 0.0, 20.0));
  // The main spindle.
  const EntityId headstock = add.Static(bed, Shift(0.0, 0.0, 250.0));
  const EntityId c = add.Rotary(headstock, NullVector, AxisZ, &mains.r1);
  const EntityId chuck = add.Static(c, Shift(0.0, 0.0, 110.0));
  add.Table(chuck, Shift(0.0, 0.0, 35.0));
  // The turret below.
  const EntityId lower = add.Static(bed, Tilt(AxisX, -45.0, 0.0, -300.0, 500.0));
  const EntityId z2 = add.Linear(lower, AxisZ, nullptr);
  const EntityId x2 = add.Linear(z2, AxisX, nullptr);
  const EntityId turret = add.Rotary(x2, Vector3D(0.0, 0.0, 50.0), AxisZ, nullptr);
  const EntityId station = add.Rotary(turret, Vector3D(0.0, 120.0, 0.0), AxisY, nullptr);
  add.Head(station, Tilt(AxisX, 90.0, 0.0, 30.0, 0.0));
  // The counter spindle.
  const EntityId z3 = add.Linear(bed, AxisZ, nullptr);
  const EntityId quill = add.Linear(z3, AxisZ, nullptr);
  const EntityId c3 = add.Rotary(quill, NullVector, AxisZ, nullptr);
  add.Table(c3, Tilt(AxisY, 180.0, 0.0, 0.0, 1200.0));
  return Finished("M12", machine, mains);
}

Subject MakeChain(int elementNb) {
  Machine machine;
  Builder add(&machine);
  Mains mains;
  const Vector3D dirs[] = {AxisZ, AxisX, AxisY, Vector3D(0.0, 0.6, 0.8)};
  const auto extend = [&add, &dirs](EntityId parent, int count) {
    for (int i = 0; i < count; ++i) {
      const Vector3D& dir = dirs[i / 2 % 4];
      parent = i % 2 == 0 ? add.Linear(parent, dir, nullptr)
                          : add.Rotary(parent, Vector3D(1.0, -2.0, 0.5), dir, nullptr);
    }
    return parent;
  };
  const EntityId root = add.Static(-1, Shift(0.0, 0.0, -400.0));
  const int auxiliaryNb = elementNb - 8;
  const EntityId z0 = extend(root, auxiliaryNb / 2);
  const EntityId x = add.Linear(z0, AxisX, &mains.x);
  const EntityId y = add.Linear(x, AxisY, &mains.y);
  const EntityId z = add.Linear(y, AxisZ, &mains.z);
  const EntityId b = add.Rotary(z, Vector3D(0.0, 0.0, 300.0), AxisY, &mains.r0);
  add.Head(b, Shift(0.0, 0.0, 200.0));
  const EntityId base = extend(root, auxiliaryNb - auxiliaryNb / 2);
  const EntityId c = add.Rotary(base, Vector3D(1.5, -0.5, 0.0), AxisZ, &mains.r1);
  add.Table(c, Shift(0.0, 0.0, 80.0));
  return Finished("M" + std::to_string(elementNb), machine, mains);
}

Subject MakeM1000() { return MakeChain(1000); }

Subject ReadExample(const std::string& name) {
  Subject subject;
  subject.name = name;
  const std::string path =
      std::string(ORVO_EXAMPLES_DIR) + "/machines/" + name + "/" + name + ".xml";
  if (!subject.machine.ReadXML(std::wstring(path.begin(), path.end())) ||
      subject.machine.GetListProgramSystem().empty()) {
    throw std::runtime_error(path + ": can't be read");
  }
  subject.programSystem = subject.machine.GetListProgramSystem().front();
  subject.offset = Vector3D(0.0, 0.0, 75.0);
  FillRings(&subject);
  return subject;
}

Machine MakeWide(int elementNb) {
  Machine machine;
  for (int i = 0; i < elementNb; ++i) {
    machine.AddEntityLinear(L"axis " + std::to_wstring(i), i == 0 ? -1 : 1, AxisX)->SetRegister(i);
  }
  machine.Finish();
  return machine;
}

Machine MakeDeep(int elementNb) {
  Machine machine;
  for (int i = 0; i < elementNb; ++i) {
    machine.AddEntityLinear(L"axis " + std::to_wstring(i), i == 0 ? -1 : i, AxisX)->SetRegister(i);
  }
  machine.Finish();
  return machine;
}

}  // namespace Orvo::Benchmarks
