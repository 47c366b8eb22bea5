#pragma once

#include "support/TemporaryFolder.h"

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <locale>
#include <stdexcept>
#include <string>

namespace Orvo::Testing {

/// Puts the process into a locale whose numbers have a comma, and back.
///
/// The C++ part is a facet. The C part is, with the GNU library, a locale of our own, so that the
/// machine needs none installed; elsewhere it is the system's German one, if there is one.
class CommaLocale {
 public:
  CommaLocale() : before_(std::setlocale(LC_NUMERIC, nullptr)) {
    std::locale::global(std::locale(std::locale::classic(), new Comma));
#if defined(__GLIBC__)
    WriteNumericLocale();
    setenv("LOCPATH", folder_.Path().c_str(), 1);
    const char* const name = std::setlocale(LC_NUMERIC, "comma");
    unsetenv("LOCPATH");
    if (name == nullptr || std::localeconv()->decimal_point[0] != ',') {
      throw std::runtime_error("no locale with a comma");
    }
#else
    if (std::setlocale(LC_NUMERIC, "de-DE") == nullptr) {
      std::setlocale(LC_NUMERIC, "German");
    }
#endif
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;
  ~CommaLocale() {
    std::locale::global(std::locale::classic());
    std::setlocale(LC_NUMERIC, before_.c_str());
  }

 private:
  class Comma : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };

#if defined(__GLIBC__)
  // A compiled LC_NUMERIC: a magic number, the count of its values, their offsets, the values.
  void WriteNumericLocale() const {
    std::string bytes;
    const auto append = [&bytes](std::uint32_t value) {
      bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    constexpr std::uint32_t valueNb = 6;
    constexpr std::uint32_t firstValue = 4 * (2 + valueNb);
    append(0x20031115U ^ static_cast<std::uint32_t>(LC_NUMERIC));
    append(valueNb);
    for (std::uint32_t i = 0; i < valueNb; ++i) {
      append(firstValue + 4 * i);
    }
    bytes += std::string(",\0\0\0", 4);  // decimal point
    bytes += std::string(".\0\0\0", 4);  // thousands separator
    bytes += std::string("\3\0\0\0", 4);
    append(',');
    append('.');
    bytes += std::string("UTF-8\0", 6);
    std::filesystem::create_directory(folder_.File("comma"));
    folder_.Write("comma/LC_NUMERIC", bytes);
  }

  TemporaryFolder folder_;
#endif
  std::string before_;
};

}  // namespace Orvo::Testing
