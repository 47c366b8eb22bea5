#include "SolveSummary.h"

#include "NumberText.h"
#include "TextTable.h"

#include <Orvo/Kin/Register.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace OrvoTool {
namespace {

/// Above these, in the machine's unit of length and in degrees, the summary warns.
constexpr double NoticeableLength = 0.001;
constexpr double NoticeableDirectionDeg = 0.001;

std::string AtLine(std::uint64_t line) { return " (line " + std::to_string(line) + ")"; }

}  // namespace

void SolveSummary::Worst::Take(double candidate, std::uint64_t atLine) {
  if (line == 0 || candidate > value) {
    value = candidate;
    line = atLine;
  }
}

SolveSummary::SolveSummary(const std::vector<MainAxis>& axes) : axes_(axes), sums_(axes.size()) {}

void SolveSummary::Add(const PointResult& result, bool wasUnit,
                       const Orvo::Kin::MachinePosition& position, std::uint64_t line) {
  ++pointCount_;
  notUnitCount_ += wasUnit ? 0 : 1;
  if (result.outcome == Outcome::Reached) {
    AddReached(result, position, line);
  } else {
    AddUnreachable(result, line);
  }
}

void SolveSummary::AddUnreachable(const PointResult& result, std::uint64_t line) {
  ++unreachableCount_;
  firstUnreachableLine_ = firstUnreachableLine_ == 0 ? line : firstUnreachableLine_;
  directionOutOfReachCount_ += result.outcome == Outcome::DirectionOutOfReach ? 1 : 0;
  directionOutOfRangeCount_ += result.outcome == Outcome::DirectionOutOfRange ? 1 : 0;
  for (std::size_t a = 0; a < axes_.size(); ++a) {
    if (result.excess[a] > 0.0) {
      ++sums_[a].blockingCount;
      sums_[a].blockingWorst.Take(result.excess[a], line);
    }
  }
}

void SolveSummary::AddReached(const PointResult& result, const Orvo::Kin::MachinePosition& position,
                              std::uint64_t line) {
  const bool isFirst = pointCount_ - unreachableCount_ == 1;
  for (std::size_t a = 0; a < axes_.size(); ++a) {
    const double value = position[Orvo::Kin::Register(axes_[a].reg)];
    AxisSum& sum = sums_[a];
    sum.smallest = isFirst ? value : std::min(sum.smallest, value);
    sum.largest = isFirst ? value : std::max(sum.largest, value);
    sum.length += isFirst ? 0.0 : std::abs(value - sum.last);
    sum.last = value;
    if (result.excess[a] > 0.0) {
      ++sum.outCount;
      sum.outWorst.Take(result.excess[a], line);
    }
  }
  if (result.IsOutOfRange()) {
    ++outCount_;
    firstOutLine_ = firstOutLine_ == 0 ? line : firstOutLine_;
  }
  freeCount_ += result.freeRegister >= 0 ? 1 : 0;
  tipResidual_.Take(result.tipResidual, line);
  directionResidualDeg_.Take(result.directionResidualDeg, line);
  if (result.IsSnapped()) {
    ++snappedCount_;
    snappedDirectionResidualDeg_.Take(result.directionResidualDeg, line);
  }
}

std::string SolveSummary::GetCountsText() const {
  using Align = TextTable::Align;
  TextTable table({Align::Left, Align::Right, Align::Left}, 2);
  table.AddRow({"points", std::to_string(pointCount_), ""});
  table.AddRow({"solved", std::to_string(GetSolvedCount()),
                GetSolvedCount() == pointCount_ ? "all of them, in the range of every axis" : ""});
  std::string unreachable;
  if (unreachableCount_ > 0) {
    unreachable = "first in line " + std::to_string(firstUnreachableLine_) + "; ";
    unreachable += std::to_string(directionOutOfReachCount_) + " directions out of reach, ";
    unreachable += std::to_string(directionOutOfRangeCount_) + " only outside a rotary range";
    const std::uint64_t others =
        unreachableCount_ - directionOutOfReachCount_ - directionOutOfRangeCount_;
    if (others > 0) {
      unreachable += ", " + std::to_string(others) + " points beyond the linear axes";
    }
  }
  table.AddRow({"unreachable", std::to_string(unreachableCount_), unreachable});
  table.AddRow({"out of range", std::to_string(outCount_),
                outCount_ > 0 ? "first in line " + std::to_string(firstOutLine_) : ""});
  return table.GetText();
}

