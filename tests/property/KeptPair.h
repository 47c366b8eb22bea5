#pragma once

#include "property/ChangingMachine.h"
#include "property/Draw.h"

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <string>
#include <vector>

namespace Orvo::Property {

/// What the calls of a sequence have in common; some of it changes from call to call.
struct Scene {
  std::vector<double> values;  ///< by register, all of them
  int head = 0;
  int table = 0;
  int rotaries[2] = {-1, -1};
  int linears[3] = {-1, -1, -1};
  Vector3D offset;
};

/// Two calculators on one machine, of which one keeps results from call to call and the other
/// computes everything plainly. They are asked the same and must answer the same, bit for bit.
class KeptPair {
 public:
  explicit KeptPair(const ChangingMachine& machine);

  /// Draws a scene that has something to do with the machine.
  void DrawScene(Draw& draw);

  /// Changes little or much of the scene; the share is that of numbers that may be any double.
  void ChangeScene(Draw& draw, double edgeShare);

  /// Makes one call of the two, and compares all that can be seen of it. Returns whether it is the
  /// same.
  bool Call(Draw& draw);

  /// Looks for two targets next to each other between which the solution becomes another one, and
  /// compares at both. Returns whether all is the same.
  bool CallAtThreshold(Draw& draw);

  /// Draws a direction in the table's frame: reachable ones, poles, limits, any.
  Vector3D DrawTarget(Draw& draw);

  const Scene& GetScene() const { return scene_; }

  /// The position of the next call.
  const Kin::MachinePosition& Position() const { return pos_; }

  /// The number of calls so far.
  int CallNb() const { return callNb_; }

 private:
  /// The calculators: 0 keeps results, 1 doesn't.
  static constexpr int Nb = 2;

  bool CallMachine(Draw& draw);
  bool CallTool(Draw& draw);
  bool CallEntity(Draw& draw);
  bool CallRotaries(const Vector3D& ijk);
  bool CallLinear(Draw& draw);

  double& AnyValue(Draw& draw);
  void DrawIndices(Draw& draw);
  void DrawRegisters(Draw& draw);

  /// The scene's values; now and then more or fewer of them, or one that is no number.
  Kin::MachinePosition DrawPosition(Draw& draw) const;

  /// Looks where the tool and the rotary axes point with these axes at 0.
  void Look();

  /// Tells what differs; false.
  bool Explain(bool isSame, const char* call, const std::string& request);

  const ChangingMachine& machine_;
  Kin::MachineCompute calculators_[Nb];
  Kin::MachineCompute scout_;
  Scene scene_;
  Kin::MachinePosition pos_;
  std::vector<Matrix43> frames_[Nb];
  int callNb_ = 0;

  // In the table's frame, as Look() saw them.
  Vector3D tool_;
  Vector3D axes_[2];
};

}  // namespace Orvo::Property
