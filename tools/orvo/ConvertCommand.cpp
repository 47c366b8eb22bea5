#include "ConvertCommand.h"

#include "AnimationKeys.h"
#include "ChoiceOption.h"
#include "Failure.h"
#include "MachineFile.h"
#include "MeshFileFault.h"
#include "NumberOption.h"
#include "OutputFile.h"
#include "StandardInput.h"
#include "StandardOutput.h"
#include "WideText.h"

#include <Orvo/Exchange/Exchange.h>
#include <Orvo/Kin/Machine.h>

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <system_error>

namespace OrvoTool {
namespace {

namespace Exchange = Orvo::Exchange;

const char Description[] =
    R"(Writes a machine in another format: as machine file (xml), as the same thing in
JSON with all digits (json), as 3D scene (glb, gltf), as robot description
(urdf), or as a picture of its tree for Graphviz (dot).)";

const char Footer[] =
    R"(The formats follow from the names of the files where they aren't given. Meshes
are read from the STL files beside IN and become part of a scene; for xml, json
and urdf they are written beside OUT, unless they are there already under the
same names. They are left out where IN or OUT is a standard stream, but for glb
and gltf from a file.

Scenes and robot descriptions are in meters and radians.

Exit status:
  0  all is written
  1  the command line is wrong
  2  a file can't be read or written, or the format can't hold the machine
  3  the machine is not valid; xml, json and dot are written all the same

Examples:
  orvo convert machine.xml machine.json
  orvo convert machine.xml scene.glb
  orvo convert machine.xml scene.glb --animate axes.csv --seconds 20
  orvo convert machine.xml robot.urdf
  orvo convert machine.xml - --to dot | dot -Tsvg -o tree.svg
)";

enum class Format : int { ByName, Xml, Json, Glb, Gltf, Urdf, Dot };

struct ConvertOptions {
  std::string input;
  std::string output;
  Format from = Format::ByName;
  Format to = Format::ByName;
  std::string axes;
  double seconds = 0.0;
  double metersPerUnit = 0.001;
  bool leavesMeshesOut = false;
};

/// Passes what is written to a stream on to a function; what that throws comes out of the stream.
class PassingBuffer : public std::streambuf {
 public:
  explicit PassingBuffer(std::function<void(std::string_view)> use) : use_(std::move(use)) {}

 protected:
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      const char byte = traits_type::to_char_type(c);
      use_(std::string_view(&byte, 1));
    }
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* bytes, std::streamsize size) override {
    use_(std::string_view(bytes, static_cast<std::size_t>(size)));
    return size;
  }

 private:
  std::function<void(std::string_view)> use_;
};

/// Calls `write` with a stream that ends up in a file or the standard output.
void WriteTo(const std::string& name, const std::function<void(std::ostream&)>& write) {
  const auto through = [&](const std::function<void(std::string_view)>& use) {
    PassingBuffer buffer(use);
    std::ostream stream(&buffer);
    stream.exceptions(std::ios::badbit | std::ios::failbit);
    write(stream);
  };
  if (IsStandardStream(name)) {
    through([](std::string_view bytes) { WriteStandardOutput(bytes); });
    return;
  }
  OutputFile file(name);
  through([&file](std::string_view bytes) { file.Write(bytes); });
  file.Finish();
}

Format FormatOf(const std::string& name, Format given, const char* option) {
  if (given != Format::ByName) {
    return given;
  }
  std::string suffix = Utf8FromWide(FileFromUtf8(name).extension().wstring());
  for (char& c : suffix) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  const std::pair<const char*, Format> known[] = {{".xml", Format::Xml},   {".json", Format::Json},
                                                  {".glb", Format::Glb},   {".gltf", Format::Gltf},
                                                  {".urdf", Format::Urdf}, {".dot", Format::Dot},
                                                  {".gv", Format::Dot}};
  for (const auto& [text, format] : known) {
    if (suffix == text) {
      return format;
    }
  }
  throw UsageFailure(std::string(option) + " is needed: the name '" + Printable(name) +
                     "' doesn't tell the format");
}

bool IsScene(Format format) { return format == Format::Glb || format == Format::Gltf; }

/// What the names of mesh files begin with.
std::string MeshBase(const std::filesystem::path& file) {
  return Utf8FromWide(file.stem().wstring());
}

/// Returns the first mesh file of a machine that can't be read, and why; or nothing.
std::string FindMeshFault(const std::string& name, const Orvo::Kin::Machine& machine) {
  const std::string stem = name.substr(0, name.rfind('.'));
  for (const Orvo::Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const Orvo::Kin::EntityMesh* const meshes = entity.GetEntityMesh();
    const int meshNb = meshes == nullptr ? 0 : static_cast<int>(meshes->GetMeshNb());
    for (int i = 0; i < meshNb; ++i) {
      const std::string mesh = stem + "_" + std::to_string(entity.GetEntityId().GetVal()) + "_" +
                               std::to_string(i) + ".stl";
      bool isMissing = false;
      const std::string fault = FindMeshFileFault(FileFromUtf8(mesh), &isMissing);
      if (!fault.empty()) {
        return Printable(mesh) + " " + fault;
      }
    }
  }
  return "";
}

