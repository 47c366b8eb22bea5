#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace Orvo::Testing {

/// Draws random numbers for the running test, the same ones on every platform and in every run.
///
/// The seed is made of the test's full name and of the environment variable ORVO_TEST_SEED (0 where
/// it is not set). It is recorded with the test, and a failure prints it through Trace().
class TestRandom {
 public:
  TestRandom() : seed_(MakeSeed()), engine_(seed_) {
    testing::Test::RecordProperty("seed", std::to_string(seed_));
  }

  /// Starts from a given seed, for a case that once failed.
  explicit TestRandom(std::uint64_t seed) : seed_(seed), engine_(seed) {}

  std::uint64_t Seed() const { return seed_; }

  /// Returns the text for SCOPED_TRACE.
  std::string Trace() const {
    return "seed " + std::to_string(seed_) + " (ORVO_TEST_SEED=" + std::to_string(BaseSeed()) + ")";
  }

  /// Returns 64 random bits.
  std::uint64_t Bits() { return engine_(); }

  /// Returns an integer from low to high, both included.
  int Integer(int low, int high) {
    const auto count = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low + 1);
    return static_cast<int>(low + static_cast<std::int64_t>(engine_() % count));
  }

  /// Returns a double from low to high, low included.
  double Real(double low, double high) {
    constexpr double step = 1.0 / 9007199254740992.0;  // 2^-53
    return low + (high - low) * (static_cast<double>(engine_() >> 11U) * step);
  }

  /// Returns true in the given share of the calls.
  bool Chance(double share) { return Real(0.0, 1.0) < share; }

 private:
  static std::uint64_t BaseSeed() {
    const char* text = std::getenv("ORVO_TEST_SEED");
    return text == nullptr ? 0U : std::strtoull(text, nullptr, 10);
  }

  // FNV-1a: Fowler, Noll, Vo, 64 bits.
  static std::uint64_t MakeSeed() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    const std::string name =
        test == nullptr ? "" : std::string(test->test_suite_name()) + "." + test->name();
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char c : name) {
      hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    }
    return hash ^ (BaseSeed() * 0x9e3779b97f4a7c15ULL);
  }

  std::uint64_t seed_;
  std::mt19937_64 engine_;
};

}  // namespace Orvo::Testing
