#include "JsonText.h"

#include <algorithm>

namespace OrvoTool {
namespace {

std::string Compact(const JsonValue& value) {
  return value.dump(-1, ' ', false, JsonValue::error_handler_t::replace);
}

bool IsFlat(const JsonValue& value) {
  return value.empty() || !value.is_structured() ||
         (value.is_array() &&
          std::none_of(value.begin(), value.end(),
                       [](const JsonValue& element) { return element.is_structured(); }));
}

void AppendFlat(const JsonValue& value, std::string* out) {
  if (!value.is_array()) {
    *out += Compact(value);
    return;
  }
  *out += "[";
  const char* separator = "";
  for (const JsonValue& element : value) {
    *out += separator + Compact(element);
    separator = ", ";
  }
  *out += "]";
}

// The depth is that of the records which are written here, a few levels.
void Append(const JsonValue& value, std::size_t indent, std::string* out) {
  if (IsFlat(value)) {
    AppendFlat(value, out);
    return;
  }
  const std::string margin(indent + 2, ' ');
  *out += value.is_object() ? "{" : "[";
  const char* separator = "\n";
  for (const auto& [key, element] : value.items()) {
    *out +=
        separator + margin + (value.is_object() ? Compact(JsonValue(key)) + ": " : std::string());
    Append(element, indent + 2, out);
    separator = ",\n";
  }
  *out += "\n" + std::string(indent, ' ') + (value.is_object() ? "}" : "]");
}

}  // namespace

std::string JsonDocument(const JsonValue& value) {
  std::string text;
  Append(value, 0, &text);
  return text + "\n";
}

std::string JsonLine(const JsonValue& value) { return Compact(value) + "\n"; }

}  // namespace OrvoTool
