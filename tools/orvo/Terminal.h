#pragma once

#include "OutputFormat.h"

#include <string>
#include <string_view>

namespace OrvoTool {

/// Tells whether the standard output, or the error stream, is a terminal.
bool IsOutputTerminal();
bool IsErrorTerminal();

/// Colors texts, or leaves them as they are.
///
/// Colored texts keep their width in a TextTable.
class TextStyle {
 public:
  /// With ColorMode::Auto, texts are colored where the standard output is a terminal, unless the
  /// environment has a NO_COLOR that isn't empty or a TERM that is "dumb".
  explicit TextStyle(ColorMode mode);

  bool IsOn() const { return isOn_; }

  std::string Heading(std::string_view text) const { return Paint("1", text); }   ///< bold
  std::string Good(std::string_view text) const { return Paint("32", text); }     ///< green
  std::string Warning(std::string_view text) const { return Paint("33", text); }  ///< yellow
  std::string Bad(std::string_view text) const { return Paint("31", text); }      ///< red
  std::string Aside(std::string_view text) const { return Paint("2", text); }     ///< faint

 private:
  std::string Paint(const char* code, std::string_view text) const;

  bool isOn_;
};

}  // namespace OrvoTool
