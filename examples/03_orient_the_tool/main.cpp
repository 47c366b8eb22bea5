// Points the tool along a direction, and shows what the two solutions are.

#include <Orvo/Orvo.h>

#include <cmath>
#include <cstdio>

using namespace Orvo;
using namespace Orvo::Kin;

namespace {

// Rounds to hundredths; adding 0.0 turns -0.0 into 0.0.
double Hundredths(double value) { return std::round(value * 100.0) / 100.0 + 0.0; }

void Print(const char* question, bool isComputed, const RotariesSolution& s) {
  if (!isComputed) {
    std::printf("%s: not computed\n", question);
    return;
  }
  std::printf("%s: count %u\n", question, s.Count);
  if (s.Count >= 1) {
    std::printf("  B %7.2f  C %7.2f\n", Hundredths(s.Alpha1.GetDegre()),
                Hundredths(s.Beta1.GetDegre()));
  }
  if (s.Count == 2) {
    std::printf("  B %7.2f  C %7.2f\n", Hundredths(s.Alpha2.GetDegre()),
                Hundredths(s.Beta2.GetDegre()));
  }
  if (s.FreeRegister >= 0) std::printf("  register %d may have any value\n", s.FreeRegister);
}

}  // namespace

int main() {
  // B, register 3, tilts the head; C, register 4, turns the table. The program system names B
  // first, so alpha is B and beta is C.
  Machine machine;
  if (!machine.ReadXML(L"examples/machines/head_table_bc/head_table_bc.xml")) return 1;
  ProgramSystemCompute solver(machine, *machine.GetProgramSystem(0));
  MachinePosition position;
  machine.Alloc(&position);

  // A direction stands in the table's frame and points from the tool tip towards the spindle. This
  // one leans by 30 degrees from Z towards X. The head can lean to either side, with the table
  // turned to match: two solutions, and the one that moves the axes less comes first.
  const Vector3D leaning(0.5, 0.0, std::sqrt(0.75));
  RotariesSolution s;
  bool isComputed = solver.ComputeToolIjkTcsToMcsAbc(position, leaning, &s);
  Print("30 degrees towards X", isComputed, s);

  // Both are right: the frame of the tool, seen from the table, has the direction as its W.
  MachineCompute calculator(machine);
  const Angle solutions[2][2] = {{s.Alpha1, s.Beta1}, {s.Alpha2, s.Beta2}};
  for (const Angle(&solution)[2] : solutions) {
    position[3] = solution[0].GetDegre();
    position[4] = solution[1].GetDegre();
    Matrix43 tableFromTool;
    if (!calculator.ComputeMcsToToolTcs(position, 0, 0, NullVector, &tableFromTool)) return 1;
    const Vector3D w = tableFromTool.GetW();
    std::printf("  the tool stands along (%.2f, %.2f, %.2f)\n", Hundredths(w[0]), Hundredths(w[1]),
                Hundredths(w[2]));
  }

  // The order depends on where the axes stand: from C 170, the second one is nearer, and -180 is
  // taken as 180.
  position[3] = 0.0;
  position[4] = 170.0;
  isComputed = solver.ComputeToolIjkTcsToMcsAbc(position, leaning, &s);
  Print("the same, from C 170", isComputed, s);

  // Along the C axis any C will do; it stays where it is.
  isComputed = solver.ComputeToolIjkTcsToMcsAbc(position, AxisZ, &s);
  Print("straight down, from C 170", isComputed, s);

  // B ends at 92 degrees either way. The question is answered: there is no solution.
  isComputed = solver.ComputeToolIjkTcsToMcsAbc(position, Vector3D(0.0, 0.0, -1.0), &s);
  Print("from below", isComputed, s);
}
