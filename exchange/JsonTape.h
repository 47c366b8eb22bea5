#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Exchange {

/// A value that is not what it must be: the number of its token in the text, from 0, and what was
/// expected there.
class TokenFault : public std::runtime_error {
 public:
  TokenFault(std::uint64_t token, const std::string& what)
      : std::runtime_error(what), token_(token) {}

  std::uint64_t GetToken() const { return token_; }

 private:
  std::uint64_t token_;
};

/// A JSON value as the row of its tokens: brackets, names and plain values in the order of the
/// text. A value is named by the place of its first token; nothing recurses.
class JsonTape {
 public:
  enum class Kind : std::uint8_t {
    Null,
    False,
    True,
    Integer,
    Real,
    Text,
    Key,
    Object,
    Array,
    End
  };

  /// Forgets everything; the next token is the text's `firstToken`-th.
  void Clear(std::uint64_t firstToken);

  void Add(Kind kind);
  void AddInteger(std::int64_t value);
  void AddReal(double value);
  void AddText(Kind kind, std::string_view text);
  /// Ends the innermost object or array, and tells whether the whole value is complete.
  void AddEnd();
  bool IsComplete() const { return open_.empty() && !tokens_.empty(); }

  /// Finds the members of an object by their names: the place of each value, 0 where it is absent.
  /// @throws TokenFault when it isn't an object, or has another member or one twice
  std::vector<std::size_t> Members(std::size_t object,
                                   std::initializer_list<std::string_view> names) const;

  /// Returns the places of the values of an array.
  /// @throws TokenFault when it isn't an array
  std::vector<std::size_t> Items(std::size_t array) const;

  bool IsArray(std::size_t value) const { return tokens_[value].kind == Kind::Array; }

  std::string_view ReadText(std::size_t value) const;
  bool ReadBool(std::size_t value) const;
  int ReadInt(std::size_t value, std::int64_t smallest, std::int64_t largest) const;
  std::int64_t ReadInteger(std::size_t value, std::int64_t smallest, std::int64_t largest) const;
  /// A number, or a text that stands for one.
  double ReadNumber(std::size_t value) const;
  /// As many numbers as the array holds.
  std::vector<double> ReadNumbers(std::size_t array) const;

  /// Blames a value.
  [[noreturn]] void Fail(std::size_t value, const std::string& what) const;

 private:
  struct Piece {
    std::uint32_t begin;
    std::uint32_t size;
  };
  struct Token {
    union {
      std::int64_t integer;
      double real;
      Piece piece;
    };
    std::uint32_t end;  ///< behind an object's or array's last token
    Kind kind;
  };

  void Push(Token token);
  std::size_t After(std::size_t value) const;
  std::string_view TextOf(const Token& token) const;
  std::string Describe(std::size_t value) const;

  std::uint64_t firstToken_ = 0;
  std::vector<Token> tokens_;
  std::vector<std::uint32_t> open_;
  std::string texts_;
};

}  // namespace Orvo::Exchange
