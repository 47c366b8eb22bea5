#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace OrvoTool {

/// Decodes UTF-8; nothing comes back where the bytes are no well-formed UTF-8.
std::optional<std::wstring> WideFromUtf8(std::string_view text);

/// Encodes wide text as UTF-8; what is no character becomes U+FFFD.
std::string Utf8FromWide(std::wstring_view text);

/// Encodes wide text as UTF-8 for people: control characters become '?', so that a name in a file
/// can neither break a line nor steer the terminal.
std::string PrintableFromWide(std::wstring_view text);

/// Does the same to a text that is UTF-8 already, or any other bytes.
std::string Printable(std::string_view text);

/// Returns the number of characters of a UTF-8 text.
std::size_t CountCharacters(std::string_view text);

/// Returns the same for a text that may be colored, for columns that line up: what sets colors, see
/// TextStyle, takes no room.
std::size_t CountColumns(std::string_view text);

/// Returns the file that a name in UTF-8 stands for.
std::filesystem::path FileFromUtf8(std::string_view name);

/// Returns the name of a file in UTF-8.
std::string Utf8FromFile(const std::filesystem::path& file);

}  // namespace OrvoTool
