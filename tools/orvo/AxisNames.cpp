#include "AxisNames.h"

#include "NumberText.h"
#include "WideText.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Register.h>

#include <algorithm>
#include <cstddef>
#include <unordered_set>

namespace OrvoTool {
namespace {

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

AxisNames::AxisNames(const Orvo::Kin::Machine& machine, const std::vector<std::string>& reserved) {
  const int count = machine.GetRegisterNb().GetVal();
  std::unordered_set<std::string> taken;
  for (const std::string& name : reserved) {
    taken.insert(Lower(name));
  }
  for (int r = 0; r < count; ++r) {
    const Orvo::Kin::Entity* entity = machine.GetKinematic().GetEntity(Orvo::Kin::Register(r));
    const std::string number = "R" + std::to_string(r);
    std::string name = entity != nullptr ? SafeForCsv(entity->GetEntityName()) : std::string();
    if (name.empty()) {
      name = number;
    }
    while (!taken.insert(Lower(name)).second) {
      name += "_" + number;
    }
    names_.push_back(name);
  }
}

std::string AxisNames::GetName(int reg) const {
  return reg >= 0 && reg < GetCount() ? names_[static_cast<std::size_t>(reg)] : "none";
}

int AxisNames::Find(std::string_view name) const {
  const std::string lower = Lower(name);
  for (int r = 0; r < GetCount(); ++r) {
    if (Lower(names_[static_cast<std::size_t>(r)]) == lower) {
      return r;
    }
  }
  return -1;
}

std::string AxisNames::List() const {
  std::string list;
  for (int r = 0; r < std::min(GetCount(), MaxListed); ++r) {
    list += (r == 0 ? "" : ", ") + names_[static_cast<std::size_t>(r)];
  }
  return list + (GetCount() > MaxListed ? ", ..." : "");
}

}  // namespace OrvoTool
