#include "AxisCheck.h"

#include "Failure.h"
#include "MachineFile.h"
#include "NumberText.h"
#include "TextTable.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace OrvoTool {
namespace {

using Orvo::Kin::Register;
using Orvo::Path::ToolPoint;

constexpr double DegreesPerRadian = 180.0 / 3.141592653589793;
constexpr double SecondsPerMinute = 60.0;
constexpr double HalfTurnDeg = 180.0;

/// Nearer to a singular direction, in radians, the two rotary solutions are one: written values
/// don't tell them apart.
constexpr double NoBranchAngle = 1e-6;

/// Axis values that differ from a solution by less than this, in degrees, are it.
constexpr double SameSolutionDeg = 0.01;

/// What rounding of written values may add to a speed, as a share of it and to a move.
constexpr double SpeedRounding = 1e-6;
constexpr double MoveRounding = 1e-6;

/// How many stretches near singular directions are told in text, and for programs.
constexpr std::size_t ShownStretches = 8;
constexpr std::size_t MaxStretches = 1000;

double AngleBetweenDeg(Orvo::Vector3D a, const Orvo::Vector3D& b) {
  return std::atan2((a & b).Norm(), a * b) * DegreesPerRadian;
}

std::string AtLine(std::uint64_t line) { return " (line " + std::to_string(line) + ")"; }

std::string CountText(const Tally& tally, int decimals) {
  return tally.count == 0 ? "-"
                          : std::to_string(tally.count) + ", by " +
                                TableNumber(tally.worst, decimals) + AtLine(tally.worstLine);
}

JsonValue JsonOf(const Tally& tally) {
  JsonValue json;
  json["count"] = tally.count;
  if (tally.count > 0) {
    json["first_line"] = tally.firstLine;
    json["worst"] = tally.worst;
    json["worst_line"] = tally.worstLine;
  }
  return json;
}

void TakeLargest(double value, std::uint64_t line, double* largest, std::uint64_t* largestLine) {
  if (*largestLine == 0 || !(value <= *largest)) {
    *largest = value;
    *largestLine = line;
  }
}

}  // namespace

void Tally::Add(double value, std::uint64_t line) {
  if (count == 0 || !(value <= worst)) {
    worst = value;
    worstLine = line;
  }
  firstLine = count == 0 ? line : firstLine;
  ++count;
}

AxisCheck::AxisCheck(const Orvo::Kin::Machine& machine,
                     const Orvo::Kin::ProgramSystem& programSystem, const AxisNames& names,
                     const Orvo::Vector3D& offset, const AxisCheckLimits& limits, Sink sink)
    : machine_(machine),
      programSystem_(programSystem),
      offset_(offset),
      limits_(limits),
      sink_(std::move(sink)),
      compute_(machine) {
  machine.Alloc(&position_);
  const Orvo::Path::MainAxes main(machine, programSystem);
  isMain_.resize(static_cast<std::size_t>(names.GetCount()));
  for (const Orvo::Path::MainAxis& axis : main.axes) {
    if (axis.isPresent) {
      isMain_[static_cast<std::size_t>(axis.reg.GetVal())] = true;
    }
  }
  for (int r = 0; r < names.GetCount(); ++r) {
    const Orvo::Kin::Entity* const entity = machine.GetKinematic().GetEntity(Register(r));
    if (entity == nullptr) {
      continue;
    }
    AxisTally axis;
    axis.reg = r;
    axis.name = names.GetName(r);
    axis.isRotary = entity->GetEntityLink().GetEntityLinkType() == Orvo::Kin::EntityLinkTypeRotary;
    axis.isChecked = entity->GetCheckRangeAxis();
    axis.min = entity->GetRangeMin();
    axis.max = entity->GetRangeMax();
    axes_.push_back(axis);
  }
  solver_ = std::make_unique<Orvo::Path::PointSolver>(machine_, programSystem_, offset_, position_);
  for (const Orvo::Path::Diagnosis& finding : solver_->GetFindings()) {
    if (finding.IsFailure()) {
      throw Failure(ExitCode::MachineInvalid, finding.MakeText());
    }
  }
}

