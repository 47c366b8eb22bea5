#pragma once

#include <cstdio>
#include <cstdlib>

namespace Orvo::Fuzz {

/// Ends the process, with a message, where something that must hold does not.
inline void Require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

}  // namespace Orvo::Fuzz
