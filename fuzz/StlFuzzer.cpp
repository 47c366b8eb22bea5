// Lets a fuzzer mutate mesh files as what they are.

#include "Mutator.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed);

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                    unsigned int seed) {
  return Orvo::Fuzz::MutateStl(data, size, maxSize, seed, LLVMFuzzerMutate);
}
