#pragma once

#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/ProgramSystemCompute.h>

namespace Orvo::Benchmarks {

/// Has a calculator compute everything link by link from now on, with nothing kept between calls.
void UsePlainPath(const Kin::MachineCompute& compute);
void UsePlainPath(const Kin::ProgramSystemCompute& compute);

}  // namespace Orvo::Benchmarks
