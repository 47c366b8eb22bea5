#include "MachineValidation.h"

#include "Failure.h"
#include "MachineFile.h"
#include "MachineFileModel.h"
#include "MachineJsonModel.h"
#include "MachineStructure.h"
#include "MeshFileFault.h"
#include "StandardInput.h"
#include "WideText.h"
#include "XmlOutline.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/MachineJson.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/Diagnosis.h>
#include <Orvo/Path/PointSolver.h>
#include <Orvo/Vector3D.h>

#include <nlohmann/json.hpp>
#include <utf8.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>

namespace OrvoTool {
namespace {

/// How many program systems the library is asked about; each may take as long as the machine is
/// large.
constexpr std::size_t MaxPrepared = 64;

/// Larger machines are not prepared, for the same reason.
constexpr std::size_t MaxPreparedElements = 20000;

const TextPlace Whole = {0, 0};

std::string ReadBytes(const std::string& name) {
  const std::string shown = ShownInput(name);
  if (IsStandardStream(name)) {
    return ReadStandardInput(MaxMachineFileBytes);
  }
  CheckMachineFile(name);
  const std::filesystem::path file = FileFromUtf8(name);
  std::ifstream stream(file, std::ios::binary);
  std::string bytes;
  std::array<char, 65536> chunk;
  errno = 0;
  while (stream.read(chunk.data(), chunk.size()) || stream.gcount() > 0) {
    bytes.append(chunk.data(), static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > MaxMachineFileBytes) {
      throw Failure(ExitCode::Unreadable, shown + ": is larger than " +
                                              std::to_string(MaxMachineFileBytes >> 20U) + " MiB");
    }
  }
  std::error_code error;
  const bool isWhole = !std::filesystem::is_regular_file(file, error) ||
                       std::filesystem::file_size(file, error) == bytes.size();
  if (stream.bad() || !isWhole) {
    throw Failure(ExitCode::Unreadable,
                  shown + ": can't be read" +
                      (errno != 0 ? ": " + std::generic_category().message(errno) : ""));
  }
  return bytes;
}

/// Tells whether two names of encodings are the same.
bool IsSameEncoding(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [lower](char x, char y) { return lower(x) == lower(y); });
}

void CheckEncoding(const std::string& bytes, const XmlFault& declared, MachineFindings* findings) {
  if (!declared.what.empty() && !IsSameEncoding(declared.what, "UTF-8") &&
      !IsSameEncoding(declared.what, "US-ASCII")) {
    findings->Add(FindingCode::NotUtf8, declared.place,
                  "the encoding " + Printable(declared.what.substr(0, 40)) +
                      " is passed over: the file is read as UTF-8");
  }
  const auto bad = utf8::find_invalid(bytes.begin(), bytes.end());
  if (bad == bytes.end()) {
    return;
  }
  const std::string_view before(bytes.data(), static_cast<std::size_t>(bad - bytes.begin()));
  const std::size_t lineBegin = before.rfind('\n') + 1;
  const TextPlace place = {
      1 + static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n')),
      1 + CountCharacters(before.substr(lineBegin))};
  findings->Add(FindingCode::NotUtf8, place,
                "bytes that are no UTF-8: they read as U+FFFD; save the file as UTF-8");
}

void CheckMeshFiles(const std::string& name, const FileMachine& machine,
                    MachineFindings* findings) {
  const std::string stem = name.substr(0, name.rfind('.'));
  for (const FileElement& element : machine.elements) {
    for (int i = 0; element.id.isGood && i < element.meshNb; ++i) {
      const std::string mesh =
          stem + "_" + std::to_string(element.id.value) + "_" + std::to_string(i) + ".stl";
      bool isMissing = false;
      const std::string fault = FindMeshFileFault(FileFromUtf8(mesh), &isMissing);
      if (!fault.empty()) {
        findings->Add(
            AboutElement(isMissing ? FindingCode::MeshFileMissing : FindingCode::MeshFileFaulty,
                         element.place, element, "the mesh file " + Printable(mesh) + " " + fault));
      }
    }
  }
}

/// Has the path library prepare each program system, and tells what it finds that isn't told yet.
void PrepareProgramSystems(const Orvo::Kin::Machine& machine, MachineFindings* findings) {
  std::size_t number = 0;
  for (const Orvo::Kin::ProgramSystem& system : machine.GetListProgramSystem()) {
    if (number == MaxPrepared) {
      return;
    }
    Orvo::Kin::MachinePosition position;
    machine.Alloc(&position);
    const Orvo::Path::PointSolver solver(machine, system, Orvo::Vector3D(0.0, 0.0, 0.0), position);
    const std::string shown = "program system " + std::to_string(number) + " (" +
                              PrintableFromWide(system.GetProgramSystemName()) + "): ";
    for (const Orvo::Path::Diagnosis& diagnosis : solver.GetFindings()) {
      if (diagnosis.IsFailure() ||
          diagnosis.GetCode() == Orvo::Path::DiagnosisCode::RegisterUnfit ||
          diagnosis.GetCode() == Orvo::Path::DiagnosisCode::ChainUnfit) {
        findings->Add(FindingCode::NotComputable, Whole, shown + Printable(diagnosis.MakeText()));
      }
    }
    ++number;
  }
}

/// Returns a message without the name of the file in front of it.
std::string WithoutName(const std::string& message, const std::string& shownName) {
  const std::string begin = shownName + ": ";
  return message.compare(0, begin.size(), begin) == 0 ? message.substr(begin.size()) : message;
}

/// Has the library read the file, and tells what it refuses although nothing was found.
void CheckByLibrary(const std::string& name, const std::string& bytes, const XmlFault* suspect,
                    MachineValidation* validation) {
  MachineFindings* findings = &validation->findings;
  Orvo::Kin::Machine machine;
  const bool hadErrors = findings->GetErrorNb() > 0;
  try {
    ReadMachineBytes(name, bytes, &machine);
  } catch (const Failure& failure) {
    if (!hadErrors) {
      findings->Add(FindingCode::NotReadByLibrary, suspect != nullptr ? suspect->place : Whole,
                    suspect != nullptr ? "the library does not read the file; " + suspect->what
                                       : WithoutName(failure.what(), ShownInput(name)));
      validation->refusal = failure.what();
    }
    return;
  }
  if (hadErrors) {
    return;
  }
  if (!machine.IsFinished()) {
    findings->Add(FindingCode::NotValidByLibrary, Whole,
                  std::string("the machine is ") + DescribeVerdict(machine.GetLastError()));
    return;
  }
  if (static_cast<std::size_t>(machine.GetEntityNb()) <= MaxPreparedElements) {
    PrepareProgramSystems(machine, findings);
  }
}

/// Looks for the mesh files that a machine in JSON names.
void CheckNamedMeshFiles(const std::string& name, const FileMachine& machine,
                         MachineFindings* findings) {
  const std::filesystem::path folder = FileFromUtf8(name).parent_path();
  for (const FileElement& element : machine.elements) {
    for (const Placed<std::string>& mesh : element.meshFiles) {
      const std::filesystem::path file = folder / FileFromUtf8(mesh.value);
      bool isMissing = false;
      const std::string fault = FindMeshFileFault(file, &isMissing);
      if (!fault.empty()) {
        findings->Add(AboutElement(
            isMissing ? FindingCode::MeshFileMissing : FindingCode::MeshFileFaulty, mesh.place,
            element, "the mesh file " + Printable(Utf8FromFile(file)) + " " + fault));
      }
    }
  }
}

/// Looks at a machine in JSON. The library judges the text: it refuses what it does not know.
void ValidateJson(const std::string& name, MachineValidation* validation) {
  MachineFindings* findings = &validation->findings;
  const std::string bytes = ReadBytes(name);
  Orvo::Kin::Machine machine;
  try {
    Orvo::Exchange::JsonReadOptions options;
    options.largestSize = MaxMachineFileBytes;
    std::istringstream stream(bytes);
    Orvo::Exchange::ReadMachineJson(stream, ShownInput(name), &machine, options);
  } catch (const Orvo::Exchange::ReadError& error) {
    const bool isJson = nlohmann::json::accept(bytes);
    findings->Add(isJson ? FindingCode::NotReadByLibrary : FindingCode::NotWellFormed,
                  TextPlace{error.GetLine(), error.GetColumn()}, Printable(error.GetMessage()));
    validation->refusal = isJson ? Printable(error.what()) : std::string();
    return;
  }
  validation->isMachineFile = true;
  const FileMachine file = ReadJsonMachine(bytes, findings);
  CheckElements(file, findings);
  CheckProgramSystems(file, findings);
  CheckNamedMeshFiles(name, file, findings);
  if (findings->GetErrorNb() == 0 && !machine.IsFinished()) {
    findings->Add(FindingCode::NotValidByLibrary, Whole,
                  std::string("the machine is ") + DescribeVerdict(machine.GetLastError()));
  } else if (findings->GetErrorNb() == 0 &&
             static_cast<std::size_t>(machine.GetEntityNb()) <= MaxPreparedElements) {
    PrepareProgramSystems(machine, findings);
  }
  findings->Sort();
}

}  // namespace

