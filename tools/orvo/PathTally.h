#pragma once

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/SolvedPoint.h>

#include <cstdint>
#include <map>

namespace OrvoTool {

/// Counts the points of a whole path by how they came out.
struct PathTally {
  /// Takes the next point.
  void Add(const Orvo::Path::SolvedPoint& point);

  std::uint64_t unreachableNb = 0;  ///< without an answer, for more than linear ranges
  std::uint64_t outOfRangeNb = 0;   ///< without an answer, for linear ranges alone

  /// The first diagnosis of each kind.
  std::map<Orvo::Path::DiagnosisCode, Orvo::Path::Diagnosis> first;
};

}  // namespace OrvoTool
