// Builds a five-axis machine in code: X, Y and Z carry the tool, A and C tilt and turn the table.

#include <Orvo/Orvo.h>

#include <cstdio>

using namespace Orvo;
using namespace Orvo::Kin;

int main() {
  Machine machine;

  // Every element hangs on its parent, which is named by id; the root has none. A static element
  // stands where its parent stands.
  const EntityId bed = machine.AddEntityStatic(L"Bed", EntityId())->GetEntityId();

  // A linear axis has a direction. Its register is the place of its value in a position, and its
  // range goes from -300 to 300, in the unit of all lengths here: millimeters.
  Entity* const x = machine.AddEntityLinear(L"X", bed, AxisX);
  x->SetRegister(0);
  x->SetRange(-300.0, 300.0);
  Entity* const y = machine.AddEntityLinear(L"Y", x->GetEntityId(), AxisY);
  y->SetRegister(1);
  y->SetRange(-250.0, 250.0);
  Entity* const z = machine.AddEntityLinear(L"Z", y->GetEntityId(), AxisZ);
  z->SetRegister(2);
  z->SetRange(0.0, 500.0);

  // The head carries the tool. With the identity as its frame it stands where Z stands.
  machine.AddEntityHead(L"Spindle", z->GetEntityId(), Matrix43());

  // A rotary axis has a center and a direction; its range is in degrees. Axes under the table are
  // written as they move: A and C turn the workpiece.
  Entity* const a = machine.AddEntityRotary(L"A", bed, NullVector, AxisX);
  a->SetRegister(3);
  a->SetRange(-120.0, 30.0);
  Entity* const c = machine.AddEntityRotary(L"C", a->GetEntityId(), NullVector, AxisZ);
  c->SetRegister(4);
  c->SetRange(-360.0, 360.0);

  // Something is still missing, and Finish() says what.
  if (!machine.Finish() && machine.GetLastError() == MachineErrorNoTable) {
    std::printf("There is no table yet.\n");
  }

  // The table carries the workpiece: it stands 50 above the C axis's frame.
  Matrix43 cFromTable;
  cFromTable.SetTrans(Vector3D(0.0, 0.0, 50.0));
  machine.AddEntityTable(L"Table", c->GetEntityId(), cFromTable);
  if (!machine.Finish()) return 1;

  // A finished machine knows its tree.
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    std::printf("%*s%ls\n", 2 * entity.GetLevel(), "", entity.GetEntityName().c_str());
  }
  std::printf("%d elements, %d registers, %d linear axes\n", machine.GetEntityNb(),
              machine.GetRegisterNb().GetVal(), machine.GetLinearAxesNb());

  // It was given a way of programming it, too: the first head and table, X Y Z, A and C.
  const ProgramSystem& programSystem = *machine.GetProgramSystem(0);
  std::printf("%ls: rotary registers %d and %d\n", programSystem.GetProgramSystemName().c_str(),
              programSystem.GetMainRotary(0).GetVal(), programSystem.GetMainRotary(1).GetVal());
}
