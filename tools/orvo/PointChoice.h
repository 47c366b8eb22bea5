#pragma once

#include "ExitCode.h"
#include "PointRequest.h"

#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Path/SolvedPoint.h>
#include <Orvo/Vector3D.h>

#include <string>
#include <vector>

namespace OrvoTool {

/// An axis that a solution takes out of its range.
struct AxisExcess {
  std::size_t place = 0;  ///< among the main axes
  double value = 0.0;     ///< the nearest equivalent, in the machine's unit or in degrees
  double excess = 0.0;    ///< above the upper limit, or, negative, below the lower one
};

/// One exact solution of a request.
struct PointSolution {
  Orvo::Path::Answer answer;

  /// The values, each rotary one by whole turns to where it is nearest to the start within its
  /// range; nearest to the start where no equivalent lies there.
  Orvo::Path::AxisValues nearest = {};

  std::vector<AxisExcess> excesses;
  double rotaryTravel = 0.0;  ///< the sum of the rotary moves from the start, in degrees
  Orvo::Path::Residual residual;
};

/// All that is to be known of one request.
struct PointChoice {
  Orvo::Path::MainAxes axes;
  std::vector<Orvo::Path::Diagnosis> systemFindings;
  bool isUsable = false;  ///< if not, the rest is empty

  std::vector<PointSolution> solutions;
  double singularAngle = 0.0;  ///< see Answers::singularAngle
  int freePlace = -1;          ///< the rotary axis that is free in singular directions, or -1

  /// Tells whether the direction leaves that axis free.
  bool IsSingular() const;

  /// Says of the free axis what becomes of it in the choice: that it keeps its value, or goes to
  /// another one where it must.
  std::string DescribeFreeAxis() const;

  /// Tells whether the direction is singular, or so near to it that the library says so of moves.
  bool IsNearSingular() const;

  /// What a path of this one point gives: the choice, and what is to be said of it.
  Orvo::Path::SolvedPoint chosen;
  int chosenSolution = -1;  ///< the solution that it is; -1 where it holds the free axis

  /// What is to be said of the way there from the start, where one was given.
  std::vector<Orvo::Path::Diagnosis> moveFindings;

  bool hasShift = false;
  Orvo::Vector3D shift;  ///< what would bring the point into the linear ranges

  /// Returns the first record that says why there is no answer, or null.
  const Orvo::Path::Diagnosis* FindFailure() const;
};

/// Solves a request in every way.
PointChoice ChooseForPoint(const PointRequest& request);

/// Returns the exit status that goes with what came out.
ExitCode StatusOf(const PointChoice& choice);

/// Returns a record for a program, and for people: its code, name and sentence, then its numbers.
JsonValue DiagnosisJson(const Orvo::Path::Diagnosis& diagnosis);
std::string DiagnosisText(const Orvo::Path::Diagnosis& diagnosis);

}  // namespace OrvoTool
