#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvo::Property {

/// Draws numbers that are the same on every platform for the same seed.
class Draw {
 public:
  explicit Draw(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next();

  /// Draws from first to last, both included.
  int Int(int first, int last);
  double Uniform(double low, double high);
  bool Chance(double probability);

  /// The share of numbers that are to be any double rather than an ordinary one; at first 0.
  void SetEdgeShare(double share) { edgeShare_ = share; }
  bool HasEdges() const { return edgeShare_ > 0.0; }

  /// Draws whether the next number is one of them; without any, nothing is drawn.
  bool IsNextAnEdge() { return HasEdges() && Chance(edgeShare_); }

  template <typename T>
  const T& Of(const std::vector<T>& values) {
    return values[static_cast<std::size_t>(Int(0, static_cast<int>(values.size()) - 1))];
  }

  template <typename T, std::size_t N>
  const T& Of(const T (&values)[N]) {
    return values[static_cast<std::size_t>(Int(0, static_cast<int>(N) - 1))];
  }

  template <typename T>
  void Shuffle(std::vector<T>* values) {
    for (std::size_t i = values->size(); i > 1; --i) {
      std::swap((*values)[i - 1],
                (*values)[static_cast<std::size_t>(Int(0, static_cast<int>(i) - 1))]);
    }
  }

 private:
  std::uint64_t state_;
  double edgeShare_ = 0.0;
};

/// The seed of the running test: its full name and the environment's ORVO_TEST_SEED.
std::uint64_t TestSeed();

/// The number of cases to run of those asked for: all in a release build, a part of them in a debug
/// or sanitized one, and the percentage in the environment's ORVO_TEST_CASES where that is set.
int CaseCount(int count);

/// The only case to run, from the environment's ORVO_TEST_CASE; negative for all.
int OnlyCase();

/// Runs a body with a fresh draw for each case, and stops after the first case that fails.
template <typename Body>
void ForCases(int count, Body&& body) {
  const std::uint64_t seed = TestSeed();
  const int cases = CaseCount(count);
  const int only = OnlyCase();
  const int first = only < 0 ? 0 : only;
  const int last = only < 0 ? cases : only + 1;
  for (int i = first; i < last; ++i) {
    Draw draw(seed + 0x9E3779B97F4A7C15U * static_cast<std::uint64_t>(i + 1));
    draw.Next();
    body(draw);
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << "in case " << i << " of seed " << seed << " (ORVO_TEST_CASE=" << i
                    << " runs it alone)";
      return;
    }
  }
}

}  // namespace Orvo::Property