void ReadXml(const ConvertOptions& options, bool needsMeshes, Orvo::Kin::Machine* machine) {
  ReadMachine(options.input, machine);
  if (!needsMeshes) {
    return;
  }
  const std::string fault = FindMeshFault(options.input, *machine);
  // Anew, since reading adds to what is there.
  *machine = Orvo::Kin::Machine();
  const std::optional<std::wstring> wide = WideFromUtf8(options.input);
  if (!wide || !machine->ReadMachineWithMeshStl(*wide)) {
    throw Failure(ExitCode::Unreadable, Printable(options.input) + ": " +
                                            (fault.empty() ? "a mesh file beside it can't be read"
                                                           : "the mesh file " + fault) +
                                            "; --no-meshes leaves meshes out");
  }
}

void ReadJson(const ConvertOptions& options, bool needsMeshes, Orvo::Kin::Machine* machine) {
  Exchange::JsonReadOptions readOptions;
  readOptions.largestSize = MaxMachineFileBytes;
  readOptions.readsMeshes = needsMeshes;
  if (IsStandardStream(options.input)) {
    std::istringstream stream(ReadStandardInput(MaxMachineFileBytes));
    Exchange::ReadMachineJson(stream, ShownInput(options.input), machine, readOptions);
  } else {
    Exchange::ReadMachineJsonFile(FileFromUtf8(options.input), machine, readOptions);
  }
}

bool HasMeshes(const Orvo::Kin::Machine& machine) {
  for (const Orvo::Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    if (entity.GetEntityMesh() != nullptr && entity.GetEntityMesh()->GetMeshNb() > 0) {
      return true;
    }
  }
  return false;
}

void WriteMeshesBeside(const Orvo::Kin::Machine& machine, const std::filesystem::path& output) {
  const std::string base = MeshBase(output);
  for (const Orvo::Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const Orvo::Kin::EntityMesh* const meshes = entity.GetEntityMesh();
    const int meshNb = meshes == nullptr ? 0 : static_cast<int>(meshes->GetMeshNb());
    for (int i = 0; i < meshNb; ++i) {
      const std::filesystem::path file =
          output.parent_path() /
          FileFromUtf8(base + "_" + std::to_string(entity.GetEntityId().GetVal()) + "_" +
                       std::to_string(i) + ".stl");
      if (!meshes->WriteCadStlBin(file.wstring(), i)) {
        throw Failure(ExitCode::Unreadable,
                      Printable(Utf8FromWide(file.wstring())) + ": the mesh can't be written");
      }
    }
  }
}

