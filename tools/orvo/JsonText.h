#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace OrvoTool {

/// JSON whose members keep the order in which they were added.
using JsonValue = nlohmann::ordered_json;

/// Returns a value as a document for programs and people: indented by two, arrays of plain values
/// on one line, with a line end.
///
/// Numbers have as many digits as it takes to read the same double back; what is no finite number
/// becomes null. Bytes that are no UTF-8 become U+FFFD.
std::string JsonDocument(const JsonValue& value);

/// Returns a value on one line, with its end, for JSON Lines.
std::string JsonLine(const JsonValue& value);

}  // namespace OrvoTool
