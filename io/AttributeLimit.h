#pragma once

#include <cstddef>
#include <string_view>

namespace Orvo {

/// The most attributes that a tag of a file may have. Machine files need three; the XML parser
/// compares each attribute with all before it, so a tag of a hundred thousand would take minutes.
inline constexpr std::size_t LargestAttributeNb = 1000;

/// Tells whether no tag of an XML text has more attributes than that. Linear.
bool IsWithinAttributeLimit(std::string_view text);

}  // namespace Orvo
