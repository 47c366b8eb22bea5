#include "Benchmarks.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Orvo::Benchmarks {

namespace {

using namespace Orvo::Kin;

using Clock = std::chrono::steady_clock;

// Calls that are timed together: enough that the clock's own time and steps count little.
constexpr int BatchSize = 16;
constexpr int BatchNb = 4000;

double At(const std::vector<double>& sorted, double fraction) {
  return sorted[static_cast<std::size_t>(fraction * static_cast<double>(sorted.size() - 1))];
}

// Times batches of calls one by one, and reports the median and the 99th percentile of one call's
// share, in nanoseconds.
template <typename Work>
void Register(const std::string& name, const Subject& subject, Work work) {
  benchmark::RegisterBenchmark(name.c_str(), [&subject, work](benchmark::State& state) {
    const std::size_t ringSize = subject.requests.size();
    std::vector<double> shares;
    for (auto _ : state) {
      shares.clear();
      std::size_t i = 0;
      for (int batch = 0; batch < BatchNb; ++batch) {
        const Clock::time_point start = Clock::now();
        for (int call = 0; call < BatchSize; ++call) {
          work(i);
          i = i + 1 == ringSize ? 0 : i + 1;
        }
        const std::chrono::duration<double, std::nano> spent = Clock::now() - start;
        shares.push_back(spent.count() / BatchSize);
      }
      std::sort(shares.begin(), shares.end());
    }
    state.counters["p50"] = At(shares, 0.5);
    state.counters["p99"] = At(shares, 0.99);
    state.counters["p99_to_p50"] = At(shares, 0.99) / At(shares, 0.5);
  });
}

}  // namespace

void RegisterTails(const std::vector<Subject>& subjects) {
  for (const Subject& subject : subjects) {
    const ProgramSystem& ps = subject.programSystem;
    const auto compute = std::make_shared<MachineCompute>(subject.machine);
    const auto solver = std::make_shared<ProgramSystemCompute>(subject.machine, ps);
    const auto frames = std::make_shared<std::vector<Matrix43>>();
    Register("Tail-W1/" + subject.name + "/orvo", subject,
             [&subject, compute, frames](std::size_t i) {
               compute->ComputePositionMachine(subject.positions[i], frames.get());
               benchmark::ClobberMemory();
             });
    Register("Tail-W2/" + subject.name + "/orvo", subject, [&subject, &ps, compute](std::size_t i) {
      Matrix43 frame;
      compute->ComputeMcsToToolTcs(subject.positions[i], ps.GetHeadIndex(), ps.GetTableIndex(),
                                   subject.offset, &frame);
      benchmark::DoNotOptimize(frame);
    });
    Register("Tail-W3/" + subject.name + "/orvo", subject, [&subject, &ps, compute](std::size_t i) {
      RotariesSolution sol;
      const Request& request = subject.requests[i];
      compute->ComputeToolIjkTcsToMcsAbc(request.current, ps.GetHeadIndex(), ps.GetTableIndex(),
                                         request.ijk, ps.GetMainRotary(0), ps.GetMainRotary(1),
                                         &sol);
      benchmark::DoNotOptimize(sol);
    });
    const auto position = std::make_shared<MachinePosition>(subject.requests.front().current);
    Register("Tail-W4/" + subject.name + "/orvo", subject,
             [&subject, &ps, solver, position](std::size_t i) {
               const Request& request = subject.requests[i];
               *position = request.current;
               RotariesSolution sol;
               solver->ComputeToolIjkTcsToMcsAbc(*position, request.ijk, &sol);
               (*position)[ps.GetMainRotary(0)] = sol.Alpha1.GetDegre();
               (*position)[ps.GetMainRotary(1)] = sol.Beta1.GetDegre();
               Vector3D xyz;
               solver->ComputeToolTcsToMcsXyz(*position, subject.offset, request.point, &xyz);
               benchmark::DoNotOptimize(xyz);
             });
  }
}

}  // namespace Orvo::Benchmarks
