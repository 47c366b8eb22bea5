#pragma once

#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Machine.h>

#include <functional>
#include <string>
#include <vector>

namespace Orvo::Testing {

/// Files that somebody made to cost more than they are worth, and files that are merely large.
struct HostileInput {
  enum class Kind {
    MachineFile,  ///< input.xml, for Machine::ReadXML
    Package,      ///< input.xml and mesh files, for Machine::ReadMachineWithMeshStl
    MeshFile      ///< input.stl, for EntityMesh::AddCadStlBin
  };

  /// How reading ends.
  enum class Ending { True, False, LengthError, OutOfRange, InvalidArgument, BadAlloc };

  std::string name;
  Kind kind = Kind::MachineFile;
  std::function<void(const TemporaryFolder&)> make;

  /// The endings that are right; more than one where the system's memory decides.
  std::vector<Ending> endings;

  /// Whether the machine is finished afterwards.
  bool isFinished = false;
};

/// Returns the inputs. What is large is so in proportion to the scale: 1 for the report of
/// scripts/hostile-files.sh, less for tests.
std::vector<HostileInput> HostileInputs(double scale);

/// Returns the word for an ending.
const char* Word(HostileInput::Ending ending);

/// Reads the input that stands in a folder with the operation of its kind, calling back with the
/// machine where there is one.
HostileInput::Ending Read(const HostileInput& input, const TemporaryFolder& folder,
                          const std::function<void(Kin::Machine&)>& use);

}  // namespace Orvo::Testing
