#include "Benchmarks.h"
#include "EigenMachine.h"
#include "PlainPath.h"
#ifdef ORVO_HAVE_KDL
#include "KdlMachine.h"
#endif

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <stdexcept>

namespace Orvo::Benchmarks {

namespace {

using namespace Orvo::Kin;

/// Everything that the benchmarks of one machine's solutions need, for each system.
struct Solving {
  explicit Solving(const Subject& given)
      : subject(given),
        compute(given.machine),
        plainCompute(given.machine),
        solver(given.machine, given.programSystem),
        plainSolver(given.machine, given.programSystem),
        eigen(given.machine, given.programSystem, given.offset),
        position(given.requests.front().current) {
    UsePlainPath(plainCompute);
    UsePlainPath(plainSolver);
    for (const Request& request : subject.requests) {
      directions.emplace_back(request.ijk[0], request.ijk[1], request.ijk[2]);
      points.emplace_back(request.point[0], request.point[1], request.point[2]);
      radians.push_back(Radians(subject.machine, request.current));
    }
  }

  bool SolveRotaries(MachineCompute* with, std::size_t i, RotariesSolution* sol) const {
    const ProgramSystem& ps = subject.programSystem;
    const Request& request = subject.requests[i];
    return with->ComputeToolIjkTcsToMcsAbc(request.current, ps.GetHeadIndex(), ps.GetTableIndex(),
                                           request.ijk, ps.GetMainRotary(0), ps.GetMainRotary(1),
                                           sol);
  }

  // From a direction and a point to the five values, in a position that holds them afterwards.
  bool Solve(ProgramSystemCompute* with, std::size_t i, MachinePosition* pos) const {
    const ProgramSystem& ps = subject.programSystem;
    const Request& request = subject.requests[i];
    *pos = request.current;
    RotariesSolution sol;
    if (!with->ComputeToolIjkTcsToMcsAbc(*pos, request.ijk, &sol) || sol.Count == 0) {
      return false;
    }
    (*pos)[ps.GetMainRotary(0)] = sol.Alpha1.GetDegre();
    (*pos)[ps.GetMainRotary(1)] = sol.Beta1.GetDegre();
    Vector3D xyz;
    if (!with->ComputeToolTcsToMcsXyz(*pos, subject.offset, request.point, &xyz)) {
      return false;
    }
    for (int axis = 0; axis < 3; ++axis) {
      (*pos)[ps.GetMainLinear(axis)] = xyz[axis];
    }
    return true;
  }

