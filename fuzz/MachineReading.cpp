#include "MachineReading.h"

#include "Check.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace Orvo::Fuzz {

using Kin::Entity;
using Kin::Machine;

namespace {

bool IsOneOf(std::string_view text, std::string_view first, std::string_view second) {
  return text == first || text == second;
}

}  // namespace

ReadOutcome ReadMore(Machine* machine, const std::wstring& path) {
  try {
    return machine->ReadXML(path) ? ReadOutcome::Read : ReadOutcome::Refused;
  } catch (const std::invalid_argument& error) {
    Require(IsOneOf(error.what(), "invalid stod argument", "invalid stoi argument"),
            "a text that is no number is named as such");
    return ReadOutcome::NoNumber;
  } catch (const std::out_of_range& error) {
    Require(IsOneOf(error.what(), "stod argument out of range", "stoi argument out of range"),
            "a number that is out of range is named as such");
    return ReadOutcome::NumberOutOfRange;
  } catch (const std::length_error& error) {
    Require(IsOneOf(error.what(), "Machine::Finish : identifier out of range",
                    "Machine::Finish : register out of range"),
            "a large id or register is named as such");
    return ReadOutcome::TooLargeId;
  }
}

ReadOutcome ReadNewMachine(Machine* machine, const std::wstring& path) {
  const ReadOutcome outcome = ReadMore(machine, path);
  if (outcome == ReadOutcome::Read) {
    RequireAssembled(machine);
  } else {
    Require(!machine->IsFinished() && machine->GetEntityNb() == 0 &&
                machine->GetLastError() == Kin::MachineErrorNone &&
                machine->GetEntityIdMax().GetVal() == -1 && machine->GetRegisterNb().GetVal() == -1,
            "a machine whose reading failed was not finished");
  }
  return outcome;
}

void RequireAssembled(Machine* machine) {
  const Kin::Kinematic& kinematic = machine->GetKinematic();
  const bool hasCycle = machine->GetLastError() == Kin::MachineErrorParentCycle;
  Require(machine->IsFinished() == (machine->GetLastError() == Kin::MachineErrorNone),
          "a machine without error is finished");
  int entityNb = 0;
  int headNb = 0;
  int tableNb = 0;
  int linearAxesNb = 0;
  int idMax = -1;
  int registerMax = 0;
  for (const Entity& entity : kinematic.GetListEntity()) {
    const Entity* const named = kinematic.GetEntity(entity.GetParentEntityId());
    const Entity* const parent = entity.GetParentEntity();
    Require(parent == named || (parent == nullptr && hasCycle),
            "the parent is the element that its id names");
    Require(entity.GetLevel() == (parent == nullptr ? 0 : parent->GetLevel() + 1),
            "the level is one more than the parent's");
    if (entity.GetEntityId().IsDefined()) {
      const Entity* const found = kinematic.GetEntity(entity.GetEntityId());
      Require(found != nullptr && found->GetEntityId().GetVal() == entity.GetEntityId().GetVal(),
              "an id finds an element");
    }
    if (entity.GetRegister().IsDefined()) {
      const Entity* const found = kinematic.GetEntity(entity.GetRegister());
      Require(found != nullptr && found->GetRegister().GetVal() == entity.GetRegister().GetVal(),
              "a register finds an element");
    }
    if (entity.GetEntityType() == Kin::EntityTypeHead) {
      Require(kinematic.GetEntityHead(Kin::HeadIndex(headNb)) == &entity, "heads are in order");
      ++headNb;
    } else if (entity.GetEntityType() == Kin::EntityTypeTable) {
      Require(kinematic.GetEntityTable(Kin::TableIndex(tableNb)) == &entity, "tables are in order");
      ++tableNb;
    } else if (entity.GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypeLinear) {
      ++linearAxesNb;
    }
    idMax = std::max(idMax, entity.GetEntityId().GetVal());
    registerMax = std::max(registerMax, entity.GetRegister().GetVal());
    ++entityNb;
  }
  Require(machine->GetEntityNb() == entityNb, "elements are counted");
  Require(machine->GetHeadNb().GetVal() == headNb, "heads are counted");
  Require(machine->GetTableNb().GetVal() == tableNb, "tables are counted");
  Require(machine->GetLinearAxesNb() == linearAxesNb, "linear axes are counted");
  Require(machine->GetEntityIdMax().GetVal() == idMax, "the largest id is known");
  Require(machine->GetRegisterNb().GetVal() == registerMax + 1, "registers are counted");
  Require(kinematic.GetEntityHead(Kin::HeadIndex(headNb)) == nullptr, "there is no further head");
  Require(kinematic.GetEntityTable(Kin::TableIndex(tableNb)) == nullptr,
          "there is no further table");
  const bool isValid = !hasCycle && headNb > 0 && tableNb > 0 && linearAxesNb >= 3;
  Require(machine->IsFinished() == isValid, "a valid machine is finished");
  Require(headNb == 0 || tableNb == 0 || machine->GetProgramSystemNb().GetVal() > 0,
          "there is a program system");
}

}  // namespace Orvo::Fuzz
