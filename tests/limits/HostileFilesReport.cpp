// Makes every hostile or large input, reads it in a process of its own, and prints what that took:
// a table for people. Nothing here is a test; the tests hold smaller inputs to their limits.

#include "ChildRun.h"
#include "HostileInput.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace Orvo;
using namespace Orvo::Testing;

// Whole-machine frames take a place for each id up to the largest: that much is the caller's own.
constexpr int LargestId = 1000000;

double Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double PeakMegabytes() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// Asks a machine for about everything that can be computed once.
void Compute(Kin::Machine& machine) {
  if (!machine.IsFinished()) {
    return;
  }
  Kin::MachinePosition position;
  machine.Alloc(&position);
  Kin::MachineCompute calculator(machine);
  if (machine.GetEntityIdMax() <= LargestId) {
    std::vector<Matrix43> frames;
    calculator.ComputePositionMachine(position, &frames);
  }
  Matrix43 frame;
  calculator.ComputeMcsToToolTcs(position, 0, 0, NullVector, &frame);
  Kin::ProgramSystemCompute solver(machine, machine.GetListProgramSystem().front());
  Kin::RotariesSolution solution;
  solver.ComputeToolIjkTcsToMcsAbc(position, AxisZ, &solution);
  Vector3D xyz;
  solver.ComputeToolTcsToMcsXyz(position, NullVector, NullVector, &xyz);
}

unsigned long long BytesIn(const TemporaryFolder& folder) {
  unsigned long long bytes = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    bytes += entry.file_size();
  }
  return bytes;
}

void Report(const HostileInput& input) {
  const TemporaryFolder folder;
  // In a process of its own, so that no large text counts here.
  RunInChild([&] {
    input.make(folder);
    return 0;
  });
  std::printf("| %-42s | %11llu |", input.name.c_str(), BytesIn(folder));
  const ChildRun run = RunInChild([&] {
    const double start = Seconds();
    double readSeconds = 0.0;
    double readPeak = 0.0;
    double useSeconds = 0.0;
    const auto use = [&](Kin::Machine& machine) {
      readSeconds = Seconds() - start;
      readPeak = PeakMegabytes();
      Compute(machine);
      useSeconds = Seconds() - start - readSeconds;
    };
    const HostileInput::Ending ending = Read(input, folder, use);
    if (readSeconds == 0.0) {
      readSeconds = Seconds() - start;
      readPeak = PeakMegabytes();
    }
    std::printf(" %-12s | %7.2f | %7.1f | %7.2f | %7.1f |\n", Word(ending), readSeconds, readPeak,
                useSeconds, PeakMegabytes());
    return 0;
  });
  if (!run.isEnded) {
    std::printf(" killed by the signal %d |\n", run.result);
  }
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const double scale = argc > 1 ? std::atof(argv[1]) : 1.0;
  const std::string only = argc > 2 ? argv[2] : "";
  try {
    std::printf("| %-42s | %11s | %-12s | %7s | %7s | %7s | %7s |\n", "input", "bytes", "reading",
                "seconds", "peak MB", "compute", "peak MB");
    std::printf("|%s|%s|%s|%s|%s|%s|%s|\n", std::string(44, '-').c_str(),
                std::string(13, '-').c_str(), std::string(14, '-').c_str(),
                std::string(9, '-').c_str(), std::string(9, '-').c_str(),
                std::string(9, '-').c_str(), std::string(9, '-').c_str());
    for (const HostileInput& input : HostileInputs(scale)) {
      if (input.name.find(only) != std::string::npos) {
        Report(input);
      }
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
