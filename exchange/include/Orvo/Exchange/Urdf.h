#pragma once

#include <Orvo/Exchange/Export.h>
#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/Machine.h>

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace Orvo::Exchange {

/// How a machine is written as URDF.
struct UrdfOptions {
  /// How many meters the machine's unit of length has; 0.001 for millimeters.
  double metersPerUnit = 0.001;

  /// The name of the robot, UTF-8.
  std::string name = "machine";

  /// UTF-8. Where it isn't empty, each mesh becomes a visual whose file is this text, "_", the
  /// element's id, "_", the mesh's index, ".stl"; for example "package://cell/meshes/mill".
  std::string meshBase;

  /// What all limits say of the effort, of which a machine knows nothing: newtons or newton meters.
  double effort = 1000.0;

  /// And of the velocity: meters or radians a second.
  double velocity = 1.0;

  /// The limits of a linear axis whose range isn't checked: this far to both sides, in meters.
  double freeTravel = 1000.0;
};

/// The names that an element has in URDF.
struct UrdfName {
  Kin::EntityId id;   ///< the element
  std::string link;   ///< its link
  std::string joint;  ///< the joint between its parent's link and its own
};

/// Returns the names in the order of the machine's elements.
///
/// A link is named after its element: letters and digits of ASCII, '_', '-' and '.' stay, each
/// other character becomes '_'; an element without name is "element_" and its id. A name that came
/// before gets "_" and a number. The root link is "base". A joint is its link with "_joint" behind.
ORVO_EXCHANGE_API std::vector<UrdfName> ListUrdfNames(const Kin::Machine& machine);

/// Writes a finished machine as URDF: meters and radians, all digits.
///
/// The root link "base" is the machine's frame; each element is a link, and the joint above it is
/// what moves it. A link's frame is the element's frame, moved for a rotary axis into its center.
///
/// - LINEAR: prismatic; the joint's value is the axis's value in meters, its zero reference stands
/// in
///   the origin. ROTARY: revolute, or continuous where its range isn't checked; the value in
///   radians.
/// - All else is fixed: frames of POSITION as they are; elements that
///   Kin::MachineCompute::ComputePositionMachine() leaves where their parent is, there.
/// - A frame must be a rotation, within 1e-5; what is written is the rotation nearest to it.
/// - Elements that share a register: the first one's joint is mimicked by the others.
/// - Visuals scale their STL files to meters; colors are taken for 0xRRGGBB.
/// - Nothing is said of masses and inertia: a machine doesn't know them.
///
/// @throws ExchangeError: the machine isn't finished; the scale isn't positive; a number that is
///   needed isn't finite; a frame that is no rotation; the stream fails
/// @par Cost
/// Linear in the machine.
ORVO_EXCHANGE_API void WriteUrdf(const Kin::Machine& machine, std::ostream& out,
                                 const UrdfOptions& options = {});

/// Writes a URDF file and, beside it, each mesh as a binary STL file in the machine's unit, which
/// the visuals name without folder; options.meshBase isn't used.
/// @throws ExchangeError; also for a mesh that STL can't hold. What was written by then stays.
ORVO_EXCHANGE_API void WriteUrdfFile(const Kin::Machine& machine, const std::filesystem::path& file,
                                     const UrdfOptions& options = {});

}  // namespace Orvo::Exchange
