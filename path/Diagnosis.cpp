#include "path/TextEncoding.h"

#include <Orvo/Path/Diagnosis.h>

#include <fmt/format.h>

#include <cmath>
#include <string_view>

namespace Orvo::Path {
namespace {

double Find(const std::vector<Quantity>& quantities, std::string_view name) {
  for (const Quantity& quantity : quantities) {
    if (quantity.name == name) {
      return quantity.value;
    }
  }
  return 0.0;
}

/// Lists the elements, each once.
std::string Names(const Diagnosis& diagnosis) {
  std::string names;
  for (std::size_t i = 0; i < diagnosis.elements.size(); ++i) {
    const std::string& name = diagnosis.elements[i].element;
    bool isNew = true;
    for (std::size_t k = 0; k < i; ++k) {
      isNew = isNew && diagnosis.elements[k].element != name;
    }
    if (isNew) {
      names += (names.empty() ? "" : " and ") + name;
    }
  }
  return names;
}

/// Tells of each element that lies outside how far.
std::string Excesses(const Diagnosis& diagnosis, std::string_view unit) {
  std::string text;
  for (const ElementFinding& element : diagnosis.elements) {
    const double excess = Find(element.quantities, "excess");
    if (excess == 0.0) {
      continue;
    }
    const bool isAbove = excess > 0.0;
    text += fmt::format(
        "{}{}{} would be {:.6g}{}, {:.4g} {} {:.6g}", text.empty() ? "" : "; ",
        element.solution >= 0 ? fmt::format("solution {}: ", element.solution + 1) : std::string(),
        element.element, Find(element.quantities, "nearest"), unit, std::abs(excess),
        isAbove ? "above" : "below", Find(element.quantities, isAbove ? "max" : "min"));
  }
  return text;
}

std::string Sentence(const Diagnosis& d) {
  switch (d.GetCode()) {
    case DiagnosisCode::None:
      return "all is well";
    case DiagnosisCode::OrientationUnreachable:
      if (d.quantities.empty()) {
        return "no values of the rotary axes give the direction";
      }
      return fmt::format(
          "no values of {} give the direction: {:.6g} degrees are missing, the nearest reachable "
          "direction is ({:.6f}, {:.6f}, {:.6f})",
          d.elements.empty() ? "the rotary axes" : Names(d), d.Get("missing"), d.Get("nearest-i"),
          d.Get("nearest-j"), d.Get("nearest-k"));
    case DiagnosisCode::RotaryRange:
      return "the direction needs rotary values out of range: " + Excesses(d, " degrees");
    case DiagnosisCode::LinearRange:
      return "the point needs linear values out of range: " + Excesses(d, "");
    case DiagnosisCode::LinearUnsolvable:
      return "the linear axes don't span space where the rotary axes stand";
    case DiagnosisCode::RequestInvalid:
      return "the point or the direction holds what is no number, or the direction is null";
    case DiagnosisCode::NearSingular:
      return fmt::format(
          "the direction lies {:.4g} degrees from the axis {}, which turns by {:.4g} degrees here, "
          "{:.4g} degrees for each unit of length",
          d.Get("angle"), Names(d), d.Get("turn"), d.Get("turn-per-length"));
    case DiagnosisCode::BranchChange:
      return fmt::format(
          "the move goes over to the other rotary solution; {} by up to {:.4g} degrees",
          d.elements.size() == 1 ? Names(d) + " turns" : Names(d) + " turn", d.Get("turn"));
    case DiagnosisCode::Unwinding:
      return fmt::format("{} by {:.6g} degrees",
                         d.elements.size() == 1 ? Names(d) + " unwinds" : Names(d) + " unwind",
                         d.Get("turn"));
    case DiagnosisCode::HeldAxis:
      return fmt::format(
          "{} stands free here and does not turn for the direction, which deviates by {:.4g} "
          "degrees",
          Names(d), d.Get("deviation"));
    case DiagnosisCode::SegmentDeviation:
      return fmt::format(
          "on the way the tip leaves the straight line by {:.4g} and the direction by {:.4g} "
          "degrees",
          d.Get("tip-deviation"), d.Get("direction-deviation"));
    case DiagnosisCode::ObliqueLinearAxes:
      return fmt::format(
          "the linear axes stand up to {:.6g} degrees off the right angle; taken for rectangular, "
          "a point 100 off in X, Y and Z would be missed by {:.4g}, solved as they stand by {:.2g}",
          d.Get("off-right-angle"), d.Get("residual-rectangular"), d.Get("residual"));
    case DiagnosisCode::RegisterUnfit:
    case DiagnosisCode::ChainUnfit:
      return d.detail;
  }
  return d.detail;
}

std::string JsonOf(const std::vector<Quantity>& quantities) {
  std::string json = "{";
  for (const Quantity& quantity : quantities) {
    json += fmt::format("{}{}:{{\"value\":{},\"unit\":{}}}", json.size() > 1 ? "," : "",
                        JsonString(quantity.name), JsonNumber(quantity.value),
                        JsonString(quantity.unit));
  }
  return json + "}";
}

}  // namespace

Diagnosis::Diagnosis(DiagnosisCode code) : code_(code) {}

const char* Diagnosis::GetName() const {
  switch (code_) {
    case DiagnosisCode::None:
      return "none";
    case DiagnosisCode::OrientationUnreachable:
      return "orientation-unreachable";
    case DiagnosisCode::RotaryRange:
      return "rotary-range";
    case DiagnosisCode::LinearRange:
      return "linear-range";
    case DiagnosisCode::LinearUnsolvable:
      return "linear-unsolvable";
    case DiagnosisCode::RequestInvalid:
      return "request-invalid";
    case DiagnosisCode::NearSingular:
      return "near-singular";
    case DiagnosisCode::BranchChange:
      return "branch-change";
    case DiagnosisCode::Unwinding:
      return "unwinding";
    case DiagnosisCode::HeldAxis:
      return "held-axis";
    case DiagnosisCode::SegmentDeviation:
      return "segment-deviation";
    case DiagnosisCode::ObliqueLinearAxes:
      return "oblique-linear-axes";
    case DiagnosisCode::RegisterUnfit:
      return "register-unfit";
    case DiagnosisCode::ChainUnfit:
      return "chain-unfit";
  }
  return "none";
}

bool Diagnosis::IsFailure() const {
  const int number = static_cast<int>(code_);
  return number / 100 == 1 || number / 100 == 3;
}

double Diagnosis::Get(const char* name) const { return Find(quantities, name); }

std::string Diagnosis::MakeText() const {
  std::string text;
  if (point != NoPoint) {
    text = line != 0 ? fmt::format("point {} (line {}): ", point + 1, line)
                     : fmt::format("point {}: ", point + 1);
  }
  return text + Sentence(*this);
}

std::string Diagnosis::MakeJson() const {
  std::string json =
      fmt::format("{{\"code\":{},\"name\":{}", static_cast<int>(code_), JsonString(GetName()));
  if (point != NoPoint) {
    json += fmt::format(",\"point\":{}", point);
  }
  if (line != 0) {
    json += fmt::format(",\"line\":{}", line);
  }
  json += ",\"quantities\":" + JsonOf(quantities) + ",\"elements\":[";
  for (std::size_t i = 0; i < elements.size(); ++i) {
    json += fmt::format("{}{{\"element\":{},\"register\":{}", i > 0 ? "," : "",
                        JsonString(elements[i].element), elements[i].reg);
    if (elements[i].solution >= 0) {
      json += fmt::format(",\"solution\":{}", elements[i].solution);
    }
    json += ",\"quantities\":" + JsonOf(elements[i].quantities) + "}";
  }
  return json + "],\"text\":" + JsonString(MakeText()) + "}";
}

}  // namespace Orvo::Path
