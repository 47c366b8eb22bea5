#include "model/PlaceTable.h"

#include <algorithm>
#include <new>

namespace Orvo::Kin {

// Zero bits are the null pointer. The C allocator takes large tables as zero pages from the system,
// so what nobody writes costs addresses only.
PlaceTable::PlaceTable(std::size_t size, bool isVector) : isVector_(isVector) {
  if (isVector) {
    vector_.resize(size);
    return;
  }
  // NOLINTNEXTLINE(bugprone-sizeof-expression): a table of pointers
  void* const zeros = std::calloc(std::max<std::size_t>(size, 1), sizeof(const Entity*));
  elements_.reset(static_cast<const Entity**>(zeros));
  if (elements_ == nullptr) {
    throw std::bad_alloc();
  }
  size_ = size;
}

std::vector<const Entity*>* PlaceTable::AsVector() {
  if (!isVector_) {
    vector_.assign(elements_.get(), elements_.get() + size_);
    elements_.reset();
    size_ = 0;
    isVector_ = true;
  }
  return &vector_;
}

}  // namespace Orvo::Kin
