#include "MachineFile.h"

#include "Failure.h"
#include "MachineFileFault.h"
#include "StandardInput.h"
#include "WideText.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/MachineJson.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace OrvoTool {
namespace {

/// Throws the Failure for a file that could not be read; `what` is what the reader said, if it did.
[[noreturn]] void BlameFile(const std::string& name, const std::string& shown,
                            const std::string& what) {
  const std::optional<MachineFileFault> fault = FindMachineFileFault(name);
  if (fault) {
    throw Failure(ExitCode::Unreadable, shown + ":" + std::to_string(fault->line) + ":" +
                                            std::to_string(fault->column) + ": " + fault->what);
  }
  throw Failure(ExitCode::Unreadable,
                shown + ": is no machine file" + (what.empty() ? "" : ": ") + what);
}

/// Reads a file by its name; messages call it as @p shown says.
void ReadNamedMachine(const std::string& name, const std::string& shown,
                      Orvo::Kin::Machine* machine) {
  const std::optional<std::wstring> wide = WideFromUtf8(name);
  if (!wide) {
    throw Failure(ExitCode::Unreadable, shown + ": the name of a machine file must be UTF-8");
  }
  try {
    if (machine->ReadXML(*wide)) {
      return;
    }
  } catch (const std::logic_error& error) {
    // A text that is no number, or an id or register that is too large.
    BlameFile(name, shown, error.what());
  }
  BlameFile(name, shown, "");
}

}  // namespace

void CheckMachineFile(const std::string& name) {
  const std::string shown = Printable(name);
  const std::filesystem::path file = FileFromUtf8(name);
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    throw Failure(ExitCode::Unreadable, shown + ": is a folder, not a file");
  }
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw Failure(ExitCode::Unreadable,
                  shown + ": can't be opened" +
                      (errno != 0 ? ": " + std::generic_category().message(errno) : ""));
  }
}

bool IsJsonMachine(const std::string& name) {
  constexpr std::string_view Suffix = ".json";
  if (name.size() < Suffix.size()) {
    return false;
  }
  const std::string_view end = std::string_view(name).substr(name.size() - Suffix.size());
  return std::equal(end.begin(), end.end(), Suffix.begin(),
                    [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

void ReadMachine(const std::string& name, Orvo::Kin::Machine* machine) {
  const std::string shown = ShownInput(name);
  if (IsStandardStream(name)) {
    const SpooledInput spooled(".xml", MaxMachineFileBytes);
    ReadNamedMachine(spooled.GetName(), shown, machine);
    return;
  }
  CheckMachineFile(name);
  if (IsJsonMachine(name)) {
    Orvo::Exchange::JsonReadOptions options;
    options.largestSize = MaxMachineFileBytes;
    try {
      Orvo::Exchange::ReadMachineJsonFile(FileFromUtf8(name), machine, options);
    } catch (const Orvo::Exchange::ExchangeError& error) {
      throw Failure(ExitCode::Unreadable, Printable(error.what()));
    }
    return;
  }
  ReadNamedMachine(name, shown, machine);
}

void ReadMachineBytes(const std::string& name, const std::string& bytes,
                      Orvo::Kin::Machine* machine) {
  if (IsStandardStream(name)) {
    const SpooledInput spooled(".xml", bytes);
    ReadNamedMachine(spooled.GetName(), ShownInput(name), machine);
  } else {
    ReadNamedMachine(name, ShownInput(name), machine);
  }
}

void ReadValidMachine(const std::string& name, Orvo::Kin::Machine* machine) {
  ReadMachine(name, machine);
  if (!machine->IsFinished()) {
    throw Failure(ExitCode::MachineInvalid, ShownInput(name) + ": the machine is " +
                                                DescribeVerdict(machine->GetLastError()));
  }
}

const char* DescribeVerdict(Orvo::Kin::MachineErrorType error) {
  switch (error) {
    case Orvo::Kin::MachineErrorNone:
      return "valid, ready to compute";
    case Orvo::Kin::MachineErrorNoHead:
      return "not valid: no element is a HEAD, so nothing carries the tool";
    case Orvo::Kin::MachineErrorNoTable:
      return "not valid: no element is a TABLE, so nothing carries the workpiece";
    case Orvo::Kin::MachineErrorFewLinearAxes:
      return "not valid: fewer than three axes are linear";
    case Orvo::Kin::MachineErrorParentCycle:
      return "not valid: the parents of some elements form a cycle";
  }
  return "not valid";
}

const char* DescribeComputeError(Orvo::Kin::MachineComputeErrorType error) {
  switch (error) {
    case Orvo::Kin::ComputeErrorNone:
      return "no error";
    case Orvo::Kin::ComputeErrorNotFinished:
      return "the machine is not valid";
    case Orvo::Kin::ComputeErrorNullOutput:
      return "no place for the result";
    case Orvo::Kin::ComputeErrorEmptyPosition:
      return "the machine has no registers";
    case Orvo::Kin::ComputeErrorNoHeadOrTable:
      return "its head or its table does not exist, or no chain joins them";
    case Orvo::Kin::ComputeErrorRegister:
      return "its registers are not those of axes of the right kind between the table and the head";
    case Orvo::Kin::ComputeErrorLinkType:
      return "an element on the way has a link of a kind that can't be placed";
    case Orvo::Kin::ComputeErrorNotAxis:
      return "one of its registers belongs to a head or a table";
    case Orvo::Kin::ComputeErrorAxisLinkType:
      return "one of its axes is neither linear nor rotary";
    case Orvo::Kin::ComputeErrorNoSolution:
      return "the rotary axes have no solution";
  }
  return "the computation failed";
}

const char* GetPolicyName(Orvo::Kin::RotariesCompute policy) {
  switch (policy) {
    case Orvo::Kin::RotariesComputeDefault:
      return "Default";
    case Orvo::Kin::RotariesComputeShortestWay:
      return "ShortestWay";
    case Orvo::Kin::RotariesComputeAlphaPositive:
      return "AlphaPositive";
  }
  return "unknown";
}

}  // namespace OrvoTool
