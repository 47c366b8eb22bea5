#pragma once

#include <Orvo/Vector3D.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace Orvo::Fuzz {

/// Takes numbers from the bytes of an input, one after the other; behind the end all are 0.
class RequestBytes {
 public:
  explicit RequestBytes(std::string_view bytes) : rest_(bytes) {}

  bool IsAtEnd() const { return rest_.empty(); }

  unsigned int TakeByte() {
    if (rest_.empty()) {
      return 0;
    }
    const auto byte = static_cast<unsigned char>(rest_[0]);
    rest_.remove_prefix(1);
    return byte;
  }

  /// Takes an index: mostly from 0 to 9, now and then -1 or one that is far away.
  int TakeIndex() {
    const unsigned int byte = TakeByte();
    if (byte < 240) {
      return static_cast<int>(byte % 10);
    }
    return byte < 250 ? -1 : std::numeric_limits<int>::max() - static_cast<int>(byte % 2);
  }

  /// Takes a number of any kind: of an axis, at an edge, or eight bytes as they are.
  double TakeNumber() {
    const unsigned int byte = TakeByte();
    if (byte < 128) {
      return PlainNumbers[byte % (sizeof PlainNumbers / sizeof *PlainNumbers)];
    }
    if (byte < 240) {
      const unsigned int low = TakeByte();
      return (static_cast<double>((byte - 128) * 256 + low) - 14336.0) / 16.0;
    }
    if (byte < 250) {
      return EdgeNumbers[TakeByte() % (sizeof EdgeNumbers / sizeof *EdgeNumbers)];
    }
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) {
      bits = bits << 8 | TakeByte();
    }
    return std::bit_cast<double>(bits);
  }

  Vector3D TakeVector() {
    const double x = TakeNumber();
    const double y = TakeNumber();
    return Vector3D(x, y, TakeNumber());
  }

 private:
  static constexpr double PlainNumbers[] = {0.0,   1.0,   -1.0,  0.5,    -0.5,  0.6,   -0.8,
                                            10.0,  -25.0, 30.0,  -45.0,  60.0,  90.0,  -90.0,
                                            120.0, 180.0, 270.0, -180.0, 359.9, 360.0, 0.70710678};
  static constexpr double EdgeNumbers[] = {std::numeric_limits<double>::quiet_NaN(),
                                           std::numeric_limits<double>::infinity(),
                                           -std::numeric_limits<double>::infinity(),
                                           -0.0,
                                           1e308,
                                           -1e308,
                                           1e300,
                                           5e-324,
                                           1e-10,
                                           1e-4,
                                           3600000.0,
                                           3600001.0,
                                           1e15,
                                           -1e17,
                                           9007199254740993.0,
                                           0.9999999999};

  std::string_view rest_;
};

}  // namespace Orvo::Fuzz
