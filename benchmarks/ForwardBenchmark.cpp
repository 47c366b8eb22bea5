#include "Benchmarks.h"
#include "EigenMachine.h"
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
        eigen(given.machine, given.programSystem, given.offset) {
    for (const MachinePosition& position : subject.positions) {
      radians.push_back(Radians(subject.machine, position));
    }
  }

  bool ComputeTableFromTool(std::size_t i, Matrix43* frame) {
    const ProgramSystem& ps = subject.programSystem;
    return compute.ComputeMcsToToolTcs(subject.positions[i], ps.GetHeadIndex(), ps.GetTableIndex(),
                                       subject.offset, frame);
  }

  const Subject& subject;
  MachineCompute compute;
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
        !forward->ComputeTableFromTool(i, &tableFromTool)) {
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

    const std::string w1 = "W1/" + subject.name + "/";
    const auto frames = std::make_shared<std::vector<Matrix43>>();
    Register(w1 + "orvo", forward, [frames](Forward& f, std::size_t i) {
      f.compute.ComputePositionMachine(f.subject.positions[i], frames.get());
      benchmark::DoNotOptimize(frames->data());
      benchmark::ClobberMemory();
    });
    const auto eigenFrames = std::make_shared<EigenMachine::Frames>();
    Register(w1 + "eigen", forward, [eigenFrames](Forward& f, std::size_t i) {
      f.eigen.ComputeFrames(f.radians[i], eigenFrames.get());
      benchmark::DoNotOptimize(eigenFrames->data());
      benchmark::ClobberMemory();
    });
    const std::string w2 = "W2/" + subject.name + "/";
    Register(w2 + "orvo", forward, [](Forward& f, std::size_t i) {
      Matrix43 frame;
      f.ComputeTableFromTool(i, &frame);
      benchmark::DoNotOptimize(frame);
    });
    Register(w2 + "eigen", forward, [](Forward& f, std::size_t i) {
      EigenMachine::Frame frame = f.eigen.ComputeTableFromTool(f.radians[i]);
      benchmark::DoNotOptimize(frame);
    });
#ifdef ORVO_HAVE_KDL
    Register(w1 + "kdl", forward, [](Forward& f, std::size_t i) {
      f.kdl.ComputeFrames(f.radians[i]);
      benchmark::ClobberMemory();
    });
    Register(w2 + "kdl", forward, [](Forward& f, std::size_t i) {
      KDL::Frame frame;
      f.kdl.ComputeTableFromTool(f.radians[i], &frame);
      benchmark::DoNotOptimize(frame);
    });
#endif
  }
}

}  // namespace Orvo::Benchmarks
