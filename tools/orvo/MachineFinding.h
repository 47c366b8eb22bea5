#pragma once

#include "XmlOutline.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace OrvoTool {

/// What can be wrong with a machine file. The numbers are stable: from 100 on it is about the text,
/// from 200 on about elements, from 300 on about program systems, from 400 on about the collision
/// check and mesh files, from 900 on about what the library says that none of the others did.
enum class FindingCode : int {
  NotWellFormed = 101,
  NoMachine = 102,
  PartMissing = 103,
  NotANumber = 104,
  UnknownWord = 105,
  NumberTooLarge = 106,
  TextBehindNumber = 107,
  UnknownElement = 108,
  UnknownAttribute = 109,
  GivenTwice = 110,
  LinkIncomplete = 111,
  NotFinite = 112,
  NotUtf8 = 113,
  LooseXml = 114,

  DuplicateId = 201,
  NoId = 202,
  DuplicateRegister = 203,
  NoRegister = 204,
  NeedlessRegister = 205,
  ParentCycle = 206,
  ParentMissing = 207,
  Unconnected = 208,
  NoDirection = 209,
  DirectionNotUnit = 210,
  FrameNotRigid = 211,
  RangeReversed = 212,
  LinkNotComputable = 213,
  NoName = 214,
  DuplicateName = 215,
  NoHead = 216,
  NoTable = 217,
  FewLinearAxes = 218,
  RegisterFarAway = 219,

  HeadMissing = 301,
  TableMissing = 302,
  AxisMissing = 303,
  AxisOfWrongKind = 304,
  AxisNamedTwice = 305,
  AxisNotNamed = 306,
  AxisNotBetween = 307,
  ObliqueAxes = 308,
  AxesDontSpanSpace = 309,
  ParallelRotaryAxes = 310,
  NoCommonRoot = 311,
  DuplicateSystemName = 312,

  CollisionElementMissing = 401,
  MeshFileMissing = 402,
  MeshFileFaulty = 403,

  NotReadByLibrary = 901,
  NotValidByLibrary = 902,
  NotComputable = 903
};

enum class Severity : int { Warning, Error };

/// One thing that is wrong.
struct MachineFinding {
  FindingCode code = FindingCode::NotWellFormed;
  TextPlace place;  ///< line 0 where the finding is about the file as a whole
  std::optional<int> elementId;
  std::string elementName;
  std::string text;  ///< a sentence without its end, UTF-8
};

/// Returns a code's name, such as "duplicate-id". It is as stable as the number.
const char* GetFindingName(FindingCode code);

/// Returns whether what a code stands for is an error or worth a warning.
Severity GetSeverity(FindingCode code);

/// All that is wrong with a file, in the order in which it was found.
class MachineFindings {
 public:
  /// More are counted but not kept.
  static constexpr std::size_t MaxKept = 10000;

  void Add(MachineFinding finding);

  /// Adds one that is about no element.
  void Add(FindingCode code, const TextPlace& place, const std::string& text);

  /// Puts them into the order of the file.
  void Sort();

  const std::vector<MachineFinding>& GetAll() const { return findings_; }
  std::size_t GetErrorNb() const { return errorNb_; }
  std::size_t GetWarningNb() const { return warningNb_; }

 private:
  std::vector<MachineFinding> findings_;
  std::size_t errorNb_ = 0;
  std::size_t warningNb_ = 0;
};

}  // namespace OrvoTool
