#include "ProgramSystemChoice.h"

#include "Failure.h"
#include "WideText.h"

#include <charconv>
#include <cstddef>
#include <iterator>
#include <list>
#include <system_error>
#include <vector>

namespace OrvoTool {
namespace {

/// How many program systems a message lists.
constexpr std::size_t MaxListed = 20;

std::string ListProgramSystems(const std::list<Orvo::Kin::ProgramSystem>& systems) {
  std::string text;
  std::size_t number = 0;
  for (const Orvo::Kin::ProgramSystem& system : systems) {
    if (number == MaxListed) {
      return text + "\n  ...";
    }
    text +=
        "\n  " + std::to_string(number) + "  " + PrintableFromWide(system.GetProgramSystemName());
    ++number;
  }
  return text;
}

}  // namespace

int FindProgramSystem(const Orvo::Kin::Machine& machine, const std::string& choice) {
  const std::list<Orvo::Kin::ProgramSystem>& systems = machine.GetListProgramSystem();
  int number = -1;
  const auto [end, error] = std::from_chars(choice.data(), choice.data() + choice.size(), number);
  if (error == std::errc() && end == choice.data() + choice.size() && number >= 0 &&
      static_cast<std::size_t>(number) < systems.size()) {
    return number;
  }
  std::vector<int> found;
  int index = 0;
  for (const Orvo::Kin::ProgramSystem& system : systems) {
    if (Utf8FromWide(system.GetProgramSystemName()) == choice) {
      found.push_back(index);
    }
    ++index;
  }
  if (found.size() == 1) {
    return found[0];
  }
  const std::string shown = "'" + Printable(choice) + "'";
  throw UsageFailure((found.empty()
                          ? "--program-system: there is no " + shown
                          : "--program-system: several are called " + shown + "; give the number") +
                     ". The machine has:" + ListProgramSystems(systems));
}

const Orvo::Kin::ProgramSystem& GetProgramSystem(const Orvo::Kin::Machine& machine, int number) {
  return *std::next(machine.GetListProgramSystem().begin(), number);
}

}  // namespace OrvoTool
