#include "EdgeNumbers.h"

#include <algorithm>
#include <cmath>

namespace Orvo::Testing {
namespace {

using Doubles = std::vector<double>;

// Pairs of arguments grow fast; of an operation with many, as many cases are drawn.
constexpr std::size_t MostArgumentsInPairs = 9;
constexpr int DrawnCases = 3000;

std::string Text(const Doubles& numbers) {
  std::string text;
  for (const double number : numbers) {
    text += HexText(number) + " ";
  }
  return text;
}

testing::AssertionResult SameNumbers(const Doubles& a, const Doubles& b) {
  if (a.size() != b.size()) {
    return testing::AssertionFailure() << a.size() << " results and not " << b.size();
  }
  return SameBits(a.data(), b.data(), a.size(), "the results'");
}

void HoldOneCase(const EdgeOperation& operation, const Doubles& arguments,
                 const Doubles& plainResults) {
  const Doubles results = operation.call(arguments.data());
  ASSERT_TRUE(SameNumbers(operation.call(arguments.data()), results)) << Text(arguments);
  ASSERT_TRUE(SameNumbers(operation.call(operation.plain.data()), plainResults))
      << "after " << Text(arguments);
}

void HoldNan(const EdgeOperation& operation, std::size_t place) {
  Doubles arguments = operation.plain;
  arguments[place] = std::numeric_limits<double>::quiet_NaN();
  const Doubles results = operation.call(arguments.data());
  switch (operation.nan[place]) {
    case 'n':
      EXPECT_TRUE(std::any_of(results.begin(), results.end(), [](double r) {
        return std::isnan(r);
      })) << Text(results);
      break;
    case '0':
      EXPECT_EQ(results[0], 0.0);
      break;
    case '1':
      EXPECT_EQ(results[0], 1.0);
      break;
    default:
      break;
  }
}

}  // namespace

void HoldAtTheEdge(const EdgeOperation& operation) {
  SCOPED_TRACE(operation.name);
  const std::size_t count = operation.plain.size();
  ASSERT_EQ(operation.nan.size(), count);
  const Doubles plainResults = operation.call(operation.plain.data());
  ASSERT_TRUE(std::none_of(plainResults.begin(), plainResults.end(), [](double r) {
    return std::isnan(r);
  })) << Text(plainResults);
  for (std::size_t i = 0; i < count; ++i) {
    SCOPED_TRACE("argument " + std::to_string(i));
    HoldNan(operation, i);
    for (const double first : EdgeNumbers) {
      Doubles arguments = operation.plain;
      arguments[i] = first;
      HoldOneCase(operation, arguments, plainResults);
      for (std::size_t k = i + 1; k < count && count <= MostArgumentsInPairs; ++k) {
        for (const double second : EdgeNumbers) {
          arguments[k] = second;
          HoldOneCase(operation, arguments, plainResults);
        }
        arguments[k] = operation.plain[k];
      }
      if (testing::Test::HasFatalFailure()) {
        return;
      }
    }
  }
  for (const double all : EdgeNumbers) {
    HoldOneCase(operation, Doubles(count, all), plainResults);
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  constexpr int edgeNb = static_cast<int>(std::size(EdgeNumbers));
  for (int i = 0; i < DrawnCases && !testing::Test::HasFatalFailure(); ++i) {
    Doubles arguments = operation.plain;
    const double share = random.Real(0.0, 0.6);
    for (double& argument : arguments) {
      if (random.Chance(share)) {
        argument = EdgeNumbers[random.Integer(0, edgeNb - 1)];
      }
    }
    HoldOneCase(operation, arguments, plainResults);
  }
}

}  // namespace Orvo::Testing
