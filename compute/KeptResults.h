#pragma once

#include "compute/AllFrames.h"
#include "compute/LinearPlacement.h"
#include "compute/RotaryPlacement.h"
#include "compute/TableFromHead.h"
#include "model/KinematicImplementation.h"

#include <Orvo/Kin/Entity.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace Orvo::Kin {

/// What a calculator keeps of a machine, so that a call computes only what its axis values change.
///
/// Everything here gives the bits of the plain computation, link by link. It is made by a call that
/// the plain computation has accepted so far, and found again by the next call with the same key,
/// when that has all axis values; in all other cases the plain computation goes on alone. A change
/// of the machine's elements makes all of it void at the next call.
class KeptResults {
 public:
  // What a result depends on besides axis values. Compared by hand: the compiler's own comparison
  // is a call.

  struct NoKey {
    bool operator==(const NoKey&) const { return true; }
  };

  struct Ends {
    const Entity* head = nullptr;
    const Entity* table = nullptr;

    bool operator==(const Ends& other) const { return head == other.head && table == other.table; }
  };

  struct EndsAndRegisters {
    const Entity* head = nullptr;
    const Entity* table = nullptr;
    int registers[3] = {-1, -1, -1};

    bool operator==(const EndsAndRegisters& other) const {
      return head == other.head && table == other.table && registers[0] == other.registers[0] &&
             registers[1] == other.registers[1] && registers[2] == other.registers[2];
    }
  };

  /// Results of one kind, by key. There are a few: enough for a program that goes from one head
  /// or table to another and back; more than that replace each other in turn.
  template <typename Key, typename Result>
  class Shelf {
   public:
    /// Returns the result for a key and a position of a size, or null; for an empty one always.
    Result* Find(const Key& key, std::size_t valueNb) {
      if (!IsLatest(key)) {
        latest_ = nullptr;
        for (const auto& entry : entries_) {
          if (entry->key == key) {
            latest_ = entry.get();
          }
        }
      }
      return FindLatest(key, valueNb);
    }

    /// The same without a search: null for another key than the one that was asked for last. For
    /// calls whose general way finds the others soon enough.
    Result* FindLatest(const Key& key, std::size_t valueNb) {
      return IsLatest(key) && valueNb >= latest_->leastValueNb ? &latest_->result : nullptr;
    }

    /// Makes the result for a key by build(&result), if need be, and finds it. Without memory for
    /// it there is none.
    template <typename Build>
    Result* Make(const Key& key, std::size_t valueNb, Build build) {
      Result* const found = Find(key, valueNb);
      if (latest_ != nullptr) {
        return found;
      }
      try {
        auto entry = std::make_unique<Entry>();
        entry->key = key;
        if (build(&entry->result)) {
          entry->leastValueNb = std::max<std::size_t>(1, entry->result.RegisterBound());
        }
        if (entries_.size() < MostEntries) {
          entries_.push_back(std::move(entry));
        } else {
          entries_[next_] = std::move(entry);
          next_ = (next_ + 1) % MostEntries;
        }
      } catch (const std::bad_alloc&) {
        return nullptr;
      }
      return Find(key, valueNb);
    }

    void Clear() { *this = Shelf(); }

   private:
    static constexpr std::size_t MostEntries = 16;

    struct Entry {
      Key key;
      // The smallest size of a position; none where the result can't be had.
      std::size_t leastValueNb = std::numeric_limits<std::size_t>::max();
      Result result;
    };

    bool IsLatest(const Key& key) const { return latest_ != nullptr && latest_->key == key; }

    std::vector<std::unique_ptr<Entry>> entries_;
    Entry* latest_ = nullptr;
    std::size_t next_ = 0;
  };

  /// Tells whether the results are those of a machine as its elements are now, and may be taken.
  bool AreCurrent(const Kinematic& kinematic) const {
    return AreOf(KinematicAccess::Store(kinematic)) && !isOff_;
  }

  /// Returns the kept results of a machine as its elements are now, or null where everything shall
  /// be computed plainly.
  KeptResults* Current(const Kinematic& kinematic) {
    if (!AreOf(KinematicAccess::Store(kinematic))) {
      Forget(kinematic);
    }
    return isOff_ ? nullptr : this;
  }

  /// Has everything computed plainly from now on; to compare the two.
  void SwitchOff() { isOff_ = true; }

  Shelf<NoKey, AllFrames> frames;
  Shelf<Ends, TableFromHead> tableFromHead;
  Shelf<EndsAndRegisters, RotaryPlacement> rotary;
  Shelf<EndsAndRegisters, LinearPlacement> linear;

 private:
  bool AreOf(const KinematicImplementation& store) const {
    return &store == store_ && store.changeNb == changeNb_;
  }

  void Forget(const Kinematic& kinematic);

  // The store that all is taken from. Watched, so that no other one takes its address.
  const KinematicImplementation* store_ = nullptr;
  std::weak_ptr<const KinematicImplementation> watchedStore_;
  unsigned long long changeNb_ = 0;
  bool isOff_ = false;
};

}  // namespace Orvo::Kin
