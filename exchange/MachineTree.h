#pragma once

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Orvo::Exchange {

/// How an element moves against its parent.
enum class Motion : int { Fixed, Linear, Rotary };

/// An element as other programs have it: a node whose frame is the element's frame, moved into the
/// center of a rotary axis (the pivot), so that the axis turns the node about its own origin.
///
/// Lengths are the machine's.
struct TreeNode {
  const Kin::Entity* entity = nullptr;
  std::size_t parent = 0;             ///< the place of the parent, or NoParent
  std::vector<std::size_t> children;  ///< in the order of the machine
  Motion motion = Motion::Fixed;
  int reg = -1;        ///< the register that moves it; -1 for fixed ones
  Vector3D pivot;      ///< in the element's frame
  Vector3D origin;     ///< parentNodeFromNode's origin with the axis at 0
  Vector3D direction;  ///< unit, of an axis, in the parent's frame
  Matrix43 frame;      ///< of fixed elements: parentFromElement
};

constexpr std::size_t NoParent = static_cast<std::size_t>(-1);

/// Returns the nodes of a finished machine in the order of its elements. An element that can't be
/// placed stands where its parent is.
/// @throws ExchangeError: the machine isn't finished, or a number of a link isn't finite
std::vector<TreeNode> MakeTree(const Kin::Machine& machine);

/// Names an element for messages.
std::string Describe(const Kin::Entity& entity);

/// Throws unless a scale is a positive, finite number.
void RequireScale(double metersPerUnit);

/// Returns parentFromElement's largest departure from a rotation: of lengths from 1, of angles from
/// right ones. Infinite where it isn't right-handed.
double DepartureFromRotation(const Matrix43& frame);

}  // namespace Orvo::Exchange
