#pragma once

#include "AxisNames.h"
#include "AxisRowReader.h"
#include "JsonText.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/ToolPoint.h>
#include <Orvo/Vector3D.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace OrvoTool {

/// What axis values are held against.
struct AxisCheckLimits {
  double rangeTolerance = 1e-6;  ///< how far beyond a limit a value still counts as inside
  std::vector<double> speeds;    ///< by register: the most a second; 0: any
  double feed = 0.0;             ///< where none is given, a minute; 0: unknown
  double singularDeg = 2.0;      ///< nearer to a singular direction is near
  double tipTolerance = 1e-3;    ///< of the tip, in the machine's unit
  double angleToleranceDeg = 1e-3;
};

/// How often something was found, where first, and the worst of it.
struct Tally {
  std::uint64_t count = 0;
  std::uint64_t firstLine = 0;
  double worst = 0.0;
  std::uint64_t worstLine = 0;

  void Add(double value, std::uint64_t line);
};

/// What was found of one axis.
struct AxisTally {
  int reg = -1;
  std::string name;
  bool isRotary = false;
  bool isChecked = false;
  double min = 0.0;
  double max = 0.0;
  double smallest = 0.0;
  double largest = 0.0;
  Tally outOfRange;  ///< by the excess
  Tally tooFast;     ///< by the speed, a second
  Tally jump;        ///< rotary moves of more than half a turn, by their size
};

/// Holds axis values, row by row, against ranges, speeds and the path that they should follow.
class AxisCheck {
 public:
  /// Takes each finding: line, kind, axis or nothing, and what it is about by name.
  using Sink = std::function<void(const JsonValue&)>;

  /// @param machine  a finished machine, which must outlive it
  /// @throws Failure when the program system can't be computed with
  AxisCheck(const Orvo::Kin::Machine& machine, const Orvo::Kin::ProgramSystem& programSystem,
            const AxisNames& names, const Orvo::Vector3D& offset, const AxisCheckLimits& limits,
            Sink sink);

  /// Takes the next row.
  /// @param target  the point of the path, in the table's frame; null where there is none
  void Add(const AxisRow& row, const Orvo::Path::ToolPoint* target);

  /// Tells whether an axis was out of its range or too fast, or the path was missed.
  bool HasExcess() const;
  bool HasMiss() const { return tipMiss_.count + angleMiss_.count > 0; }

  std::uint64_t GetRowNb() const { return rowNb_; }

  /// Tells whether there are moves and speeds to hold them against, but no move has a time.
  bool LacksTimes() const { return !limits_.speeds.empty() && rowNb_ > 1 && timedNb_ == 0; }

  /// Returns what was found, for people and for programs.
  std::string GetText(bool hasPath) const;
  JsonValue GetJson(bool hasPath) const;

 private:
  void CheckAxes(const AxisRow& row, double seconds);
  void CheckSolution(const AxisRow& row, const Orvo::Path::ToolPoint& reached);
  void CheckTarget(const AxisRow& row, const Orvo::Path::ToolPoint& reached,
                   const Orvo::Path::ToolPoint& target);
  double TimeOfMove(const AxisRow& row, const Orvo::Path::ToolPoint& reached,
                    const Orvo::Path::ToolPoint* target) const;
  void Report(std::uint64_t line, const char* kind, const AxisTally* axis,
              const std::vector<std::pair<const char*, double>>& numbers) const;
  std::string StretchesText() const;

  const Orvo::Kin::Machine& machine_;
  Orvo::Kin::ProgramSystem programSystem_;
  Orvo::Vector3D offset_;
  AxisCheckLimits limits_;
  Sink sink_;
  Orvo::Kin::MachineCompute compute_;
  std::unique_ptr<Orvo::Path::PointSolver> solver_;
  std::vector<bool> isMain_;  ///< by register
  Orvo::Kin::MachinePosition position_;
  std::vector<AxisTally> axes_;

  std::vector<double> before_;
  Orvo::Path::ToolPoint reachedBefore_;
  int branchBefore_ = 0;

  std::uint64_t rowNb_ = 0;
  std::uint64_t insertedNb_ = 0;
  std::uint64_t timedNb_ = 0;
  Tally branchChange_;
  Tally nearSingular_;  ///< by the angle, the smallest one is the worst
  std::vector<std::pair<std::uint64_t, std::uint64_t>> stretches_;  ///< lines, first to last
  std::uint64_t stretchNb_ = 0;
  bool isInStretch_ = false;
  Tally tipMiss_;
  Tally angleMiss_;
  double largestTip_ = 0.0;
  std::uint64_t largestTipLine_ = 0;
  double largestAngle_ = 0.0;
  std::uint64_t largestAngleLine_ = 0;
};

}  // namespace OrvoTool
