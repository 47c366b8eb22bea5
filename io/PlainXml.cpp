#include "io/PlainXml.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace Orvo {

namespace {

constexpr std::size_t LargestPlainDepth = 32;
constexpr std::size_t LargestPlainAttributeNb = 16;
constexpr std::uint32_t HasChild = 0x80000000;

// Elements of an indented machine file take some 46 bytes.
constexpr std::size_t BytesPerElement = 40;

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

// What a character may be; one bit each.
enum : unsigned char {
  NameStart = 1,
  NamePart = 2,
  Space = 4,
  TextStop = 8,
  DoubleQuoteStop = 16,
  SingleQuoteStop = 32
};

constexpr std::array<unsigned char, 256> MakeKinds() {
  std::array<unsigned char, 256> kinds = {};
  const auto add = [&kinds](std::string_view characters, unsigned char kind) {
    for (const char c : characters) {
      unsigned char& known = kinds[static_cast<unsigned char>(c)];
      known = static_cast<unsigned char>(known | kind);
    }
  };
  add("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_", NameStart | NamePart);
  add("0123456789-.", NamePart);
  add(" \t\n\r", Space);
  add(std::string_view("\0&\r", 3), TextStop | DoubleQuoteStop | SingleQuoteStop);
  // The parser takes these two for white space, which is no text where it stands alone.
  add("<\v\f", TextStop);
  add("\"", DoubleQuoteStop);
  add("'", SingleQuoteStop);
  return kinds;
}

constexpr std::array<unsigned char, 256> Kinds = MakeKinds();

bool Is(char c, unsigned char kind) { return (Kinds[static_cast<unsigned char>(c)] & kind) != 0; }

const char* SkipName(const char* p) {
  while (Is(*p, NamePart)) {
    ++p;
  }
  return p;
}

// Indented files are white space for a third, so blanks go by eight.
const char* SkipSpace(const char* p) {
  constexpr std::uint64_t Blanks = 0x2020202020202020;
  while (Is(*p, Space)) {
    ++p;
    std::uint64_t block = 0;
    static_assert(sizeof block == PlainXml::Padding);
    for (std::memcpy(&block, p, sizeof block); block == Blanks;
         std::memcpy(&block, p, sizeof block)) {
      p += sizeof block;
    }
  }
  return p;
}

const char* SkipTo(const char* p, unsigned char stops) {
  while (!Is(*p, stops)) {
    ++p;
  }
  return p;
}

unsigned char StopsOf(char quote) { return quote == '"' ? DoubleQuoteStop : SingleQuoteStop; }

std::string_view Between(const char* first, const char* last) {
  return {first, static_cast<std::size_t>(last - first)};
}

// Goes behind an end that is known to come somewhere; null where it doesn't, or a NUL before it.
const char* SkipBehind(const char* p, const char* textEnd, std::string_view end) {
  const std::string_view rest = Between(p, textEnd);
  const std::size_t length = rest.find(end);
  if (length == std::string_view::npos ||
      rest.substr(0, length).find('\0') != std::string_view::npos) {
    return nullptr;
  }
  return p + length + end.size();
}

// Compares names. They are so short that a call for it would take longer.
bool IsSame(std::string_view a, std::string_view b) {
  bool isSame = a.size() == b.size();
  for (std::size_t i = 0; isSame && i < a.size(); ++i) {
    isSame = a[i] == b[i];
  }
  return isSame;
}

struct Reference {
  std::string_view text;
  char character;
};

constexpr Reference References[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};

// The reference at an "&"; null where there is none of these.
const Reference* FindReference(const char* p) {
  for (const Reference& reference : References) {
    if (std::strncmp(p, reference.text.data(), reference.text.size()) == 0) {
      return &reference;
    }
  }
  return nullptr;
}

// Puts a text together that holds no other references.
void AppendResolved(std::string_view text, std::string* resolved) {
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('&'), text.size());
    resolved->append(text.substr(0, length));
    text.remove_prefix(length);
    if (!text.empty()) {
      const Reference& reference = *FindReference(text.data());
      *resolved += reference.character;
      text.remove_prefix(reference.text.size());
    }
  }
}

// Takes the attributes of a tag; returns where the tag ends, null where they aren't plain.
const char* SkipAttributes(const char* p) {
  std::string_view names[LargestPlainAttributeNb];
  std::size_t nameNb = 0;
  while (*p != '>' && *p != '/') {
    const char* const name = SkipSpace(p);
    if (*name == '>' || *name == '/') {
      return name;
    }
    if (name == p || !Is(*name, NameStart) || nameNb == LargestPlainAttributeNb) {
      return nullptr;
    }
    p = SkipName(name);
    const std::string_view thisName = Between(name, p);
    for (std::size_t i = 0; i < nameNb; ++i) {
      if (IsSame(names[i], thisName)) {
        return nullptr;
      }
    }
    names[nameNb++] = thisName;
    if (p[0] != '=' || (p[1] != '"' && p[1] != '\'')) {
      return nullptr;
    }
    const char quote = p[1];
    p = SkipTo(p + 2, StopsOf(quote));
    if (*p != quote) {
      return nullptr;
    }
    ++p;
  }
  return p;
}

bool StartsComment(const char* p) {
  return p[0] == '<' && p[1] == '!' && p[2] == '-' && p[3] == '-';
}

// Takes what may stand in front of the root, or behind it; null where that isn't plain.
const char* SkipComments(const char* p, const char* textEnd) {
  for (p = SkipSpace(p); StartsComment(p); p = SkipSpace(p)) {
    p = SkipBehind(p + 4, textEnd, "-->");
    if (p == nullptr) {
      return nullptr;
    }
  }
  return p;
}

