#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace OrvoTool {

/// Lays texts out in columns that line up.
class TextTable {
 public:
  enum class Align : int { Left, Right };

  /// @param columns  how each column is aligned
  /// @param indent   blanks in front of each line
  TextTable(std::vector<Align> columns, std::size_t indent);

  /// Adds a line; it must have a text for each column.
  void AddRow(std::vector<std::string> row);

  /// Returns the table, each line with its end and without trailing blanks.
  std::string GetText() const;

 private:
  std::vector<Align> columns_;
  std::size_t indent_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace OrvoTool
