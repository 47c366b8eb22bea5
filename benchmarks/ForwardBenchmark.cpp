#include "Benchmarks.h"
#include "EigenMachine.h"
#include "PlainPath.h"
#ifdef ORVO_HAVE_KDL
#include "KdlMachine.h"
#endif

#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Matrix43.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <stdexcept>

namespace Orvo::Benchmarks {

namespace {

using namespace Orvo::Kin;

/// Everything that the forward benchmarks of one machine need, for each system.
struct Forward {
  explicit Forward(const Subject& given)
      : subject(given),
        compute(given.machine),
        plain(given.machine),
        eigen(given.machine, given.programSystem, given.offset) {
    UsePlainPath(plain);
    for (const MachinePosition& position : subject.positions) {
      radians.push_back(Radians(subject.machine, position));
    }
  }

  bool ComputeTableFromTool(MachineCompute* with, const MachinePosition& position,
                            Matrix43* frame) const {
    const ProgramSystem& ps = subject.programSystem;
    return with->ComputeMcsToToolTcs(position, ps.GetHeadIndex(), ps.GetTableIndex(),
                                     subject.offset, frame);
  }

  const Subject& subject;
  MachineCompute compute;
  MachineCompute plain;
  EigenMachine eigen;
  std::vector<std::vector<double>> radians;
#ifdef ORVO_HAVE_KDL
  KdlMachine kdl{subject.machine, subject.programSystem, subject.offset};
#endif
};

void CheckFrames(const double* a, const double* b, const std::string& what) {
  for (int i = 0; i < 16; ++i) {
    CheckNear(a[i], b[i], what);
  }
}

#ifdef ORVO_HAVE_KDL
void CheckFrames(const double* a, const KDL::Frame& b, const std::string& what) {
  for (int column = 0; column < 4; ++column) {
    for (int row = 0; row < 3; ++row) {
      CheckNear(a[4 * column + row], b(row, column), what);
    }
  }
}
#endif

void CheckAnswers(Forward* forward) {
  const Subject& subject = forward->subject;
  for (std::size_t i = 0; i < subject.positions.size(); ++i) {
    std::vector<Matrix43> frames;
    Matrix43 tableFromTool;
    if (!forward->compute.ComputePositionMachine(subject.positions[i], &frames) ||
        !forward->ComputeTableFromTool(&forward->compute, subject.positions[i], &tableFromTool)) {
      throw std::runtime_error(subject.name + ": no frames");
    }
    EigenMachine::Frames eigenFrames;
    forward->eigen.ComputeFrames(forward->radians[i], &eigenFrames);
    for (std::size_t place = 0; place < eigenFrames.size(); ++place) {
      const int id = forward->eigen.IdOf(place).GetVal();
      CheckFrames(frames[static_cast<std::size_t>(id)], eigenFrames[place].data(), subject.name);
    }
    CheckFrames(tableFromTool, forward->eigen.ComputeTableFromTool(forward->radians[i]).data(),
                subject.name);
#ifdef ORVO_HAVE_KDL
    forward->kdl.ComputeFrames(forward->radians[i]);
    std::size_t place = 0;
    for (const Entity& entity : subject.machine.GetKinematic().GetListEntity()) {
      CheckFrames(frames[static_cast<std::size_t>(entity.GetEntityId().GetVal())],
                  forward->kdl.FrameOf(place++), subject.name);
    }
    KDL::Frame kdlFrame;
    forward->kdl.ComputeTableFromTool(forward->radians[i], &kdlFrame);
    CheckFrames(tableFromTool, kdlFrame, subject.name);
#endif
  }
}

// Calls work(i) with the next place of the ring, over and over.
template <typename Work>
void Loop(benchmark::State& state, std::size_t ringSize, Work work) {
  std::size_t i = 0;
  for (auto _ : state) {
    work(i);
    i = i + 1 == ringSize ? 0 : i + 1;
  }
}

template <typename Work>
void Register(const std::string& name, const std::shared_ptr<Forward>& forward, Work work) {
  benchmark::RegisterBenchmark(name.c_str(), [forward, work](benchmark::State& state) {
    Loop(state, forward->subject.positions.size(), [&](std::size_t i) { work(*forward, i); });
  });
}

}  // namespace

void RegisterForward(const std::vector<Subject>& subjects) {
  for (const Subject& subject : subjects) {
    const auto forward = std::make_shared<Forward>(subject);
    CheckAnswers(forward.get());

    const auto registerOwn = [&forward, &subject](const std::string& who,
                                                  MachineCompute Forward::*with) {
      const auto frames = std::make_shared<std::vector<Matrix43>>();
      const auto computeFrames = [frames, with](Forward& f, const MachinePosition& position) {
        (f.*with).ComputePositionMachine(position, frames.get());
        benchmark::DoNotOptimize(frames->data());
        benchmark::ClobberMemory();
      };
      const auto computeTableFromTool = [with](Forward& f, const MachinePosition& position) {
        Matrix43 frame;
        f.ComputeTableFromTool(&(f.*with), position, &frame);
        benchmark::DoNotOptimize(frame);
      };
      Register("W1/" + subject.name + who, forward, [computeFrames](Forward& f, std::size_t i) {
        computeFrames(f, f.subject.positions[i]);
      });
      Register("W1-path/" + subject.name + who, forward,
               [computeFrames](Forward& f, std::size_t i) {
                 computeFrames(f, f.subject.requests[i].current);
               });
      Register("W2/" + subject.name + who, forward,
               [computeTableFromTool](Forward& f, std::size_t i) {
                 computeTableFromTool(f, f.subject.positions[i]);
               });
      Register("W2-path/" + subject.name + who, forward,
               [computeTableFromTool](Forward& f, std::size_t i) {
                 computeTableFromTool(f, f.subject.requests[i].current);
               });
    };
    registerOwn("/orvo", &Forward::compute);
    registerOwn("/plain", &Forward::plain);

    // To the others every position is new: along a path they compute the same as anywhere.
    const auto registerOther = [&forward, &subject](const std::string& work, const std::string& who,
                                                    auto compute) {
      for (const char* const way : {"/", "-path/"}) {
        std::string name = work;
        name.append(way).append(subject.name).append(who);
        Register(name, forward, compute);
      }
    };
    const auto eigenFrames = std::make_shared<EigenMachine::Frames>();
    registerOther("W1", "/eigen", [eigenFrames](Forward& f, std::size_t i) {
      f.eigen.ComputeFrames(f.radians[i], eigenFrames.get());
      benchmark::DoNotOptimize(eigenFrames->data());
      benchmark::ClobberMemory();
    });
    registerOther("W2", "/eigen", [](Forward& f, std::size_t i) {
      EigenMachine::Frame frame = f.eigen.ComputeTableFromTool(f.radians[i]);
      benchmark::DoNotOptimize(frame);
    });
#ifdef ORVO_HAVE_KDL
    registerOther("W1", "/kdl", [](Forward& f, std::size_t i) {
      f.kdl.ComputeFrames(f.radians[i]);
      benchmark::ClobberMemory();
    });
    registerOther("W2", "/kdl", [](Forward& f, std::size_t i) {
      KDL::Frame frame;
      f.kdl.ComputeTableFromTool(f.radians[i], &frame);
      benchmark::DoNotOptimize(frame);
    });
#endif
  }
}

}  // namespace Orvo::Benchmarks
