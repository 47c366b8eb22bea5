#include "FileForest.h"

namespace OrvoTool {

FileForest::FileForest(const FileMachine& machine) {
  const std::size_t count = machine.elements.size();
  for (std::size_t i = 0; i < count; ++i) {
    const FileElement& element = machine.elements[i];
    if (element.id.isGood && element.id.value >= 0) {
      byId_[element.id.value] = i;
    }
    if (element.reg.isGood && element.reg.value >= 0) {
      byRegister_[element.reg.value] = i;
    }
  }
  for (const FileElement& element : machine.elements) {
    parents_.push_back(element.parentId.isGood && element.parentId.value >= 0
                           ? FindId(element.parentId.value)
                           : None);
  }
  FindCycles();
  Walk();
}

std::size_t FileForest::Find(const std::unordered_map<int, std::size_t>& map, int key) {
  const auto found = map.find(key);
  return found != map.end() ? found->second : None;
}

void FileForest::FindCycles() {
  const std::size_t count = parents_.size();
  isInCycle_.assign(count, false);
  // 0: not seen; else the number of the walk that came by.
  std::vector<std::size_t> walks(count, 0);
  for (std::size_t start = 0; start < count; ++start) {
    std::size_t at = start;
    while (at != None && walks[at] == 0) {
      walks[at] = start + 1;
      at = parents_[at];
    }
    while (at != None && walks[at] == start + 1 && !isInCycle_[at]) {
      isInCycle_[at] = true;
      at = parents_[at];
    }
  }
}

void FileForest::Walk() {
  const std::size_t count = parents_.size();
  std::vector<std::vector<std::size_t>> children(count);
  std::vector<std::size_t> pending;
  for (std::size_t i = count; i > 0; --i) {
    const std::size_t element = i - 1;
    if (parents_[element] == None || isInCycle_[element]) {
      pending.push_back(element);
    } else {
      children[parents_[element]].push_back(element);
    }
  }
  roots_.assign(count, None);
  begins_.assign(count, 0);
  ends_.assign(count, 0);
  std::size_t clock = 0;
  while (!pending.empty()) {
    const std::size_t element = pending.back();
    if (begins_[element] != 0) {
      pending.pop_back();
      ends_[element] = ends_[element] != 0 ? ends_[element] : ++clock;
      continue;
    }
    begins_[element] = ++clock;
    order_.push_back(element);
    const bool isRoot = parents_[element] == None || isInCycle_[element];
    roots_[element] = isRoot ? element : roots_[parents_[element]];
    pending.insert(pending.end(), children[element].begin(), children[element].end());
  }
}

}  // namespace OrvoTool
