#pragma once

#include <string>
#include <string_view>

namespace Orvo {

// Wide text holds one code point per unit where a unit has 32 bits, and UTF-16 where it has 16.
// Ill-formed text becomes U+FFFD, one for each maximal ill-formed part; nothing throws but for
// memory.

std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);

/// Writes a text over another one, whose room is used again. Where memory fails, nothing has
/// changed.
void AssignFromUtf8(std::string_view text, std::wstring* wide);

// The same for UTF-16 in its own type.
std::string ToUtf8(std::u16string_view text);
std::u16string Utf16FromUtf8(std::string_view text);

}  // namespace Orvo
