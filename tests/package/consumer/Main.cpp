// A program outside the library: it builds a small machine, solves one point, and writes and reads
// the machine. Its output is compared with expected.txt.

#include <Orvo/Orvo.h>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace {

using namespace Orvo;
using namespace Orvo::Kin;

EntityId Axis(Entity* entity, int reg, double limit) {
  entity->SetRegister(reg);
  entity->SetRange(-limit, limit);
  return entity->GetEntityId();
}

// Rounds, so that no compiler's last bit shows.
long Thousandths(double value) { return std::lround(value * 1000.0); }

}  // namespace

int main() {
  std::ostringstream version;
  version << ORVO_VERSION_MAJOR << '.' << ORVO_VERSION_MINOR << '.' << ORVO_VERSION_PATCH;
  std::cout << "the version's numbers and text agree: " << (version.str() == ORVO_VERSION_STRING)
            << '\n';

  Machine machine;
  const EntityId bed = machine.AddEntityStatic(L"bed", -1)->GetEntityId();
  const EntityId x = Axis(machine.AddEntityLinear(L"X", bed, AxisX), 0, 500.0);
  const EntityId y = Axis(machine.AddEntityLinear(L"Y", x, AxisY), 1, 400.0);
  const EntityId z = Axis(machine.AddEntityLinear(L"Z", y, AxisZ), 2, 300.0);
  machine.AddEntityHead(L"head", z, Matrix43());
  const EntityId a = Axis(machine.AddEntityRotary(L"A", bed, NullVector, AxisX), 3, 120.0);
  const EntityId c = Axis(machine.AddEntityRotary(L"C", a, NullVector, AxisZ), 4, 360.0);
  machine.AddEntityTable(L"table", c, Matrix43());
  if (!machine.Finish()) {
    std::cout << "not finished: " << machine.GetLastError() << '\n';
    return 1;
  }

  MachinePosition position;
  machine.Alloc(&position);
  ProgramSystemCompute compute(machine, *machine.GetProgramSystem(0));
  RotariesSolution solution;
  if (!compute.ComputeToolIjkTcsToMcsAbc(position, Vector3D(0.0, 0.5, std::sqrt(0.75)),
                                         &solution)) {
    std::cout << "no rotary solution\n";
    return 1;
  }
  std::cout << "solutions " << solution.Count << ": A " << Thousandths(solution.Alpha1.GetDegre())
            << " C " << Thousandths(solution.Beta1.GetDegre()) << '\n';
  position[3] = solution.Alpha1.GetDegre();
  position[4] = solution.Beta1.GetDegre();
  Vector3D xyz;
  if (!compute.ComputeToolTcsToMcsXyz(position, Vector3D(0.0, 0.0, 50.0),
                                      Vector3D(10.0, 20.0, 30.0), &xyz)) {
    std::cout << "no linear solution\n";
    return 1;
  }
  std::cout << "X " << Thousandths(xyz[0]) << " Y " << Thousandths(xyz[1]) << " Z "
            << Thousandths(xyz[2]) << '\n';

  try {
    position[-1] = 0.0;
  } catch (const std::out_of_range& error) {
    std::cout << error.what() << '\n';
  }

  Machine read;
  const bool written = machine.WriteXML(L"machine.xml");
  const bool wasRead = read.ReadXML(L"machine.xml");
  std::cout << "written " << written << " read " << wasRead << " elements " << read.GetEntityNb()
            << " finished " << read.IsFinished() << '\n';
  return 0;
}
