#pragma once

#include "MachineFileModel.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace OrvoTool {

/// Who carries whom in a machine file, by places in its list of elements.
///
/// Ids and registers are looked up as the library does: of several elements with one id or
/// register the last counts. Parents that form a cycle are none here. Everything is linear in the
/// number of elements, and nothing recurses.
class FileForest {
 public:
  /// Stands for an element that isn't there.
  static constexpr std::size_t None = ~std::size_t{0};

  explicit FileForest(const FileMachine& machine);

  /// Returns the element of an id or a register, or None.
  std::size_t FindId(int id) const { return Find(byId_, id); }
  std::size_t FindRegister(int reg) const { return Find(byRegister_, reg); }

  /// Returns the parent as the file gives it, or None.
  std::size_t GetParent(std::size_t element) const { return parents_[element]; }

  /// Tells whether going from parent to parent leads back to the element.
  bool IsInCycle(std::size_t element) const { return isInCycle_[element]; }

  /// Returns the root above an element; a cycle has one of its own elements.
  std::size_t GetRoot(std::size_t element) const { return roots_[element]; }

  /// Tells whether one element moves the other along, or is it.
  bool Carries(std::size_t carrier, std::size_t element) const {
    return begins_[carrier] <= begins_[element] && ends_[element] <= ends_[carrier];
  }

  /// Returns the elements, parents before their children.
  const std::vector<std::size_t>& GetOrder() const { return order_; }

 private:
  static std::size_t Find(const std::unordered_map<int, std::size_t>& map, int key);
  void FindCycles();
  void Walk();

  std::unordered_map<int, std::size_t> byId_;
  std::unordered_map<int, std::size_t> byRegister_;
  std::vector<std::size_t> parents_;
  std::vector<bool> isInCycle_;
  std::vector<std::size_t> roots_;
  std::vector<std::size_t> begins_;
  std::vector<std::size_t> ends_;
  std::vector<std::size_t> order_;
};

}  // namespace OrvoTool