MachineValidation ValidateMachineFile(const std::string& name) {
  MachineValidation validation;
  MachineFindings* findings = &validation.findings;
  if (IsJsonMachine(name)) {
    ValidateJson(name, &validation);
    return validation;
  }
  const std::string bytes = ReadBytes(name);
  const XmlOutline outline(bytes);
  for (const XmlFault& blemish : outline.GetBlemishes()) {
    findings->Add(FindingCode::LooseXml, blemish.place, blemish.what);
  }
  if (const XmlFault* const fault = outline.GetFault()) {
    findings->Add(
        outline.IsFaultOfReaderOnly() ? FindingCode::NotReadByLibrary : FindingCode::NotWellFormed,
        fault->place, fault->what);
    findings->Sort();
    return validation;
  }
  CheckEncoding(bytes, outline.GetEncoding(), findings);
  const std::optional<FileMachine> machine = ReadFileMachine(outline, findings);
  if (!machine) {
    return validation;
  }
  CheckElements(*machine, findings);
  CheckProgramSystems(*machine, findings);
  if (!IsStandardStream(name)) {
    CheckMeshFiles(name, *machine, findings);
  }
  validation.isMachineFile = true;
  CheckByLibrary(name, bytes, outline.GetSuspect(), &validation);
  findings->Sort();
  return validation;
}

}  // namespace OrvoTool
