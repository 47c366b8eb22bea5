#pragma once

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <Eigen/Geometry>

#include <vector>

namespace Orvo::Benchmarks {

/// The baseline: the same work for any machine, as one would write it on Eigen by the textbook,
/// with elements in one array, parents first, and no caches from one call to the next.
class EigenMachine {
 public:
  using Frame = Eigen::Isometry3d;
  using Frames = std::vector<Frame>;
  using Values = std::vector<double>;  // by register; angles in radians

  /// The two pairs of angles that turn the tool onto a direction.
  struct RotaryBranches {
    int count = 0;
    double angles[2][2] = {};
  };

  EigenMachine(const Kin::Machine& machine, const Kin::ProgramSystem& ps,
               const Vector3D& toolOffset);

  /// Computes worldFromElement of all elements, parents first.
  void ComputeFrames(const Values& values, Frames* frames) const;

  /// Returns the id of the element at a place among those frames.
  const Kin::EntityId& IdOf(std::size_t place) const { return ids_[place]; }

  /// Computes the frame from the table to the tool point.
  Frame ComputeTableFromTool(const Values& values) const;

  /// Computes both branches of the rotary solution; radians, from -pi to pi.
  RotaryBranches SolveRotaries(const Values& values, const Eigen::Vector3d& direction);

  /// Computes the five axis values for a direction and a point, the shortest way from the values
  /// as they stand and within the ranges, and stores them in the values.
  bool Solve(const Eigen::Vector3d& direction, const Eigen::Vector3d& point, Values* values);

 private:
  enum class Kind { Fixed, Linear, Rotary };

  struct Element {
    int parent = -1;
    Kind kind = Kind::Fixed;
    int reg = -1;
    Eigen::Vector3d dir = Eigen::Vector3d::Zero();
    Eigen::Vector3d center = Eigen::Vector3d::Zero();
    double zeroReference = 0.0;
    Frame fixed = Frame::Identity();
  };

  /// A main axis: its element, the side that it stands on, and its range.
  struct MainAxis {
    int element = -1;
    int reg = -1;
    bool isOnHeadSide = false;
    bool isRangeChecked = false;
    double min = 0.0;
    double max = 0.0;
  };

  MainAxis MakeMainAxis(const Kin::Machine& machine, const Kin::Register& reg) const;
  Frame Local(const Element& element, const Values& values) const;
  Frame World(int element, const Values& values) const;
  Eigen::Vector3d WorldDirection(const MainAxis& axis, const Values& values) const;
  bool IsAncestor(int ancestor, int element) const;

  std::vector<Element> elements_;
  std::vector<Kin::EntityId> ids_;
  int head_ = -1;
  int table_ = -1;
  MainAxis linear_[3];
  MainAxis rotary_[2];
  Eigen::Vector3d toolOffset_;
  Values scratch_;
};

}  // namespace Orvo::Benchmarks
