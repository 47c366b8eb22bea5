// Times the library beside other ways to do the same work, all in one run on the same input.
// Answers are compared before anything is timed; a difference ends the program.

#include "Benchmarks.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace Orvo::Benchmarks {

void CheckNear(double a, double b, const std::string& what) {
  const double scale = std::max(1.0, std::max(std::fabs(a), std::fabs(b)));
  if (!(std::fabs(a - b) <= 1e-9 * scale)) {
    throw std::runtime_error(what + ": " + std::to_string(a) + " and " + std::to_string(b) +
                             " differ");
  }
}

std::vector<double> Radians(const Kin::Machine& machine, const Kin::MachinePosition& position) {
  std::vector<double> values;
  for (int reg = 0; reg < static_cast<int>(position.Size()); ++reg) {
    const Kin::Entity* const entity = machine.GetKinematic().GetEntity(Kin::Register(reg));
    const bool isAngle = entity != nullptr &&
                         entity->GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypeRotary;
    values.push_back(position[Kin::Register(reg)] * (isAngle ? 3.141592653589793 / 180.0 : 1.0));
  }
  return values;
}

}  // namespace Orvo::Benchmarks

int main(int argc, char** argv) {
  using namespace Orvo::Benchmarks;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  try {
    std::vector<Subject> subjects = {MakeM5(), MakeHeadTable(), MakeM12(), MakeChain(100),
                                     MakeM1000()};
    for (const char* name : {"trunnion_ac", "head_table_bc", "nutating_head_bc",
                             "gantry_head_head_ca", "millturn_2h2t"}) {
      subjects.push_back(ReadExample(name));
    }
    RegisterForward(subjects);
    RegisterSolutions(subjects);
    RegisterTails(subjects);
    RegisterFiles(subjects);
    RegisterMeshes();
    benchmark::RunSpecifiedBenchmarks();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orvo_benchmarks: %s\n", e.what());
    return 1;
  }
  return 0;
}
