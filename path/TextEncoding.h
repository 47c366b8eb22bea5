#pragma once

#include <string>

namespace Orvo::Path {

/// Returns a wide text as UTF-8; what is no character becomes U+FFFD.
std::string Utf8FromWide(const std::wstring& wide);

/// Returns a text as a JSON string, quotes included.
std::string JsonString(const std::string& text);

/// Returns a number as JSON with all its digits; null for NaN and infinities.
std::string JsonNumber(double value);

}  // namespace Orvo::Path