  const Subject& subject;
  MachineCompute compute;
  MachineCompute plainCompute;
  ProgramSystemCompute solver;
  ProgramSystemCompute plainSolver;
  EigenMachine eigen;
  MachinePosition position;
  std::vector<double> values;
  std::vector<Eigen::Vector3d> directions;
  std::vector<Eigen::Vector3d> points;
  std::vector<std::vector<double>> radians;
#ifdef ORVO_HAVE_KDL
  KdlMachine kdl{subject.machine, subject.programSystem, subject.offset};
  std::vector<KDL::Frame> targets;
#endif
};

// The axis values must bring the tool where it was asked to be.
void CheckReached(Solving* solving, std::size_t i, const std::vector<double>& values,
                  const std::string& what) {
  const EigenMachine::Frame frame = solving->eigen.ComputeTableFromTool(values);
  for (int row = 0; row < 3; ++row) {
    CheckNear(frame.linear()(row, 2), solving->directions[i][row], what);
    CheckNear(frame.translation()[row], solving->points[i][row], what);
  }
}

void CheckAnswers(Solving* solving) {
  const Subject& subject = solving->subject;
  const ProgramSystem& ps = subject.programSystem;
  for (std::size_t i = 0; i < subject.requests.size(); ++i) {
    MachinePosition solved;
    std::vector<double> eigenValues = solving->radians[i];
    if (!solving->Solve(&solving->solver, i, &solved) ||
        !solving->eigen.Solve(solving->directions[i], solving->points[i], &eigenValues)) {
      throw std::runtime_error(subject.name + ": no solution");
    }
    const std::vector<double> values = Radians(subject.machine, solved);
    CheckReached(solving, i, values, subject.name + ", orvo");
    CheckReached(solving, i, eigenValues, subject.name + ", eigen");
    for (int axis = 0; axis < 5; ++axis) {
      const Register& reg = axis < 3 ? ps.GetMainLinear(axis) : ps.GetMainRotary(axis - 3);
      const auto place = static_cast<std::size_t>(reg.GetVal());
      CheckNear(values[place], eigenValues[place], subject.name + ", axis values");
    }
    RotariesSolution sol;
    const EigenMachine::RotaryBranches branches =
        solving->eigen.SolveRotaries(solving->radians[i], solving->directions[i]);
    if (!solving->SolveRotaries(&solving->compute, i, &sol) || sol.Count != 2 ||
        branches.count != 2) {
      throw std::runtime_error(subject.name + ": not both rotary solutions");
    }
  }
}

#ifdef ORVO_HAVE_KDL
// The Newton solver wants whole frames, so it gets those of the solutions.
void CheckKdl(Solving* solving) {
  for (std::size_t i = 0; i < solving->subject.requests.size(); ++i) {
    MachinePosition solved;
    solving->Solve(&solving->solver, i, &solved);
    KDL::Frame frame;
    solving->kdl.ComputeTableFromTool(Radians(solving->subject.machine, solved), &frame);
    solving->targets.push_back(frame);
  }
}
#endif

template <typename Work>
void Register(const std::string& name, const std::shared_ptr<Solving>& solving, Work work) {
  benchmark::RegisterBenchmark(name.c_str(), [solving, work](benchmark::State& state) {
    const std::size_t ringSize = solving->subject.requests.size();
    std::size_t i = 0;
    for (auto _ : state) {
      work(*solving, i);
      i = i + 1 == ringSize ? 0 : i + 1;
    }
  });
}

}  // namespace

void RegisterSolutions(const std::vector<Subject>& subjects) {
  for (const Subject& subject : subjects) {
    const auto solving = std::make_shared<Solving>(subject);
    CheckAnswers(solving.get());

    const std::string w3 = "W3/" + subject.name + "/";
    const auto registerOwnRotaries = [&](const char* who, MachineCompute Solving::*with) {
      Register(w3 + who, solving, [with](Solving& s, std::size_t i) {
        RotariesSolution sol;
        s.SolveRotaries(&(s.*with), i, &sol);
        benchmark::DoNotOptimize(sol);
      });
    };
    registerOwnRotaries("orvo", &Solving::compute);
    registerOwnRotaries("plain", &Solving::plainCompute);
    Register(w3 + "eigen", solving, [](Solving& s, std::size_t i) {
      EigenMachine::RotaryBranches branches = s.eigen.SolveRotaries(s.radians[i], s.directions[i]);
      benchmark::DoNotOptimize(branches);
    });
    const std::string w4 = "W4/" + subject.name + "/";
    const auto registerOwn = [&](const char* who, ProgramSystemCompute Solving::*with) {
      Register(w4 + who, solving, [with](Solving& s, std::size_t i) {
        s.Solve(&(s.*with), i, &s.position);
        benchmark::ClobberMemory();
      });
    };
    registerOwn("orvo", &Solving::solver);
    registerOwn("plain", &Solving::plainSolver);
    Register(w4 + "eigen", solving, [](Solving& s, std::size_t i) {
      s.values = s.radians[i];
      s.eigen.Solve(s.directions[i], s.points[i], &s.values);
      benchmark::ClobberMemory();
    });
#ifdef ORVO_HAVE_KDL
    if (subject.machine.GetRegisterNb() < 20) {
      CheckKdl(solving.get());
      Register(w4 + "kdl", solving, [](Solving& s, std::size_t i) {
        s.values = s.radians[i];
        s.kdl.Solve(s.targets[i], &s.values);
        benchmark::ClobberMemory();
      });
    }
#endif
  }
}

}  // namespace Orvo::Benchmarks
