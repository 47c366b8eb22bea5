#include "compute/KeptResults.h"

namespace Orvo::Kin {

void KeptResults::Forget(const Kinematic& kinematic) {
  watchedStore_ = KinematicAccess::Watch(kinematic);
  store_ = &KinematicAccess::Store(kinematic);
  changeNb_ = store_->changeNb;
  frames.Clear();
  tableFromHead.Clear();
  rotary.Clear();
  linear.Clear();
}

}  // namespace Orvo::Kin
