#include "AxisAssignment.h"
#include "Failure.h"
#include "JsonText.h"
#include "PathInput.h"
#include "PathTally.h"
#include "Progress.h"
#include "ResultOutput.h"
#include "SolveRun.h"
#include "SolvedRow.h"
#include "WholePathSummary.h"
#include "WideText.h"

#include <Orvo/Path/PathSolver.h>
#include <Orvo/Path/PointSource.h>
#include <Orvo/Path/ReadError.h>
#include <Orvo/Path/ToolPath.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace OrvoTool {
namespace {

using Orvo::Path::Diagnosis;
using Orvo::Path::SolvedPoint;

constexpr double SecondsPerMinute = 60.0;

/// How much of the work is done when the path has been gone through for the first time.
constexpr double PlanningShare = 0.5;

/// Tells of the progress while a solver reads a path, perhaps several times.
class WatchedSource : public Orvo::Path::PointSource {
 public:
  WatchedSource(Orvo::Path::TextReader& reader, Progress& progress)
      : reader_(reader), progress_(progress) {}

  std::size_t Read(Orvo::Path::ToolPoint* points, std::size_t capacity) override {
    // In small parts, since reading a block takes its time.
    std::size_t count = 0;
    while (count < capacity) {
      const std::size_t read = reader_.Read(points + count, std::min(capacity - count, PartPoints));
      if (read == 0) {
        break;
      }
      count += read;
      readNb_ += read;
      share_ = std::max(share_, reader_.GetShareRead());
      if (!isWriting_) {
        progress_.Show(readNb_, share_ * PlanningShare);
      }
    }
    return count;
  }
  std::shared_ptr<const Orvo::Path::SourcePlace> Mark() override { return reader_.Mark(); }
  void Return(const std::shared_ptr<const Orvo::Path::SourcePlace>& place) override {
    pointNb_ = std::max(pointNb_, readNb_);
    readNb_ = 0;
    reader_.Return(place);
  }

  /// Tells of a point that comes out.
  void ShowWritten(std::uint64_t index) {
    isWriting_ = true;
    pointNb_ = std::max({pointNb_, readNb_, index + 1});
    const double written = static_cast<double>(index + 1) / static_cast<double>(pointNb_);
    progress_.Show(index + 1, PlanningShare + (1.0 - PlanningShare) * written);
  }

 private:
  static constexpr std::size_t PartPoints = 1024;

