#include "AnimationKeys.h"

#include "AxisNames.h"
#include "AxisRowReader.h"
#include "PathInput.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/Register.h>

#include <cstddef>

namespace OrvoTool {
namespace {

constexpr double SecondsOfMove = 0.1;
constexpr double SecondsPerMinute = 60.0;

}  // namespace

std::vector<Orvo::Exchange::AnimationKey> ReadAnimationKeys(const std::string& name,
                                                            const Orvo::Kin::Machine& machine,
                                                            double seconds) {
  const AxisNames names(machine);
  const bool isJson = FindPathKind(name, PathKind::BySuffix) == PathKind::JsonLines;
  AxisRowReader reader(name, isJson, names, {},
                       std::vector<double>(static_cast<std::size_t>(names.GetCount())));
  std::vector<Orvo::Exchange::AnimationKey> keys;
  AxisRow row;
  while (reader.Next(&row)) {
    Orvo::Exchange::AnimationKey key;
    machine.Alloc(&key.position);
    for (int reg = 0; reg < names.GetCount(); ++reg) {
      key.position[Orvo::Kin::Register(reg)] = row.values[static_cast<std::size_t>(reg)];
    }
    if (!keys.empty()) {
      key.seconds = keys.back().seconds +
                    (row.inverseTime > 0.0 ? SecondsPerMinute / row.inverseTime : SecondsOfMove);
    }
    keys.push_back(key);
  }
  if (seconds > 0.0 && keys.size() > 1) {
    const double whole = keys.back().seconds;
    for (Orvo::Exchange::AnimationKey& key : keys) {
      key.seconds *= seconds / whole;
    }
  }
  return keys;
}

}  // namespace OrvoTool
