#include "KdlMachine.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

namespace Orvo::Benchmarks {

namespace {

using Kin::Entity;

constexpr double RadiansPerDegree = 3.141592653589793 / 180.0;

// Beyond what any of these machines needs.
constexpr unsigned int MostIterations = 100;
constexpr double Precision = 1e-9;
constexpr double NoLimit = 1e9;

KDL::Vector ToKdl(const Vector3D& v) { return KDL::Vector(v[0], v[1], v[2]); }

KDL::Frame ToKdl(const Matrix43& frame) {
  const double* const m = frame;
  return KDL::Frame(KDL::Rotation(m[0], m[4], m[8], m[1], m[5], m[9], m[2], m[6], m[10]),
                    KDL::Vector(m[12], m[13], m[14]));
}

bool IsJoint(const Entity& entity) {
  const Kin::EntityLinkType type = entity.GetEntityLink().GetEntityLinkType();
  return type == Kin::EntityLinkTypeLinear || type == Kin::EntityLinkTypeRotary;
}

// One element, from its parent to itself.
KDL::Segment Down(const Entity& entity) {
  const Kin::EntityLink& link = entity.GetEntityLink();
  const KDL::Vector dir = ToKdl(link.GetDir());
  switch (link.GetEntityLinkType()) {
    case Kin::EntityLinkTypeLinear:
      return KDL::Segment(KDL::Joint(KDL::Vector::Zero(), dir, KDL::Joint::TransAxis),
                          KDL::Frame(dir * link.GetZeroRef()));
    case Kin::EntityLinkTypeRotary: {
      const KDL::Vector center = ToKdl(link.GetCenter());
      return KDL::Segment(KDL::Joint(center, dir, KDL::Joint::RotAxis));
    }
    case Kin::EntityLinkTypePosition:
      return KDL::Segment(KDL::Joint(KDL::Joint::None), ToKdl(link.GetPosition()));
    default:
      return KDL::Segment(KDL::Joint(KDL::Joint::None));
  }
}

// One element, from itself to its parent: the joint turned round.
KDL::Segment Up(const Entity& entity) {
  const Kin::EntityLink& link = entity.GetEntityLink();
  const KDL::Vector dir = ToKdl(link.GetDir());
  switch (link.GetEntityLinkType()) {
    case Kin::EntityLinkTypeLinear:
      return KDL::Segment(KDL::Joint(KDL::Vector::Zero(), -dir, KDL::Joint::TransAxis),
                          KDL::Frame(-dir * link.GetZeroRef()));
    case Kin::EntityLinkTypeRotary: {
      const KDL::Vector center = ToKdl(link.GetCenter());
      return KDL::Segment(KDL::Joint(center, -dir, KDL::Joint::RotAxis));
    }
    case Kin::EntityLinkTypePosition:
      return KDL::Segment(KDL::Joint(KDL::Joint::None), ToKdl(link.GetPosition()).Inverse());
    default:
      return KDL::Segment(KDL::Joint(KDL::Joint::None));
  }
}

std::vector<const Entity*> FromRoot(const Entity* entity) {
  std::vector<const Entity*> path;
  for (; entity != nullptr; entity = entity->GetParentEntity()) {
    path.insert(path.begin(), entity);
  }
  return path;
}

}  // namespace

KdlMachine::KdlMachine(const Kin::Machine& machine, const Kin::ProgramSystem& ps,
                       const Vector3D& toolOffset) {
  const Kin::Kinematic& kinematic = machine.GetKinematic();
  std::set<const Entity*> parents;
  std::map<const Entity*, std::size_t> order;
  for (const Entity& entity : kinematic.GetListEntity()) {
    order.emplace(&entity, order.size());
    parents.insert(entity.GetParentEntity());
  }
  places_.resize(order.size());
  for (const Entity& end : kinematic.GetListEntity()) {
    if (parents.count(&end) != 0) {
      continue;
    }
    auto path = std::make_unique<Path>();
    for (const Entity* entity : FromRoot(&end)) {
      places_[order.at(entity)] = {toEnds_.size(), path->chain.getNrOfSegments()};
      path->chain.addSegment(Down(*entity));
      if (IsJoint(*entity)) {
        path->registers.push_back(entity->GetRegister().GetVal());
      }
    }
    Finish(path.get());
    toEnds_.push_back(std::move(path));
  }

  std::vector<const Entity*> head = FromRoot(kinematic.GetEntityHead(ps.GetHeadIndex()));
  std::vector<const Entity*> table = FromRoot(kinematic.GetEntityTable(ps.GetTableIndex()));
  while (!head.empty() && !table.empty() && head.front() == table.front()) {
    head.erase(head.begin());
    table.erase(table.begin());
  }
  std::reverse(table.begin(), table.end());
  std::vector<double> min;
  std::vector<double> max;
  const auto append = [this, &min, &max](const Entity& entity, const KDL::Segment& segment) {
    tableToTool_.chain.addSegment(segment);
    if (IsJoint(entity)) {
      const bool isRotary = entity.GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypeRotary;
      const double unit = isRotary ? RadiansPerDegree : 1.0;
      tableToTool_.registers.push_back(entity.GetRegister().GetVal());
      min.push_back(entity.GetCheckRangeAxis() ? entity.GetRangeMin() * unit : -NoLimit);
      max.push_back(entity.GetCheckRangeAxis() ? entity.GetRangeMax() * unit : NoLimit);
    }
  };
  for (const Entity* entity : table) {
    append(*entity, Up(*entity));
  }
  for (const Entity* entity : head) {
    append(*entity, Down(*entity));
  }
  tableToTool_.chain.addSegment(
      KDL::Segment(KDL::Joint(KDL::Joint::None), KDL::Frame(-ToKdl(toolOffset))));
  Finish(&tableToTool_);

  const unsigned int jointNb = tableToTool_.chain.getNrOfJoints();
  KDL::JntArray lower(jointNb);
  KDL::JntArray upper(jointNb);
  for (unsigned int i = 0; i < jointNb; ++i) {
    lower(i) = min[i];
    upper(i) = max[i];
  }
  solution_.resize(jointNb);
  velocity_ = std::make_unique<KDL::ChainIkSolverVel_pinv>(tableToTool_.chain);
  inverse_ = std::make_unique<KDL::ChainIkSolverPos_NR_JL>(tableToTool_.chain, lower, upper,
                                                           *tableToTool_.forward, *velocity_,
                                                           MostIterations, Precision);
}

void KdlMachine::Finish(Path* path) {
  path->joints.resize(path->chain.getNrOfJoints());
  path->frames.resize(path->chain.getNrOfSegments());
  path->forward = std::make_unique<KDL::ChainFkSolverPos_recursive>(path->chain);
}

void KdlMachine::FillJoints(const std::vector<double>& values, Path* path) {
  for (std::size_t i = 0; i < path->registers.size(); ++i) {
    path->joints(static_cast<unsigned int>(i)) =
        values[static_cast<std::size_t>(path->registers[i])];
  }
}

void KdlMachine::ComputeFrames(const std::vector<double>& values) {
  for (const std::unique_ptr<Path>& path : toEnds_) {
    FillJoints(values, path.get());
    path->forward->JntToCart(path->joints, path->frames);
  }
}

const KDL::Frame& KdlMachine::FrameOf(std::size_t element) const {
  return toEnds_[places_[element].first]->frames[places_[element].second];
}

bool KdlMachine::ComputeTableFromTool(const std::vector<double>& values, KDL::Frame* frame) {
  FillJoints(values, &tableToTool_);
  return tableToTool_.forward->JntToCart(tableToTool_.joints, *frame) >= 0;
}

bool KdlMachine::Solve(const KDL::Frame& tableFromTool, std::vector<double>* values) {
  FillJoints(*values, &tableToTool_);
  if (inverse_->CartToJnt(tableToTool_.joints, tableFromTool, solution_) < 0) {
    return false;
  }
  for (std::size_t i = 0; i < tableToTool_.registers.size(); ++i) {
    (*values)[static_cast<std::size_t>(tableToTool_.registers[i])] =
        solution_(static_cast<unsigned int>(i));
  }
  return true;
}

}  // namespace Orvo::Benchmarks
