#include "exchange/JsonFault.h"

#include <utf8.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Orvo::Exchange {
namespace {

constexpr std::string_view Blanks = " \t\n\r";
constexpr std::string_view Digits = "0123456789";
constexpr std::string_view Letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// The longest piece of the text that a message quotes.
constexpr std::size_t LargestQuote = 20;

/// What may come next.
enum class Wanted : int { Value, ValueOrEnd, Name, NameOrEnd, Colon, CommaOrEnd, End };

class FaultFinder {
 public:
  explicit FaultFinder(std::string_view text)
      : text_(text),
        firstBad_(static_cast<std::size_t>(utf8::find_invalid(text.begin(), text.end()) -
                                           text.begin())) {}

  JsonFault Find() {
    while (fault_.what.empty()) {
      at_ = std::min(text_.find_first_not_of(Blanks, at_), text_.size());
      if (at_ == text_.size()) {
        if (wanted_ != Wanted::End) {
          Fail(at_, "the text ends here; " + Describe() + " was expected");
        }
        break;
      }
      Step();
    }
    return fault_;
  }

 private:
  void Fail(std::size_t place, const std::string& what) {
    if (fault_.what.empty()) {
      fault_ = {place, what};
    }
  }

  std::string Describe() const {
    switch (wanted_) {
      case Wanted::Value:
        return "a value";
      case Wanted::ValueOrEnd:
        return "a value or ]";
      case Wanted::Name:
        return "the name of a member in quotes";
      case Wanted::NameOrEnd:
        return "the name of a member in quotes or }";
      case Wanted::Colon:
        return "a colon behind the name";
      case Wanted::CommaOrEnd:
        return open_.back() == '{' ? "a comma or }" : "a comma or ]";
      case Wanted::End:
        break;
    }
    return "the end of the text";
  }

  /// Blames what stands in place of what is wanted.
  void FailHere() {
    const char c = text_[at_];
    const std::size_t end = std::min(text_.find_first_not_of(Letters, at_), text_.size());
    std::string found = "this character";
    if (at_ == firstBad_) {
      found = "bytes that are no UTF-8";
    } else if (c == '"') {
      found = "a text";
    } else if (end > at_) {
      found = end - at_ > LargestQuote ? "this word"
                                       : "\"" + std::string(text_.substr(at_, end - at_)) + "\"";
    } else if (c > ' ' && c <= '~') {
      found = c;
    }
    const bool isComment = text_.substr(at_, 2) == "//" || text_.substr(at_, 2) == "/*";
    Fail(at_, isComment ? "JSON has no comments; " + Describe() + " was expected"
                        : Describe() + " was expected, not " + found);
  }

  void Step() {
    const char c = text_[at_];
    const bool isValue = wanted_ == Wanted::Value || wanted_ == Wanted::ValueOrEnd;
    const bool isName = wanted_ == Wanted::Name || wanted_ == Wanted::NameOrEnd;
    const bool isBehind = wanted_ == Wanted::CommaOrEnd;
    if ((c == ']' && (wanted_ == Wanted::ValueOrEnd || (isBehind && open_.back() == '['))) ||
        (c == '}' && (wanted_ == Wanted::NameOrEnd || (isBehind && open_.back() == '{')))) {
      open_.pop_back();
      ++at_;
      GoBehindValue();
    } else if (c == ',' && isBehind) {
      ++at_;
      wanted_ = open_.back() == '{' ? Wanted::Name : Wanted::Value;
    } else if (c == ':' && wanted_ == Wanted::Colon) {
      ++at_;
      wanted_ = Wanted::Value;
    } else if (c == '"' && (isName || isValue)) {
      TakeText();
      if (isName) {
        wanted_ = Wanted::Colon;
      } else {
        GoBehindValue();
      }
    } else if (isValue && (c == '{' || c == '[')) {
      open_ += c;
      ++at_;
      wanted_ = c == '{' ? Wanted::NameOrEnd : Wanted::ValueOrEnd;
    } else if (isValue && (c == '-' || Digits.find(c) != Digits.npos)) {
      TakeNumber();
      GoBehindValue();
    } else if (isValue && TakeWord()) {
      GoBehindValue();
    } else {
      FailHere();
    }
  }

  void GoBehindValue() { wanted_ = open_.empty() ? Wanted::End : Wanted::CommaOrEnd; }

