// Reads a machine file and prints where its elements stand, for two positions of the axes.

#include <Orvo/Orvo.h>

#include <cmath>
#include <cstdio>
#include <vector>

using namespace Orvo;
using namespace Orvo::Kin;

namespace {

// Rounds to tenths; adding 0.0 turns -0.0 into 0.0.
double Tenths(double value) { return std::round(value * 10.0) / 10.0 + 0.0; }

void PrintFrames(const Machine& machine, MachineCompute& calculator,
                 const MachinePosition& position) {
  // One frame for each element, at the place of its id. A frame takes coordinates of its element
  // to the world: T is the element's origin, W is where its Z axis points.
  std::vector<Matrix43> frames;
  if (!calculator.ComputePositionMachine(position, &frames)) return;
  std::printf("%-9s%24s%20s\n", "element", "origin", "Z axis");
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    Matrix43& worldFromEntity = frames[static_cast<std::size_t>(entity.GetEntityId().GetVal())];
    const Vector3D t = worldFromEntity.GetTrans();
    const Vector3D w = worldFromEntity.GetW();
    std::printf("%-9ls%8.1f%8.1f%8.1f%8.1f%6.1f%6.1f\n", entity.GetEntityName().c_str(),
                Tenths(t[0]), Tenths(t[1]), Tenths(t[2]), Tenths(w[0]), Tenths(w[1]), Tenths(w[2]));
  }
}

}  // namespace

int main() {
  // B tilts the head, C turns the table. Reading a file finishes the machine as well; true means
  // that the file was read, IsFinished() that the machine in it is valid.
  Machine machine;
  if (!machine.ReadXML(L"examples/machines/head_table_bc/head_table_bc.xml") ||
      !machine.IsFinished()) {
    return 1;
  }
  MachineCompute calculator(machine);

  // A position has one value for each register, here X, Y, Z, B and C; all start at 0.
  MachinePosition position;
  machine.Alloc(&position);
  std::printf("All axes at 0:\n");
  PrintFrames(machine, calculator, position);

  position[0] = 200.0;  // X carries the table: the table moves along -X
  position[2] = 300.0;  // Z carries the head, and has a zero reference of 100
  position[3] = 90.0;   // B, in degrees, about a pivot in the head
  std::printf("\nX 200, Z 300, B 90:\n");
  PrintFrames(machine, calculator, position);
}
