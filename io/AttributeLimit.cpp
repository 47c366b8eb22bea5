#include "io/AttributeLimit.h"

#include <algorithm>
#include <string_view>

namespace Orvo {

namespace {

constexpr std::size_t BlockSize = 65536;

// Markup that is not a tag: how it starts, behind the "<", and how it ends. What starts several
// ways is decided by the longest.
struct Markup {
  std::string_view start;
  std::string_view end;
};

constexpr Markup Markups[] = {{"!--", "-->"}, {"![CDATA[", "]]>"}, {"?", "?>"}, {"!", ">"}};

constexpr std::size_t LongestStart = 8;
constexpr std::size_t LongestEnd = 3;

/// Follows an XML text as far as it takes to count the attributes of its tags.
class TagWalk {
 public:
  /// Takes the next character; false once a tag has too many attributes.
  bool Take(char c) {
    switch (state_) {
      case State::Text:
        if (c == '<') {
          state_ = State::Start;
          startLength_ = 0;
        }
        return true;
      case State::Start:
        return TakeStart(c);
      case State::Tag:
        if (c == '>') {
          state_ = State::Text;
        } else if (c == '"' || c == '\'') {
          state_ = State::Value;
          quote_ = c;
          return ++attributeNb_ <= LargestAttributeNb;
        }
        return true;
      case State::Value:
        if (c == quote_) {
          state_ = State::Tag;
        }
        return true;
      case State::Markup:
        std::copy(last_ + 1, last_ + LongestEnd, last_);
        last_[LongestEnd - 1] = c;
        if (std::string_view(last_, LongestEnd).ends_with(markupEnd_)) {
          state_ = State::Text;
        }
        return true;
    }
    return true;
  }

 private:
  enum class State { Text, Start, Tag, Value, Markup };

  // Collects what stands behind a "<" until it is known what it starts, and takes the rest as that.
  bool TakeStart(char c) {
    start_[startLength_++] = c;
    const std::string_view start(start_, startLength_);
    for (const Markup& markup : Markups) {
      if (markup.start.starts_with(start) && markup.start != start) {
        return true;
      }
      if (start.starts_with(markup.start)) {
        state_ = State::Markup;
        markupEnd_ = markup.end;
        std::fill(last_, last_ + LongestEnd, '\0');
        return TakeAgain(start.substr(markup.start.size()));
      }
    }
    state_ = State::Tag;
    attributeNb_ = 0;
    return TakeAgain(start);
  }

  bool TakeAgain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [this](char c) { return Take(c); });
  }

  State state_ = State::Text;
  char start_[LongestStart] = {};
  std::size_t startLength_ = 0;
  char quote_ = '"';
  std::size_t attributeNb_ = 0;
  std::string_view markupEnd_;
  char last_[LongestEnd] = {};
};

}  // namespace

bool IsWithinAttributeLimit(ByteSource* source, std::size_t size) {
  TagWalk walk;
  char block[BlockSize];
  while (size > 0) {
    const std::size_t wanted = std::min(size, BlockSize);
    const std::size_t present = source->Read(block, wanted);
    if (!std::all_of(block, block + present, [&walk](char c) { return walk.Take(c); })) {
      return false;
    }
    size = present < wanted ? 0 : size - present;
  }
  return !source->HasFailed();
}

}  // namespace Orvo
