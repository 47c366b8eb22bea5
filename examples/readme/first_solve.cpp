#include <Orvo/Orvo.h>

#include <cstdio>

using namespace Orvo;
using namespace Orvo::Kin;

int main() {
  Machine machine;
  if (!machine.ReadXML(L"examples/machines/trunnion_ac/trunnion_ac.xml")) return 1;
  ProgramSystemCompute solver(machine, *machine.GetProgramSystem(0));
  MachinePosition position;  // one value for each axis: X, Y, Z, A and C, all 0
  machine.Alloc(&position);

  RotariesSolution s;  // lean the tool by 30 degrees towards Y
  solver.ComputeToolIjkTcsToMcsAbc(position, Vector3D(0.0, 0.5, 0.8660254037844386), &s);
  std::printf("%u solutions\n", s.Count);
  std::printf("A %6.1f  C %6.1f\n", s.Alpha1.GetDegre(), s.Beta1.GetDegre());
  std::printf("A %6.1f  C %6.1f\n", s.Alpha2.GetDegre(), s.Beta2.GetDegre());
}
