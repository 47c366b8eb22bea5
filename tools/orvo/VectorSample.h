#pragma once

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Vector3D.h>

#include <cstdint>
#include <string>
#include <vector>

namespace OrvoTool {

/// A line of a file of golden vectors, such as "linear 0 code 0: 0x1p+0 0x0p+0 0x1.8p+1".
struct VectorRecord {
  std::string head;  ///< what must be the same text: what it is about, codes and counts
  std::vector<double> values;
  bool isModuloTurn = false;  ///< whether the values are angles whose whole turns don't count
};

/// Computes what a machine answers to axis values: where all elements stand, where the tool is,
/// and which axis values bring it back there.
class VectorSampler {
 public:
  /// @param machine  a finished machine, which must outlive it
  /// @param offset   the tool: (0, 0, L) for a length of L
  VectorSampler(const Orvo::Kin::Machine& machine, const Orvo::Vector3D& offset);

  /// Returns the head of a file: what must be the same text for the machine to be the one that
  /// the file was made of.
  std::string GetShape() const;

  /// Returns axis values: all 0, all at their lower limits, all at their upper ones, then values
  /// drawn evenly from the ranges. Axes whose range isn't checked move by 180 degrees or 1000 units
  /// of length to either side; registers without an axis stay 0.
  std::vector<double> MakeAxes(int sample, std::uint64_t seed) const;

  /// Computes all records that follow axis values, one for each register.
  std::vector<VectorRecord> Compute(const std::vector<double>& axes);

 private:
  void AddProgramSystem(int number, std::vector<VectorRecord>* records);

  const Orvo::Kin::Machine& machine_;
  Orvo::Vector3D offset_;
  Orvo::Kin::MachineCompute compute_;
  std::vector<Orvo::Kin::ProgramSystemCompute> solvers_;
  Orvo::Kin::MachinePosition position_;
};

}  // namespace OrvoTool
