#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvo::Exchange {

/// What keeps a text from being JSON.
struct JsonFault {
  std::size_t place = 0;  ///< the byte where it begins; the text's size where something is missing
  std::string what;       ///< a sentence without its end; empty where there is no fault
};

/// Finds the first fault of a text: what is no JSON, is no UTF-8, or is a number beyond the largest
/// double. Meant to explain a failure, see ReadMachineJson().
/// @par Cost
/// Linear in the text, and a byte for each level of its depth. Nothing recurses.
JsonFault FindJsonFault(std::string_view text);

}  // namespace Orvo::Exchange