/// Returns the bytes of the machine file.
std::string MachineFileBytes(Orvo::Kin::Machine* machine) {
  std::random_device random;
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() /
      ("orvo_" + std::to_string(random()) + "_" + std::to_string(random()) + ".xml");
  const bool isWritten = machine->WriteXML(file.wstring());
  std::string bytes;
  if (isWritten) {
    std::ifstream stream(file, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
  }
  std::error_code ignored;
  std::filesystem::remove(file, ignored);
  if (!isWritten) {
    throw Failure(ExitCode::Unreadable, "orvo convert: the machine file can't be written");
  }
  return bytes;
}

void Write(const ConvertOptions& options, Format to, const std::string& meshBase,
           Orvo::Kin::Machine* machine) {
  switch (to) {
    case Format::Xml:
      WriteTo(options.output,
              [&](std::ostream& out) { out << MachineFileBytes(machine) << std::flush; });
      return;
    case Format::Json: {
      Exchange::JsonWriteOptions writeOptions;
      writeOptions.meshBase = meshBase;
      WriteTo(options.output,
              [&](std::ostream& out) { Exchange::WriteMachineJson(*machine, out, writeOptions); });
      return;
    }
    case Format::Urdf: {
      Exchange::UrdfOptions writeOptions;
      writeOptions.metersPerUnit = options.metersPerUnit;
      writeOptions.meshBase = meshBase;
      WriteTo(options.output,
              [&](std::ostream& out) { Exchange::WriteUrdf(*machine, out, writeOptions); });
      return;
    }
    case Format::Dot:
      WriteTo(options.output, [&](std::ostream& out) { Exchange::WriteDot(*machine, out); });
      return;
    default:
      break;
  }
  Exchange::GltfOptions writeOptions;
  writeOptions.metersPerUnit = options.metersPerUnit;
  if (!options.axes.empty()) {
    writeOptions.animation = ReadAnimationKeys(options.axes, *machine, options.seconds);
  }
  if (to == Format::Glb || IsStandardStream(options.output)) {
    WriteTo(options.output, [&](std::ostream& out) {
      if (to == Format::Glb) {
        Exchange::WriteGlb(*machine, out, writeOptions);
      } else {
        Exchange::WriteGltf(*machine, out, writeOptions);
      }
    });
    return;
  }
  std::filesystem::path bin = FileFromUtf8(options.output);
  bin.replace_extension(".bin");
  WriteTo(options.output, [&](std::ostream& out) {
    WriteTo(Utf8FromWide(bin.wstring()), [&](std::ostream& binOut) {
      Exchange::WriteGltf(*machine, out, binOut, Utf8FromWide(bin.filename().wstring()),
                          writeOptions);
    });
  });
}

ExitCode RunConvert(const ConvertOptions& options) {
  const Format from = FormatOf(options.input, options.from, "--from");
  const Format to = FormatOf(options.output, options.to, "--to");
  if (from != Format::Xml && from != Format::Json) {
    throw UsageFailure("IN: machines are read from xml and json only");
  }
  if (!options.axes.empty() && !IsScene(to)) {
    throw UsageFailure("--animate: only glb and gltf have animations");
  }
  const std::filesystem::path input = FileFromUtf8(options.input);
  const std::filesystem::path output = FileFromUtf8(options.output);
  std::error_code ignored;
  if (!IsStandardStream(options.output) && std::filesystem::equivalent(input, output, ignored)) {
    throw UsageFailure("OUT: " + Printable(options.output) + " would replace what is read");
  }
  const bool canRead = !IsStandardStream(options.input);
  const bool canWrite = !IsStandardStream(options.output);
  const bool isBeside = to == Format::Xml || to == Format::Json || to == Format::Urdf;
  const bool isSamePlace =
      canRead && canWrite && MeshBase(input) == MeshBase(output) &&
      std::filesystem::weakly_canonical(std::filesystem::absolute(input), ignored).parent_path() ==
          std::filesystem::weakly_canonical(std::filesystem::absolute(output), ignored)
              .parent_path();
  const bool wantsMeshes =
      !options.leavesMeshesOut && canRead && (IsScene(to) || (isBeside && canWrite));
  const bool needsMeshes = wantsMeshes && !(isBeside && isSamePlace);
  try {
    Orvo::Kin::Machine machine;
    if (from == Format::Xml) {
      ReadXml(options, needsMeshes, &machine);
    } else {
      ReadJson(options, needsMeshes, &machine);
    }
    if (!machine.IsFinished() && (IsScene(to) || to == Format::Urdf)) {
      throw Failure(ExitCode::MachineInvalid, Printable(ShownInput(options.input)) + ": " +
                                                  DescribeVerdict(machine.GetLastError()));
    }
    const bool namesMeshes = wantsMeshes && isBeside && HasMeshes(machine);
    Write(options, to, namesMeshes ? MeshBase(output) : std::string(), &machine);
    if (needsMeshes && isBeside) {
      WriteMeshesBeside(machine, output);
    }
    return machine.IsFinished() ? ExitCode::Success : ExitCode::MachineInvalid;
  } catch (const Exchange::ReadError& error) {
    throw Failure(ExitCode::Unreadable, Printable(error.what()));
  } catch (const Exchange::ExchangeError& error) {
    throw Failure(ExitCode::Unreadable, "orvo convert: " + Printable(error.what()));
  }
}

}  // namespace

CommandAction AddConvertCommand(CLI::App* command) {
  const auto options = std::make_shared<ConvertOptions>();
  command->description(Description);
  command->footer(Footer);
  command
      ->add_option("IN", options->input,
                   "the machine, as machine file or as JSON; - for the standard input")
      ->required();
  command->add_option("OUT", options->output, "where it goes; - for the standard output")
      ->required();
  AddChoice(command, "--from", &options->from, {{"xml", Format::Xml}, {"json", Format::Json}},
            "the format of IN");
  AddChoice(command, "--to", &options->to,
            {{"xml", Format::Xml},
             {"json", Format::Json},
             {"glb", Format::Glb},
             {"gltf", Format::Gltf},
             {"urdf", Format::Urdf},
             {"dot", Format::Dot}},
            "the format of OUT");
  command
      ->add_option("--animate", options->axes,
                   "for glb and gltf: the axis values of a motion, as orvo solve writes them; "
                   "a move takes what its inverse time says, else 0.1 seconds")
      ->type_name("FILE");
  command->add_option("--seconds", options->seconds, "how long the whole motion is to take")
      ->check(NumberAbove("a time", 0.0))
      ->type_name("SECONDS");
  command
      ->add_option("--unit", options->metersPerUnit,
                   "how many meters the machine's unit has, for glb, gltf and urdf; 0.001 if not "
                   "given")
      ->check(NumberAbove("a length", 0.0))
      ->type_name("METERS");
  command->add_flag("--no-meshes", options->leavesMeshesOut, "leaves meshes out");
  return [options]() { return RunConvert(*options); };
}

}  // namespace OrvoTool
