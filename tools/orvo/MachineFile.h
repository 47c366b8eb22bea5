#pragma once

#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/Machine.h>

#include <cstdint>
#include <string>

namespace OrvoTool {

/// No machine file is larger, in bytes.
constexpr std::uintmax_t MaxMachineFileBytes = 256ULL << 20U;

/// Tells whether a file's name, by its suffix .json in either case, is that of a machine in JSON.
bool IsJsonMachine(const std::string& name);

/// Reads a machine file, without its meshes. The machine may turn out not to be valid.
///
/// @param name  the file's name in UTF-8, see IsJsonMachine(); "-" for a machine file (XML) from
/// the
///   standard input
/// @throws Failure naming the file and, where the fault can be found, its line and column
void ReadMachine(const std::string& name, Orvo::Kin::Machine* machine);

/// Throws the Failure for a file that is not there, may not be read or is a folder.
void CheckMachineFile(const std::string& name);

/// Reads a machine from the bytes of a file, which were read before.
/// @param name  what the file is called, see ReadMachine()
/// @throws Failure as ReadMachine() does
void ReadMachineBytes(const std::string& name, const std::string& bytes,
                      Orvo::Kin::Machine* machine);

/// Reads a machine as ReadMachine() does, and refuses a machine that can't be computed with.
/// @throws Failure, with ExitCode::MachineInvalid where the machine is not valid
void ReadValidMachine(const std::string& name, Orvo::Kin::Machine* machine);

/// Returns in words why a machine can't be computed with, or that it can.
const char* DescribeVerdict(Orvo::Kin::MachineErrorType error);

/// Returns in words why a computation failed.
const char* DescribeComputeError(Orvo::Kin::MachineComputeErrorType error);

/// Returns the word of a policy.
const char* GetPolicyName(Orvo::Kin::RotariesCompute policy);

}  // namespace OrvoTool
