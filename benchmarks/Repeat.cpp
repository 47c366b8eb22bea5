// Does one work item on one machine a number of times and nothing else, to be looked at by a
// profiler. scripts/instructions.sh counts its instructions.

#include "BenchmarkMachines.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Orvo;
using namespace Orvo::Kin;
using Orvo::Benchmarks::Request;
using Orvo::Benchmarks::Subject;

Subject MakeSubject(const std::string& name) {
  if (name == "M5") {
    return Benchmarks::MakeM5();
  }
  if (name == "HeadTable") {
    return Benchmarks::MakeHeadTable();
  }
  if (name == "M12") {
    return Benchmarks::MakeM12();
  }
  if (name == "M1000") {
    return Benchmarks::MakeM1000();
  }
  return Benchmarks::ReadExample(name);
}

void Require(bool isDone) {
  if (!isDone) {
    throw std::runtime_error("not computed");
  }
}

void Repeat(const std::string& name, const Subject& subject, int count) {
  const int work = name == "W1" ? 1 : name == "W2" ? 2 : name == "W3" ? 3 : 4;
  const ProgramSystem& ps = subject.programSystem;
  MachineCompute compute(subject.machine);
  ProgramSystemCompute solver(subject.machine, ps);
  std::vector<Matrix43> frames;
  MachinePosition position = subject.positions.front();
  for (int n = 0; n < count; ++n) {
    const std::size_t i = static_cast<std::size_t>(n) % subject.requests.size();
    const MachinePosition& at = subject.positions[i];
    const Request& request = subject.requests[i];
    if (work == 1) {
      Require(compute.ComputePositionMachine(at, &frames));
    } else if (work == 2) {
      Matrix43 frame;
      Require(compute.ComputeMcsToToolTcs(at, ps.GetHeadIndex(), ps.GetTableIndex(), subject.offset,
                                          &frame));
    } else if (work == 3) {
      RotariesSolution sol;
      Require(compute.ComputeToolIjkTcsToMcsAbc(request.current, ps.GetHeadIndex(),
                                                ps.GetTableIndex(), request.ijk,
                                                ps.GetMainRotary(0), ps.GetMainRotary(1), &sol));
    } else {
      position = request.current;
      RotariesSolution sol;
      Require(solver.ComputeToolIjkTcsToMcsAbc(position, request.ijk, &sol));
      position[ps.GetMainRotary(0)] = sol.Alpha1.GetDegre();
      position[ps.GetMainRotary(1)] = sol.Beta1.GetDegre();
      Vector3D xyz;
      Require(solver.ComputeToolTcsToMcsXyz(position, subject.offset, request.point, &xyz));
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: orvo_repeat W1|W2|W3|W4 MACHINE COUNT\n");
    return 1;
  }
  try {
    Repeat(argv[1], MakeSubject(argv[2]), std::atoi(argv[3]));
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orvo_repeat: %s\n", e.what());
    return 1;
  }
  return 0;
}
