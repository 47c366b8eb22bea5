#include "TextTable.h"

#include "WideText.h"

#include <algorithm>
#include <utility>

namespace OrvoTool {
namespace {

constexpr std::size_t GapBetweenColumns = 2;

/// A text that is wider than this does not widen its column: only its own line is pushed.
constexpr std::size_t MaxColumnWidth = 60;

}  // namespace

TextTable::TextTable(std::vector<Align> columns, std::size_t indent)
    : columns_(std::move(columns)), indent_(indent) {}

void TextTable::AddRow(std::vector<std::string> row) { rows_.push_back(std::move(row)); }

std::string TextTable::GetText() const {
  std::vector<std::size_t> widths(columns_.size(), 0);
  for (const std::vector<std::string>& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::size_t width = CountColumns(row[i]);
      widths[i] = width > MaxColumnWidth ? widths[i] : std::max(widths[i], width);
    }
  }
  std::string text;
  for (const std::vector<std::string>& row : rows_) {
    std::string line(indent_, ' ');
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::size_t width = CountColumns(row[i]);
      const std::string padding(widths[i] > width ? widths[i] - width : 0, ' ');
      line += i > 0 ? std::string(GapBetweenColumns, ' ') : std::string();
      line += columns_[i] == Align::Right ? padding + row[i] : row[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace OrvoTool
