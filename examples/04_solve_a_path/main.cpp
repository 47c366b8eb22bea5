// Solves one path with two program systems of a mill-turn: by its milling spindle and by its
// turret.

#include <Orvo/Orvo.h>

#include <cmath>
#include <cstdio>

using namespace Orvo;
using namespace Orvo::Kin;

namespace {

struct PathPoint {
  Vector3D tip;        // in the table's frame, which the bar turns with
  Vector3D direction;  // from the tip towards the spindle
};

// Five points around a bar of radius 45, a quarter turn apart, with the tool square to the surface.
const PathPoint Path[] = {{{45.0, 0.0, 40.0}, {1.0, 0.0, 0.0}},
                          {{0.0, 45.0, 40.0}, {0.0, 1.0, 0.0}},
                          {{-45.0, 0.0, 40.0}, {-1.0, 0.0, 0.0}},
                          {{0.0, -45.0, 40.0}, {0.0, -1.0, 0.0}},
                          {{45.0, 0.0, 40.0}, {1.0, 0.0, 0.0}}};

// Rounds to tenths; adding 0.0 turns -0.0 into 0.0.
double Tenths(double value) { return std::round(value * 10.0) / 10.0 + 0.0; }

bool Solve(const Machine& machine, const ProgramSystem& programSystem, double toolLength) {
  ProgramSystemCompute solver(machine, programSystem);
  MachinePosition position;
  machine.Alloc(&position);
  std::printf("%ls\n", programSystem.GetProgramSystemName().c_str());
  for (const PathPoint& point : Path) {
    // First the rotary axes. Each point starts from the last one, so that the axes take the shorter
    // way: the spindle goes on turning and does not jump back by a turn.
    RotariesSolution s;
    if (!solver.ComputeToolIjkTcsToMcsAbc(position, point.direction, &s) || s.Count == 0) {
      return false;
    }
    const Angle angles[2] = {s.Alpha1, s.Beta1};
    for (int i = 0; i < 2; ++i) {
      const Register& reg = programSystem.GetMainRotary(i);
      if (reg.IsDefined()) position[reg] = angles[i].GetDegre();  // the turret has one axis only
    }

    // Then the linear axes, which need to know how the rotary ones stand.
    Vector3D xyz;
    if (!solver.ComputeToolTcsToMcsXyz(position, Vector3D(0.0, 0.0, toolLength), point.tip, &xyz)) {
      return false;
    }
    for (int i = 0; i < 3; ++i) position[programSystem.GetMainLinear(i)] = xyz[i];

    for (int i = 0; i < 3; ++i) std::printf("  %c%8.1f", "XYZ"[i], Tenths(xyz[i]));
    for (int i = 0; i < 2; ++i) {
      const Register& reg = programSystem.GetMainRotary(i);
      const Entity* const axis = machine.GetKinematic().GetEntity(reg);
      if (axis == nullptr) continue;
      std::printf("  %ls%8.1f", axis->GetEntityName().c_str(), Tenths(position[reg]));
    }
    std::printf("%s\n", solver.CheckLinearRange(position, nullptr) ? "" : "  out of range");
  }
  return true;
}

}  // namespace

int main() {
  Machine machine;
  if (!machine.ReadXML(L"examples/machines/millturn_2h2t/millturn_2h2t.xml")) return 1;
  // A program system names a head, a table and the axes that move them. 0 is the milling spindle
  // and 2 the turret, both over the main spindle.
  const bool isMilled = Solve(machine, *machine.GetProgramSystem(0), 130.0);
  const bool isTurned = Solve(machine, *machine.GetProgramSystem(2), 60.0);
  return isMilled && isTurned ? 0 : 1;
}
