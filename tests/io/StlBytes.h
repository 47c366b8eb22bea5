#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>

/// Bytes of binary STL files.
namespace Orvo::Testing {

inline std::string U32Bytes(std::uint32_t value) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    bytes += static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
  }
  return bytes;
}

inline std::string FloatBytes(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return U32Bytes(bits);
}

inline std::string StlHeader(std::uint32_t triangleNb) {
  return std::string(80, '\0') + U32Bytes(triangleNb);
}

/// Returns a record: the normal's and the vertices' coordinates, and the attribute.
inline std::string StlRecord(std::initializer_list<float> twelve, std::uint16_t attribute = 0) {
  std::string bytes;
  for (const float value : twelve) {
    bytes += FloatBytes(value);
  }
  bytes += static_cast<char>(static_cast<unsigned char>(attribute & 0xFF));
  bytes += static_cast<char>(static_cast<unsigned char>(attribute >> 8));
  return bytes;
}

/// Returns a record whose numbers are first, first + 1, and so on.
inline std::string CountingRecord(float first) {
  return StlRecord({first, first + 1, first + 2, first + 3, first + 4, first + 5, first + 6,
                    first + 7, first + 8, first + 9, first + 10, first + 11});
}

}  // namespace Orvo::Testing
