#pragma once

#include <Orvo/Kin/Enumerations.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Orvo::Kin {

/// Finds a word, matched exactly, and writes its place; false leaves it untouched.
bool FindWord(std::span<const std::wstring_view> words, std::wstring_view word, int* place);

/// Writes the word at a place; false, and nothing written, outside the table.
bool WordAt(std::span<const std::wstring_view> words, int place, std::wstring* word);

/// The words that name the values of an enumeration in files; a word's place is its value.
template <typename Enumeration, std::size_t Size>
struct WordTable {
  std::wstring_view words[Size];

  /// Writes the value of a word, matched exactly, and returns true; false leaves it untouched.
  bool Find(std::wstring_view word, Enumeration* value) const {
    int place = 0;
    const bool isFound = FindWord(words, word, &place);
    if (isFound) {
      *value = static_cast<Enumeration>(place);
    }
    return isFound;
  }

  /// Writes the word of a value and returns true; false for a value outside the table.
  bool Name(Enumeration value, std::wstring* word) const { return WordAt(words, value, word); }
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
