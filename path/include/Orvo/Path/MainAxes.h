#pragma once

#include <Orvo/Kin/Register.h>
#include <Orvo/Path/Export.h>

#include <array>
#include <cstddef>
#include <string>

namespace Orvo::Kin {
class Machine;
class MachinePosition;
class ProgramSystem;
}  // namespace Orvo::Kin

namespace Orvo::Path {

/// The most axes that a program system moves: X, Y and Z, then the first and the second rotary one.
constexpr std::size_t MainAxisNb = 5;

/// The place of the first rotary axis among them.
constexpr std::size_t FirstRotary = 3;

/// Values of the main axes by place: lengths in the machine's unit, angles in degrees; 0 where
/// there is no axis.
using AxisValues = std::array<double, MainAxisNb>;

/// What a path needs to know of one axis.
struct MainAxis {
  Kin::Register reg;       ///< undefined where the program system has no such axis
  std::string name;        ///< of the element, UTF-8; "register n" where that has none
  bool isPresent = false;  ///< whether the program system names the axis and the machine has it
  bool isChecked = false;  ///< whether its range counts
  double min = 0.0;        ///< lower limit, in the machine's unit or in degrees
  double max = 0.0;        ///< upper limit
};

/// The axes of a program system.
struct ORVO_PATH_API MainAxes {
  /// Makes five places without an axis.
  MainAxes();

  /// Looks the axes of a program system up in its machine. Nothing is checked.
  MainAxes(const Kin::Machine& machine, const Kin::ProgramSystem& programSystem);

  /// By place.
  std::array<MainAxis, MainAxisNb> axes;

  /// Writes values into the registers of the axes; places without an axis, and registers outside
  /// the position, are left.
  void Put(const AxisValues& values, Kin::MachinePosition* position) const;

  /// Reads values from the registers of the axes, 0 where there is none.
  AxisValues Take(const Kin::MachinePosition& position) const;
};

}  // namespace Orvo::Path
