#include "AxisNames.h"

#include "NumberText.h"
#include "WideText.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Register.h>

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

namespace OrvoTool {
namespace {

/// What files of axis values have beside the axes, as columns or as members of the same object:
/// whatever 'orvo solve' writes there.
constexpr std::string_view ReservedWords[] = {"solutions",      "flags",         "line",
                                              "branch",         "codes",         "residual",
                                              "angle_residual", "tip_deviation", "angle_deviation",
                                              "inverse_time",   "feed",          "rapid",
                                              "point",          "axes",          "solved",
                                              "cost",           "diagnoses"};

/// How many names a message lists.
constexpr int MaxListed = 40;

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return lower;
}

std::string SafeForCsv(const std::wstring& name) {
  std::string safe(Trim(PrintableFromWide(name)));
  for (char& c : safe) {
    // ';', ':' and '=' separate names in flags and on the command line.
    if (std::string_view(",;:=\"'#?\\ ").find(c) != std::string_view::npos) {
      c = '_';
    }
  }
  return safe;
}

}  // namespace

AxisNames::AxisNames(const Orvo::Kin::Machine& machine) : count_(machine.GetRegisterNb().GetVal()) {
  for (const Orvo::Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const int reg = entity.GetRegister().GetVal();
    if (reg >= 0 && reg < count_) {
      names_.emplace(reg, std::string());
    }
  }
  for (const std::string_view word : ReservedWords) {
    registers_.emplace(word, -1);
  }
  for (auto& [reg, name] : names_) {
    const Orvo::Kin::Entity* entity = machine.GetKinematic().GetEntity(Orvo::Kin::Register(reg));
    const std::string number = "R" + std::to_string(reg);
    name = entity != nullptr ? SafeForCsv(entity->GetEntityName()) : std::string();
    if (name.empty()) {
      name = number;
    }
    while (FindNumbered(Lower(name)) >= 0 || !registers_.emplace(Lower(name), reg).second) {
      name += "_" + number;
    }
  }
}

std::string AxisNames::GetName(int reg) const {
  const auto found = names_.find(reg);
  return found != names_.end()          ? found->second
         : reg >= 0 && reg < GetCount() ? "R" + std::to_string(reg)
                                        : "none";
}

int AxisNames::Find(std::string_view name) const {
  const std::string lower = Lower(name);
  const auto found = registers_.find(lower);
  return found != registers_.end() ? found->second : FindNumbered(lower);
}

/// Returns the register without element that a name such as "r7" stands for, or -1.
int AxisNames::FindNumbered(std::string_view lower) const {
  if (lower.size() < 2 || lower[0] != 'r' || (lower[1] == '0' && lower.size() > 2)) {
    return -1;
  }
  int reg = -1;
  const char* const last = lower.data() + lower.size();
  const auto [end, error] = std::from_chars(lower.data() + 1, last, reg);
  const bool isNumber = error == std::errc() && end == last && reg >= 0 && reg < count_;
  return isNumber && names_.count(reg) == 0 ? reg : -1;
}

std::string AxisNames::List() const {
  std::string list;
  for (int r = 0; r < std::min(GetCount(), MaxListed); ++r) {
    list += (r == 0 ? "" : ", ") + GetName(r);
  }
  return list + (GetCount() > MaxListed ? ", ..." : "");
}

}  // namespace OrvoTool
