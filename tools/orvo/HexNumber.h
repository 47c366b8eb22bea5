#pragma once

#include <string>
#include <string_view>

namespace OrvoTool {

/// Appends a double in hexadecimal, every bit of it, whatever the locale: 0x1.8p+1 for 3, with no
/// needless digits; 0x0p+0, inf and nan, signed.
void AppendHex(double value, std::string* out);

/// Reads such a number, or any hexadecimal one with up to 13 digits behind the point.
/// @param value  receives the number; unchanged where the text is none
bool ReadHex(std::string_view text, double* value);

/// Tells whether two doubles are the same bits, or are both no numbers.
bool IsSameBits(double a, double b);

}  // namespace OrvoTool
