#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Exchange {

/// Puts a JSON text together. Arrays of plain values stand on one line.
class JsonText {
 public:
  /// @param isCompact  without line ends and blanks
  explicit JsonText(bool isCompact) : isCompact_(isCompact) {}

  void BeginObject();
  void EndObject();
  void BeginArray();
  /// Begins an array that stays on its line.
  void BeginRow();
  void EndArray();

  /// Names the value that follows.
  void Key(std::string_view name);

  /// A text in UTF-8; what isn't becomes U+FFFD.
  void Text(std::string_view text);
  void Integer(std::int64_t value);
  void Bool(bool value);
  /// A finite number.
  void Number(double value);

  /// A row of finite numbers.
  void Numbers(const double* values, int count);

  void Member(std::string_view name, std::string_view text);
  void Member(std::string_view name, const char* text) { Member(name, std::string_view(text)); }
  void Member(std::string_view name, int value);
  void Member(std::string_view name, std::int64_t value);
  void Member(std::string_view name, std::uint64_t value);
  void Member(std::string_view name, double value);
  void Member(std::string_view name, bool value);

  /// Returns what is there so far, and forgets it.
  std::string Take();
  std::size_t GetSize() const { return text_.size(); }

 private:
  struct Level {
    bool isRow = false;
    bool isEmpty = true;
  };

  void BeginValue();
  void Begin(char bracket, bool isRow);
  void End(char bracket);
  void NewLine();

  bool isCompact_;
  bool isAfterKey_ = false;
  std::string text_;
  std::vector<Level> levels_;
};

}  // namespace Orvo::Exchange
