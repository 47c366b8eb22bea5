#pragma once

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <kdl/chain.hpp>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_nr_jl.hpp>
#include <kdl/chainiksolvervel_pinv.hpp>
#include <kdl/frames.hpp>
#include <kdl/jntarray.hpp>

#include <memory>
#include <vector>

namespace Orvo::Benchmarks {

/// The same machine in the terms of a general robotics library, used as its documentation says.
class KdlMachine {
 public:
  KdlMachine(const Kin::Machine& machine, const Kin::ProgramSystem& ps, const Vector3D& toolOffset);
  KdlMachine(const KdlMachine&) = delete;
  KdlMachine& operator=(const KdlMachine&) = delete;

  /// Computes the frames of all elements along the chains from the root to each end of the tree.
  /// Values are by register, angles in radians.
  void ComputeFrames(const std::vector<double>& values);

  /// Returns worldFromElement of the last ComputeFrames() by the place in the machine's list.
  const KDL::Frame& FrameOf(std::size_t element) const;

  /// Computes the frame from the table to the tool point.
  bool ComputeTableFromTool(const std::vector<double>& values, KDL::Frame* frame);

  /// Solves for the axes between table and tool point by Newton's method within their ranges,
  /// starting from the values as they stand, and stores the solution there.
  bool Solve(const KDL::Frame& tableFromTool, std::vector<double>* values);

 private:
  /// A chain with the register of each of its joints.
  struct Path {
    KDL::Chain chain;
    std::vector<int> registers;

    KDL::JntArray joints;
    std::vector<KDL::Frame> frames;
    std::unique_ptr<KDL::ChainFkSolverPos_recursive> forward;
  };

  static void Finish(Path* path);
  static void FillJoints(const std::vector<double>& values, Path* path);

  std::vector<std::unique_ptr<Path>> toEnds_;
  std::vector<std::pair<std::size_t, std::size_t>> places_;  // by element: chain, segment
  Path tableToTool_;
  KDL::JntArray solution_;
  std::unique_ptr<KDL::ChainIkSolverVel_pinv> velocity_;
  std::unique_ptr<KDL::ChainIkSolverPos_NR_JL> inverse_;
};

}  // namespace Orvo::Benchmarks
