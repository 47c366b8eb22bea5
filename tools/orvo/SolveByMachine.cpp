#include "Failure.h"
#include "JsonText.h"
#include "MachineFile.h"
#include "NumberText.h"
#include "PathReader.h"
#include "PathSolver.h"
#include "Progress.h"
#include "ResultOutput.h"
#include "SolveRun.h"
#include "SolveSummary.h"
#include "WideText.h"

#include <Orvo/Kin/Register.h>
#include <Orvo/Path/ToolPoint.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace OrvoTool {
namespace {

/// Hands out the points of a path one by one, whatever its kind.
class Points {
 public:
  Points(const std::string& name, PathKind kind) {
    if (FindPathKind(name, kind) == PathKind::Csv) {
      csv_.emplace(name);
    } else {
      input_.emplace(name, kind);
    }
  }

  bool Next(PathPoint* point) {
    if (csv_) {
      return csv_->Next(point);
    }
    Orvo::Path::ToolPoint next;
    if (input_->Read(&next, 1) == 0) {
      return false;
    }
    point->point = next.point;
    point->direction = next.direction;
    point->wasUnit = true;
    point->line = next.line;
    return true;
  }

  double GetShareRead() const {
    return csv_ ? csv_->GetShareRead() : input_->GetReader().GetShareRead();
  }

  std::string DescribeNotes() const { return csv_ ? std::string() : input_->DescribeNotes(); }

 private:
  std::optional<PathReader> csv_;
  mutable std::optional<PathInput> input_;
};

std::string JoinNames(const std::vector<MainAxis>& axes,
                      const std::array<double, MaxMainAxes>& excess) {
  std::string joined;
  for (std::size_t a = 0; a < axes.size(); ++a) {
    if (excess[a] > 0.0) {
      joined += (joined.empty() ? ":" : ";") + axes[a].name;
    }
  }
  return joined;
}

std::vector<std::string> FlagsOf(const PathSolver& solver, const AxisNames& names,
                                 const PointResult& result) {
  const std::vector<MainAxis>& axes = solver.GetAxes();
  if (result.outcome != Outcome::Reached) {
    return {"unreachable" + JoinNames(axes, result.excess)};
  }
  std::vector<std::string> flags;
  if (result.IsOutOfRange()) {
    flags.push_back("out" + JoinNames(axes, result.excess));
  }
  if (result.freeRegister >= 0) {
    flags.push_back("free:" + names.GetName(result.freeRegister));
  }
  for (std::size_t a = 0; a < axes.size(); ++a) {
    if (result.isSnapped[a]) {
      flags.push_back("snapped:" + axes[a].name);
    }
  }
  if (flags.empty()) {
    flags.push_back("ok");
  }
  return flags;
}

/// Writes a row for each point, as CSV or as JSON Lines.
class MachineRowWriter {
 public:
  MachineRowWriter(const SolveRun& run, const PathSolver& solver)
      : run_(run), solver_(solver), quotedNames_(QuoteNames(run.names)) {}

  std::string GetHeader() const {
    std::string header;
    for (int r = 0; r < run_.names.GetCount(); ++r) {
      header += run_.names.GetName(r) + ",";
    }
    return run_.format == RowFormat::Csv ? header + "solutions,flags\n" : std::string();
  }

  void Append(const PathPoint& point, const PointResult& result, std::string* row) const {
    const std::vector<std::string> flags = FlagsOf(solver_, run_.names, result);
    if (run_.format == RowFormat::Csv) {
      for (int r = 0; r < run_.names.GetCount(); ++r) {
        AppendFixed(solver_.GetPosition()[Orvo::Kin::Register(r)], row,
                    run_.options.columns.decimals);
        row->push_back(',');
      }
      row->push_back(static_cast<char>('0' + result.solutionCount));
      for (std::size_t i = 0; i < flags.size(); ++i) {
        *row += (i == 0 ? "," : " ") + flags[i];
      }
      row->push_back('\n');
      return;
    }
    JsonValue json;
    json["solutions"] = result.solutionCount;
    json["flags"] = flags;
    json["residual"] = result.tipResidual;
    json["angle_residual"] = result.directionResidualDeg;
    *row += "{\"line\":" + std::to_string(point.line) + ",\"axes\":";
    AppendAxesJson(quotedNames_, solver_.GetPosition(), row);
    *row += "," + JsonLine(json).substr(1);
  }

 private:
  const SolveRun& run_;
  const PathSolver& solver_;
  std::vector<std::string> quotedNames_;
};

/// Takes the whole path through the solver and writes a row for each point.
void SolveAll(const SolveRun& run, Points* points, PathSolver* solver, ResultOutput* output,
              SolveSummary* summary) {
  Progress progress;
  PathPoint point;
  std::string row;
  const MachineRowWriter writer(run, *solver);
  if (output != nullptr) {
    output->Write(writer.GetHeader());
  }
  while (points->Next(&point)) {
    const PointResult result = solver->Solve(point.point, point.direction);
    summary->Add(result, point.wasUnit, solver->GetPosition(), point.line);
    if (output != nullptr) {
      row.clear();
      writer.Append(point, result, &row);
      output->Write(row);
    }
    progress.Show(summary->GetPointCount(), points->GetShareRead());
  }
}

}  // namespace

ExitCode SolveByMachine(const SolveRun& run) {
  PathSolver solver(run.machine, run.programSystem, run.names, run.offset, run.shift, run.start);
  const std::string fault = solver.FindFault();
  if (!fault.empty()) {
    throw Failure(ExitCode::MachineInvalid, run.machineName + ": " + run.systemName + ": " + fault);
  }
  const std::string pathName = ShownInput(run.options.path);
  Points points(run.options.path, run.options.kind);
  SolveSummary summary(solver.GetAxes());
  std::optional<ResultOutput> output;
  if (run.HasRows()) {
    output.emplace(run.options.output);
  }
  SolveAll(run, &points, &solver, output ? &*output : nullptr, &summary);
  WriteNotes(points.DescribeNotes());
  if (summary.GetPointCount() == 0) {
    throw Failure(ExitCode::Unreadable, pathName + ": the path has no point");
  }
  if (output) {
    output->Finish();
  }
  Orvo::Kin::ProgramSystem programSystem = run.programSystem;
  const std::string policy = GetPolicyName(programSystem.GetRotariesCompute());
  if (run.options.summary == SummaryFormat::Json) {
    JsonValue json;
    json["path"] = pathName;
    json["machine"] = run.machineName;
    json["program_system"] = run.systemName;
    json["policy"] = "machine";
    json["machine_policy"] = policy;
    json.update(summary.GetJson());
    WriteSummary(run, JsonDocument(json));
  } else {
    WriteSummary(run, pathName + " on " + run.machineName + ", " + run.systemName + ", policy " +
                          policy + "\n\n" + summary.GetText() + DescribeOutput(run));
  }
  if (summary.GetUnreachableCount() > 0) {
    return ExitCode::Unreachable;
  }
  if (summary.GetOutCount() > 0) {
    return ExitCode::OutOfRange;
  }
  return summary.IsMissed() ? ExitCode::VerificationFailed : ExitCode::Success;
}

}  // namespace OrvoTool
