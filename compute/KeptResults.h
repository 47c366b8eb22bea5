#pragma once

#include "compute/AllFrames.h"
#include "compute/AxisChain.h"
#include "compute/LinearPlacement.h"
#include "compute/RotaryPlacement.h"
#include "compute/TableFromHead.h"
#include "model/KinematicImplementation.h"

#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/Register.h>

#include <array>
#include <cstddef>
#include <new>
#include <vector>

namespace Orvo::Kin {

/// What a calculator keeps of a machine, so that a call computes only what its axis values change.
///
/// Everything here gives the bits of the plain computation, link by link, and nothing where that
/// could fail: the plain computation takes over then. A change of the machine's elements is seen at
/// the next call.
class KeptResults {
 public:
  /// Returns the frames of all elements for a position, or null.
  AllFrames* FramesFor(const MachinePosition& pos, const Kinematic& kinematic,
                       const std::vector<const Entity*>& entities, std::size_t frameNb) {
    if (!Renew(kinematic)) {
      return nullptr;
    }
    return frames_.For(pos, frameNb,
                       [&](AllFrames* frames) { return frames->Build(entities, frameNb); });
  }

  /// Returns the frame from a head to a table for a position, or null.
  TableFromHead* TableFromHeadFor(const MachinePosition& pos, const Kinematic& kinematic,
                                  const Entity& head, const Entity& table) {
    if (!Renew(kinematic)) {
      return nullptr;
    }
    return tableFromHead_.For(pos, std::array{&head, &table},
                              [&](TableFromHead* kept) { return kept->Build(head, table); });
  }

  /// Returns the directions of a rotary solution for a position, or null.
  RotaryPlacement* RotaryPlacementFor(const MachinePosition& pos, const Kinematic& kinematic,
                                      const AxisChain& chain, const Register registers[2]) {
    if (!Renew(kinematic)) {
      return nullptr;
    }
    const RotaryKey key{chain.Head(), chain.Table(), registers[0].GetVal(), registers[1].GetVal()};
    return rotary_.For(pos, key,
                       [&](RotaryPlacement* kept) { return kept->Build(chain, registers); });
  }

  /// Returns the frame of a linear solution for a position, or null.
  LinearPlacement* LinearPlacementFor(const MachinePosition& pos, const Kinematic& kinematic,
                                      const AxisChain& chain, const Register registers[3]) {
    if (!Renew(kinematic)) {
      return nullptr;
    }
    const LinearKey key{chain.Head(), chain.Table(), registers[0].GetVal(), registers[1].GetVal(),
                        registers[2].GetVal()};
    return linear_.For(pos, key, [&](LinearPlacement* kept) {
      return kept->Build(chain, kinematic, registers);
    });
  }

  /// Tells the plain computation to do everything; for comparing the two.
  void SetIsOff(bool isOff) { isOff_ = isOff; }

 private:
  struct RotaryKey {
    const Entity* head;
    const Entity* table;
    int r0, r1;
    bool operator==(const RotaryKey&) const = default;
  };

  struct LinearKey {
    const Entity* head;
    const Entity* table;
    int x, y, z;
    bool operator==(const LinearKey&) const = default;
  };

  /// A result that is built anew for another key.
  template <typename Result, typename Key>
  class Kept {
   public:
    void Forget() { isBuilt_ = false; }

    template <typename Build>
    Result* For(const MachinePosition& pos, const Key& key, Build build) {
      if (!isBuilt_ || !(key == key_)) {
        isBuilt_ = false;
        try {
          result_ = Result();
          isUsable_ = build(&result_);
        } catch (const std::bad_alloc&) {
          return nullptr;
        }
        key_ = key;
        isBuilt_ = true;
      }
      return isUsable_ && result_.RegisterBound() <= pos.Size() ? &result_ : nullptr;
    }

   private:
    Result result_;
    Key key_{};
    bool isBuilt_ = false;
    bool isUsable_ = false;
  };

  bool Renew(const Kinematic& kinematic) {
    const KinematicImplementation& store = KinematicAccess::Store(kinematic);
    if (&store != store_ || store.changeNb != changeNb_) {
      store_ = &store;
      changeNb_ = store.changeNb;
      frames_.Forget();
      tableFromHead_.Forget();
      rotary_.Forget();
      linear_.Forget();
    }
    return !isOff_;
  }

  const KinematicImplementation* store_ = nullptr;
  unsigned long long changeNb_ = 0;
  Kept<AllFrames, std::size_t> frames_;
  Kept<TableFromHead, std::array<const Entity*, 2>> tableFromHead_;
  Kept<RotaryPlacement, RotaryKey> rotary_;
  Kept<LinearPlacement, LinearKey> linear_;
  bool isOff_ = false;
};

}  // namespace Orvo::Kin
