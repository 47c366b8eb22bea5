#include "XmlOutline.h"

#include "WideText.h"
#include "XmlRules.h"

#include <algorithm>
#include <utility>

namespace OrvoTool {
namespace {

/// What the reader of machine files skips; XML knows the first four only.
constexpr std::string_view Blanks = " \t\r\n\v\f";

/// How many blemishes are kept; there may be one for every byte.
constexpr std::size_t MaxBlemishes = 10000;

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
    begin_ = 3;
    position_ = 3;
    knownOffset_ = 3;
    markOffset_ = 3;
  }
  const std::size_t nul = text_.find('\0');
  if (nul != std::string_view::npos) {
    Fail(nul, "a NUL byte: this is no text file");
    return;
  }
  CheckXmlCharacters(text_,
                     [this](std::size_t offset, const std::string& what) { Note(offset, what); });
  Read();
}

void XmlOutline::Read() {
  bool isOpen = true;
  while (isOpen && !fault_ && position_ < text_.size()) {
    const std::size_t bracket = std::min(text_.find('<', position_), text_.size());
    AddText(position_, bracket, false);
    position_ = bracket;
    isOpen = fault_ || position_ == text_.size() || ReadMarkup();
  }
  if (!fault_ && open_.size() > 1) {
    Fail(text_.size(), OpenElement() + " is not closed before the end of the file");
  }
  if (!fault_ && nodes_.size() == 1) {
    Fail(begin_, "there is no XML element");
  }
}

/// Returns false where the reader stops although nothing is wrong with what came before.
bool XmlOutline::ReadMarkup() {
  markOffset_ = position_;
  markPlace_ = PlaceOf(position_);
  if (text_.substr(position_, CdataBegin.size()) == CdataBegin) {
    const std::size_t content = position_ + CdataBegin.size();
    isHeadOver_ = true;
    if (SkipTo(CdataBegin, "]]>", "the CDATA")) {
      AddText(content, position_ - 3, true);
    }
    return true;
  }
  if (text_.substr(position_, 2) == "<?") {
    ReadInstruction();
    return true;
  }
  isHeadOver_ = true;
  if (text_.substr(position_, 4) == "<!--") {
    ReadComment();
    return true;
  }
  if (text_.substr(position_, 2) == "<!") {
    ReadDeclaration();
    return true;
  }
  const std::size_t begin = position_;
  ++position_;
  SkipBlanks();
  const bool hasBlank = position_ > begin + 1;
  if (hasBlank) {
    Note(begin, "'<' is followed by a blank");
  }
  if (text_.substr(position_, 1) != "/") {
    ReadElement(begin);
    if (fault_ && hasBlank) {
      // Most likely it is meant as a character.
      fault_.reset();
      Fail(begin, "'<' is not followed by the name of an element");
    }
    return true;
  }
  ++position_;
  const std::size_t close = std::min(text_.find('>', position_), text_.size());
  if (text_.substr(close - 1, 2) == "/>" && close > position_ + 1) {
    Note(begin, "a tag with '/' at both ends; it is read as an empty element");
    ReadElement(begin);
    return true;
  }
  if (open_.size() > 1) {
    ReadEndTag(begin);
    return true;
  }
  const std::string what = InBrackets("/" + std::string(TakeName())) + " closes nothing";
  if (nodes_.size() == 1) {
    Fail(begin, what);
  } else {
    Note(begin, what + "; what stands behind it is not read");
  }
  return false;
}

void XmlOutline::AddText(std::size_t begin, std::size_t end, bool isCdata) {
  const std::string_view text = text_.substr(begin, end - begin);
  const std::size_t content = text.find_first_not_of(Blanks);
  XmlNode& node = nodes_[open_.back()];
  if (open_.size() == 1) {
    if (content == std::string_view::npos && !isCdata) {
      return;
    }
    isHeadOver_ = true;
    const std::string what = "there is text outside of the elements";
    if (!isCdata && end == text_.size()) {
      Fail(begin + content, what + ": this is no XML file");
    } else {
      Note(begin + (content == std::string_view::npos ? 0 : content), what);
    }
    return;
  }
  if (node.children.empty() && node.text.empty()) {
    node.text = text;
    node.textPlace = PlaceOf(begin + (content == std::string_view::npos ? 0 : content));
  }
  if (isCdata) {
    return;
  }
  CheckXmlReferences(text, [this, begin](std::size_t offset, const std::string& what) {
    Note(begin + offset, what);
  });
  for (std::size_t i = text.find("]]>"); i != std::string_view::npos; i = text.find("]]>", i + 1)) {
    Note(begin + i, "']]>' ends no CDATA; write ']]&gt;' for the characters");
  }
}

