#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvo {

/// An XML text of the plain form that machine files have. Its elements are found in one pass and
/// read where they stand; nothing is copied.
///
/// Plain is a text whose meaning leaves no doubt: one root element with elements, attributes and
/// text of any bytes below it, in front of it a byte order mark and a declaration if there are any,
/// and comments. A text is not plain, though it may be XML, that holds
///   - a reference other than &amp; &lt; &gt; &quot; and &apos; or one in a value;
///   - a NUL, or a carriage return in a text or a value;
///   - markup that is none of these: CDATA, a document type, a second declaration;
///   - names of other characters than ASCII letters, digits, "_", "-" and ".";
///   - white space behind a "<", around a "=" or in an end tag, or none before an attribute;
///   - text behind a comment, more than 16 attributes in a tag, elements more than 32 deep, or
///     more than 4 GB.
/// What is read of a plain text is what the XML parser gives for it.
class PlainXml {
 public:
  /// So many zero bytes must stand behind a text, so that loops need not ask for its end.
  static constexpr std::size_t Padding = 8;

  /// The place of an element. Document is none, and what all elements stand in.
  using Place = std::uint32_t;
  static constexpr Place Document = 0;

  /// Finds the elements of a text, which must live as long as they are read; false where it isn't
  /// plain. Linear.
  bool Parse(std::string_view text);

  /// The first element in an element or in the document; Document where there is none.
  Place FirstChild(Place place) const;

  /// The next element in the same element; Document where there is none.
  Place NextSibling(Place place) const;

  bool HasName(Place place, std::string_view name) const;

  std::string_view Name(Place place) const;

  /// The text in front of the first element in an element; empty where there is none but white
  /// space.
  /// @param room  where a text with references is put together
  std::string_view Text(Place place, std::string* room) const;

  /// Finds the values of attributes by their names; false where one of them is absent.
  bool Attributes(Place place, std::span<const std::string_view> names,
                  std::string_view* values) const;

 private:
  struct Element {
    std::uint32_t name = 0;  // where it starts in the text

    // The next sibling, and in the highest bit whether there is a child, which then comes next.
    std::uint32_t next = 0;
  };

  const char* NameEnd(Place place) const;

  std::string_view text_;
  std::vector<Element> elements_;
};

}  // namespace Orvo
