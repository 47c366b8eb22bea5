#pragma once

#include "JsonText.h"
#include "PathSolver.h"

#include <Orvo/Kin/MachinePosition.h>

#include <cstdint>
#include <string>
#include <vector>

namespace OrvoTool {

/// Adds up what comes out of a path, in constant memory.
class SolveSummary {
 public:
  explicit SolveSummary(const std::vector<MainAxis>& axes);

  /// Takes one point in.
  /// @param position  the axis values after the point
  /// @param line      the line of the path file
  void Add(const PointResult& result, bool wasUnit, const Orvo::Kin::MachinePosition& position,
           std::uint64_t line);

  /// Returns the number of points, of those reached inside all ranges, of those not reached at
  /// all, and of those reached outside the range of an axis.
  std::uint64_t GetPointCount() const { return pointCount_; }
  std::uint64_t GetSolvedCount() const { return pointCount_ - unreachableCount_ - outCount_; }
  std::uint64_t GetUnreachableCount() const { return unreachableCount_; }
  std::uint64_t GetOutCount() const { return outCount_; }

  /// Tells whether forward kinematics misses solved points by more than rounding.
  bool IsMissed() const;

  /// Returns the summary for people, in several lines.
  std::string GetText() const;

  /// Returns it for programs. Angles are in degrees.
  JsonValue GetJson() const;

 private:
  /// The largest of some values with the line where it was met; the line is 0 while there is none.
  struct Worst {
    double value = 0.0;
    std::uint64_t line = 0;

    void Take(double candidate, std::uint64_t atLine);
  };

  struct AxisSum {
    double smallest = 0.0;
    double largest = 0.0;
    double length = 0.0;
    double last = 0.0;
    std::uint64_t outCount = 0;
    Worst outWorst;
    std::uint64_t blockingCount = 0;
    Worst blockingWorst;
  };

  void AddUnreachable(const PointResult& result, std::uint64_t line);
  void AddReached(const PointResult& result, const Orvo::Kin::MachinePosition& position,
                  std::uint64_t line);
  std::string GetCountsText() const;
  std::string GetAxesText() const;
  std::string GetNotesText() const;

  std::vector<MainAxis> axes_;
  std::vector<AxisSum> sums_;
  std::uint64_t pointCount_ = 0;
  std::uint64_t unreachableCount_ = 0;
  std::uint64_t outCount_ = 0;
  std::uint64_t freeCount_ = 0;
  std::uint64_t snappedCount_ = 0;
  std::uint64_t notUnitCount_ = 0;
  std::uint64_t directionOutOfReachCount_ = 0;
  std::uint64_t directionOutOfRangeCount_ = 0;
  std::uint64_t firstUnreachableLine_ = 0;
  std::uint64_t firstOutLine_ = 0;
  Worst tipResidual_;
  Worst directionResidualDeg_;
  Worst snappedDirectionResidualDeg_;
};

}  // namespace OrvoTool
