#pragma once

#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace Orvo::Testing {

/// Numbers at which arithmetic stops being plain, and some on either side of them.
inline constexpr double EdgeNumbers[] = {std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(),
                                         0.0,
                                         -0.0,
                                         std::numeric_limits<double>::denorm_min(),
                                         -std::numeric_limits<double>::denorm_min(),
                                         std::numeric_limits<double>::min(),
                                         1e-310,
                                         1e-200,
                                         -1e-161,
                                         1e154,
                                         -1e155,
                                         1e300,
                                         1e308,
                                         -1e308,
                                         std::numeric_limits<double>::max(),
                                         std::numeric_limits<double>::lowest()};

/// Whole numbers at the ends of int, of what is defined and of what a table holds.
inline constexpr int EdgeInts[] = {std::numeric_limits<int>::min(),
                                   std::numeric_limits<int>::min() + 1,
                                   -16777216,
                                   -2,
                                   -1,
                                   0,
                                   1,
                                   6,
                                   16777215,
                                   16777216,
                                   std::numeric_limits<int>::max() - 1,
                                   std::numeric_limits<int>::max()};

/// A call of the library as a function of doubles.
struct EdgeOperation {
  std::string name;

  /// Ordinary arguments.
  std::vector<double> plain;

  /// What a NaN gives, one character for each argument: 'n' some result is NaN, '0' the first
  /// result is 0 or false, '1' it is true, '.' something else.
  std::string nan;

  /// Makes the call and returns all its results, flags as 0 and 1.
  std::function<std::vector<double>(const double*)> call;
};

/// Holds an operation to what every call must do: it ends, whatever stands in one, two or all of
/// its arguments; NaN gives what the operation says; the same call gives the same bits again; and
/// an ordinary call afterwards gives the bits that it gave before.
void HoldAtTheEdge(const EdgeOperation& operation);

}  // namespace Orvo::Testing
