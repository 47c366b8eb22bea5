// Does one work item on one machine a number of times and nothing else, to be looked at by a
// profiler. scripts/instructions.sh counts its instructions.

#include "BenchmarkMachines.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iterator>
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

enum class Work { AllFrames, TableFromTool, Rotaries, FiveAxes };

/// Which work, and whether only the five axes of the program system move.
struct Item {
  const char* name;
  Work work;
  bool isAlongPath;
};

constexpr Item Items[] = {
    {"W1", Work::AllFrames, false},     {"W1-path", Work::AllFrames, true},
    {"W2", Work::TableFromTool, false}, {"W2-path", Work::TableFromTool, true},
    {"W3", Work::Rotaries, true},       {"W4", Work::FiveAxes, true}};

void Repeat(const Item& item, const Subject& subject, int count) {
  const ProgramSystem& ps = subject.programSystem;
  MachineCompute compute(subject.machine);
  ProgramSystemCompute solver(subject.machine, ps);
  std::vector<Matrix43> frames;
  MachinePosition position = subject.positions.front();
  for (int n = 0; n < count; ++n) {
    const std::size_t i = static_cast<std::size_t>(n) % subject.requests.size();
    const Request& request = subject.requests[i];
    const MachinePosition& at = item.isAlongPath ? request.current : subject.positions[i];
    switch (item.work) {
      case Work::AllFrames:
        Require(compute.ComputePositionMachine(at, &frames));
        break;
      case Work::TableFromTool: {
        Matrix43 frame;
        Require(compute.ComputeMcsToToolTcs(at, ps.GetHeadIndex(), ps.GetTableIndex(),
                                            subject.offset, &frame));
        break;
      }
      case Work::Rotaries: {
        RotariesSolution sol;
        Require(compute.ComputeToolIjkTcsToMcsAbc(at, ps.GetHeadIndex(), ps.GetTableIndex(),
                                                  request.ijk, ps.GetMainRotary(0),
                                                  ps.GetMainRotary(1), &sol));
        break;
      }
      case Work::FiveAxes: {
        position = at;
        RotariesSolution sol;
        Require(solver.ComputeToolIjkTcsToMcsAbc(position, request.ijk, &sol));
        position[ps.GetMainRotary(0)] = sol.Alpha1.GetDegre();
        position[ps.GetMainRotary(1)] = sol.Beta1.GetDegre();
        Vector3D xyz;
        Require(solver.ComputeToolTcsToMcsXyz(position, subject.offset, request.point, &xyz));
        break;
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const auto* const item =
      argc == 4 ? std::find_if(std::begin(Items), std::end(Items),
                               [argv](const Item& one) { return one.name == std::string(argv[1]); })
                : std::end(Items);
  if (item == std::end(Items)) {
    std::fprintf(stderr, "usage: orvo_repeat W1|W1-path|W2|W2-path|W3|W4 MACHINE COUNT\n");
    return 1;
  }
  try {
    Repeat(*item, MakeSubject(argv[2]), std::atoi(argv[3]));
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orvo_repeat: %s\n", e.what());
    return 1;
  }
  return 0;
}