  Orvo::Path::TextReader& reader_;
  Progress& progress_;
  std::uint64_t readNb_ = 0;
  std::uint64_t pointNb_ = 0;
  double share_ = 0.0;
  bool isWriting_ = false;
};

Orvo::Path::PathOptions MakeOptions(const SolveRun& run) {
  const SolveOptions& given = run.options;
  Orvo::Path::PathOptions options = given.wholePath;
  options.choice = given.policy == SolvePolicy::Greedy ? Orvo::Path::PathChoice::Greedy
                                                       : Orvo::Path::PathChoice::Optimal;
  const Orvo::Path::MainAxes axes(run.machine, run.programSystem);
  if (!given.weights.empty()) {
    PutAssignments("--weight", ReadAxisAssignments("--weight", given.weights, run.names), run.names,
                   axes, false, 1.0, &options.measure.weights);
  }
  if (!given.speeds.empty()) {
    PutAssignments("--speed", ReadAxisAssignments("--speed", given.speeds, run.names), run.names,
                   axes, true, SecondsPerMinute, &options.measure.speeds);
  }
  options.segments.isChecked = given.hasDeviations;
  options.segments.isRefined = given.tipTolerance >= 0.0 || given.angleTolerance >= 0.0;
  if (given.tipTolerance >= 0.0) {
    options.segments.tipTolerance = given.tipTolerance;
  }
  if (given.angleTolerance >= 0.0) {
    options.segments.directionToleranceDeg = given.angleTolerance;
  }
  options.hasResiduals = !given.hasNoResiduals;
  options.cacheBytes = static_cast<std::size_t>(given.cacheMegabytes) << 20U;
  return options;
}

Orvo::Path::PathSolver MakeSolver(const SolveRun& run, const Orvo::Path::PathOptions& options) {
  try {
    return Orvo::Path::PathSolver(run.machine, run.programSystem, run.offset, run.start, options);
  } catch (const std::invalid_argument& error) {
    throw UsageFailure(error.what());
  }
}

/// Refuses a program system that can't be computed with; returns what else is to be said of it.
std::string CheckFindings(const SolveRun& run, const Orvo::Path::PathSolver& solver) {
  std::string notes;
  for (const Diagnosis& finding : solver.GetFindings()) {
    const std::string text =
        run.machineName + ": " + run.systemName + ": " + Printable(finding.MakeText());
    if (finding.IsFailure()) {
      throw Failure(ExitCode::MachineInvalid, text);
    }
    notes += text + "\n";
  }
  return notes;
}

/// Solves the path and writes its rows.
Orvo::Path::PathSummary Solve(const SolveRun& run, Orvo::Path::PathSolver* solver, PathInput* input,
                              SolvedRowWriter* writer, ResultOutput* output, PathTally* tally) {
  Progress progress;
  WatchedSource watched(input->GetReader(), progress);
  Orvo::Path::ShiftedSource source(watched, run.shift);
  std::string row;
  if (output != nullptr) {
    output->Write(writer->GetHeader());
  }
  try {
    return solver->Solve(source, [&](const SolvedPoint& point) {
      tally->Add(point);
      if (output != nullptr) {
        row.clear();
        writer->Append(point, &row);
        output->Write(row);
      }
      watched.ShowWritten(point.index);
      return true;
    });
  } catch (const Orvo::Path::ReadError& error) {
    throw Failure(ExitCode::Unreadable, Printable(error.what()));
  }
}

}  // namespace

ExitCode SolveByPath(const SolveRun& run) {
  const Orvo::Path::PathOptions options = MakeOptions(run);
  Orvo::Path::PathSolver solver = MakeSolver(run, options);
  const std::string findings = CheckFindings(run, solver);
  PathInput input(run.options.path, run.options.kind);
  std::optional<ResultOutput> output;
  if (run.HasRows()) {
    output.emplace(run.options.output);
  }
  RowColumns columns = run.options.columns;
  columns.hasResiduals = options.hasResiduals;
  columns.hasDeviations = options.segments.isChecked || options.segments.isRefined;
  SolvedRowWriter writer(run.names, solver.GetAxes(), run.start, run.format, columns);
  PathTally tally;
  const Orvo::Path::PathSummary result =
      Solve(run, &solver, &input, &writer, output ? &*output : nullptr, &tally);
  const WholePathSummary summary(solver.GetAxes(), options, result, tally);
  WriteNotes(input.DescribeNotes() + findings + summary.GetFindings(input.GetShownName()));
  if (result.pointNb == 0) {
    throw Failure(ExitCode::Unreadable, input.GetShownName() + ": the path has no point");
  }
  if (output) {
    output->Finish();
  }
  const std::string policy = run.options.policy == SolvePolicy::Greedy ? "greedy" : "optimal";
  if (run.options.summary == SummaryFormat::Json) {
    JsonValue json;
    json["path"] = input.GetShownName();
    json["machine"] = run.machineName;
    json["program_system"] = run.systemName;
    json["policy"] = policy;
    json.update(summary.GetJson());
    WriteSummary(run, JsonDocument(json));
  } else {
    WriteSummary(run, input.GetShownName() + " on " + run.machineName + ", " + run.systemName +
                          ", policy " + policy + "\n\n" + summary.GetText() + DescribeOutput(run));
  }
  if (tally.unreachableNb > 0) {
    return ExitCode::Unreachable;
  }
  return tally.outOfRangeNb > 0 ? ExitCode::OutOfRange : ExitCode::Success;
}

}  // namespace OrvoTool
