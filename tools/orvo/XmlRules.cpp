#include "XmlRules.h"

#include "WideText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace OrvoTool {
namespace {

constexpr std::string_view Blanks = " \t\r\n";

/// How much of a reference a message quotes; longer ones are no references at all.
constexpr std::size_t MaxReference = 40;

bool IsNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == ':' || c == '-' || c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

bool IsXmlCharacter(std::uint32_t code) {
  return code == 0x9 || code == 0xA || code == 0xD || (code >= 0x20 && code < 0xD800) ||
         (code >= 0xE000 && code < 0xFFFE) || (code >= 0x10000 && code < 0x110000);
}

/// Returns what is wrong with a reference, or nothing; @p body stands between '&' and ';'.
std::string FindReferenceFault(std::string_view body) {
  const std::string shown = "'&" + Printable(body) + ";'";
  if (body.substr(0, 1) == "#") {
    const bool isHex = body.substr(1, 1) == "x";
    const std::string_view digits = body.substr(isHex ? 2 : 1);
    std::uint32_t code = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? 16 : 10);
    const bool isNumber = error != std::errc::invalid_argument &&
                          end == digits.data() + digits.size() && !digits.empty();
    return isNumber && error == std::errc() && IsXmlCharacter(code)
               ? std::string()
               : shown + (isNumber ? " stands for no character that XML has"
                                   : " is no reference to a character");
  }
  for (const std::string_view known : {"lt", "gt", "amp", "apos", "quot"}) {
    if (body == known) {
      return "";
    }
  }
  return "the entity " + shown + " is not known, and stands for itself";
}

/// Takes blanks and one `name = "value"` off a text.
bool TakePair(std::string_view* text, std::string_view name, std::string_view* value) {
  std::string_view rest = *text;
  const auto skip = [&rest]() {
    rest.remove_prefix(std::min(rest.find_first_not_of(Blanks), rest.size()));
  };
  skip();
  if (rest.size() == text->size() || rest.substr(0, name.size()) != name) {
    return false;
  }
  rest.remove_prefix(name.size());
  skip();
  if (rest.substr(0, 1) != "=") {
    return false;
  }
  rest.remove_prefix(1);
  skip();
  const std::string_view quote = rest.substr(0, 1);
  const std::size_t close =
      quote == "\"" || quote == "'" ? rest.find(quote, 1) : std::string_view::npos;
  if (close == std::string_view::npos) {
    return false;
  }
  *value = rest.substr(1, close - 1);
  *text = rest.substr(close + 1);
  return true;
}

}  // namespace

void CheckXmlReferences(std::string_view text, const XmlFaultTaker& take) {
  for (std::size_t begin = text.find('&'); begin != std::string_view::npos;
       begin = text.find('&', begin + 1)) {
    std::size_t end = begin + 1;
    end += end < text.size() && text[end] == '#' ? 1U : 0U;
    while (end < text.size() && end - begin <= MaxReference && IsNameChar(text[end])) {
      ++end;
    }
    const bool isReference = end > begin + 1 && end < text.size() && text[end] == ';';
    const std::string fault = isReference
                                  ? FindReferenceFault(text.substr(begin + 1, end - begin - 1))
                                  : "'&' begins no reference; write '&amp;' for the character";
    if (!fault.empty()) {
      take(begin, fault);
    }
  }
}

void CheckXmlCharacters(std::string_view text, const XmlFaultTaker& take) {
  const auto isBad = [text](std::size_t i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x20) {
      return byte != '\t' && byte != '\n' && byte != '\r';
    }
    // U+FFFE and U+FFFF.
    return byte == 0xEF &&
           (text.substr(i, 3) == "\xEF\xBF\xBE" || text.substr(i, 3) == "\xEF\xBF\xBF");
  };
  constexpr char Digits[] = "0123456789ABCDEF";
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isBad(i)) {
      continue;
    }
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::string code = byte < 0x20
                                 ? std::string("U+00") + Digits[byte >> 4U] + Digits[byte & 0xFU]
                                 : std::string("U+FFF") + (text[i + 2] == '\xBE' ? "E" : "F");
    take(i, "the character " + code + ", which no XML file may hold");
    while (i + 1 < text.size() && isBad(i + 1)) {
      i += static_cast<unsigned char>(text[i + 1]) < 0x20 ? 1U : 3U;
    }
  }
}

std::string FindXmlDeclarationFault(std::string_view content, std::string* encoding) {
  encoding->clear();
  std::string_view value;
  if (!TakePair(&content, "version", &value)) {
    return "the XML declaration must begin with the version";
  }
  if (value.substr(0, 2) != "1." || value.size() < 3 ||
      value.find_first_not_of("0123456789", 2) != std::string_view::npos) {
    return "the version '" + Printable(value.substr(0, MaxReference)) + "' of XML is not known";
  }
  if (TakePair(&content, "encoding", &value)) {
    *encoding = std::string(value);
  }
  if (TakePair(&content, "standalone", &value) && value != "yes" && value != "no") {
    return "'standalone' must be 'yes' or 'no'";
  }
  return content.find_first_not_of(Blanks) == std::string_view::npos
             ? std::string()
             : "the XML declaration holds more than version, encoding and standalone";
}

}  // namespace OrvoTool
