#pragma once

#include <array>
#include <string_view>

namespace Orvo::Exchange {

// The words that name the values of enumerations in files; a word's place is its value.

inline constexpr std::array<std::string_view, 3> TypeWords = {"AXIS", "TABLE", "HEAD"};

inline constexpr std::array<std::string_view, 2> ParallelTypeWords = {"CHAIN", "PARALLEL"};

inline constexpr std::array<std::string_view, 9> LinkTypeWords = {
    "LINEAR",   "ROTARY", "POSITION",      "ABC",  "XYZABC",
    "IDENTITY", "XYZIJK", "XYZ_REPSPINDL", "UNDEF"};

inline constexpr std::array<std::string_view, 3> PolicyWords = {"Default", "ShortestWay",
                                                                "AlphaPositive"};

/// The texts that stand in JSON for numbers that it doesn't have.
inline constexpr std::array<std::string_view, 4> OddNumberWords = {"NaN", "-NaN", "Infinity",
                                                                   "-Infinity"};

// What a JSON file says of itself.
inline constexpr std::string_view JsonFormat = "orvo-machine";
inline constexpr int JsonVersion = 1;

}  // namespace Orvo::Exchange
