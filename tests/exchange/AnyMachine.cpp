#include "exchange/AnyMachine.h"

#include "machines/ExampleData.h"
#include "property/RandomMachine.h"

#include <Orvo/Kin/MachineCompute.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Orvo::Testing {
namespace {

bool IsRigid(const Reference::Frame& f) {
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) {
      const double dot = Reference::Dot(f.Column(i), f.Column(k));
      if (!(std::abs(dot - (i == k ? 1.0 : 0.0)) < 1e-12)) {
        return false;
      }
    }
  }
  return Reference::Dot(Reference::Cross(f.Column(0), f.Column(1)), f.Column(2)) > 0.0 &&
         f.m[3] == 0.0 && f.m[7] == 0.0 && f.m[11] == 0.0 && f.m[15] == 1.0;
}

/// Turns a direction close beside a principal axis into that axis: the library's turn about it
/// takes it for such, or isn't quite a rotation.
void SnapToPrincipal(Reference::Vector* dir) {
  for (double* component : {&dir->x, &dir->y, &dir->z}) {
    if (std::abs(*component) > (component == &dir->x ? 0.999 : 1.0 - 1e-6)) {
      const double sign = *component < 0.0 ? -1.0 : 1.0;
      *dir = Reference::Vector();
      *component = sign;
      return;
    }
  }
}

}  // namespace

std::unique_ptr<Kin::Machine> RigidMachine(Property::Draw& draw) {
  for (;;) {
    Property::MachinePlan plan = Property::SoundPlan(draw);
    if (plan.fromFile) {
      continue;
    }
    for (Property::ElementPlan& element : plan.elements) {
      for (Property::LinkStep& step : element.links) {
        if (step.kind == Reference::Fixed && !IsRigid(step.frame)) {
          step.frame = Reference::Frame();
        }
        SnapToPrincipal(&step.dir);
      }
    }
    auto machine = std::make_unique<Kin::Machine>();
    Property::Make(plan, machine.get(), nullptr);
    if (machine->Finish()) {
      return machine;
    }
  }
}

std::unique_ptr<Kin::Machine> AnyMachine(Property::Draw& draw) {
  const Property::MachinePair pair(Property::AnyPlan(draw));
  auto machine = std::make_unique<Kin::Machine>(pair.machine);
  machine->Finish();
  return machine;
}

std::unique_ptr<Kin::Machine> ExampleMachineWithMeshes(const std::string& name) {
  auto machine = std::make_unique<Kin::Machine>();
  if (!machine->ReadMachineWithMeshStl(WideName(ExampleMachineFile(name)))) {
    throw std::runtime_error("can't read " + name);
  }
  return machine;
}

Kin::MachinePosition DrawPosition(Property::Draw& draw, const Kin::Machine& machine) {
  Kin::MachinePosition position;
  machine.Alloc(&position);
  for (int reg = 0; reg < machine.GetRegisterNb().GetVal(); ++reg) {
    position[reg] = draw.Uniform(-720.0, 720.0);
  }
  return position;
}

std::vector<Matrix43> NodeFrames(const Kin::Machine& machine,
                                 const Kin::MachinePosition& position) {
  Kin::MachineCompute compute(machine);
  std::vector<Matrix43> worldFromElement;
  if (!compute.ComputePositionMachine(position, &worldFromElement)) {
    throw std::runtime_error("the machine can't be computed with");
  }
  std::vector<Matrix43> frames;
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    Matrix43 frame = worldFromElement[static_cast<std::size_t>(entity.GetEntityId().GetVal())];
    if (entity.GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypeRotary &&
        entity.GetRegister().IsDefined()) {
      frame.SetTrans(frame.ApplyToPoint(entity.GetEntityLink().GetCenter()));
    }
    frames.push_back(frame);
  }
  return frames;
}

double SizeOf(const std::vector<Matrix43>& frames) {
  double size = 1.0;
  for (const Matrix43& frame : frames) {
    const double* const m = frame;
    size = std::max({size, std::abs(m[12]), std::abs(m[13]), std::abs(m[14])});
  }
  return size;
}

double Difference(const Matrix43& a, const Matrix43& b, double size) {
  const double* const pa = a;
  const double* const pb = b;
  double largest = 0.0;
  for (int i = 0; i < 16; ++i) {
    const double difference = std::abs(pa[i] - pb[i]) / (i < 12 ? 1.0 : size);
    // NaN counts as far away.
    largest = difference <= largest ? largest : (std::isnan(difference) ? 1e300 : difference);
  }
  return largest;
}

void MakeSmallMachine(Kin::Machine* machine) {
  const Kin::EntityId bed = machine->AddEntityStatic(L"bed", -1)->GetEntityId();
  Kin::EntityId end = bed;
  const Vector3D directions[] = {AxisX, AxisY, AxisZ};
  const wchar_t* const names[] = {L"X", L"Y", L"Z"};
  for (int i = 0; i < 3; ++i) {
    Kin::Entity* const axis = machine->AddEntityLinear(names[i], end, directions[i]);
    axis->SetRegister(i);
    axis->SetRange(-100.0, 200.0);
    end = axis->GetEntityId();
  }
  machine->AddEntityHead(L"head", end, Matrix43());
  machine->AddEntityTable(L"table", bed, Matrix43());
}

}  // namespace Orvo::Testing
