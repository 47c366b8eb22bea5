#pragma once

#include "path/TextLines.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Path {

/// A piece of text and where it stands.
struct AptToken {
  std::string text;  ///< in upper case, without blanks
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  bool hasGap = false;  ///< blanks, or the end of a line, stood within it; not behind a sign
};

/// One statement of APT source: its major word without a label, and behind the slash what commas
/// separate.
struct AptStatement {
  AptToken word;
  bool hasSlash = false;
  std::vector<AptToken> parameters;
};

/// Reads the next statement, continued lines included; passes over comments, empty lines and the
/// texts behind PARTNO and PPRINT. False behind the last one.
bool ReadAptStatement(TextLines* lines, AptStatement* statement);

}  // namespace Orvo::Path
