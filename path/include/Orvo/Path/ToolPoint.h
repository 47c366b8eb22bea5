#pragma once

#include <Orvo/Vector3D.h>

#include <cstdint>

namespace Orvo::Path {

/// One point of a tool path, in the frame of the table that carries the workpiece.
struct ToolPoint {
  /// The tool tip, in the machine's unit of length.
  Vector3D point;

  /// From the tip towards the spindle. Readers make it unit; a path solver takes any length above
  /// 0.
  Vector3D direction = AxisZ;

  /// The feed towards this point, in units of length per minute; 0 where none is known.
  double feed = 0.0;

  /// The line of the file that gave the point, from 1; 0 where there is no file.
  std::uint64_t line = 0;

  /// Whether the move towards this point is a rapid one.
  bool isRapid = false;
};

}  // namespace Orvo::Path