bool XmlOutline::SkipTo(std::string_view begin, std::string_view end, const char* what) {
  const std::size_t close = text_.find(end, position_ + begin.size());
  if (close == std::string_view::npos) {
    Fail(position_, std::string(what) + " is not closed before the end of the file");
    return false;
  }
  position_ = close + end.size();
  return true;
}

void XmlOutline::ReadComment() {
  const std::size_t begin = position_ + 4;
  if (!SkipTo("<!--", "-->", "the comment")) {
    return;
  }
  // A comment may not end in "--->" either.
  const std::size_t dashes = text_.substr(begin, position_ - 1 - begin).find("--");
  if (begin + dashes + 3 < position_) {
    Note(begin + dashes, "'--' within a comment");
  }
}

void XmlOutline::ReadInstruction() {
  const std::size_t begin = position_;
  if (!SkipTo("<?", "?>", "the processing instruction")) {
    return;
  }
  const std::string_view content = text_.substr(begin + 2, position_ - begin - 4);
  std::size_t nameEnd = 0;
  while (nameEnd < content.size() && IsNameChar(content[nameEnd])) {
    ++nameEnd;
  }
  const std::string_view name = content.substr(0, nameEnd);
  const bool isDeclaration = name.size() == 3 && (name[0] == 'x' || name[0] == 'X') &&
                             (name[1] == 'm' || name[1] == 'M') &&
                             (name[2] == 'l' || name[2] == 'L');
  if (isHeadOver_) {
    Fail(begin, isDeclaration ? "an XML declaration must be the first thing in the file"
                              : "a processing instruction is read before all else only");
    isFaultOfReaderOnly_ = !isDeclaration;
    return;
  }
  if (name.empty() || !IsNameStart(name[0])) {
    Note(begin, "'<?' is not followed by a name");
  } else if (isDeclaration && name != "xml") {
    Note(begin, "the XML declaration begins with '<?" + std::string(name) + "', not with '<?xml'");
  } else if (isDeclaration && begin != begin_) {
    Note(begin, "an XML declaration must be the first thing in the file");
  } else if (isDeclaration) {
    const std::string fault = FindXmlDeclarationFault(content.substr(nameEnd), &encoding_.what);
    encoding_.place = PlaceOf(begin);
    if (!fault.empty()) {
      Note(begin, fault);
    }
  }
}

void XmlOutline::ReadDeclaration() {
  constexpr std::string_view TypeBegin = "<!DOCTYPE";
  const std::size_t begin = position_;
  const bool isType = text_.substr(begin, TypeBegin.size()) == TypeBegin;
  const bool isInPlace = isType && !isTypeGiven_ && nodes_.size() == 1;
  std::size_t close = isInPlace ? FindTypeEnd(begin) : std::string_view::npos;
  if (!isType) {
    Note(begin, "'<!' begins neither a comment nor CDATA nor a DOCTYPE");
  } else if (!isInPlace) {
    Note(begin, "a DOCTYPE must stand once, before the first element");
  } else if (close == std::string_view::npos) {
    Note(begin, "the DOCTYPE is not closed as it must be");
  }
  isTypeGiven_ = isTypeGiven_ || isType;
  // The reader goes to the first bracket, whatever stands before it.
  close = close == std::string_view::npos ? text_.find('>', begin) : close;
  if (close == std::string_view::npos) {
    Fail(begin, std::string(isType ? "the DOCTYPE" : "'<!'") +
                    " is not closed before the end of the file");
    return;
  }
  position_ = close + 1;
}

/// Returns where a document type that is well-formed ends, with its inner part; or npos.
std::size_t XmlOutline::FindTypeEnd(std::size_t begin) {
  const TextPlace place = PlaceOf(begin);
  bool isInner = false;
  bool wasInner = false;
  for (std::size_t i = begin; i < text_.size(); ++i) {
    const char c = text_[i];
    if (isInner && text_.substr(i, 4) == "<!--") {
      i = text_.find("-->", i + 4);
      if (i == std::string_view::npos) {
        return i;
      }
      i += 2;
    } else if (c == '"' || c == '\'') {
      i = text_.find(c, i + 1);
      if (i == std::string_view::npos) {
        return i;
      }
    } else if (!isInner && (c == '[' || c == '>')) {
      if (c == '>') {
        return i;
      }
      if (wasInner) {
        return std::string_view::npos;
      }
      isInner = true;
      wasInner = true;
      subset_ = XmlFault{place, "a DOCTYPE with an inner part is not understood"};
    } else if (isInner && c == ']') {
      isInner = false;
    } else if (!isInner && (c == '<' ? i != begin : wasInner && Blanks.find(c) == Blanks.npos)) {
      return std::string_view::npos;
    }
  }
  return std::string_view::npos;
}

