#pragma once

#include <cstddef>
#include <cstdint>

/// Runs one input through a target. Returns 0; what must not happen ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
