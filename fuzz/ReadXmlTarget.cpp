// A machine file of any bytes: read into a new machine, and once more into what came of that.

#include "Check.h"
#include "InputFile.h"
#include "MachineCompare.h"
#include "MachineReading.h"
#include "Target.h"

#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>

#include <string>
#include <string_view>

using namespace Orvo;
using namespace Orvo::Fuzz;

namespace {

// Files of the plain form are read in place, and what stands behind the root here leads any file to
// the XML parser. Both ways give the same machine.
void RequireSameByTheParser(std::string_view text, ReadOutcome outcome, Kin::Machine* machine) {
  static const InputFile file("parsed.xml");
  file.Write(std::string(text) + "<!behind>");
  Kin::Machine parsed;
  Require(ReadNewMachine(&parsed, file.Path()) == outcome, "the XML parser comes to the same end");
  RequireSame(machine, &parsed, Origin::SameFile, outcome == ReadOutcome::Read);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputFile file("read.xml");
  file.Write(TextOf(data, size));

  Kin::Machine machine;
  const ReadOutcome outcome = ReadNewMachine(&machine, file.Path());
  if (outcome != ReadOutcome::Refused) {
    RequireSameByTheParser(TextOf(data, size), outcome, &machine);
  }
  const std::size_t entityNb = machine.GetKinematic().GetListEntity().size();
  const int programSystemNb = machine.GetProgramSystemNb().GetVal();

  // Reading appends; a default program system, once made, counts as one that was there.
  const ReadOutcome again = ReadMore(&machine, file.Path());
  Require(again == outcome, "the same file ends the same way again");
  Require(machine.GetKinematic().GetListEntity().size() == 2 * entityNb,
          "the elements of the file are appended");
  Require(machine.GetProgramSystemNb().GetVal() >= programSystemNb, "program systems stay");
  if (again == ReadOutcome::Read) {
    RequireAssembled(&machine);
  }
  return 0;
}
