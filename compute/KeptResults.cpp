#include "compute/KeptResults.h"

namespace Orvo::Kin {

void KeptResults::Forget(const KinematicImplementation& store) {
  store_ = &store;
  changeNb_ = store.changeNb;
  frames.Clear();
  tableFromHead.Clear();
  rotary.Clear();
  linear.Clear();
}

}  // namespace Orvo::Kin