void AxisCheck::Report(std::uint64_t line, const char* kind, const AxisTally* axis,
                       const std::vector<std::pair<const char*, double>>& numbers) const {
  if (!sink_) {
    return;
  }
  JsonValue json;
  json["line"] = line;
  json["kind"] = kind;
  if (axis != nullptr) {
    json["axis"] = axis->name;
    json["register"] = axis->reg;
  }
  for (const auto& [name, value] : numbers) {
    json[name] = value;
  }
  sink_(json);
}

double AxisCheck::TimeOfMove(const AxisRow& row, const ToolPoint& reached,
                             const ToolPoint* target) const {
  if (row.isRapid || (target != nullptr && target->isRapid)) {
    return 0.0;
  }
  if (row.inverseTime > 0.0) {
    return SecondsPerMinute / row.inverseTime;
  }
  const double given = row.feed > 0.0 ? row.feed : target != nullptr ? target->feed : 0.0;
  const double feed = given > 0.0 ? given : limits_.feed;
  return feed > 0.0 ? reached.point.Distance(reachedBefore_.point) / feed * SecondsPerMinute : 0.0;
}

void AxisCheck::CheckAxes(const AxisRow& row, double seconds) {
  timedNb_ += seconds > 0.0 ? 1 : 0;
  for (AxisTally& axis : axes_) {
    const auto reg = static_cast<std::size_t>(axis.reg);
    const double value = row.values[reg];
    axis.smallest = rowNb_ == 1 ? value : std::min(axis.smallest, value);
    axis.largest = rowNb_ == 1 ? value : std::max(axis.largest, value);
    const double excess = std::max(axis.min - value, value - axis.max);
    if (axis.isChecked && excess > limits_.rangeTolerance) {
      axis.outOfRange.Add(excess, row.line);
      Report(row.line, "out-of-range", &axis,
             {{"value", value}, {"min", axis.min}, {"max", axis.max}, {"excess", excess}});
    }
    if (rowNb_ == 1) {
      continue;
    }
    const double move = std::abs(value - before_[reg]);
    if (axis.isRotary && move > HalfTurnDeg) {
      axis.jump.Add(move, row.line);
      Report(row.line, "jump", &axis, {{"from", before_[reg]}, {"to", value}});
    }
    const double most = limits_.speeds.empty() ? 0.0 : limits_.speeds[reg];
    if (most > 0.0 && seconds > 0.0) {
      const double speed = move / seconds;
      if (speed > most * (1.0 + SpeedRounding) + MoveRounding / seconds) {
        axis.tooFast.Add(speed, row.line);
        Report(row.line, "too-fast", &axis, {{"speed", speed}, {"most", most}});
      }
    }
  }
}

void AxisCheck::CheckSolution(const AxisRow& row, const ToolPoint& reached) {
  // What the program system doesn't move may still be elsewhere than it was.
  bool isElsewhere = false;
  for (std::size_t r = 0; r < row.values.size(); ++r) {
    isElsewhere = isElsewhere || (!isMain_[r] && rowNb_ > 1 && row.values[r] != before_[r]);
  }
  if (isElsewhere || rowNb_ == 1) {
    *solver_ = Orvo::Path::PointSolver(machine_, programSystem_, offset_, position_);
  }
  const Orvo::Path::Answers answers = solver_->Solve(reached);
  const Orvo::Path::AxisValues values = solver_->GetAxes().Take(position_);
  int branch = 0;
  double nearest = SameSolutionDeg;
  for (int s = 0; s < answers.count && answers.singularAngle > NoBranchAngle; ++s) {
    const Orvo::Path::Answer& answer = answers.answers[static_cast<std::size_t>(s)];
    double apart = 0.0;
    for (std::size_t i = Orvo::Path::FirstRotary; i < Orvo::Path::MainAxisNb; ++i) {
      apart = std::max(apart, std::abs(std::remainder(answer.values[i] - values[i], 360.0)));
    }
    if (apart < nearest) {
      nearest = apart;
      branch = answer.branch;
    }
  }
  if (branch * branchBefore_ < 0) {
    branchChange_.Add(0.0, row.line);
    Report(row.line, "branch-change", nullptr, {});
  }
  branchBefore_ = branch;

  const double angleDeg = answers.singularAngle * DegreesPerRadian;
  const bool isNear = solver_->GetFreeAxis() >= 0 && angleDeg < limits_.singularDeg;
  if (isNear) {
    nearSingular_.Add(-angleDeg, row.line);
    if (isInStretch_ && !stretches_.empty() && stretchNb_ <= MaxStretches) {
      stretches_.back().second = row.line;
    } else if (!isInStretch_) {
      ++stretchNb_;
      if (stretches_.size() < MaxStretches) {
        stretches_.emplace_back(row.line, row.line);
      }
    }
    Report(row.line, "near-singular", nullptr, {{"angle", angleDeg}});
  }
  isInStretch_ = isNear;
}

