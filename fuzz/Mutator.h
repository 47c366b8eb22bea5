#pragma once

#include <cstddef>
#include <cstdint>

namespace Orvo::Fuzz {

/// Changes some bytes in place without knowing what they mean; returns the new size, at most
/// maxSize.
using ByteMutator = std::size_t (*)(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// These know what the bytes mean. They change an input in place and return the new size, at most
// maxSize. The result follows from the arguments alone, as far as byteMutator's does. The work is
// bounded: inputs beyond 64 KiB or 64 levels get byte mutations only.

/// Mutates a machine file. What stands behind its first NUL is not part of it: a tail of whatever
/// else the target takes, which is mutated as bytes.
std::size_t MutateMachineInput(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                               std::uint64_t seed, ByteMutator byteMutator);

/// Puts an element of the second machine file into the first one and writes that to out.
std::size_t CrossMachineInputs(const std::uint8_t* data1, std::size_t size1,
                               const std::uint8_t* data2, std::size_t size2, std::uint8_t* out,
                               std::size_t maxSize, std::uint64_t seed);

/// Mutates a binary STL file: its count, its triangles and their numbers.
std::size_t MutateStl(std::uint8_t* data, std::size_t size, std::size_t maxSize, std::uint64_t seed,
                      ByteMutator byteMutator);

}  // namespace Orvo::Fuzz
