#pragma once

#include <string>
#include <string_view>

namespace Orvo::Exchange {

/// Returns a wide text as UTF-8; what is no character becomes U+FFFD.
std::string Utf8FromWide(std::wstring_view wide);

/// Returns a well-formed UTF-8 text as wide text.
std::wstring WideFromUtf8(std::string_view text);

/// Appends a number with as many digits as it takes to read the same double, with a point whatever
/// the locale; must be finite. The sign of a zero stays.
void AppendNumber(double value, std::string* out);

}  // namespace Orvo::Exchange
