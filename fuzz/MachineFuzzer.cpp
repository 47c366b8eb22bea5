// Lets a fuzzer mutate and cross machine files as what they are.

#include "Mutator.h"

extern "C" {

std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                    unsigned int seed);

std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                      const std::uint8_t* data2, std::size_t size2,
                                      std::uint8_t* out, std::size_t maxSize, unsigned int seed);
}

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                    unsigned int seed) {
  return Orvo::Fuzz::MutateMachineInput(data, size, maxSize, seed, LLVMFuzzerMutate);
}

std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                      const std::uint8_t* data2, std::size_t size2,
                                      std::uint8_t* out, std::size_t maxSize, unsigned int seed) {
  return Orvo::Fuzz::CrossMachineInputs(data1, size1, data2, size2, out, maxSize, seed);
}
