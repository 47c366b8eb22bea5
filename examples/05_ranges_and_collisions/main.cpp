// Holds a solution against the ranges of the axes, and lists what is to be checked for collision.

#include <Orvo/Orvo.h>

#include <cmath>
#include <cstdio>
#include <list>

using namespace Orvo;
using namespace Orvo::Kin;

namespace {

// Rounds to tenths; adding 0.0 turns -0.0 into 0.0.
double Tenths(double value) { return std::round(value * 10.0) / 10.0 + 0.0; }

void PrintRanges(ProgramSystemCompute& solver, const MachinePosition& position,
                 const Vector3D& point) {
  Vector3D xyz;
  if (!solver.ComputeToolTcsToMcsXyz(position, Vector3D(0.0, 0.0, 120.0), point, &xyz)) return;
  bool inRange[3];
  const bool areAllInRange = solver.CheckLinearRange(xyz, inRange);
  std::printf("%s\n", areAllInRange ? "within the ranges" : "out of range");
  for (int i = 0; i < 3; ++i) {
    std::printf("  %c %6.1f%s\n", "XYZ"[i], Tenths(xyz[i]), inRange[i] ? "" : " <-");
  }
}

void PrintPartners(const Machine& machine, const EntityId& id) {
  std::list<EntityId> partners;
  machine.GetCollisionCheck().GetListMachineMachine(id, &partners, true);
  std::printf("%ls is checked against:",
              machine.GetKinematic().GetEntity(id)->GetEntityName().c_str());
  for (const EntityId& partner : partners) {
    std::printf(" %ls", machine.GetKinematic().GetEntity(partner)->GetEntityName().c_str());
  }
  std::printf("\n");
}

}  // namespace

int main() {
  Machine machine;
  if (!machine.ReadXML(L"examples/machines/head_table_bc/head_table_bc.xml")) return 1;
  ProgramSystemCompute solver(machine, *machine.GetProgramSystem(0));
  MachinePosition position;
  machine.Alloc(&position);

  // The linear solution doesn't look at the ranges: it says where the axes would have to go, and
  // CheckLinearRange() says which of them can't go there. Limits belong to their range.
  PrintRanges(solver, position, Vector3D(100.0, 50.0, 200.0));
  PrintRanges(solver, position, Vector3D(600.0, 50.0, 200.0));

  // The collision lists say which pairs of elements are to be checked; a simulator does the
  // checking. Pairs have no order: they are set and asked from either side.
  const EntityId frame = 1;
  const EntityId c = 4;
  const EntityId spindle = 8;
  PrintPartners(machine, spindle);
  CollisionCheck& lists = machine.GetCollisionCheckMod();
  lists.SetMachineMachine(spindle, frame, false);
  PrintPartners(machine, spindle);
  PrintPartners(machine, frame);

  // Four more lists hold single elements: those to be checked against the stock, the part, the
  // fixture and the tool.
  std::printf("C against the tool: %s\n", lists.GetMachineTool(c) ? "yes" : "no");
  lists.SetMachineTool(c, false);
  std::printf("C against the tool: %s\n", lists.GetMachineTool(c) ? "yes" : "no");
}
