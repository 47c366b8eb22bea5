#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>

namespace OrvoTool {

/// @name Checks of options that take a number
/// Each refuses what is no finite number within its bounds, and says them in plain words. The help
/// doesn't name them: descriptions say what is allowed.
/// @param what  what the number is, with its article: "a length"
/// @{
CLI::Validator NumberAbove(const std::string& what, double bound);
CLI::Validator NumberFrom(const std::string& what, double least);
CLI::Validator NumberWithin(const std::string& what, double least, double largest);
CLI::Validator WholeNumberWithin(std::uint64_t least, std::uint64_t largest);
/// @}

}  // namespace OrvoTool
