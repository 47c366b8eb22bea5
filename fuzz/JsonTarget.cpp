// A machine as JSON of any bytes. What is read comes out the same when it is written and read
// again, as JSON and as machine file; the other formats take it or say why they don't.

#include "Check.h"
#include "InputFile.h"
#include "Target.h"

#include <Orvo/Exchange/Exchange.h>

#include <cstddef>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

using namespace Orvo;
using namespace Orvo::Fuzz;
using namespace Orvo::Exchange;

namespace {

/// Ids and registers up to 16,777,215 are good, but make tables of 128 MB each: a fuzzer would draw
/// little else.
bool HasUsualIndices(std::string_view text) {
  int digitNb = 0;
  for (const char c : text) {
    digitNb = c >= '0' && c <= '9' ? digitNb + 1 : 0;
    if (digitNb > 6) {
      return false;
    }
  }
  return true;
}

Kin::Machine Read(const std::string& text) {
  std::istringstream in(text);
  Kin::Machine machine;
  ReadMachineJson(in, "in", &machine);
  return machine;
}

std::string Written(const std::function<void(std::ostream&)>& write) {
  std::ostringstream out;
  try {
    write(out);
  } catch (const ExchangeError& error) {
    Require(error.what()[0] != '\0', "an error says something");
    return std::string();
  }
  return out.str();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(TextOf(data, size));
  if (!HasUsualIndices(text)) {
    return 0;
  }
  Kin::Machine machine;
  try {
    machine = Read(text);
  } catch (const ReadError& error) {
    Require(error.GetFile() == "in", "an error names the file");
    Require((error.GetLine() == 0) == (error.GetColumn() == 0), "a line has a column");
    Require(!error.GetMessage().empty(), "an error says something");
    return 0;
  }
  const auto json = [](const Kin::Machine& what) {
    return Written([&](std::ostream& out) { WriteMachineJson(what, out); });
  };
  const std::string first = json(machine);
  Kin::Machine again = Read(first);
  Require(json(again) == first, "what is written is read the same");
  static const InputFile file("machine.xml");
  const auto machineFile = [](Kin::Machine* what) {
    Require(what->WriteXML(file.Path()), "a machine file can be written");
    return file.Read();
  };
  Require(machineFile(&again) == machineFile(&machine), "both are the same machine file");
  for (const bool isGlb : {true, false}) {
    Written([&](std::ostream& out) {
      if (isGlb) {
        WriteGlb(machine, out);
      } else {
        WriteGltf(machine, out);
      }
    });
  }
  const std::string urdf = Written([&](std::ostream& out) { WriteUrdf(machine, out); });
  Require(urdf.empty() || urdf.find("</robot>\n") != std::string::npos, "URDF comes to its end");
  Require(!Written([&](std::ostream& out) { WriteDot(machine, out); }).empty(), "dot takes all");
  return 0;
}
