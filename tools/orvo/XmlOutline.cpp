#include "XmlOutline.h"

#include "WideText.h"

#include <algorithm>

namespace OrvoTool {
namespace {

constexpr std::string_view Blanks = " \t\r\n";

/// The reader of machine files refuses elements that are nested deeper.
constexpr std::size_t MaxDepth = 100;

/// No machine has as many elements: each takes memory, many times that of its text.
constexpr std::size_t MaxNodes = 2000000;

/// The reader of machine files refuses tags with more.
constexpr std::size_t MaxAttributes = 1000;

constexpr std::string_view CdataBegin = "<![CDATA[";

bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsNameChar(char c) { return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; }

std::string InBrackets(std::string_view name) { return "<" + Printable(name.substr(0, 40)) + ">"; }

}  // namespace

XmlOutline::XmlOutline(std::string_view text) : text_(text), nodes_(1) {
  open_.push_back(0);
  if (text_.substr(0, 3) == "\xEF\xBB\xBF") {
    position_ = 3;
    knownOffset_ = 3;
  }
  const std::size_t nul = text_.find('\0');
  if (nul != std::string_view::npos) {
    Fail(nul, "a NUL byte: this is no text file");
    return;
  }
  Read();
}

void XmlOutline::Read() {
  while (fault_.empty() && position_ < text_.size()) {
    const std::size_t bracket = std::min(text_.find('<', position_), text_.size());
    AddText(position_, bracket);
    position_ = bracket;
    if (!fault_.empty() || position_ == text_.size()) {
      break;
    }
    if (text_.substr(position_, CdataBegin.size()) == CdataBegin) {
      const std::size_t content = position_ + CdataBegin.size();
      if (SkipBlock(CdataBegin, "]]>", "the CDATA") && fault_.empty()) {
        AddText(content, position_ - 3);
      }
      continue;
    }
    if (SkipBlock("<!--", "-->", "the comment") || SkipBlock("<?", "?>", "the declaration") ||
        SkipBlock("<!", ">", "the declaration")) {
      continue;
    }
    if (text_.substr(position_, 2) == "</") {
      ReadEndTag();
    } else {
      ReadElement();
    }
  }
  if (fault_.empty() && open_.size() > 1) {
    const XmlNode& node = nodes_[open_.back()];
    const std::string what = InBrackets(node.name) + " of line " + std::to_string(node.place.line) +
                             " is not closed before the end of the file";
    Fail(text_.size(), what);
  }
  if (fault_.empty() && nodes_.size() == 1) {
    Fail(0, "there is no XML element");
  }
}

void XmlOutline::AddText(std::size_t begin, std::size_t end) {
  const std::string_view text = text_.substr(begin, end - begin);
  const std::size_t content = text.find_first_not_of(Blanks);
  XmlNode& node = nodes_[open_.back()];
  if (open_.size() == 1) {
    if (content != std::string_view::npos) {
      Fail(begin + content, "there is text outside of the elements: this is no XML file");
    }
    return;
  }
  if (node.children.empty() && node.text.empty()) {
    node.text = text;
    node.textPlace = PlaceOf(begin + (content == std::string_view::npos ? 0 : content));
  }
}

bool XmlOutline::SkipBlock(std::string_view begin, std::string_view end, const char* what) {
  if (text_.substr(position_, begin.size()) != begin) {
    return false;
  }
  const std::size_t close = text_.find(end, position_ + begin.size());
  if (close == std::string_view::npos) {
    Fail(position_, std::string(what) + " is not closed");
  } else {
    position_ = close + end.size();
  }
  return true;
}

void XmlOutline::ReadEndTag() {
  const std::size_t begin = position_;
  position_ += 2;
  const std::string_view name = TakeName();
  SkipBlanks();
  if (position_ >= text_.size() || text_[position_] != '>') {
    Fail(begin, "the end tag " + InBrackets("/" + std::string(name)) + " is not closed");
    return;
  }
  if (open_.size() == 1) {
    Fail(begin, InBrackets("/" + std::string(name)) + " closes nothing");
    return;
  }
  const XmlNode& node = nodes_[open_.back()];
  if (node.name != name) {
    Fail(begin, InBrackets("/" + std::string(name)) + " stands where " + InBrackets(node.name) +
                    " of line " + std::to_string(node.place.line) + " must be closed");
    return;
  }
  ++position_;
  open_.pop_back();
}

void XmlOutline::ReadElement() {
  const std::size_t begin = position_;
  ++position_;
  XmlNode node;
  node.name = TakeName();
  node.place = PlaceOf(begin);
  if (node.name.empty()) {
    Fail(begin, "'<' is not followed by the name of an element");
    return;
  }
  while (ReadAttribute(&node)) {
  }
  if (node.attributes.size() > MaxAttributes) {
    Fail(begin, "the tag " + InBrackets(node.name) + " has more than " +
                    std::to_string(MaxAttributes) + " attributes");
  }
  if (nodes_.size() > MaxNodes) {
    Fail(begin, "there are more than " + std::to_string(MaxNodes) + " elements");
  }
  if (!fault_.empty()) {
    return;
  }
  const bool isClosed = text_.substr(position_, 2) == "/>";
  if (!isClosed && text_.substr(position_, 1) != ">") {
    Fail(begin, "the tag " + InBrackets(node.name) + " is not closed");
    return;
  }
  position_ += isClosed ? 2 : 1;
  const std::size_t number = nodes_.size();
  nodes_[open_.back()].children.push_back(number);
  nodes_.push_back(std::move(node));
  if (!isClosed) {
    open_.push_back(number);
    if (open_.size() - 1 > MaxDepth) {
      Fail(begin, "elements are nested more than " + std::to_string(MaxDepth) + " deep");
    }
  }
}

bool XmlOutline::ReadAttribute(XmlNode* node) {
  SkipBlanks();
  XmlAttribute attribute;
  const std::size_t begin = position_;
  attribute.name = TakeName();
  if (attribute.name.empty()) {
    return false;
  }
  SkipBlanks();
  if (text_.substr(position_, 1) != "=") {
    Fail(begin, "the attribute " + Printable(attribute.name) + " has no value");
    return false;
  }
  ++position_;
  SkipBlanks();
  const std::string_view quote = text_.substr(position_, 1);
  const std::size_t close =
      quote == "\"" || quote == "'" ? text_.find(quote, position_ + 1) : std::string_view::npos;
  if (close == std::string_view::npos) {
    Fail(begin, "the value of the attribute " + Printable(attribute.name) + " is not in quotes");
    return false;
  }
  attribute.place = PlaceOf(position_ + 1);
  attribute.value = text_.substr(position_ + 1, close - position_ - 1);
  position_ = close + 1;
  node->attributes.push_back(attribute);
  return node->attributes.size() <= MaxAttributes;
}

void XmlOutline::SkipBlanks() {
  position_ = std::min(text_.find_first_not_of(Blanks, position_), text_.size());
}

std::string_view XmlOutline::TakeName() {
  const std::size_t begin = position_;
  if (begin < text_.size() && IsNameStart(text_[begin])) {
    while (position_ < text_.size() && IsNameChar(text_[position_])) {
      ++position_;
    }
  }
  return text_.substr(begin, position_ - begin);
}

TextPlace XmlOutline::PlaceOf(std::size_t offset) {
  if (offset < knownOffset_) {
    knownOffset_ = 0;
    knownPlace_ = TextPlace();
  }
  const std::string_view passed = text_.substr(knownOffset_, offset - knownOffset_);
  const auto feeds = static_cast<std::uint64_t>(std::count(passed.begin(), passed.end(), '\n'));
  if (feeds > 0) {
    knownPlace_.line += feeds;
    knownPlace_.column = 1 + CountCharacters(passed.substr(passed.rfind('\n') + 1));
  } else {
    knownPlace_.column += CountCharacters(passed);
  }
  knownOffset_ = offset;
  return knownPlace_;
}

void XmlOutline::Fail(std::size_t offset, const std::string& what) {
  if (fault_.empty()) {
    fault_ = what;
    faultPlace_ = PlaceOf(offset);
  }
}

const XmlNode* XmlOutline::FindChild(const XmlNode& parent, std::string_view name) const {
  for (const std::size_t child : parent.children) {
    if (nodes_[child].name == name) {
      return &nodes_[child];
    }
  }
  return nullptr;
}

const XmlAttribute* XmlOutline::FindAttribute(const XmlNode& node, std::string_view name) {
  for (const XmlAttribute& attribute : node.attributes) {
    if (attribute.name == name) {
      return &attribute;
    }
  }
  return nullptr;
}

}  // namespace OrvoTool
