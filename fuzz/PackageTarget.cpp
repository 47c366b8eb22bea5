// A machine file and its mesh files out of one input: the machine file ends at the first NUL, and
// the mesh files follow, each behind its length as a number of two bytes. They go to the names that
// the machine file asks for, in the order of its elements; the names that are left have no file.

#include "Check.h"
#include "InputFile.h"
#include "MachineReading.h"
#include "StlBytes.h"
#include "Target.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>

#include <algorithm>
#include <map>
#include <new>
#include <string>
#include <string_view>
#include <vector>

using namespace Orvo;
using namespace Orvo::Fuzz;

namespace {

// More mesh files than this are not made.
constexpr std::size_t LargestFileNb = 32;

std::vector<std::string_view> MeshFilesOf(std::string_view bytes) {
  std::vector<std::string_view> files;
  while (bytes.size() >= 2 && files.size() < LargestFileNb) {
    const std::size_t size = static_cast<unsigned char>(bytes[0]) |
                             static_cast<std::size_t>(static_cast<unsigned char>(bytes[1])) << 8;
    files.push_back(bytes.substr(2, size));
    bytes.remove_prefix(2 + files.back().size());
  }
  return files;
}

/// A mesh of a machine, by the name of its file without the machine file's own.
struct MeshPlace {
  std::string suffix;
  const Mesh* mesh;
};

std::vector<MeshPlace> MeshPlacesOf(const Kin::Machine& machine) {
  std::vector<MeshPlace> places;
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const Kin::EntityMesh* const meshes = entity.GetEntityMesh();
    const int meshNb = meshes == nullptr ? 0 : static_cast<int>(meshes->GetMeshNb());
    for (int i = 0; i < meshNb; ++i) {
      places.push_back(
          {"_" + std::to_string(entity.GetEntityId().GetVal()) + "_" + std::to_string(i) + ".stl",
           meshes->GetMesh(i)});
    }
  }
  return places;
}

/// The files of a package, gone with it.
class Package {
 public:
  explicit Package(std::string_view name) : name_(name), machine_(name_ + ".xml") {}
  Package(const Package&) = delete;
  Package& operator=(const Package&) = delete;

  ~Package() {
    for (const std::string& suffix : suffixes_) {
      MeshFile(suffix).Remove();
    }
  }

  const InputFile& MachineFile() const { return machine_; }

  InputFile MeshFile(const std::string& suffix) const { return InputFile(name_ + suffix); }

  void WillHold(const std::string& suffix) { suffixes_.push_back(suffix); }

 private:
  std::string name_;
  InputFile machine_;
  std::vector<std::string> suffixes_;
};

using MeshFiles = std::map<std::string, StlBytes>;

/// Reads a package and compares it with the bytes of its mesh files.
bool ReadPackage(const Package& package, const MeshFiles& files, Kin::Machine* machine) {
  bool isRead = false;
  bool isRefused = false;
  try {
    isRead = machine->ReadMachineWithMeshStl(package.MachineFile().Path());
  } catch (const std::bad_alloc&) {
    isRefused = true;
  }
  bool isExpected = true;
  for (const MeshPlace& place : MeshPlacesOf(*machine)) {
    const auto file = files.find(place.suffix);
    const bool isMesh = file != files.end() && file->second.isMesh;
    if (isExpected && isMesh && place.mesh->GetDimNVerts() > 0) {
      RequireMeshOf(file->second, *place.mesh);
      continue;
    }
    if (isExpected && isMesh) {
      Require(isRefused && file->second.triangleNb > LargestWalkedTriangleNb,
              "memory is refused to large meshes only");
    }
    isExpected = false;
    Require(place.mesh->GetDimNVerts() == 0, "meshes behind one that can't be read stay empty");
  }
  Require(isRead == isExpected, "a package is read when all its files are");
  return isRead;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = TextOf(data, size);
  const std::size_t textSize = std::min(input.find('\0'), input.size());
  Package given("given");
  given.MachineFile().Write(input.substr(0, textSize));

  // What the machine file holds decides which mesh files there are.
  Kin::Machine plain;
  if (ReadNewMachine(&plain, given.MachineFile().Path()) != ReadOutcome::Read) {
    return 0;
  }
  const std::vector<std::string_view> bytes =
      MeshFilesOf(input.substr(std::min(textSize + 1, input.size())));
  MeshFiles files;
  std::size_t next = 0;
  for (const MeshPlace& place : MeshPlacesOf(plain)) {
    if (next < bytes.size() && files.count(place.suffix) == 0) {
      given.WillHold(place.suffix);
      given.MeshFile(place.suffix).Write(bytes[next]);
      files.emplace(place.suffix, StlBytes(bytes[next]));
      ++next;
    }
  }
  Kin::Machine machine;
  const bool isRead = ReadPackage(given, files, &machine);
  RequireAssembled(&machine);

  std::uint64_t triangleNb = 0;
  Package written("written");
  const std::vector<MeshPlace> places = MeshPlacesOf(machine);
  for (const MeshPlace& place : places) {
    triangleNb += place.mesh->GetDimNVerts();
    written.WillHold(place.suffix);
  }
  if (triangleNb > LargestWalkedTriangleNb || places.size() > 4 * LargestFileNb) {
    return 0;
  }
  Require(machine.WriteMachineWithMeshStl(written.MachineFile().Path()), "a package is written");

  // Of meshes with one name, what the last one held is in the file.
  std::map<std::string, std::string> contents;
  MeshFiles writtenFiles;
  for (const MeshPlace& place : places) {
    const auto [content, isNew] = contents.emplace(place.suffix, std::string());
    if (isNew) {
      content->second = written.MeshFile(place.suffix).Read();
      writtenFiles.emplace(place.suffix, StlBytes(content->second));
    }
    const auto file = files.find(place.suffix);
    if (isRead && file != files.end()) {
      RequireWritten(file->second, content->second);
    }
  }
  Kin::Machine again;
  ReadPackage(written, writtenFiles, &again);
  return 0;
}
