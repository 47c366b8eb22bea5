#pragma once

#include "TextLines.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvoTool {

/// A member of the object that a line of JSON Lines holds, or of an object in it.
struct JsonMember {
  enum class Kind : int { Null, Truth, Number, Text, Texts, Other };

  std::string name;
  bool isNested = false;   ///< whether it is one of the object in question
  std::size_t offset = 0;  ///< the byte of the line where its name begins
  Kind kind = Kind::Null;
  bool isTrue = false;
  double number = 0.0;
  std::vector<std::string> texts;  ///< the text, or those of an array of nothing but texts
};

/// Returns the members of the object in the current line, in the order of the line. Those of the
/// object called @p nested come with them; others within others are left out.
/// @throws Failure naming the place of what is no JSON, no object, no finite number, or is there
///   twice
std::vector<JsonMember> ReadJsonMembers(const TextLines& lines, const std::string& nested);

}  // namespace OrvoTool
