#include "exchange/MachineTree.h"

#include "exchange/TextEncoding.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Kin/EntityLink.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace Orvo::Exchange {
namespace {

using Kin::Entity;
using Kin::EntityLink;

void RequireFinite(const Entity& entity, const double* values, int count, const char* what) {
  for (int i = 0; i < count; ++i) {
    if (!std::isfinite(values[i])) {
      throw ExchangeError(Describe(entity) + ": " + what + " isn't finite");
    }
  }
}

/// Fills in what moves an element.
void SetMotion(const Kin::Machine& machine, TreeNode* node) {
  const Entity& entity = *node->entity;
  const EntityLink& link = entity.GetEntityLink();
  const int reg = entity.GetRegister().GetVal();
  const bool hasRegister = reg >= 0 && reg < machine.GetRegisterNb().GetVal();
  switch (link.GetEntityLinkType()) {
    case Kin::EntityLinkTypeLinear:
    case Kin::EntityLinkTypeRotary: {
      if (!hasRegister) {
        return;
      }
      const bool isRotary = link.GetEntityLinkType() == Kin::EntityLinkTypeRotary;
      RequireFinite(entity, link.GetDir(), 3, "the direction");
      node->motion = isRotary ? Motion::Rotary : Motion::Linear;
      node->reg = reg;
      node->direction = link.GetDir();
      if (isRotary) {
        RequireFinite(entity, link.GetCenter(), 3, "the center");
        node->pivot = link.GetCenter();
        node->origin = link.GetCenter();
      } else {
        const double zeroRef = link.GetZeroRef();
        RequireFinite(entity, &zeroRef, 1, "the zero reference");
        node->origin = node->direction * zeroRef;
      }
      return;
    }
    case Kin::EntityLinkTypePosition:
      RequireFinite(entity, link.GetPosition(), 16, "the frame");
      node->frame = link.GetPosition();
      node->origin = node->frame.GetTrans();
      return;
    default:
      return;
  }
}

}  // namespace

std::string Describe(const Entity& entity) {
  return "element " + std::to_string(entity.GetEntityId().GetVal()) + " '" +
         Utf8FromWide(entity.GetEntityName()) + "'";
}

void RequireScale(double metersPerUnit) {
  if (!(metersPerUnit > 0.0) || !std::isfinite(metersPerUnit)) {
    throw ExchangeError("the scale, in meters a unit, must be a positive number");
  }
}

std::vector<TreeNode> MakeTree(const Kin::Machine& machine) {
  if (!machine.IsFinished()) {
    throw ExchangeError(
        "the machine isn't finished: it has no head, no table, fewer than three linear axes or a "
        "cycle of parents");
  }
  std::vector<TreeNode> nodes;
  std::unordered_map<const Entity*, std::size_t> places;
  for (const Entity& entity : machine.GetKinematic().GetListEntity()) {
    places.emplace(&entity, nodes.size());
    TreeNode node;
    node.entity = &entity;
    SetMotion(machine, &node);
    nodes.push_back(std::move(node));
  }
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    TreeNode& node = nodes[i];
    const Entity* const parent = node.entity->GetParentEntity();
    const auto found = places.find(parent);
    node.parent = found == places.end() ? NoParent : found->second;
    if (node.parent != NoParent) {
      nodes[node.parent].children.push_back(i);
      // The parent's node stands in its pivot.
      node.origin -= nodes[node.parent].pivot;
    }
  }
  return nodes;
}

double DepartureFromRotation(const Matrix43& frame) {
  Matrix43 copy = frame;
  const Vector3D columns[] = {copy.GetU(), copy.GetV(), copy.GetW()};
  double departure = 0.0;
  for (int i = 0; i < 3; ++i) {
    for (int k = i; k < 3; ++k) {
      departure = std::max(departure, std::abs(columns[i] * columns[k] - (i == k ? 1.0 : 0.0)));
    }
  }
  Vector3D cross = columns[0];
  const bool isRightHanded = (cross & columns[1]) * columns[2] > 0.0;
  return isRightHanded ? departure : std::numeric_limits<double>::infinity();
}

}  // namespace Orvo::Exchange
