#pragma once

#include <Orvo/Kin/Machine.h>

#include <string>

namespace Orvo::Fuzz {

/// How reading a file into a machine ended.
enum class ReadOutcome { Read, Refused, NoNumber, NumberOutOfRange, TooLargeId };

/// Reads a machine file. Ends the process for an exception that the interface does not name, and
/// where the machine is not what the outcome says. The machine must be new.
ReadOutcome ReadNewMachine(Kin::Machine* machine, const std::wstring& path);

/// Reads a machine file into a machine that holds something already.
ReadOutcome ReadMore(Kin::Machine* machine, const std::wstring& path);

/// Ends the process unless parents, levels, counts and lookups of a machine agree with its list of
/// elements, as they do once it was finished, validly or not.
void RequireAssembled(Kin::Machine* machine);

}  // namespace Orvo::Fuzz
