#pragma once

#include <string>
#include <string_view>

namespace Orvo {

/// Reads the number that a text starts with, after white space; what follows it is ignored. Takes
/// what strtod takes in the "C" locale, whatever the process's locale.
/// Bytes that are not ASCII end a number, as wide characters that are not do.
///
/// @throws std::invalid_argument "invalid stod argument" when the text starts with no number
/// @throws std::out_of_range "stod argument out of range" on overflow and underflow
double ParseDouble(std::string_view text);
double ParseDouble(const std::wstring& text);

/// Reads the decimal integer that a text starts with, after white space; what follows it is
/// ignored.
///
/// @throws std::invalid_argument "invalid stoi argument" when the text starts with no integer
/// @throws std::out_of_range "stoi argument out of range" outside int
int ParseInt(std::string_view text);
int ParseInt(const std::wstring& text);

}  // namespace Orvo
