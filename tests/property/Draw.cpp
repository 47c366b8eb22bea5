#include "property/Draw.h"

#include <algorithm>
#include <cstdlib>

namespace Orvo::Property {
namespace {

// In percent.
int CaseShare() {
  const char* share = std::getenv("ORVO_TEST_CASES");
  if (share != nullptr) {
    return std::atoi(share);
  }
#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  return 100;
#else
  return 5;
#endif
}

}  // namespace

// SplitMix64: Steele, Lea, Flood, "Fast splittable pseudorandom number generators", 2014.
std::uint64_t Draw::Next() {
  state_ += 0x9E3779B97F4A7C15U;
  std::uint64_t z = state_;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
  return z ^ (z >> 31);
}

int Draw::Int(int first, int last) {
  const std::uint64_t span =
      static_cast<std::uint64_t>(static_cast<std::int64_t>(last) - first + 1);
  return first + static_cast<int>(Next() % span);
}

double Draw::Uniform(double low, double high) {
  const double unit = static_cast<double>(Next() >> 11) * 0x1p-53;
  return low + (high - low) * unit;
}

bool Draw::Chance(double probability) { return Uniform(0.0, 1.0) < probability; }

std::uint64_t TestSeed() {
  const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string(info->test_suite_name()) + "." + info->name();
  const char* extra = std::getenv("ORVO_TEST_SEED");
  if (extra != nullptr) {
    name += extra;
  }
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char c : name) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
  }
  return hash;
}

int CaseCount(int count) { return std::max(1, static_cast<int>(count / 100.0 * CaseShare())); }

int OnlyCase() {
  const char* only = std::getenv("ORVO_TEST_CASE");
  return only == nullptr ? -1 : std::atoi(only);
}

}  // namespace Orvo::Property