void XmlOutline::ReadEndTag(std::size_t begin) {
  const std::string_view name = TakeName();
  const XmlNode& node = nodes_[open_.back()];
  if (name.empty()) {
    Fail(begin, position_ >= text_.size() ? "the file ends within an end tag"
                                          : "'</' is not followed by the name of an element");
    return;
  }
  if (position_ >= text_.size()) {
    Fail(begin, "the file ends within the end tag " + InBrackets("/" + std::string(name)));
    return;
  }
  if (node.name != name) {
    Fail(begin, InBrackets("/" + std::string(name)) + " stands where " + OpenElement() +
                    " must be closed");
    return;
  }
  XmlNode ignored;
  ignored.name = name;
  while (ReadAttribute(&ignored)) {
  }
  if (!fault_ && (position_ >= text_.size() || text_[position_] != '>')) {
    Fail(begin, "the end tag " + InBrackets("/" + std::string(name)) + " is not closed");
  }
  if (fault_) {
    return;
  }
  if (!ignored.attributes.empty()) {
    Note(begin, "the end tag " + InBrackets("/" + std::string(name)) + " has attributes");
  }
  ++position_;
  open_.pop_back();
}

void XmlOutline::ReadElement(std::size_t begin) {
  XmlNode node;
  node.name = TakeName();
  node.place = PlaceOf(begin);
  if (node.name.empty()) {
    Fail(begin, position_ >= text_.size() ? "the file ends behind '<'"
                                          : "'<' is not followed by the name of an element");
    return;
  }
  if (open_.size() == 1 && nodes_.size() > 1) {
    Note(begin, "a second element " + InBrackets(node.name) + " at the top: there must be one");
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
  if (fault_) {
    return;
  }
  const bool isClosed = text_.substr(position_, 2) == "/>";
  if (!isClosed && text_.substr(position_, 1) != ">") {
    Fail(begin, text_.size() - position_ < 2
                    ? "the file ends within the tag " + InBrackets(node.name)
                    : "the tag " + InBrackets(node.name) + " is not closed");
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
  const std::size_t behind = position_;
  SkipBlanks();
  XmlAttribute attribute;
  const std::size_t begin = position_;
  attribute.name = TakeName();
  if (attribute.name.empty()) {
    return false;
  }
  const std::string shown = Printable(attribute.name);
  if (begin == behind) {
    Note(begin, "there is no blank before the attribute " + shown);
  }
  SkipBlanks();
  if (text_.substr(position_, 1) != "=") {
    Fail(begin, position_ >= text_.size() ? "the file ends within the attribute " + shown
                                          : "the attribute " + shown + " has no value");
    return false;
  }
  ++position_;
  SkipBlanks();
  ReadAttributeValue(begin, &attribute);
  if (fault_) {
    return false;
  }
  for (const XmlAttribute& other : node->attributes) {
    if (other.name == attribute.name) {
      Fail(begin, "the attribute " + shown + " is there twice");
      return false;
    }
  }
  node->attributes.push_back(attribute);
  return node->attributes.size() <= MaxAttributes;
}

void XmlOutline::ReadAttributeValue(std::size_t begin, XmlAttribute* attribute) {
  const std::string shown = Printable(attribute->name);
  if (position_ >= text_.size()) {
    Fail(begin, "the file ends within the attribute " + shown);
    return;
  }
  const std::string_view quote = text_.substr(position_, 1);
  if (quote != "\"" && quote != "'") {
    Fail(begin, "the value of the attribute " + shown + " is not in quotes");
    return;
  }
  const std::size_t close = text_.find(quote, position_ + 1);
  if (close == std::string_view::npos) {
    Fail(begin, "the file ends within the value of the attribute " + shown);
    return;
  }
  const std::size_t first = position_ + 1;
  attribute->place = PlaceOf(first);
  attribute->value = text_.substr(first, close - first);
  position_ = close + 1;
  CheckXmlReferences(attribute->value, [this, first](std::size_t offset, const std::string& what) {
    Note(first + offset, what);
  });
  const std::size_t bracket = attribute->value.find('<');
  if (bracket != std::string_view::npos) {
    Note(first + bracket,
         "'<' in the value of the attribute " + shown + "; write '&lt;' for the character");
  }
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
    const bool isBehindMark = offset >= markOffset_;
    knownOffset_ = isBehindMark ? markOffset_ : begin_;
    knownPlace_ = isBehindMark ? markPlace_ : TextPlace();
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
  if (!fault_) {
    fault_ = XmlFault{PlaceOf(offset), what};
  }
}

void XmlOutline::Note(std::size_t offset, const std::string& what) {
  if (blemishes_.size() < MaxBlemishes) {
    blemishes_.push_back({PlaceOf(offset), what});
  }
}

std::string XmlOutline::OpenElement() const {
  const XmlNode& node = nodes_[open_.back()];
  return InBrackets(node.name) + " of line " + std::to_string(node.place.line);
}

const XmlFault* XmlOutline::GetSuspect() const {
  return subset_ ? &*subset_ : blemishes_.empty() ? nullptr : &blemishes_[0];
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
