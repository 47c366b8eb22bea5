// A target with a fault, to see that replaying says at which input it broke.

#include "Check.h"
#include "InputFile.h"
#include "Target.h"

#include <stdexcept>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = Orvo::Fuzz::TextOf(data, size);
  Orvo::Fuzz::Require(text != "broken\n", "the input is not the broken one");
  if (text == "thrown\n") {
    throw std::runtime_error("the input is the thrown one");
  }
  return 0;
}
