#pragma once

#include <Orvo/Exchange/Export.h>
#include <Orvo/Kin/Machine.h>

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <string>

namespace Orvo::Exchange {

/// How a machine is written as JSON.
struct JsonWriteOptions {
  /// UTF-8. Where it isn't empty, each mesh names its file: this text, "_", the element's id, "_",
  /// the mesh's index, ".stl". Without a folder: the files lie beside the JSON file.
  std::string meshBase;

  /// One line without blanks instead of an indented text.
  bool isCompact = false;
};

/// How a machine is read from JSON.
struct JsonReadOptions {
  /// A longer text is refused before it is looked at. Reading takes at most about forty times as
  /// many bytes of memory as the text has, and the machine itself; at most 2 GiB - 1 counts.
  std::uint64_t largestSize = 256U << 20U;

  /// Whether the geometry of the meshes is read too, from the files that they name.
  bool readsMeshes = false;

  /// Where those files lie.
  std::filesystem::path meshFolder;
};

/// Writes a machine as JSON: everything that a machine file keeps and, beyond it, all digits of all
/// numbers, all six slots of the links, and names that XML can't hold.
///
/// The machine need be neither finished nor valid. Lengths stand in the machine's unit, angles in
/// degrees. Numbers are written with as many digits as it takes to read the same double; NaN and
/// infinities as the texts "NaN", "-NaN", "Infinity" and "-Infinity". The geometry of meshes isn't
/// written, see WriteMachineJsonFile(). Ill-formed wide text becomes U+FFFD.
///
/// @throws ExchangeError where an enumeration holds no value of its own, or the stream fails
/// @par Cost
/// Linear in the machine; the memory of one element's text.
ORVO_EXCHANGE_API void WriteMachineJson(const Kin::Machine& machine, std::ostream& out,
                                        const JsonWriteOptions& options = {});

/// Writes a machine as a JSON file and, beside it, each mesh as a binary STL file: the JSON file's
/// name without its last suffix, "_", the element's id, "_", the mesh's index, ".stl".
///
/// @param writesMeshes  false leaves the STL files, and their names in the JSON file, out
/// @throws ExchangeError; what was written by then stays
ORVO_EXCHANGE_API void WriteMachineJsonFile(const Kin::Machine& machine,
                                            const std::filesystem::path& file,
                                            bool writesMeshes = false);

/// Reads a machine that WriteMachineJson() wrote, or that was written by hand in the same form, and
/// finishes it.
///
/// As for machine files, what comes out may not be valid: ask Machine::IsFinished() and
/// Machine::GetLastError(). Directions are made unit; those that are so already, and (0, 0, 0),
/// keep their bits. Texts may be indented in any way, members may stand in any order; a member that
/// isn't known, or that is there twice, is refused, so that nothing gets lost on the way.
///
/// @param in       read to its end
/// @param name     stands for the file in messages, UTF-8
/// @param machine  replaced; as it was where this throws
/// @throws ReadError with line and column: the text is no JSON or no machine, is larger than
///   allowed, is of another version, holds an id or a register beyond 16,777,215; ExchangeError: a
///   mesh file can't be read
/// @par Cost
/// Linear in the text. Nothing recurses.
ORVO_EXCHANGE_API void ReadMachineJson(std::istream& in, const std::string& name,
                                       Kin::Machine* machine, const JsonReadOptions& options = {});

/// Reads a file; meshes are looked for in its folder, whatever the options say.
/// @throws ReadError, ExchangeError
ORVO_EXCHANGE_API void ReadMachineJsonFile(const std::filesystem::path& file, Kin::Machine* machine,
                                           const JsonReadOptions& options = {});

}  // namespace Orvo::Exchange
