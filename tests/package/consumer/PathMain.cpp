// A program outside the library that solves a path of one point.

#include <Orvo/Orvo.h>
#include <Orvo/Path/Path.h>

#include <iostream>

int main() {
  using namespace Orvo;
  Kin::Machine machine;
  const Kin::EntityId bed = machine.AddEntityStatic(L"bed", -1)->GetEntityId();
  Kin::EntityId end = bed;
  const Vector3D directions[] = {AxisX, AxisY, AxisZ};
  for (int i = 0; i < 3; ++i) {
    Kin::Entity* const axis = machine.AddEntityLinear(L"linear", end, directions[i]);
    axis->SetRegister(i);
    axis->SetRange(-100.0, 100.0);
    end = axis->GetEntityId();
  }
  machine.AddEntityHead(L"head", end, Matrix43());
  machine.AddEntityTable(L"table", bed, Matrix43());
  if (!machine.Finish()) {
    return 1;
  }
  Kin::MachinePosition start;
  machine.Alloc(&start);

  Path::ToolPath path;
  Path::ToolPoint point;
  point.point.Set(1.0, 2.0, 3.0);
  path.Add(point);
  Path::ToolPathSource source(path);
  Path::PathSolver solver(machine, *machine.GetProgramSystem(0), NullVector, start,
                          Path::PathOptions());
  const Path::PathSummary summary =
      solver.Solve(source, [](const Path::SolvedPoint&) { return true; });
  std::cout << summary.solvedNb << " of " << summary.pointNb << " points\n";
  return 0;
}
