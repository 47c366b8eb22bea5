#pragma once

#include "io/ByteStream.h"

#include <cstddef>

namespace Orvo {

/// The most attributes that a tag of a file may have. Machine files need three; the XML parser
/// compares each attribute with all before it, so a tag of a hundred thousand would take minutes.
inline constexpr std::size_t LargestAttributeNb = 1000;

/// Tells whether no tag of an XML text has more attributes than that; false where the text can't be
/// read. Linear; keeps one block.
///
/// @param source  the text; at most @p size bytes of it are read
bool IsWithinAttributeLimit(ByteSource* source, std::size_t size);

}  // namespace Orvo