void AxisCheck::CheckTarget(const AxisRow& row, const ToolPoint& reached, const ToolPoint& target) {
  const double tip = reached.point.Distance(target.point);
  const double angleDeg = AngleBetweenDeg(reached.direction, target.direction);
  TakeLargest(tip, row.line, &largestTip_, &largestTipLine_);
  TakeLargest(angleDeg, row.line, &largestAngle_, &largestAngleLine_);
  const bool isTipMissed = !(tip <= limits_.tipTolerance);
  const bool isAngleMissed = !(angleDeg <= limits_.angleToleranceDeg);
  if (isTipMissed) {
    tipMiss_.Add(tip, row.line);
  }
  if (isAngleMissed) {
    angleMiss_.Add(angleDeg, row.line);
  }
  if (isTipMissed || isAngleMissed) {
    Report(row.line, "path-missed", nullptr, {{"residual", tip}, {"angle_residual", angleDeg}});
  }
}

void AxisCheck::Add(const AxisRow& row, const ToolPoint* target) {
  ++rowNb_;
  insertedNb_ += row.isInserted ? 1 : 0;
  for (std::size_t r = 0; r < row.values.size(); ++r) {
    position_[Register(static_cast<int>(r))] = row.values[r];
  }
  Orvo::Matrix43 tableFromTip;
  if (!compute_.ComputeMcsToToolTcs(position_, programSystem_.GetHeadIndex(),
                                    programSystem_.GetTableIndex(), offset_, &tableFromTip)) {
    throw Failure(ExitCode::MachineInvalid, std::string("the tool can't be computed: ") +
                                                DescribeComputeError(compute_.GetLastError()));
  }
  ToolPoint reached;
  reached.point = tableFromTip.GetTrans();
  reached.direction = tableFromTip.GetW();
  CheckAxes(row, rowNb_ > 1 ? TimeOfMove(row, reached, target) : 0.0);
  CheckSolution(row, reached);
  if (target != nullptr) {
    CheckTarget(row, reached, *target);
  }
  before_ = row.values;
  reachedBefore_ = reached;
}

bool AxisCheck::HasExcess() const {
  return std::any_of(axes_.begin(), axes_.end(), [](const AxisTally& axis) {
    return axis.outOfRange.count + axis.tooFast.count > 0;
  });
}

std::string AxisCheck::StretchesText() const {
  std::string text;
  for (std::size_t i = 0; i < std::min(stretches_.size(), ShownStretches); ++i) {
    const auto& [first, last] = stretches_[i];
    text += (i > 0 ? ", " : "") + std::to_string(first);
    text += last > first ? "-" + std::to_string(last) : "";
  }
  return text + (stretchNb_ > ShownStretches ? ", ..." : "");
}

