#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace OrvoTool {

/// What takes a fault of a text: the byte where it is, and what is wrong there.
using XmlFaultTaker = std::function<void(std::size_t offset, const std::string& what)>;

/// Tells of all references in a text, or in the value of an attribute, that XML 1.0 refuses or that
/// stand for nothing that is known here.
void CheckXmlReferences(std::string_view text, const XmlFaultTaker& take);

/// Tells of all characters that XML 1.0 refuses anywhere in a file, once for each run of them.
void CheckXmlCharacters(std::string_view text, const XmlFaultTaker& take);

/// Returns what is wrong with the declaration that a file begins with, or nothing.
/// @param content   what stands between "<?xml" and "?>"
/// @param encoding  receives the encoding that it names; empty where it names none
std::string FindXmlDeclarationFault(std::string_view content, std::string* encoding);

}  // namespace OrvoTool
