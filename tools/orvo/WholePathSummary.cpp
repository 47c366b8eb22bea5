#include "WholePathSummary.h"

#include "NumberText.h"
#include "TextTable.h"
#include "WideText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvoTool {
namespace {

using Orvo::Path::MainAxis;
using Orvo::Path::MainAxisNb;

constexpr double DegreesPerRadian = 180.0 / 3.141592653589793;

/// A held direction that is off by less, in degrees, is as good as met.
constexpr double NoticeableHeldDeg = 1e-9;

std::string InLine(std::uint64_t line) {
  return line != 0 ? "first in line " + std::to_string(line) : "";
}

std::string TripleText(const Orvo::Vector3D& v) {
  return ShortNumber(v[0], 9) + "," + ShortNumber(v[1], 9) + "," + ShortNumber(v[2], 9);
}

}  // namespace

WholePathSummary::WholePathSummary(const Orvo::Path::MainAxes& axes,
                                   const Orvo::Path::PathOptions& options,
                                   const Orvo::Path::PathSummary& summary, const PathTally& tally)
    : axes_(axes), options_(options), summary_(summary), tally_(tally) {}

std::string WholePathSummary::GetCountsText() const {
  using Align = TextTable::Align;
  TextTable table({Align::Left, Align::Right, Align::Left}, 2);
  const auto firstOf = [this](Orvo::Path::DiagnosisCode code) {
    const auto found = tally_.first.find(code);
    return found != tally_.first.end() ? InLine(found->second.line) : std::string();
  };
  table.AddRow({"points", std::to_string(summary_.pointNb), ""});
  table.AddRow(
      {"solved", std::to_string(summary_.solvedNb),
       summary_.solvedNb == summary_.pointNb ? "all of them, in the range of every axis" : ""});
  table.AddRow({"unreachable", std::to_string(tally_.unreachableNb), ""});
  table.AddRow({"out of range", std::to_string(tally_.outOfRangeNb),
                firstOf(Orvo::Path::DiagnosisCode::LinearRange)});
  table.AddRow({"branch changes", std::to_string(summary_.branchChangeNb),
                firstOf(Orvo::Path::DiagnosisCode::BranchChange)});
  table.AddRow({"unwindings", std::to_string(summary_.unwindingNb),
                firstOf(Orvo::Path::DiagnosisCode::Unwinding)});
  table.AddRow({"held", std::to_string(summary_.heldNb),
                summary_.largestDeviation * DegreesPerRadian > NoticeableHeldDeg
                    ? "with the direction off by up to " +
                          ShortNumber(summary_.largestDeviation * DegreesPerRadian, 3) + " degrees"
                    : ""});
  if (options_.segments.isRefined) {
    table.AddRow({"inserted", std::to_string(summary_.insertedNb), "points between them"});
  }
  return table.GetText();
}

std::string WholePathSummary::GetAxesText() const {
  using Align = TextTable::Align;
  TextTable table({Align::Left, Align::Right, Align::Right, Align::Right, Align::Right}, 2);
  table.AddRow({"axis", "from", "to", "path length", "range"});
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    const MainAxis& axis = axes_.axes[i];
    if (!axis.isPresent) {
      continue;
    }
    const bool isMoved = summary_.solvedNb > 0;
    table.AddRow({Printable(axis.name), isMoved ? TableNumber(summary_.smallest[i], 3) : "-",
                  isMoved ? TableNumber(summary_.largest[i], 3) : "-",
                  TableNumber(summary_.travel[i], 3),
                  axis.isChecked ? ShortNumber(axis.min, 9) + " .. " + ShortNumber(axis.max, 9)
                                 : "not checked"});
  }
  return table.GetText();
}