std::string AxisCheck::GetText(bool hasPath) const {
  using Align = TextTable::Align;
  TextTable counts({Align::Left, Align::Right, Align::Left}, 2);
  counts.AddRow({"rows", std::to_string(rowNb_), ""});
  if (insertedNb_ > 0) {
    counts.AddRow({"inserted", std::to_string(insertedNb_), "between the points of the path"});
  }
  counts.AddRow(
      {"branch changes", std::to_string(branchChange_.count),
       branchChange_.count > 0 ? "first in line " + std::to_string(branchChange_.firstLine) : ""});
  counts.AddRow({"near singular", std::to_string(nearSingular_.count),
                 nearSingular_.count > 0 ? "down to " + ShortNumber(-nearSingular_.worst, 3) +
                                               " degrees; lines " + StretchesText()
                                         : ""});
  TextTable table({Align::Left, Align::Right, Align::Right, Align::Right, Align::Left, Align::Left,
                   Align::Left},
                  2);
  table.AddRow({"axis", "from", "to", "range", "out of range", "too fast", "jumps"});
  for (const AxisTally& axis : axes_) {
    const std::string speed = axis.tooFast.count == 0
                                  ? "-"
                                  : std::to_string(axis.tooFast.count) + ", up to " +
                                        ShortNumber(axis.tooFast.worst, 6) +
                                        AtLine(axis.tooFast.worstLine);
    table.AddRow({axis.name, rowNb_ > 0 ? TableNumber(axis.smallest, 3) : "-",
                  rowNb_ > 0 ? TableNumber(axis.largest, 3) : "-",
                  axis.isChecked ? ShortNumber(axis.min, 9) + " .. " + ShortNumber(axis.max, 9)
                                 : "not checked",
                  CountText(axis.outOfRange, 6), speed, CountText(axis.jump, 3)});
  }
  std::string text = counts.GetText() + "\n" + table.GetText() + "\n";
  if (!limits_.speeds.empty()) {
    text += LacksTimes() ? "  No move has a time: give --feed, or a column inverse_time or feed.\n"
                         : "  Speeds are known of " + std::to_string(timedNb_) + " moves.\n";
  }
  if (hasPath) {
    text += "  By forward kinematics the tip is off the path by at most " +
            ShortNumber(largestTip_, 3) + AtLine(largestTipLine_) +
            ",\n  the direction by at most " + ShortNumber(largestAngle_, 3) + " degrees" +
            AtLine(largestAngleLine_) + ".\n";
    if (HasMiss()) {
      text += "  The path is missed: the tip by more than " + ShortNumber(limits_.tipTolerance) +
              " at " + std::to_string(tipMiss_.count) + " points, the direction by more than\n  " +
              ShortNumber(limits_.angleToleranceDeg) + " degrees at " +
              std::to_string(angleMiss_.count) + "; first in line " +
              std::to_string(tipMiss_.count == 0 ? angleMiss_.firstLine
                             : angleMiss_.count == 0
                                 ? tipMiss_.firstLine
                                 : std::min(tipMiss_.firstLine, angleMiss_.firstLine)) +
              ".\n";
    }
  }
  return text;
}

JsonValue AxisCheck::GetJson(bool hasPath) const {
  JsonValue json;
  json["rows"] = rowNb_;
  json["inserted"] = insertedNb_;
  json["branch_changes"] = branchChange_.count;
  if (branchChange_.count > 0) {
    json["first_branch_change_line"] = branchChange_.firstLine;
  }
  JsonValue& singular = json["near_singular"];
  singular["count"] = nearSingular_.count;
  if (nearSingular_.count > 0) {
    singular["smallest_angle"] = -nearSingular_.worst;
    singular["stretch_count"] = stretchNb_;
    singular["stretches"] = stretches_;
  }
  json["axes"] = JsonValue::array();
  for (const AxisTally& axis : axes_) {
    JsonValue entry;
    entry["name"] = axis.name;
    entry["register"] = axis.reg;
    entry["from"] = axis.smallest;
    entry["to"] = axis.largest;
    if (axis.isChecked) {
      entry["min"] = axis.min;
      entry["max"] = axis.max;
    }
    entry["out_of_range"] = JsonOf(axis.outOfRange);
    entry["too_fast"] = JsonOf(axis.tooFast);
    entry["jumps"] = JsonOf(axis.jump);
    json["axes"].push_back(entry);
  }
  if (!limits_.speeds.empty()) {
    json["timed_moves"] = timedNb_;
  }
  if (hasPath) {
    json["largest_residual"] = largestTip_;
    json["largest_residual_line"] = largestTipLine_;
    json["largest_angle_residual"] = largestAngle_;
    json["largest_angle_residual_line"] = largestAngleLine_;
    json["tip_misses"] = JsonOf(tipMiss_);
    json["angle_misses"] = JsonOf(angleMiss_);
  }
  return json;
}

}  // namespace OrvoTool
