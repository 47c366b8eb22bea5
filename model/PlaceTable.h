#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <vector>

namespace Orvo::Kin {

class Entity;

/// The elements of a machine by id or by register.
///
/// A place without an element costs addresses and no memory, so one element with a large id makes
/// no large table. AsVector() gives that up.
class PlaceTable {
 public:
  PlaceTable() = default;

  /// Makes a table of empty places, as a vector or not.
  /// @throws std::bad_alloc when there are no addresses, or no memory for the vector
  PlaceTable(std::size_t size, bool isVector);

  /// Returns the element at a place, or null where there is none and outside the table.
  const Entity* At(int place) const {
    const std::size_t size = isVector_ ? vector_.size() : size_;
    const Entity* const* const elements = isVector_ ? vector_.data() : elements_.get();
    return place < 0 || static_cast<std::size_t>(place) >= size ? nullptr : elements[place];
  }

  /// Puts an element at a place, which must be in the table.
  void Set(std::size_t place, const Entity* entity) {
    (isVector_ ? vector_.data() : elements_.get())[place] = entity;
  }

  /// Returns the table as a vector that the caller may change; it is the table from then on.
  std::vector<const Entity*>* AsVector();

  bool IsVector() const { return isVector_; }

 private:
  struct FreeMemory {
    void operator()(const Entity** elements) const { std::free(elements); }
  };

  std::size_t size_ = 0;
  std::unique_ptr<const Entity*[], FreeMemory> elements_;
  bool isVector_ = false;
  std::vector<const Entity*> vector_;
};

}  // namespace Orvo::Kin
