#include "CsvText.h"

#include "NumberText.h"

namespace OrvoTool {

void AppendCsvField(std::string_view field, std::string* line) {
  if (!line->empty() && line->back() != '\n') {
    *line += ',';
  }
  if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
    // An empty first field would leave the line empty.
    *line += field.empty() ? std::string_view("\"\"") : field;
    return;
  }
  *line += '"';
  for (const char c : field) {
    *line += c;
    if (c == '"') {
      *line += c;
    }
  }
  *line += '"';
}

void AppendCsvNumber(double value, std::string* line) { AppendCsvField(ExactNumber(value), line); }

}  // namespace OrvoTool
