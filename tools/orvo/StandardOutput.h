#pragma once

#include <string_view>

namespace OrvoTool {

/// Writes a text to the standard output.
/// @throws Failure when not all of it can be written
void WriteStandardOutput(std::string_view text);

}  // namespace OrvoTool
