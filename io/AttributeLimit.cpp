#include "io/AttributeLimit.h"

#include <algorithm>

namespace Orvo {

namespace {

// Markup that is not a tag: how it starts, and how it ends. What starts several ways is decided by
// the first of these.
struct Markup {
  std::string_view start;
  std::string_view end;
};

constexpr Markup Markups[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}};

// Drops all up to and with an end, or everything where there is none.
void DropBehind(std::string_view end, std::string_view* text) {
  const std::size_t place = text->find(end);
  text->remove_prefix(place == std::string_view::npos ? text->size() : place + end.size());
}

// Tells whether a character ends what stands in a tag besides values: the tag, or by a value.
bool EndsName(char c) { return c == '>' || c == '"' || c == '\''; }

// Drops a tag, without its "<"; false where it has too many attributes.
bool DropTag(std::string_view* text) {
  std::size_t attributeNb = 0;
  while (true) {
    std::size_t place = 0;
    while (place < text->size() && !EndsName((*text)[place])) {
      ++place;
    }
    const std::string_view rest = text->substr(place);
    text->remove_prefix(std::min(place + 1, text->size()));
    if (rest.empty() || rest[0] == '>') {
      return true;
    }
    if (++attributeNb > LargestAttributeNb) {
      return false;
    }
    DropBehind(rest.substr(0, 1), text);
  }
}

}  // namespace

bool IsWithinAttributeLimit(std::string_view text) {
  while (true) {
    text.remove_prefix(std::min(text.find('<'), text.size()));
    if (text.empty()) {
      return true;
    }
    const Markup* const markup =
        std::find_if(std::begin(Markups), std::end(Markups),
                     [text](const Markup& candidate) { return text.starts_with(candidate.start); });
    if (markup != std::end(Markups)) {
      text.remove_prefix(markup->start.size());
      DropBehind(markup->end, &text);
    } else {
      text.remove_prefix(1);
      if (!DropTag(&text)) {
        return false;
      }
    }
  }
}

}  // namespace Orvo