// One attribute of a tag that was taken: its name, its value, and what follows.
const char* TakeAttribute(const char* name, std::string_view* attributeName,
                          std::string_view* value) {
  const char* const nameEnd = SkipName(name);
  const char* const valueEnd = SkipTo(nameEnd + 2, StopsOf(nameEnd[1]));
  *attributeName = Between(name, nameEnd);
  *value = Between(nameEnd + 2, valueEnd);
  return SkipSpace(valueEnd + 1);
}

}  // namespace

bool PlainXml::Parse(std::string_view text) {
  elements_.clear();
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
    return false;
  }
  text_ = text;
  const char* const textEnd = text.data() + text.size();
  const char* p = text.data();
  if (text.starts_with(ByteOrderMark)) {
    p += ByteOrderMark.size();
  }
  p = SkipSpace(p);
  if (p[0] == '<' && p[1] == '?') {
    p = SkipBehind(p + 2, textEnd, "?>");
  }
  p = p == nullptr ? nullptr : SkipComments(p, textEnd);
  if (p == nullptr || *p != '<') {
    return false;
  }

  elements_.reserve(text.size() / BytesPerElement + 1);
  elements_.push_back({});
  Place open[LargestPlainDepth + 1] = {Document};
  Place last[LargestPlainDepth + 1] = {Document};  // the last child so far of each open element
  std::size_t depth = 0;
  do {
    if (p[1] == '/') {
      if (depth == 0) {
        return false;
      }
      const char* const name = text.data() + elements_[open[depth]].name;
      const char* const nameEnd = SkipName(name);
      const auto length = static_cast<std::size_t>(nameEnd - name);
      // A name that ends before the text does differs from what follows it at the latest there.
      if (std::strncmp(p + 2, name, length) != 0 || p[2 + length] != '>') {
        return false;
      }
      p += length + 3;
      --depth;
    } else if (Is(p[1], NameStart)) {
      const auto place = static_cast<Place>(elements_.size());
      if (last[depth] == Document) {
        elements_[open[depth]].next |= HasChild;
      } else {
        elements_[last[depth]].next |= place;
      }
      last[depth] = place;
      elements_.push_back({static_cast<std::uint32_t>(p + 1 - text.data()), 0});
      p = SkipAttributes(SkipName(p + 1));
      if (p == nullptr) {
        return false;
      }
      if (*p == '>') {
        if (depth == LargestPlainDepth) {
          return false;
        }
        ++depth;
        open[depth] = place;
        last[depth] = Document;
        ++p;
      } else if (p[1] == '>') {
        p += 2;
      } else {
        return false;
      }
    } else {
      p = StartsComment(p) ? SkipComments(p, textEnd) : nullptr;
      if (p == nullptr || *p != '<') {
        return false;
      }
      continue;
    }
    if (depth > 0) {
      // White space alone is no text, and so may hold what a text may not.
      const char* const behindSpace = SkipSpace(p);
      p = *behindSpace == '<' ? behindSpace : SkipTo(p, TextStop);
      for (; *p == '&'; p = SkipTo(p, TextStop)) {
        const Reference* const reference = FindReference(p);
        if (reference == nullptr) {
          return false;
        }
        p += reference->text.size();
      }
      if (*p != '<') {
        return false;
      }
    }
  } while (depth > 0);
  return SkipComments(p, textEnd) == textEnd;
}

PlainXml::Place PlainXml::FirstChild(Place place) const {
  return (elements_[place].next & HasChild) == 0 ? Document : place + 1;
}

PlainXml::Place PlainXml::NextSibling(Place place) const {
  return elements_[place].next & ~HasChild;
}

bool PlainXml::HasName(Place place, std::string_view name) const {
  const char* const start = text_.data() + elements_[place].name;
  // What differs ends the loop, at the latest the NUL behind the text.
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (start[i] != name[i]) {
      return false;
    }
  }
  return !Is(start[name.size()], NamePart);
}

std::string_view PlainXml::Name(Place place) const {
  return Between(text_.data() + elements_[place].name, NameEnd(place));
}

const char* PlainXml::NameEnd(Place place) const {
  return SkipName(text_.data() + elements_[place].name);
}

std::string_view PlainXml::Text(Place place, std::string* room) const {
  const char* p = SkipSpace(NameEnd(place));
  std::string_view name;
  std::string_view value;
  while (*p != '>' && *p != '/') {
    p = TakeAttribute(p, &name, &value);
  }
  if (*p == '/') {
    return {};
  }
  ++p;
  const char* textEnd = SkipSpace(p);
  if (*textEnd == '<') {
    return {};
  }
  textEnd = SkipTo(textEnd, TextStop);
  if (*textEnd == '<') {
    return Between(p, textEnd);
  }
  room->clear();
  AppendResolved(Between(p, std::strchr(textEnd, '<')), room);
  return *room;
}

bool PlainXml::Attributes(Place place, std::span<const std::string_view> names,
                          std::string_view* values) const {
  std::size_t foundNb = 0;
  std::string_view name;
  std::string_view value;
  // They mostly stand in the order in which they are asked for.
  std::size_t expected = 0;
  for (const char* p = SkipSpace(NameEnd(place)); *p != '>' && *p != '/';) {
    p = TakeAttribute(p, &name, &value);
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::size_t candidate = (expected + i) % names.size();
      if (IsSame(names[candidate], name)) {
        values[candidate] = value;
        ++foundNb;
        expected = candidate + 1;
        break;
      }
    }
  }
  return foundNb == names.size();
}

}  // namespace Orvo
