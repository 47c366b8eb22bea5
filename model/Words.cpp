#include "model/Words.h"

#include <algorithm>

namespace Orvo::Kin {

bool FindWord(std::span<const std::wstring_view> words, std::wstring_view word, int* place) {
  const auto found = std::find(words.begin(), words.end(), word);
  if (found == words.end()) {
    return false;
  }
  *place = static_cast<int>(found - words.begin());
  return true;
}

bool WordAt(std::span<const std::wstring_view> words, int place, std::wstring* word) {
  if (place < 0 || static_cast<std::size_t>(place) >= words.size()) {
    return false;
  }
  *word = words[static_cast<std::size_t>(place)];
  return true;
}

}  // namespace Orvo::Kin