std::string WholePathSummary::GetNotesText() const {
  const bool isTime = options_.measure.kind == Orvo::Path::MeasureKind::Time;
  std::string text =
      "  Cost: " + ShortNumber(summary_.cost, 9) +
      (isTime ? " minutes, by the speeds of the axes.\n" : ", the weighted travel of all axes.\n");
  if (options_.hasResiduals && summary_.solvedNb > summary_.heldNb) {
    text += "  Checked by forward kinematics: the tip is off by at most " +
            ShortNumber(summary_.largestResidual.tip, 2) + ",\n  the direction by at most " +
            ShortNumber(summary_.largestResidual.direction * DegreesPerRadian, 2) + " degrees.\n";
  }
  if (options_.segments.isChecked || options_.segments.isRefined) {
    text += "  Between the points the tip leaves the straight line by at most " +
            ShortNumber(summary_.largestTipDeviation, 3) + ",\n  the direction by at most " +
            ShortNumber(summary_.largestDirectionDeviation * DegreesPerRadian, 3) + " degrees.\n";
  }
  return text;
}

std::string WholePathSummary::GetText() const {
  return GetCountsText() + "\n" + GetAxesText() + "\n" + GetNotesText();
}

JsonValue WholePathSummary::GetJson() const {
  JsonValue json;
  json["points"] = summary_.pointNb;
  json["solved"] = summary_.solvedNb;
  json["unreachable"] = tally_.unreachableNb;
  json["out_of_range"] = tally_.outOfRangeNb;
  json["inserted"] = summary_.insertedNb;
  json["held"] = summary_.heldNb;
  json["branch_changes"] = summary_.branchChangeNb;
  json["unwindings"] = summary_.unwindingNb;
  json["cost"] = summary_.cost;
  json["cost_unit"] =
      options_.measure.kind == Orvo::Path::MeasureKind::Time ? "minutes" : "weighted travel";
  json["axes"] = JsonValue::array();
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    const MainAxis& axis = axes_.axes[i];
    if (!axis.isPresent) {
      continue;
    }
    JsonValue entry;
    entry["name"] = axis.name;
    entry["register"] = axis.reg.GetVal();
    entry["from"] = summary_.smallest[i];
    entry["to"] = summary_.largest[i];
    entry["path_length"] = summary_.travel[i];
    if (axis.isChecked) {
      entry["min"] = axis.min;
      entry["max"] = axis.max;
    }
    json["axes"].push_back(entry);
  }
  if (options_.hasResiduals) {
    json["largest_residual"] = summary_.largestResidual.tip;
    json["largest_angle_residual"] = summary_.largestResidual.direction * DegreesPerRadian;
  }
  json["largest_held_deviation"] = summary_.largestDeviation * DegreesPerRadian;
  if (options_.segments.isChecked || options_.segments.isRefined) {
    json["largest_tip_deviation"] = summary_.largestTipDeviation;
    json["largest_angle_deviation"] = summary_.largestDirectionDeviation * DegreesPerRadian;
  }
  json["diagnoses"] = JsonValue::array();
  for (const auto& [code, first] : tally_.first) {
    const auto count = summary_.diagnosisNb.find(code);
    JsonValue entry;
    entry["code"] = static_cast<int>(code);
    entry["name"] = first.GetName();
    entry["count"] = count != summary_.diagnosisNb.end() ? count->second : 0;
    entry["first"] = JsonValue::parse(first.MakeJson(), nullptr, false);
    json["diagnoses"].push_back(entry);
  }
  if (summary_.hasShift) {
    json["shift"] = {summary_.shift[0], summary_.shift[1], summary_.shift[2]};
  }
  return json;
}

std::string WholePathSummary::GetFindings(const std::string& pathName) const {
  std::string text;
  for (const auto& [code, first] : tally_.first) {
    const auto count = summary_.diagnosisNb.find(code);
    const std::uint64_t number = count != summary_.diagnosisNb.end() ? count->second : 0;
    text += pathName + ": " + Printable(first.MakeText()) + " [" +
            std::to_string(static_cast<int>(code)) + " " + first.GetName();
    text += number > 1 ? ", the first of " + std::to_string(number) + "]\n" : "]\n";
  }
  if (summary_.hasShift) {
    text += pathName + ": all points would be in range with the workpiece moved by " +
            TripleText(summary_.shift) + "; add that to --shift\n";
  }
  return text;
}

}  // namespace OrvoTool
