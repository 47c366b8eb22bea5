#pragma once

#include <string>

namespace Orvo::Testing {

/// How an operation ended that met a fault.
enum class FaultEnding {
  Threw,     ///< std::bad_alloc
  Failed,    ///< it said so: false, or a status other than 0
  Completed  ///< whole all the same
};

/// Counts a fault that was injected. Where the environment variable ORVO_FAULT_REPORT names a file,
/// the end of the program appends a line of operation, fault and the counts of the three endings,
/// separated by tabs, for each operation and fault; scripts/faults-report.sh makes a table of them.
///
/// @param operation  what met the fault, for example "read a machine file"
/// @param fault      its kind, for example "memory: one request"
void CountFault(const std::string& operation, const std::string& fault, FaultEnding ending);

}  // namespace Orvo::Testing
