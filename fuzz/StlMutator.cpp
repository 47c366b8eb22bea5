#include "Mutator.h"
#include "Random.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace Orvo::Fuzz {

namespace {

constexpr std::size_t HeaderSize = 84;
constexpr std::size_t CountOffset = 80;
constexpr std::size_t RecordSize = 50;

constexpr std::uint32_t EdgeCounts[] = {0,          1,          2,          1023,       1024,
                                        1025,       65536,      1000000,    0x0FFFFFFF, 0x3FFFFFFF,
                                        0x40000000, 0x55555555, 0x55555556, 0x7FFFFFFF, 0xFFFFFFFF};

constexpr std::uint32_t EdgeFloats[] = {0x00000000, 0x80000000, 0x3F800000, 0xBF800000,
                                        0x7F800000, 0xFF800000, 0x7FC00000, 0x7F800001,
                                        0x00000001, 0x7F7FFFFF, 0x00800000, 0x42C80000};

void Store(std::uint32_t value, std::string* bytes, std::size_t offset) {
  for (std::size_t i = 0; i < 4; ++i) {
    (*bytes)[offset + i] = static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
  }
}

std::string AnyRecord(Random& random) {
  std::string record(RecordSize, '\0');
  for (std::size_t number = 0; number < 12; ++number) {
    Store(random.OneOf(EdgeFloats), &record, 4 * number);
  }
  return record;
}

}  // namespace

std::size_t MutateStl(std::uint8_t* data, std::size_t size, std::size_t maxSize, std::uint64_t seed,
                      ByteMutator byteMutator) {
  Random random(seed);
  if (random.OneIn(4)) {
    return byteMutator(data, size, maxSize);
  }
  std::string bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.size() < HeaderSize) {
    bytes.resize(HeaderSize, '\0');
  }
  const std::size_t recordNb = (bytes.size() - HeaderSize) / RecordSize;
  const std::size_t record = HeaderSize + RecordSize * random.Below(recordNb + 1);
  switch (random.Below(8)) {
    case 0:
      Store(random.OneOf(EdgeCounts), &bytes, CountOffset);
      break;
    case 1:
      Store(static_cast<std::uint32_t>(random.Below(recordNb + 3)), &bytes, CountOffset);
      break;
    case 2:
      bytes.insert(record, AnyRecord(random));
      Store(static_cast<std::uint32_t>(recordNb + 1), &bytes, CountOffset);
      break;
    case 3:
      bytes.erase(record, RecordSize);
      break;
    case 4:
      bytes.resize(HeaderSize + random.Below(bytes.size() - HeaderSize + 1));
      break;
    case 5: {
      // Enough triangles for a second block of reading and of writing.
      const std::string more = AnyRecord(random);
      for (std::size_t nb = random.Below(1200); nb > 0 && bytes.size() < maxSize; --nb) {
        bytes += more;
      }
      Store(static_cast<std::uint32_t>((bytes.size() - HeaderSize) / RecordSize), &bytes,
            CountOffset);
      break;
    }
    default:
      if (recordNb > 0) {
        const std::size_t first = HeaderSize + RecordSize * random.Below(recordNb);
        Store(random.OneOf(EdgeFloats), &bytes, first + 4 * random.Below(12));
      }
      break;
  }
  const std::size_t newSize = std::min(bytes.size(), maxSize);
  std::copy_n(bytes.data(), newSize, data);
  return newSize;
}

}  // namespace Orvo::Fuzz
