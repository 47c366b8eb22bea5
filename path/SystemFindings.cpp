#include "path/SystemFindings.h"

#include "path/Vec3.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Matrix43.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace Orvo::Path {
namespace {

constexpr const char* PlaceNames[] = {"X", "Y", "Z", "first rotary", "second rotary"};

/// Linear axes are at right angles within this, in radians.
constexpr double RightAngle = 1e-9;

Diagnosis Misfit(const MainAxis* axis, const std::string& detail) {
  Diagnosis diagnosis(DiagnosisCode::RegisterUnfit);
  diagnosis.detail = detail;
  if (axis != nullptr) {
    ElementFinding finding;
    finding.element = axis->name;
    finding.reg = axis->reg.GetVal();
    diagnosis.elements.push_back(finding);
  }
  return diagnosis;
}

bool Carries(const Kin::Entity* axis, const Kin::Entity* element) {
  while (element != nullptr && element != axis) {
    element = element->GetParentEntity();
  }
  return element != nullptr;
}

const Kin::Entity* RootOf(const Kin::Entity* element) {
  while (element->GetParentEntity() != nullptr) {
    element = element->GetParentEntity();
  }
  return element;
}

/// Says why an element can't be the axis of a place, or nothing.
std::string WhyUnfit(const Kin::Entity& entity, bool isRotary, const Kin::Entity& head,
                     const Kin::Entity& table) {
  const Kin::EntityLinkType type = entity.GetEntityLink().GetEntityLinkType();
  if (entity.GetEntityType() != Kin::EntityTypeAxis ||
      type != (isRotary ? Kin::EntityLinkTypeRotary : Kin::EntityLinkTypeLinear)) {
    return isRotary ? "is no rotary axis" : "is no linear axis";
  }
  const bool carriesHead = Carries(&entity, &head);
  const bool carriesTable = Carries(&entity, &table);
  if (!carriesHead && !carriesTable) {
    return "carries neither the head nor the table";
  }
  return carriesHead && carriesTable ? "carries the head and the table alike" : "";
}

void CheckAxes(const Kin::Machine& machine, const MainAxes& axes, const Kin::Entity& head,
               const Kin::Entity& table, std::vector<Diagnosis>* findings) {
  for (std::size_t i = 0; i < MainAxisNb; ++i) {
    const MainAxis& axis = axes.axes[i];
    const std::string place = PlaceNames[i];
    if (!axis.reg.IsDefined()) {
      if (i < FirstRotary) {
        findings->push_back(Misfit(nullptr, "the program system names no " + place + " axis"));
      }
      continue;
    }
    const std::string number = "register " + std::to_string(axis.reg.GetVal());
    if (!axis.isPresent) {
      findings->push_back(Misfit(
          &axis, fmt::format("{}, named as the {} axis, belongs to no element", number, place)));
      continue;
    }
    for (std::size_t k = 0; k < i; ++k) {
      if (axes.axes[k].reg.GetVal() == axis.reg.GetVal()) {
        findings->push_back(Misfit(&axis, fmt::format("{} is named as the {} and as the {} axis",
                                                      number, PlaceNames[k], place)));
      }
    }
    const Kin::Entity& entity = *machine.GetKinematic().GetEntity(axis.reg);
    const std::string why = WhyUnfit(entity, i >= FirstRotary, head, table);
    if (!why.empty()) {
      findings->push_back(Misfit(
          &axis, fmt::format("{} ({}), named as the {} axis, {}", axis.name, number, place, why)));
    }
  }
}

}  // namespace

std::vector<Diagnosis> FindMisfits(const Kin::Machine& machine,
                                   const Kin::ProgramSystem& programSystem, const MainAxes& axes) {
  std::vector<Diagnosis> findings;
  if (!machine.IsFinished()) {
    findings.push_back(Misfit(nullptr, "the machine is not finished"));
    return findings;
  }
  const Kin::Kinematic& kinematic = machine.GetKinematic();
  const Kin::Entity* const head = kinematic.GetEntityHead(programSystem.GetHeadIndex());
  const Kin::Entity* const table = kinematic.GetEntityTable(programSystem.GetTableIndex());
  if (head == nullptr || table == nullptr) {
    const bool isHead = head == nullptr;
    const int index =
        isHead ? programSystem.GetHeadIndex().GetVal() : programSystem.GetTableIndex().GetVal();
    findings.push_back(Misfit(nullptr, std::string("the machine has no ") +
                                           (isHead ? "head " : "table ") + std::to_string(index)));
    return findings;
  }
  if (RootOf(head) != RootOf(table)) {
    findings.push_back(Misfit(nullptr, "head and table have no common root"));
    return findings;
  }
  CheckAxes(machine, axes, *head, *table, &findings);
  return findings;
}

void AddChainFindings(PointSolverImplementation* own) {
  if (!IsFinite(FromVector(own->offset))) {
    Diagnosis diagnosis(DiagnosisCode::ChainUnfit);
    diagnosis.detail = "the tool offset holds what is no number";
    own->findings.push_back(diagnosis);
    return;
  }
  if (!own->model.IsValid()) {
    // The calculator still solves; the answers are its own, unpolished.
    Diagnosis diagnosis(DiagnosisCode::ChainUnfit);
    Matrix43 frame;
    if (!own->compute.ComputeMcsToToolTcs(own->base, own->programSystem.GetHeadIndex(),
                                          own->programSystem.GetTableIndex(), own->offset,
                                          &frame)) {
      diagnosis.detail = "the links between head and table can't be computed";
      own->findings.push_back(diagnosis);
    }
    return;
  }
  const ChainModel::Trig trig = ChainModel::MakeTrig({0.0, 0.0});
  double largest = 0.0;
  for (std::size_t i = 0; i < 3; ++i) {
    const Vec3 a = own->model.LinearDirection(trig, i);
    const Vec3 b = own->model.LinearDirection(trig, (i + 1) % 3);
    largest = std::max(largest, std::abs(AngleBetween(a, b) - Pi / 2.0));
  }
  if (largest <= RightAngle) {
    return;
  }
  Diagnosis diagnosis(DiagnosisCode::ObliqueLinearAxes);
  ToolPoint point;
  const Vec3 tip = own->model.TipAtZero(trig);
  point.point = ToVector(tip + Vec3{100.0, 100.0, 100.0});
  point.direction = ToVector(own->model.Direction(trig));
  Answer exact;
  Answer rectangular;
  own->Complete(FromVector(point.point), {0.0, 0.0}, &exact);
  own->CompleteByCalculator(FromVector(point.point), &rectangular);
  const auto miss = [own, &trig, &tip, &point](const AxisValues& values) {
    Vec3 reached = tip;
    for (std::size_t i = 0; i < 3; ++i) {
      reached = reached + own->model.LinearDirection(trig, i) * values[i];
    }
    return Norm(reached - FromVector(point.point));
  };
  diagnosis.quantities = {{"off-right-angle", DegFromRad(largest), "deg"},
                          {"residual-rectangular", miss(rectangular.values), "length"},
                          {"residual", miss(exact.values), "length"}};
  for (std::size_t i = 0; i < FirstRotary; ++i) {
    diagnosis.elements.push_back({own->axes.axes[i].name, own->axes.axes[i].reg.GetVal(), -1, {}});
  }
  own->findings.push_back(diagnosis);
}

}  // namespace Orvo::Path
