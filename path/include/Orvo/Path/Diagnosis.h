#pragma once

#include <Orvo/Path/Export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Orvo::Path {

/// Why a request has no good answer, or what to know about the answer it has. The numbers are
/// stable: from 100 on there is no answer, from 200 on there is one to look at, from 300 on the
/// program system can't be computed with.
enum class DiagnosisCode : int {
  None = 0,
  OrientationUnreachable = 101,  ///< no values of the rotary axes give the direction
  RotaryRange = 102,             ///< only values outside the range of a rotary axis do
  LinearRange = 103,             ///< a linear axis would leave its range
  LinearUnsolvable = 104,        ///< the linear axes don't span space where the rotary ones stand
  RequestInvalid = 105,          ///< the point or the direction is no request at all
  NearSingular = 201,            ///< a rotary axis moves far, the direction being nearly along it
  BranchChange = 202,            ///< the move goes over to the other rotary solution
  Unwinding = 203,               ///< a rotary axis turns by more than half a turn
  HeldAxis = 204,                ///< a free axis was held or interpolated; the direction deviates
  SegmentDeviation = 205,        ///< between two points the tool leaves the straight connection
  ObliqueLinearAxes = 206,       ///< the linear axes are not at right angles
  RegisterUnfit = 301,           ///< a head, table, register or axis doesn't fit
  ChainUnfit = 302               ///< the axes move the tool in a way that isn't computed here
};

/// A number with its unit.
struct Quantity {
  std::string name;    ///< for programs: lower case with hyphens
  double value = 0.0;  ///< in its unit
  std::string unit;    ///< "deg", "deg/mm", "1", "length" (the machine's unit), ...
};

/// What a diagnosis says of one element of the machine.
struct ElementFinding {
  std::string element;               ///< its name
  int reg = -1;                      ///< its register
  int solution = -1;                 ///< which rotary solution, 0 or 1; -1 where it is about none
  std::vector<Quantity> quantities;  ///< its numbers
};

/// Says why, and by how much: one record from which code, text and JSON are made.
class ORVO_PATH_API Diagnosis {
 public:
  /// Stands for a diagnosis that is about no point.
  static constexpr std::uint64_t NoPoint = ~std::uint64_t{0};

  /// Makes a record without numbers, about no point.
  explicit Diagnosis(DiagnosisCode code);

  /// Returns the code.
  DiagnosisCode GetCode() const { return code_; }

  /// Returns the code's name, for example "rotary-range". It is as stable as the number.
  const char* GetName() const;

  /// Tells whether there is no answer.
  bool IsFailure() const;

  /// The place of the point in its path, from 0, or NoPoint.
  std::uint64_t point = NoPoint;

  /// The line of the path's file, or 0.
  std::uint64_t line = 0;

  /// Numbers about the request as a whole.
  std::vector<Quantity> quantities;

  /// What is to be said of single elements.
  std::vector<ElementFinding> elements;

  /// What no number says: which register doesn't fit, and why. Often empty.
  std::string detail;

  /// Returns a number about the request, or 0 where there is none of that name.
  double Get(const char* name) const;

  /// Returns one sentence for people, UTF-8, without an end of line.
  std::string MakeText() const;

  /// Returns the record as a JSON object, UTF-8, in one line.
  std::string MakeJson() const;

 private:
  DiagnosisCode code_;
};

}  // namespace Orvo::Path
