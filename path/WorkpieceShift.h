#pragma once

#include "path/Vec3.h"

#include <cstddef>
#include <vector>

namespace Orvo::Path {

/// Finds the shortest move that meets conditions of the form normal * move <= room.
///
/// Of many conditions those with the least room are kept: enough for the exact answer, or to tell
/// that it is not known.
class WorkpieceShift {
 public:
  /// Adds a condition; the normal is of any length above 0.
  void Add(const Vec3& normal, double room);

  /// Computes the move. False where there is none, or where it is longer than what is known.
  bool Find(Vec3* move) const;

 private:
  struct Condition {
    Vec3 normal;
    double room = 0.0;
  };

  static bool FindAmong(const std::vector<Condition>& conditions, Vec3* move);

  std::vector<Condition> conditions_;
  double leastDropped_ = 1e300;
};

}  // namespace Orvo::Path
