#include "geometry/NumberText.h"

#include <charconv>
#include <limits>

namespace Orvo {

namespace {

// Sign, the digits of the largest double, the point and up to 17 decimals.
constexpr int FixedTextCapacity = 1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + 17;

}  // namespace

void AppendFixed(double value, int decimals, unsigned int width, std::string* text) {
  char buffer[FixedTextCapacity];
  const std::to_chars_result result =
      std::to_chars(buffer, buffer + FixedTextCapacity, value, std::chars_format::fixed, decimals);
  const auto length = static_cast<std::size_t>(result.ptr - buffer);
  if (length < width) {
    text->append(width - length, ' ');
  }
  text->append(buffer, length);
}

void AppendPoint(const double* xyz, std::wstring* text) {
  std::string narrow = "(";
  for (int i = 0; i < 3; ++i) {
    if (i > 0) {
      narrow += ", ";
    }
    AppendFixed(xyz[i], 3, 5, &narrow);
  }
  narrow += ')';
  text->append(narrow.begin(), narrow.end());
}

}  // namespace Orvo
