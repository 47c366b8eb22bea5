#pragma once

#include "BenchmarkMachines.h"

#include <vector>

namespace Orvo::Benchmarks {

// Each topic checks its answers first, the library's against every baseline, and throws
// std::runtime_error when they differ; then it registers its benchmarks. Names are
// "<work>/<machine>/<who>".

/// W1: the frames of all elements. W2: from the machine to the tool.
void RegisterForward(const std::vector<Subject>& subjects);

/// W3: both rotary solutions. W4: from a direction and a point to five axis values.
void RegisterSolutions(const std::vector<Subject>& subjects);

/// The spread of W1 to W4 from call to call.
void RegisterTails(const std::vector<Subject>& subjects);

/// W5: making a machine ready, from its elements to its tables. W6: reading it from a file. Besides
/// the given machines, wide and deep ones of up to 100,000 elements.
void RegisterFiles(const std::vector<Subject>& subjects);

/// W7: binary STL of a million triangles.
void RegisterMeshes();

/// Throws when two numbers differ by more than 1e-9, for sizes above 1 relative to them.
void CheckNear(double a, double b, const std::string& what);

/// The values of a position by register with angles in radians, as other systems take them.
std::vector<double> Radians(const Kin::Machine& machine, const Kin::MachinePosition& position);

}  // namespace Orvo::Benchmarks
