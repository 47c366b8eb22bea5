#pragma once

#include <string>
#include <string_view>

namespace OrvoTool {

/// Appends a field to a line of CSV: behind a comma unless it is the line's first, in quotes where
/// it holds a comma, a quote or a line end.
void AppendCsvField(std::string_view field, std::string* line);

/// Appends a number with as many digits as it takes to read the same double back, see
/// ExactNumber().
void AppendCsvNumber(double value, std::string* line);

}  // namespace OrvoTool
