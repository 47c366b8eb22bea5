#include "NumberOption.h"

#include "NumberText.h"
#include "WideText.h"

#include <charconv>
#include <functional>
#include <system_error>

namespace OrvoTool {
namespace {

CLI::Validator NumberCheck(const std::string& need, const std::function<bool(double)>& isGood) {
  return CLI::Validator(
      [need, isGood](std::string& text) {
        double value = 0.0;
        const bool isNumber = ReadNumber(text, &value) == NumberFault::None;
        return isNumber && isGood(value) ? std::string()
                                         : need + " is needed, not '" + Printable(text) + "'";
      },
      "");
}

}  // namespace

CLI::Validator NumberAbove(const std::string& what, double bound) {
  return NumberCheck(what + " above " + ShortNumber(bound),
                     [bound](double value) { return value > bound; });
}

CLI::Validator NumberFrom(const std::string& what, double least) {
  return NumberCheck(what + " of " + ShortNumber(least) + " or more",
                     [least](double value) { return value >= least; });
}

CLI::Validator NumberWithin(const std::string& what, double least, double largest) {
  return NumberCheck(what + " from " + ShortNumber(least) + " to " + ShortNumber(largest),
                     [least, largest](double value) { return value >= least && value <= largest; });
}

CLI::Validator WholeNumberWithin(std::uint64_t least, std::uint64_t largest) {
  const std::string need =
      "a whole number from " + std::to_string(least) + " to " + std::to_string(largest);
  return CLI::Validator(
      [need, least, largest](std::string& text) {
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        const bool isGood = error == std::errc() && end == text.data() + text.size() &&
                            value >= least && value <= largest;
        return isGood ? std::string() : need + " is needed, not '" + Printable(text) + "'";
      },
      "");
}

}  // namespace OrvoTool
