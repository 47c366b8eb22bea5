#pragma once

namespace Orvo {

/// Reads a number as strtod does in the "C" locale, for C libraries whose own function leaves out
/// hexadecimal, infinite and undefined numbers.
///
/// @param text  ends with a NUL
/// @param end   receives the place behind the number, or the text when it starts with none
/// @return the number. On overflow and underflow errno is ERANGE and the result has no meaning. A
///   decimal number between zero and the normalized ones counts as an underflow: without 715 digits
///   none of them is exact.
double ScanDouble(const char* text, const char** end);

}  // namespace Orvo
