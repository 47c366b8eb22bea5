#include "MachineFinding.h"

#include <algorithm>
#include <utility>

namespace OrvoTool {
namespace {

struct CodeEntry {
  FindingCode code;
  const char* name;
  Severity severity;
};

constexpr CodeEntry Codes[] = {
    {FindingCode::NotWellFormed, "not-well-formed", Severity::Error},
    {FindingCode::NoMachine, "no-machine", Severity::Error},
    {FindingCode::PartMissing, "part-missing", Severity::Error},
    {FindingCode::NotANumber, "not-a-number", Severity::Error},
    {FindingCode::UnknownWord, "unknown-word", Severity::Error},
    {FindingCode::NumberTooLarge, "number-too-large", Severity::Error},
    {FindingCode::TextBehindNumber, "text-behind-number", Severity::Warning},
    {FindingCode::UnknownElement, "unknown-element", Severity::Warning},
    {FindingCode::UnknownAttribute, "unknown-attribute", Severity::Warning},
    {FindingCode::GivenTwice, "given-twice", Severity::Warning},
    {FindingCode::LinkIncomplete, "link-incomplete", Severity::Error},
    {FindingCode::NotFinite, "not-finite", Severity::Error},
    {FindingCode::NotUtf8, "not-utf8", Severity::Warning},
    {FindingCode::LooseXml, "loose-xml", Severity::Warning},
    {FindingCode::DuplicateId, "duplicate-id", Severity::Error},
    {FindingCode::NoId, "no-id", Severity::Error},
    {FindingCode::DuplicateRegister, "duplicate-register", Severity::Error},
    {FindingCode::NoRegister, "no-register", Severity::Error},
    {FindingCode::NeedlessRegister, "needless-register", Severity::Warning},
    {FindingCode::ParentCycle, "parent-cycle", Severity::Error},
    {FindingCode::ParentMissing, "parent-missing", Severity::Error},
    {FindingCode::Unconnected, "unconnected", Severity::Warning},
    {FindingCode::NoDirection, "no-direction", Severity::Error},
    {FindingCode::DirectionNotUnit, "direction-not-unit", Severity::Warning},
    {FindingCode::FrameNotRigid, "frame-not-rigid", Severity::Error},
    {FindingCode::RangeReversed, "range-reversed", Severity::Error},
    {FindingCode::LinkNotComputable, "link-not-computable", Severity::Error},
    {FindingCode::NoName, "no-name", Severity::Warning},
    {FindingCode::DuplicateName, "duplicate-name", Severity::Warning},
    {FindingCode::NoHead, "no-head", Severity::Error},
    {FindingCode::NoTable, "no-table", Severity::Error},
    {FindingCode::FewLinearAxes, "few-linear-axes", Severity::Error},
    {FindingCode::RegisterFarAway, "register-far-away", Severity::Warning},
    {FindingCode::HeadMissing, "head-missing", Severity::Error},
    {FindingCode::TableMissing, "table-missing", Severity::Error},
    {FindingCode::AxisMissing, "axis-missing", Severity::Error},
    {FindingCode::AxisOfWrongKind, "axis-of-wrong-kind", Severity::Error},
    {FindingCode::AxisNamedTwice, "axis-named-twice", Severity::Error},
    {FindingCode::AxisNotNamed, "axis-not-named", Severity::Error},
    {FindingCode::AxisNotBetween, "axis-not-between", Severity::Error},
    {FindingCode::ObliqueAxes, "oblique-linear-axes", Severity::Warning},
    {FindingCode::AxesDontSpanSpace, "axes-dont-span-space", Severity::Error},
    {FindingCode::ParallelRotaryAxes, "parallel-rotary-axes", Severity::Warning},
    {FindingCode::NoCommonRoot, "no-common-root", Severity::Error},
    {FindingCode::DuplicateSystemName, "duplicate-system-name", Severity::Warning},
    {FindingCode::CollisionElementMissing, "collision-element-missing", Severity::Warning},
    {FindingCode::MeshFileMissing, "mesh-file-missing", Severity::Warning},
    {FindingCode::MeshFileFaulty, "mesh-file-faulty", Severity::Warning},
    {FindingCode::NotReadByLibrary, "not-read", Severity::Error},
    {FindingCode::NotValidByLibrary, "not-valid", Severity::Error},
    {FindingCode::NotComputable, "not-computable", Severity::Error},
};

const CodeEntry& EntryOf(FindingCode code) {
  for (const CodeEntry& entry : Codes) {
    if (entry.code == code) {
      return entry;
    }
  }
  return Codes[0];
}

}  // namespace

const char* GetFindingName(FindingCode code) { return EntryOf(code).name; }

Severity GetSeverity(FindingCode code) { return EntryOf(code).severity; }

void MachineFindings::Add(MachineFinding finding) {
  (GetSeverity(finding.code) == Severity::Error ? errorNb_ : warningNb_) += 1;
  if (findings_.size() < MaxKept) {
    findings_.push_back(std::move(finding));
  }
}

void MachineFindings::Add(FindingCode code, const TextPlace& place, const std::string& text) {
  MachineFinding finding;
  finding.code = code;
  finding.place = place;
  finding.text = text;
  Add(std::move(finding));
}

void MachineFindings::Sort() {
  std::stable_sort(findings_.begin(), findings_.end(),
                   [](const MachineFinding& a, const MachineFinding& b) {
                     return a.place.line != b.place.line ? a.place.line < b.place.line
                                                         : a.place.column < b.place.column;
                   });
}

}  // namespace OrvoTool