  bool TakeWord() {
    for (const std::string_view word : {"true", "false", "null"}) {
      if (text_.substr(at_, word.size()) == word) {
        at_ += word.size();
        return true;
      }
    }
    return false;
  }

  std::size_t TakeDigits(std::size_t place) const {
    return std::min(text_.find_first_not_of(Digits, place), text_.size());
  }

  char At(std::size_t place) const { return place < text_.size() ? text_[place] : '\0'; }

  void TakeNumber() {
    const std::size_t begin = at_;
    const std::size_t whole = begin + (text_[begin] == '-' ? 1U : 0U);
    at_ = TakeDigits(whole);
    bool isGood = at_ > whole && (text_[whole] != '0' || at_ == whole + 1);
    if (At(at_) == '.') {
      const std::size_t fraction = at_ + 1;
      at_ = TakeDigits(fraction);
      isGood = isGood && at_ > fraction;
    }
    if (At(at_) == 'e' || At(at_) == 'E') {
      const std::size_t exponent = at_ + (At(at_ + 1) == '+' || At(at_ + 1) == '-' ? 2U : 1U);
      at_ = TakeDigits(exponent);
      isGood = isGood && at_ > exponent;
    }
    const std::string number(text_.substr(begin, std::min(at_, text_.size()) - begin));
    if (!isGood) {
      Fail(begin,
           "this is no number; they have the form -1.5e-3, with a digit before and behind "
           "the point and without leading zeros");
    } else if (std::isinf(std::strtod(number.c_str(), nullptr))) {
      Fail(begin, "this number is too large");
    }
  }

  /// Returns the four hexadecimal digits at a place as a number, or -1.
  int TakeHex(std::size_t place) const {
    int value = 0;
    for (std::size_t i = place; i < place + 4; ++i) {
      const char c = At(i);
      const bool isDigit = c >= '0' && c <= '9';
      const bool isLetter = (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
      if (!isDigit && !isLetter) {
        return -1;
      }
      value = 16 * value + (isDigit ? c - '0' : (c | 0x20) - 'a' + 10);
    }
    return value;
  }

  /// Takes what stands behind a backslash, and the backslash.
  void TakeEscape() {
    const std::size_t begin = at_;
    const char c = At(at_ + 1);
    at_ += 2;
    if (c != 'u') {
      if (c == '\0' || std::string_view("\"\\/bfnrt").find(c) == std::string_view::npos) {
        Fail(begin,
             "a backslash begins one of \\\" \\\\ \\/ \\b \\f \\n \\r \\t \\u0041; write "
             "\\\\ for itself");
      }
      return;
    }
    const int unit = TakeHex(at_);
    at_ += 4;
    if (unit < 0) {
      Fail(begin, "four hexadecimal digits were expected behind \\u");
      return;
    }
    const bool isFirst = unit >= 0xD800 && unit < 0xDC00;
    int second = 0;
    if (isFirst && At(at_) == '\\' && At(at_ + 1) == 'u') {
      second = TakeHex(at_ + 2);
      at_ += 6;
    }
    const bool isPair = isFirst && second >= 0xDC00 && second < 0xE000;
    if (unit >= 0xD800 && unit < 0xE000 && !isPair) {
      Fail(begin,
           "this is half of a character; \\ud800 to \\udbff need one of \\udc00 to \\udfff "
           "behind them");
    }
  }

  void TakeText() {
    const std::size_t begin = at_;
    ++at_;
    while (fault_.what.empty()) {
      if (at_ >= text_.size() || text_[at_] == '\n' || text_[at_] == '\r') {
        Fail(begin, "this text has no closing quote in its line");
      } else if (at_ >= firstBad_) {
        Fail(firstBad_, "bytes that are no UTF-8; save the file as UTF-8");
      } else if (text_[at_] == '"') {
        ++at_;
        return;
      } else if (text_[at_] == '\\') {
        TakeEscape();
      } else if (static_cast<unsigned char>(text_[at_]) < ' ') {
        Fail(at_, "a control character in a text; write \\t for a tab, \\u0001 for others");
      } else {
        ++at_;
      }
    }
  }

  std::string_view text_;
  std::size_t firstBad_;  ///< byte that is no UTF-8
  std::size_t at_ = 0;
  Wanted wanted_ = Wanted::Value;
  std::string open_;
  JsonFault fault_;
};

}  // namespace

JsonFault FindJsonFault(std::string_view text) { return FaultFinder(text).Find(); }

}  // namespace Orvo::Exchange
