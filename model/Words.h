#pragma once

#include <Orvo/Kin/Enumerations.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvo::Kin {

/// The words that name the values of an enumeration in files; a word's place is its value.
template <typename Enumeration, std::size_t Size>
struct WordTable {
  std::wstring_view words[Size];

  /// Writes the value of a word, matched exactly, and returns true; false leaves it untouched.
  bool Find(std::wstring_view word, Enumeration* value) const {
    for (std::size_t i = 0; i < Size; ++i) {
      if (words[i] == word) {
        *value = static_cast<Enumeration>(i);
        return true;
      }
    }
    return false;
  }

  /// Writes the word of a value and returns true; false for a value outside the table.
  bool Name(Enumeration value, std::wstring* word) const {
    const int index = value;
    if (index < 0 || static_cast<std::size_t>(index) >= Size) {
      return false;
    }
    *word = words[index];
    return true;
  }
};

inline constexpr WordTable<EntityType, 3> EntityTypeWords = {{L"AXIS", L"TABLE", L"HEAD"}};

inline constexpr WordTable<EntityParallelType, 2> EntityParallelTypeWords = {
    {L"CHAIN", L"PARALLEL"}};

inline constexpr WordTable<EntityLinkType, 9> EntityLinkTypeWords = {
    {L"LINEAR", L"ROTARY", L"POSITION", L"ABC", L"XYZABC", L"IDENTITY", L"XYZIJK", L"XYZ_REPSPINDL",
     L"UNDEF"}};

inline constexpr WordTable<RotariesCompute, 3> RotariesComputeWords = {
    {L"Default", L"ShortestWay", L"AlphaPositive"}};

}  // namespace Orvo::Kin
