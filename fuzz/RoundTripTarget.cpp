// A machine file of any bytes, and what was read of it: written, read, and so on. Each machine is
// the one before it but for what a file does not keep; from the second writing on, all files are
// the same bytes.

#include "Check.h"
#include "InputFile.h"
#include "MachineCompare.h"
#include "MachineReading.h"
#include "Target.h"

#include <Orvo/Kin/Machine.h>

#include <string>

using namespace Orvo;
using namespace Orvo::Fuzz;

namespace {

std::string Written(Kin::Machine* machine, const InputFile& file) {
  Require(machine->WriteXML(file.Path()), "a machine that was read can be written");
  return file.Read();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const InputFile given("given.xml");
  static const InputFile first("first.xml");
  static const InputFile second("second.xml");
  static const InputFile third("third.xml");
  given.Write(TextOf(data, size));

  // What a file that can't be read whole leaves can be written too.
  Kin::Machine machine;
  const ReadOutcome outcome = ReadNewMachine(&machine, given.Path());
  const std::string firstBytes = Written(&machine, first);
  Kin::Machine ofFirst;
  const ReadOutcome again = ReadNewMachine(&ofFirst, first.Path());
  Require(again == ReadOutcome::Read || again == ReadOutcome::TooLargeId,
          "what was written can be read");
  Require(outcome != ReadOutcome::Read || again == ReadOutcome::Read,
          "what was read whole is read whole again");
  RequireSame(&machine, &ofFirst, Origin::Written, outcome == ReadOutcome::Read);
  const bool isFinished = again == ReadOutcome::Read;

  const std::string secondBytes = Written(&ofFirst, second);
  Kin::Machine ofSecond;
  Require(ReadNewMachine(&ofSecond, second.Path()) == again, "the same comes of it again");
  RequireSame(&ofFirst, &ofSecond, Origin::Written, isFinished);
  if (firstBytes == secondBytes) {
    RequireSame(&ofFirst, &ofSecond, Origin::SameFile, isFinished);
  }

  const std::string thirdBytes = Written(&ofSecond, third);
  Require(secondBytes == thirdBytes, "files are the same bytes from the second writing on");
  Kin::Machine ofThird;
  Require(ReadNewMachine(&ofThird, third.Path()) == again, "the same comes of it each time");
  RequireSame(&ofSecond, &ofThird, Origin::SameFile, isFinished);
  return 0;
}
