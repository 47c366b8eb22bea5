#pragma once

#include <Orvo/Exchange/Export.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace Orvo::Exchange {

/// Where the axes stand at one time of an animation.
struct AnimationKey {
  double seconds = 0.0;           ///< from 0, growing from key to key
  Kin::MachinePosition position;  ///< by register: lengths in the machine's unit, angles in degrees
};

/// How a machine is written as glTF.
struct GltfOptions {
  /// How many meters the machine's unit of length has; 0.001 for millimeters.
  double metersPerUnit = 0.001;

  /// Where the axes stand in the scene, by register; empty: all at 0.
  Kin::MachinePosition position;

  /// The motion of the axes; empty: none. Axes that stay where the scene has them get no channel.
  std::vector<AnimationKey> animation;

  /// The name of the root node and the scene, UTF-8.
  std::string name = "machine";
};

/// Writes a finished machine as a glTF 2.0 scene in one binary file (GLB).
///
/// A root node turns the machine's Z upwards, as glTF has Y, and holds no scale: all lengths are
/// meters. Below it stands one node an element, nested as the elements are, so that a node's frame
/// is the element's frame, moved for a rotary axis into its center: the node's rotation is the
/// axis's turn about its direction. Numbers of nodes are written with all digits; vertices and
/// animations are 32-bit floats, as glTF wants them.
///
/// - Fixed elements have a matrix. It must be a rotation, a mirroring or a scaling, within 1e-5.
/// - Elements that Kin::MachineCompute::ComputePositionMachine() leaves where their parent is
/// (kinds
///   that can't be placed, axes without register) stand there too.
/// - Meshes are triangles (faces with more corners as fans), in the frame of their node, without
///   normals. A mesh without triangles is left out. Colors are taken for 0xRRGGBB in sRGB; the base
///   color factors are linear.
/// - `extras` of a node hold id, parentId, type, kind, register, rangeMin, rangeMax, checkRange,
///   pivot and direction, in the machine's units.
/// - An animation has a key for each one given, interpolated linearly; rotary axes get further
///   ones, so that neighbors are at most 90 degrees apart.
///
/// @throws ExchangeError: the machine isn't finished; the scale isn't positive; a number that is
///   needed isn't finite, or too large for a 32-bit float; a frame that glTF can't hold; a mesh
///   with an index beyond its vertices; times that don't grow, also once they are 32-bit floats; a
///   file of 4 GiB or more; the stream fails
/// @par Cost
/// Linear in elements, vertices and keys. Vertices and keys are written as they are walked over;
/// what is kept are the texts of the nodes.
ORVO_EXCHANGE_API void WriteGlb(const Kin::Machine& machine, std::ostream& out,
                                const GltfOptions& options = {});

/// Writes the same as text, the binary part inside as base64.
/// @throws ExchangeError
ORVO_EXCHANGE_API void WriteGltf(const Kin::Machine& machine, std::ostream& out,
                                 const GltfOptions& options = {});

/// Writes the same as text, the binary part into a stream of its own.
/// @param bufferUri  how the text names the binary part, relative to itself; percent-encoded here
/// @throws ExchangeError
ORVO_EXCHANGE_API void WriteGltf(const Kin::Machine& machine, std::ostream& out, std::ostream& bin,
                                 const std::string& bufferUri, const GltfOptions& options = {});

/// Writes a file: GLB where its name ends in ".glb", else text with a file ".bin" of the same name
/// beside it.
/// @throws ExchangeError; what was written by then stays
ORVO_EXCHANGE_API void WriteGltfFile(const Kin::Machine& machine, const std::filesystem::path& file,
                                     const GltfOptions& options = {});

}  // namespace Orvo::Exchange
