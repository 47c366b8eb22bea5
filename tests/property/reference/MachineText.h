#pragma once

#include "property/reference/Model.h"

#include <string>

namespace Reference {

/// Returns the bytes of the machine file; false where a program system has a policy without word.
bool WriteText(const Machine& machine, std::string* text);

/// Appends what the file of one machine holds to another one, and finishes that.
void Append(const Machine& machine, Machine* out);

/// The UTF-8 bytes of a name, up to its first null character; what is no character becomes U+FFFD.
std::string Utf8(const std::wstring& text);

/// The six-decimal text of a number.
std::string Fixed6(double value);

}  // namespace Reference
