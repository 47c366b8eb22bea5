#pragma once

#include <string>

namespace Orvo {

/// Appends a number in fixed notation, as "%<width>.<decimals>f" prints it in the "C" locale,
/// whatever the process's locale. Infinities and NaN read inf, -inf, nan and -nan.
void AppendFixed(double value, int decimals, unsigned int width, std::string* text);

/// Appends the components of a point as "(x, y, z)" with three decimals, each at least five wide.
void AppendPoint(const double* xyz, std::wstring* text);

}  // namespace Orvo
