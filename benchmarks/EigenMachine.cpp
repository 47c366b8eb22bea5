#include "EigenMachine.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <stdexcept>

namespace Orvo::Benchmarks {

namespace {

using Eigen::Vector3d;
using Kin::Entity;

constexpr double Pi = 3.141592653589793;

Vector3d FromOrvo(const Vector3D& v) { return Vector3d(v[0], v[1], v[2]); }

Eigen::Isometry3d FromOrvo(const Matrix43& frame) {
  const double* const m = frame;
  Eigen::Isometry3d result;
  result.matrix() = Eigen::Map<const Eigen::Matrix4d>(m);
  return result;
}

// The angle about an axis that turns one vector onto another, both seen along the axis.
double AngleAbout(const Vector3d& axis, const Vector3d& from, const Vector3d& to) {
  const Vector3d a = from - axis * axis.dot(from);
  const Vector3d b = to - axis * axis.dot(to);
  return std::atan2(axis.dot(a.cross(b)), a.dot(b));
}

// The whole turns that bring an angle nearest to a reference and into a range.
double Unwrap(double angle, double reference, bool isRangeChecked, double min, double max) {
  angle += 2.0 * Pi * std::round((reference - angle) / (2.0 * Pi));
  if (isRangeChecked) {
    while (angle < min - 1e-4) {
      angle += 2.0 * Pi;
    }
    while (angle > max + 1e-4) {
      angle -= 2.0 * Pi;
    }
  }
  return angle;
}

}  // namespace

EigenMachine::EigenMachine(const Kin::Machine& machine, const Kin::ProgramSystem& ps,
                           const Vector3D& toolOffset)
    : toolOffset_(FromOrvo(toolOffset)) {
  const Kin::Kinematic& kinematic = machine.GetKinematic();
  std::vector<const Entity*> order;
  for (const Entity& entity : kinematic.GetListEntity()) {
    order.push_back(&entity);
  }
  std::stable_sort(order.begin(), order.end(),
                   [](const Entity* a, const Entity* b) { return a->GetLevel() < b->GetLevel(); });
  std::map<const Entity*, int> places;
  for (const Entity* entity : order) {
    Element element;
    const Kin::EntityLink& link = entity->GetEntityLink();
    if (entity->GetParentEntity() != nullptr) {
      element.parent = places.at(entity->GetParentEntity());
    }
    element.reg = entity->GetRegister().GetVal();
    element.dir = FromOrvo(link.GetDir());
    element.center = FromOrvo(link.GetCenter());
    element.zeroReference = link.GetZeroRef();
    if (link.GetEntityLinkType() == Kin::EntityLinkTypeLinear) {
      element.kind = Kind::Linear;
    } else if (link.GetEntityLinkType() == Kin::EntityLinkTypeRotary) {
      element.kind = Kind::Rotary;
    } else if (link.GetEntityLinkType() == Kin::EntityLinkTypePosition) {
      element.fixed = FromOrvo(link.GetPosition());
    }
    places[entity] = static_cast<int>(elements_.size());
    ids_.push_back(entity->GetEntityId());
    elements_.push_back(element);
  }
  head_ = places.at(kinematic.GetEntityHead(ps.GetHeadIndex()));
  table_ = places.at(kinematic.GetEntityTable(ps.GetTableIndex()));
  for (int i = 0; i < 3; ++i) {
    linear_[i] = MakeMainAxis(machine, ps.GetMainLinear(i));
  }
  for (int i = 0; i < 2; ++i) {
    rotary_[i] = MakeMainAxis(machine, ps.GetMainRotary(i));
    rotary_[i].min *= Pi / 180.0;
    rotary_[i].max *= Pi / 180.0;
  }
}

EigenMachine::MainAxis EigenMachine::MakeMainAxis(const Kin::Machine& machine,
                                                  const Kin::Register& reg) const {
  const Entity* const entity = machine.GetKinematic().GetEntity(reg);
  if (entity == nullptr) {
    throw std::runtime_error("a program system without five axes");
  }
  MainAxis axis;
  for (std::size_t i = 0; i < elements_.size(); ++i) {
    if (ids_[i] == entity->GetEntityId()) {
      axis.element = static_cast<int>(i);
    }
  }
  axis.reg = reg.GetVal();
  axis.isOnHeadSide = IsAncestor(axis.element, head_) && !IsAncestor(axis.element, table_);
  axis.isRangeChecked = entity->GetCheckRangeAxis();
  axis.min = entity->GetRangeMin();
  axis.max = entity->GetRangeMax();
  return axis;
}

bool EigenMachine::IsAncestor(int ancestor, int element) const {
  for (; element >= 0; element = elements_[static_cast<std::size_t>(element)].parent) {
    if (element == ancestor) {
      return true;
    }
  }
  return false;
}

EigenMachine::Frame EigenMachine::Local(const Element& element, const Values& values) const {
  switch (element.kind) {
    case Kind::Linear: {
      const double value = values[static_cast<std::size_t>(element.reg)];
      return Frame(Eigen::Translation3d(element.dir * (element.zeroReference + value)));
    }
    case Kind::Rotary: {
      const double angle = values[static_cast<std::size_t>(element.reg)];
      Frame frame;
      frame.linear() = Eigen::AngleAxisd(angle, element.dir).toRotationMatrix();
      frame.translation() = element.center - frame.linear() * element.center;
      frame.makeAffine();
      return frame;
    }
    case Kind::Fixed:
      break;
  }
  return element.fixed;
}

EigenMachine::Frame EigenMachine::World(int element, const Values& values) const {
  Frame frame = Frame::Identity();
  while (element >= 0) {
    const Element& current = elements_[static_cast<std::size_t>(element)];
    frame = Local(current, values) * frame;
    element = current.parent;
  }
  return frame;
}

void EigenMachine::ComputeFrames(const Values& values, Frames* frames) const {
  frames->resize(elements_.size());
  for (std::size_t i = 0; i < elements_.size(); ++i) {
    const Element& element = elements_[i];
    if (element.parent < 0) {
      (*frames)[i] = Local(element, values);
    } else {
      (*frames)[i] = (*frames)[static_cast<std::size_t>(element.parent)] * Local(element, values);
    }
  }
}

EigenMachine::Frame EigenMachine::ComputeTableFromTool(const Values& values) const {
  return World(table_, values).inverse() * World(head_, values) *
         Eigen::Translation3d(-toolOffset_);
}

Eigen::Vector3d EigenMachine::WorldDirection(const MainAxis& axis, const Values& values) const {
  const Element& element = elements_[static_cast<std::size_t>(axis.element)];
  return element.parent < 0 ? element.dir : World(element.parent, values).linear() * element.dir;
}

// Both turns pass through the origin: the tool goes about the axis near it onto a direction that
// the other axis can turn onto the target (subproblem 2 of Paden and Kahan).
EigenMachine::RotaryBranches EigenMachine::SolveRotaries(const Values& values,
                                                         const Vector3d& direction) {
  scratch_ = values;
  scratch_[static_cast<std::size_t>(rotary_[0].reg)] = 0.0;
  scratch_[static_cast<std::size_t>(rotary_[1].reg)] = 0.0;
  const Frame tableFromWorld = World(table_, scratch_).inverse();
  const Vector3d tool = (tableFromWorld * World(head_, scratch_)).linear().col(2);
  Vector3d axes[2];
  for (int i = 0; i < 2; ++i) {
    axes[i] = tableFromWorld.linear() * WorldDirection(rotary_[i], scratch_);
    if (!rotary_[i].isOnHeadSide) {
      axes[i] = -axes[i];
    }
  }
  // The tool turns first about the axis that is nearer to it along the chain table - root - head.
  const bool isSecondNearer =
      rotary_[0].isOnHeadSide == rotary_[1].isOnHeadSide
          ? (rotary_[0].isOnHeadSide ? rotary_[1].element > rotary_[0].element
                                     : rotary_[1].element < rotary_[0].element)
          : rotary_[1].isOnHeadSide;
  const int nearTool = isSecondNearer ? 1 : 0;
  const Vector3d& w1 = axes[nearTool];
  const Vector3d& w2 = axes[1 - nearTool];

  RotaryBranches branches;
  const Vector3d target = direction.normalized();
  const double w12 = w1.dot(w2);
  const double det = 1.0 - w12 * w12;
  if (det < 1e-12) {
    return branches;
  }
  const double w1Tool = w1.dot(tool);
  const double w2Target = w2.dot(target);
  const double alpha = (w1Tool - w12 * w2Target) / det;
  const double beta = (w2Target - w12 * w1Tool) / det;
  const Vector3d normal = w1.cross(w2);
  const double gammaSquare =
      (1.0 - alpha * alpha - beta * beta - 2.0 * alpha * beta * w12) / normal.squaredNorm();
  if (gammaSquare < -1e-12) {
    return branches;
  }
  const double gamma = std::sqrt(std::max(gammaSquare, 0.0));
  branches.count = 2;
  for (int branch = 0; branch < 2; ++branch) {
    const Vector3d between = alpha * w1 + beta * w2 + (branch == 0 ? gamma : -gamma) * normal;
    branches.angles[branch][nearTool] = AngleAbout(w1, tool, between);
    branches.angles[branch][1 - nearTool] = AngleAbout(w2, between, target);
  }
  return branches;
}

bool EigenMachine::Solve(const Vector3d& direction, const Vector3d& point, Values* values) {
  const RotaryBranches branches = SolveRotaries(*values, direction);
  double best = std::numeric_limits<double>::infinity();
  double chosen[2] = {};
  for (int branch = 0; branch < branches.count; ++branch) {
    double move = 0.0;
    double angles[2];
    bool isInRange = true;
    for (int i = 0; i < 2; ++i) {
      const MainAxis& axis = rotary_[i];
      const double current = (*values)[static_cast<std::size_t>(axis.reg)];
      angles[i] =
          Unwrap(branches.angles[branch][i], current, axis.isRangeChecked, axis.min, axis.max);
      isInRange =
          isInRange && (!axis.isRangeChecked || (angles[i] >= axis.min && angles[i] <= axis.max));
      move += std::fabs(angles[i] - current);
    }
    if (isInRange && move < best) {
      best = move;
      std::copy(angles, angles + 2, chosen);
    }
  }
  if (!std::isfinite(best)) {
    return false;
  }
  for (int i = 0; i < 2; ++i) {
    (*values)[static_cast<std::size_t>(rotary_[i].reg)] = chosen[i];
  }

  scratch_ = *values;
  for (const MainAxis& axis : linear_) {
    scratch_[static_cast<std::size_t>(axis.reg)] = 0.0;
  }
  const Frame tableFromWorld = World(table_, scratch_).inverse();
  const Vector3d tip = tableFromWorld * World(head_, scratch_) *
                       Eigen::Translation3d(-toolOffset_) * Vector3d::Zero();
  Eigen::Matrix3d directions;
  for (int i = 0; i < 3; ++i) {
    const Vector3d inTable = tableFromWorld.linear() * WorldDirection(linear_[i], scratch_);
    directions.col(i) = linear_[i].isOnHeadSide ? inTable : Vector3d(-inTable);
  }
  const Vector3d travel = directions.inverse() * (point - tip);
  for (int i = 0; i < 3; ++i) {
    (*values)[static_cast<std::size_t>(linear_[i].reg)] = travel[i];
  }
  return true;
}

}  // namespace Orvo::Benchmarks