std::string SolveSummary::GetAxesText() const {
  using Align = TextTable::Align;
  TextTable table({Align::Left, Align::Right, Align::Right, Align::Right, Align::Right,
                   Align::Right, Align::Left},
                  2);
  table.AddRow({"axis", "from", "to", "path length", "range", "out of range", "worst excess"});
  for (std::size_t a = 0; a < axes_.size(); ++a) {
    const MainAxis& axis = axes_[a];
    const AxisSum& sum = sums_[a];
    const bool isMoved = pointCount_ > unreachableCount_;
    table.AddRow(
        {axis.name, isMoved ? TableNumber(sum.smallest, 3) : "-",
         isMoved ? TableNumber(sum.largest, 3) : "-", TableNumber(sum.length, 3),
         axis.isChecked ? ShortNumber(axis.min, 9) + " .. " + ShortNumber(axis.max, 9)
                        : "not checked",
         std::to_string(sum.outCount),
         sum.outCount > 0 ? TableNumber(sum.outWorst.value, 6) + AtLine(sum.outWorst.line) : "-"});
  }
  return table.GetText();
}

bool SolveSummary::IsMissed() const {
  return tipResidual_.value > NoticeableLength ||
         (directionResidualDeg_.value > NoticeableDirectionDeg &&
          directionResidualDeg_.value > snappedDirectionResidualDeg_.value);
}

std::string SolveSummary::GetNotesText() const {
  std::string text;
  if (tipResidual_.line != 0) {
    text += "  Checked by forward kinematics: the tip is off by at most " +
            ShortNumber(tipResidual_.value, 2) + AtLine(tipResidual_.line) +
            ",\n  the direction by at most " + ShortNumber(directionResidualDeg_.value, 2) +
            " degrees" + AtLine(directionResidualDeg_.line) + ".\n";
    if (IsMissed()) {
      text +=
          "  Note: that is more than rounding; the axes do not reach the path exactly, as the\n"
          "  machine's program system has them. --policy greedy gives exact answers, for linear\n"
          "  axes off the right angle too.\n";
    }
  }
  for (std::size_t a = 0; a < axes_.size(); ++a) {
    if (sums_[a].blockingCount > 0) {
      text += "  " + axes_[a].name + " would leave its range at " +
              std::to_string(sums_[a].blockingCount) + " of the unreachable points, by up to " +
              ShortNumber(sums_[a].blockingWorst.value) + AtLine(sums_[a].blockingWorst.line) +
              ".\n";
    }
  }
  if (freeCount_ > 0) {
    text += "  A rotary axis was free and kept its value at " + std::to_string(freeCount_) +
            " points.\n";
  }
  if (snappedCount_ > 0) {
    text += "  A rotary axis was held at its limit at " + std::to_string(snappedCount_) +
            " points, with the direction off by up to " +
            ShortNumber(snappedDirectionResidualDeg_.value, 2) + " degrees" +
            AtLine(snappedDirectionResidualDeg_.line) + ".\n";
  }
  if (notUnitCount_ > 0) {
    text += "  The direction was not of unit length, and was made so, at " +
            std::to_string(notUnitCount_) + " points.\n";
  }
  return text;
}

std::string SolveSummary::GetText() const {
  return GetCountsText() + "\n" + GetAxesText() + "\n" + GetNotesText();
}

JsonValue SolveSummary::GetJson() const {
  JsonValue json;
  json["points"] = pointCount_;
  json["solved"] = GetSolvedCount();
  json["unreachable"] = unreachableCount_;
  json["out_of_range"] = outCount_;
  json["free"] = freeCount_;
  json["snapped"] = snappedCount_;
  json["first_unreachable_line"] = firstUnreachableLine_;
  json["first_out_of_range_line"] = firstOutLine_;
  json["axes"] = JsonValue::array();
  for (std::size_t a = 0; a < axes_.size(); ++a) {
    JsonValue entry;
    entry["name"] = axes_[a].name;
    entry["register"] = axes_[a].reg;
    entry["from"] = sums_[a].smallest;
    entry["to"] = sums_[a].largest;
    entry["path_length"] = sums_[a].length;
    if (axes_[a].isChecked) {
      entry["min"] = axes_[a].min;
      entry["max"] = axes_[a].max;
    }
    entry["out_of_range"] = sums_[a].outCount;
    entry["worst_excess"] = sums_[a].outWorst.value;
    json["axes"].push_back(entry);
  }
  json["largest_residual"] = tipResidual_.value;
  json["largest_angle_residual"] = directionResidualDeg_.value;
  return json;
}

}  // namespace OrvoTool
