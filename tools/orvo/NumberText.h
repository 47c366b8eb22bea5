#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace OrvoTool {

/// Tells why a text is not taken for a number.
enum class NumberFault : int { None, NotANumber, NotFinite, TooLarge };

/// Reads a decimal number that fills the whole text: a point as separator whatever the locale, a
/// sign and an exponent allowed, blanks not.
///
/// @param value  receives the number; unchanged where it is none
NumberFault ReadNumber(std::string_view text, double* value);

/// Returns in words what is wrong, to be put behind the text in question.
const char* DescribeFault(NumberFault fault);

/// Reads three numbers separated by commas, such as "0,0,30".
std::optional<std::array<double, 3>> ReadTriple(std::string_view text);

/// Appends a number with six decimals, or as many as are given, and a point whatever the locale;
/// never "-0.000000".
///
/// Six decimals are what machine files hold; they are finer than any machine moves, the columns
/// stay readable, and no reader meets an exponent.
void AppendFixed(double value, std::string* out, int decimals = 6);

/// Returns a number for people: at most @p digits significant digits, no needless zeros.
std::string ShortNumber(double value, int digits = 6);

/// Returns a number with @p decimals decimals.
std::string FixedNumber(double value, int decimals);

/// Returns a number for a table: with @p decimals decimals, or with twelve digits and an exponent
/// where it would be longer than any machine needs.
std::string TableNumber(double value, int decimals);

/// Returns a number with as many digits as it takes to read the same double back, whatever the
/// locale; "inf", "-inf" or "nan" where it is none.
std::string ExactNumber(double value);

/// Takes blanks and tabs off both ends.
std::string_view Trim(std::string_view text);

}  // namespace OrvoTool
