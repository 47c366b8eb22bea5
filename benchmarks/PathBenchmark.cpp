// Times whole tool paths: greedy and optimal, with and without residuals, by number of points and
// of threads. Each run is a process of its own, so that its largest memory can be told.
//
//   orvo_path_benchmark [MAX_POINTS [MIN_POINTS]]    10000000 and 1000 by default

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/PathSolver.h>
#include <Orvo/Path/PointSource.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

namespace {

using namespace Orvo;
using namespace Orvo::Path;

/// Makes the points of a raster over a bumpy surface as they are asked for; holds none of them.
class SurfaceSource : public PointSource {
 public:
  explicit SurfaceSource(std::uint64_t pointNb) : pointNb_(pointNb) {
    rowPoints_ = std::max<std::uint64_t>(
        10, static_cast<std::uint64_t>(std::sqrt(static_cast<double>(pointNb))));
  }

  std::size_t Read(ToolPoint* points, std::size_t capacity) override {
    const std::size_t count =
        static_cast<std::size_t>(std::min<std::uint64_t>(capacity, pointNb_ - next_));
    for (std::size_t i = 0; i < count; ++i) {
      points[i] = PointAt(next_++);
    }
    return count;
  }

  std::shared_ptr<const SourcePlace> Mark() override { return std::make_shared<Place>(next_); }

  void Return(const std::shared_ptr<const SourcePlace>& place) override {
    next_ = place == nullptr ? 0 : static_cast<const Place&>(*place).next;
  }

 private:
  class Place : public SourcePlace {
   public:
    explicit Place(std::uint64_t at) : next(at) {}
    std::uint64_t next;
  };

  ToolPoint PointAt(std::uint64_t index) const {
    const std::uint64_t row = index / rowPoints_;
    const std::uint64_t column = index % rowPoints_;
    const double along = static_cast<double>(row % 2 == 0 ? column : rowPoints_ - 1 - column) /
                         static_cast<double>(rowPoints_);
    const double across =
        static_cast<double>(row) * static_cast<double>(rowPoints_) / static_cast<double>(pointNb_);
    const double x = 80.0 * along - 40.0;
    const double y = 80.0 * across - 40.0;
    // z = 8 sin(x / 12) cos(y / 15) - (x^2 + y^2) / 200, and its normal with a lead of 0.15.
    const double sx = std::sin(x / 12.0);
    const double cy = std::cos(y / 15.0);
    ToolPoint point;
    point.point.Set(x, y, 40.0 + 8.0 * sx * cy - (x * x + y * y) / 200.0);
    point.direction.Set(-8.0 / 12.0 * std::cos(x / 12.0) * cy + x / 100.0 + 0.15,
                        8.0 / 15.0 * sx * std::sin(y / 15.0) + y / 100.0, 1.0);
    point.feed = 2000.0;
    return point;
  }

  std::uint64_t pointNb_;
  std::uint64_t rowPoints_ = 10;
  std::uint64_t next_ = 0;
};

struct Run {
  std::uint64_t pointNb;
  PathChoice choice;
  bool hasResiduals;
  bool isChecked;
  unsigned int threadNb;
};

int Solve(const Run& run) {
  Kin::Machine machine;
  const std::string file = std::string(ORVO_EXAMPLES_DIR) + "/machines/trunnion_ac/trunnion_ac.xml";
  if (!machine.ReadXML(std::wstring(file.begin(), file.end()))) {
    std::fprintf(stderr, "can't read %s\n", file.c_str());
    return 1;
  }
  Kin::MachinePosition start;
  machine.Alloc(&start);
  PathOptions options;
  options.choice = run.choice;
  options.hasResiduals = run.hasResiduals;
  options.segments.isChecked = run.isChecked;
  options.threadNb = run.threadNb;
  PathSolver solver(machine, *machine.GetProgramSystem(0), Vector3D(0.0, 0.0, 60.0), start,
                    options);
  SurfaceSource source(run.pointNb);
  const auto began = std::chrono::steady_clock::now();
  const PathSummary summary = solver.Solve(source, [](const SolvedPoint&) { return true; });
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  const auto secondsOf = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  const char* const checks = run.isChecked ? "deviation" : run.hasResiduals ? "residuals" : "-";
  std::printf("%9llu  %-7s  %-9s  %7u  %8.3f s  %9.0f /s  %8.3f s  %5ld MB  ",
              static_cast<unsigned long long>(run.pointNb),
              run.choice == PathChoice::Greedy ? "greedy" : "optimal", checks, run.threadNb,
              seconds, static_cast<double>(run.pointNb) / seconds,
              secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime), usage.ru_maxrss / 1024);
  std::printf("%llu solved, %llu branch changes, %.1e mm, %.1e rad, cost %.6g\n",
              static_cast<unsigned long long>(summary.solvedNb),
              static_cast<unsigned long long>(summary.branchChangeNb), summary.largestResidual.tip,
              summary.largestResidual.direction, summary.cost);
  return summary.solvedNb == run.pointNb ? 0 : 1;
}

int SolveInChild(const Run& run) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    const int status = Solve(run);
    std::fflush(stdout);
    _exit(status);
  }
  int status = 1;
  waitpid(child, &status, 0);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t most = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 10000000;
  const std::uint64_t least = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1000;
  const unsigned int threads = std::max(1U, std::thread::hardware_concurrency());
  std::printf(
      "   points  choice   checks     threads    time        rate      processors  memory\n");
  int status = 0;
  for (std::uint64_t n = std::max<std::uint64_t>(least, 10); n <= most; n *= 10) {
    for (const PathChoice choice : {PathChoice::Greedy, PathChoice::Optimal}) {
      for (const bool hasResiduals : {false, true}) {
        status |= SolveInChild({n, choice, hasResiduals, false, threads});
      }
    }
    if (n == 1000000) {
      status |= SolveInChild({n, PathChoice::Optimal, true, false, 1});
      status |= SolveInChild({n, PathChoice::Optimal, true, true, threads});
    }
  }
  return status == 0 ? 0 : 1;
}
