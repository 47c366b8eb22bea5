#include "machines/MathematicsBits.h"

#include "support/BitsHash.h"

#include <cmath>
#include <cstdint>
#include <string>

#if defined(__GLIBC__)
#include <gnu/libc-version.h>
#endif

namespace Orvo::Testing {

namespace {

constexpr int ArgumentNb = 50000;
constexpr std::uint64_t RecordedHash = 0x87E73EC8B9C2863BU;

/// Numbers between -1 and 1, the same on every system: a linear congruential generator with the
/// factor of D. E. Knuth's MMIX.
class Numbers {
 public:
  double Next() {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<double>(static_cast<std::int64_t>(state_) >> 11) * 0x1p-52;
  }

 private:
  std::uint64_t state_ = 1;
};

}  // namespace

bool AreMathematicsTheRecordedOnes() {
  Numbers numbers;
  BitsHash hash;
  for (int i = 0; i < ArgumentNb; ++i) {
    // Angles of some turns, most of them whole thousandths of a degree as programs have them.
    double angle = 20.0 * numbers.Next();
    if (i % 4 != 0) {
      angle = std::floor(angle * 57296.0) * 0.001 * 3.141592653589793 / 180.0;
    }
    const double y = numbers.Next();
    const double x = numbers.Next();
    hash.Add(std::sin(angle));
    hash.Add(std::cos(angle));
    hash.Add(std::atan2(y, x));
  }
  return hash.Value() == RecordedHash;
}

bool MustMathematicsBeTheRecordedOnes() {
#if defined(__GLIBC__) && defined(__aarch64__)
  return gnu_get_libc_version() == std::string("2.36");
#elif defined(__GLIBC__) && defined(__x86_64__)
  return gnu_get_libc_version() == std::string("2.36") && __builtin_cpu_supports("fma") != 0 &&
         __builtin_cpu_supports("avx2") != 0;
#else
  return false;
#endif
}

}  // namespace Orvo::Testing
