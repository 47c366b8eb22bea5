#include "exchange/MachineBuilder.h"

#include "exchange/ByteSink.h"
#include "exchange/MachineWords.h"
#include "exchange/TextEncoding.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/ProgramSystem.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace Orvo::Exchange {
namespace {

using Kin::Entity;
using Kin::EntityLink;

constexpr std::int64_t SmallestInt = std::numeric_limits<int>::min();
constexpr std::int64_t LargestInt = std::numeric_limits<int>::max();

/// The largest id or register that a machine takes.
constexpr std::int64_t LargestIndex = 16777215;

/// How far the square of a unit vector's length may be from 1 by rounding.
constexpr double LargestRounding = 4e-15;

/// A shorter direction becomes the X axis, as in links.
constexpr double SmallestDirection = 0.001;

// The setters that a machine and its file reader use; a class that is derived may name them.
struct EntitySetters : Entity {
  static constexpr void (Entity::*setId)(const Kin::EntityId&) = &EntitySetters::SetEntityId;
  static constexpr void (Entity::*setType)(const Kin::EntityType&) = &EntitySetters::SetEntityType;
  static constexpr void (Entity::*setParallelType)(const Kin::EntityParallelType&) =
      &EntitySetters::SetEntityParallelType;
};

/// Hands out a field of a link for change. The link itself is to be changed, its accessor has the
/// field that it keeps; the setters would make the direction unit once more, which moves its last
/// bits, and have only three of the kinds.
template <typename Field>
Field& Stored(const Field& field) {
  return const_cast<Field&>(field);
}

template <typename Enumeration, typename Words>
Enumeration ReadWord(const JsonTape& tape, std::size_t value, const Words& words) {
  const auto found = std::find(words.begin(), words.end(), tape.ReadText(value));
  if (found == words.end()) {
    std::string list;
    for (const std::string_view word : words) {
      list += (list.empty() ? "" : ", ") + std::string(word);
    }
    tape.Fail(value, "one of these words was expected: " + list);
  }
  return static_cast<Enumeration>(found - words.begin());
}

std::size_t Require(const JsonTape& tape, std::size_t object, std::size_t value, const char* name) {
  if (value == 0) {
    tape.Fail(object, std::string("the member \"") + name + "\" is missing here");
  }
  return value;
}

Vector3D ReadVector(const JsonTape& tape, std::size_t value) {
  const std::vector<double> numbers = tape.ReadNumbers(value);
  if (numbers.size() != 3) {
    tape.Fail(value, "3 numbers were expected, not " + std::to_string(numbers.size()));
  }
  return Vector3D(numbers[0], numbers[1], numbers[2]);
}

/// A direction that is unit already keeps its bits, and so does one that a link has before any is
/// set or that holds NaN; others are made unit, as the reader of machine files does.
Vector3D ReadDirection(const JsonTape& tape, std::size_t value) {
  Vector3D direction = ReadVector(tape, value);
  const double square = direction.NormSquare();
  if (square != 0.0 && std::abs(square - 1.0) > LargestRounding) {
    direction.MakeUnit(SmallestDirection);
  }
  return direction;
}

Matrix43 ReadFrame(const JsonTape& tape, std::size_t value) {
  const std::vector<std::size_t> columns = tape.Members(value, {"u", "v", "w", "t"});
  const char* const names[] = {"u", "v", "w", "t"};
  double elements[16] = {};
  elements[15] = 1.0;
  std::size_t rowNb = 0;
  for (std::size_t column = 0; column < 4; ++column) {
    const std::size_t place = Require(tape, value, columns[column], names[column]);
    const std::vector<double> numbers = tape.ReadNumbers(place);
    const bool isFirst = column == 0;
    if (isFirst ? numbers.size() != 3 && numbers.size() != 4 : numbers.size() != rowNb) {
      tape.Fail(place, isFirst ? "3 numbers were expected, or 4 in each column"
                               : std::to_string(rowNb) + " numbers were expected, as in \"u\"");
    }
    rowNb = numbers.size();
    std::copy(numbers.begin(), numbers.end(), elements + 4 * column);
  }
  Matrix43 frame;
  if (rowNb == 4) {
    frame = elements;
  } else {
    // As the reader of machine files has it: taken for a rotation and a translation.
    frame.SetUVWT(Vector3D(elements), Vector3D(elements + 4), Vector3D(elements + 8),
                  Vector3D(elements + 12));
  }
  return frame;
}

void ReadSlots(const JsonTape& tape, std::size_t value,
               void (EntityLink::*set)(unsigned int, double), EntityLink* link) {
  if (value == 0) {
    return;
  }
  if (!tape.IsArray(value)) {
    (link->*set)(0, tape.ReadNumber(value));
    return;
  }
  const std::vector<double> slots = tape.ReadNumbers(value);
  if (slots.size() != Kin::LinkSlotCount) {
    tape.Fail(value, "a number was expected, or 6 of them");
  }
  for (unsigned int i = 0; i < Kin::LinkSlotCount; ++i) {
    (link->*set)(i, slots[i]);
  }
}

}  // namespace

void MachineBuilder::ReadLink(const JsonTape& tape, std::size_t value, Entity* entity) {
  const std::vector<std::size_t> members =
      tape.Members(value, {"type", "center", "dir", "position", "zeroRef", "rangeMin", "rangeMax"});
  const auto type =
      ReadWord<Kin::EntityLinkType>(tape, Require(tape, value, members[0], "type"), LinkTypeWords);
  EntityLink* const link = entity->GetEntityLinkMod();
  if (members[3] != 0) {
    link->SetEntityLinkPosition(ReadFrame(tape, members[3]));
  }
  Stored(link->GetEntityLinkType()) = type;
  if (members[1] != 0) {
    Stored(link->GetCenter()) = ReadVector(tape, members[1]);
  }
  if (type == Kin::EntityLinkTypeLinear || type == Kin::EntityLinkTypeRotary) {
    Require(tape, value, members[2], "dir");
  }
  if (members[2] != 0) {
    Stored(link->GetDir()) = ReadDirection(tape, members[2]);
  }
  ReadSlots(tape, members[4], &EntityLink::SetZeroRef, link);
  ReadSlots(tape, members[5], &EntityLink::SetRangeMin, link);
  ReadSlots(tape, members[6], &EntityLink::SetRangeMax, link);
}

void MachineBuilder::ReadMeshes(const JsonTape& tape, std::size_t value, Entity* entity) {
  Kin::EntityMesh* const meshes = entity->AllocEntityMesh();
  int index = 0;
  for (const std::size_t item : tape.Items(value)) {
    const std::vector<std::size_t> members = tape.Members(item, {"color", "file"});
    const std::int64_t color =
        tape.ReadInteger(Require(tape, item, members[0], "color"), 0,
                         static_cast<std::int64_t>(std::numeric_limits<unsigned int>::max()));
    auto mesh = std::make_unique<Mesh>();
    meshes->AddMesh(mesh.get(), static_cast<unsigned int>(color));
    static_cast<void>(mesh.release());
    if (members[1] != 0) {
      const std::string_view file = tape.ReadText(members[1]);
      // A file from elsewhere names no files but those beside it.
      if (file.empty() || file.find_first_of(std::string_view("/\\:\0", 4)) != file.npos) {
        tape.Fail(members[1], "the name of a file in the same folder was expected");
      }
      if (options_.readsMeshes) {
        const std::filesystem::path path = options_.meshFolder / PathFromUtf8(file);
        if (!meshes->ReadCadStlBin(WidePath(path), index)) {
          std::error_code error;
          const bool isThere = std::filesystem::exists(path, error) || error;
          throw ExchangeError(NameOf(path) + (isThere ? ": the file can't be read as binary STL"
                                                      : ": the mesh file is missing"));
        }
      }
    } else if (options_.readsMeshes) {
      tape.Fail(item, "the member \"file\" is missing here");
    }
    ++index;
  }
}

void MachineBuilder::AddEntity(const JsonTape& tape) {
  const std::vector<std::size_t> members =
      tape.Members(0, {"name", "type", "parallelType", "id", "parentId", "register", "motor",
                       "rangeAxis", "mounting", "link", "meshes"});
  const auto index = [&](std::size_t member, const char* name) {
    return tape.ReadInt(Require(tape, 0, members[member], name), SmallestInt, LargestIndex);
  };
  Entity* const entity = machine_->AddEntity();
  entity->SetEntityName(WideFromUtf8(tape.ReadText(Require(tape, 0, members[0], "name"))));
  (entity->*EntitySetters::setType)(
      ReadWord<Kin::EntityType>(tape, Require(tape, 0, members[1], "type"), TypeWords));
  if (members[2] != 0) {
    (entity->*EntitySetters::setParallelType)(
        ReadWord<Kin::EntityParallelType>(tape, members[2], ParallelTypeWords));
  }
  (entity->*EntitySetters::setId)(index(3, "id"));
  entity->SetParentEntityId(
      tape.ReadInt(Require(tape, 0, members[4], "parentId"), SmallestInt, LargestInt));
  entity->SetRegister(index(5, "register"));
  if (members[6] != 0) {
    entity->SetIsMotor(tape.ReadBool(members[6]));
  }
  if (members[7] != 0) {
    entity->SetCheckRangeAxis(tape.ReadBool(members[7]));
  }
  if (members[8] != 0) {
    entity->SetIsMounting(tape.ReadBool(members[8]));
  }
  ReadLink(tape, Require(tape, 0, members[9], "link"), entity);
  if (members[10] != 0) {
    ReadMeshes(tape, members[10], entity);
  }
}

void MachineBuilder::AddProgramSystem(const JsonTape& tape) {
  const std::vector<std::size_t> members =
      tape.Members(0, {"name", "table", "head", "mainLinear", "mainRotary", "rotariesCompute"});
  const auto registers = [&](std::size_t member, const char* name, std::size_t count) {
    const std::size_t value = Require(tape, 0, members[member], name);
    std::vector<int> numbers;
    for (const std::size_t item : tape.Items(value)) {
      numbers.push_back(tape.ReadInt(item, SmallestInt, LargestInt));
    }
    if (numbers.size() != count) {
      tape.Fail(value, std::to_string(count) + " registers were expected");
    }
    return numbers;
  };
  const auto index = [&](std::size_t member, const char* name) {
    return tape.ReadInt(Require(tape, 0, members[member], name), SmallestInt, LargestInt);
  };
  Kin::ProgramSystem system;
  system.SetProgramSystemName(WideFromUtf8(tape.ReadText(Require(tape, 0, members[0], "name"))));
  system.SetTableIndex(index(1, "table"));
  system.SetHeadIndex(index(2, "head"));
  const std::vector<int> linear = registers(3, "mainLinear", 3);
  system.SetMainLinear(linear[0], linear[1], linear[2]);
  const std::vector<int> rotary = registers(4, "mainRotary", 2);
  system.SetMainRotary(rotary[0], rotary[1]);
  if (members[5] != 0) {
    system.SetRotariesCompute(ReadWord<Kin::RotariesCompute>(tape, members[5], PolicyWords));
  }
  machine_->AddProgramSystem(system);
}

void MachineBuilder::SetCollisionCheck(const JsonTape& tape) {
  const std::vector<std::size_t> members =
      tape.Members(0, {"machineMachine", "stock", "part", "fixture", "tool"});
  Kin::CollisionCheck& check = machine_->GetCollisionCheckMod();
  if (members[0] != 0) {
    for (const std::size_t item : tape.Items(members[0])) {
      const std::vector<std::size_t> pair = tape.Members(item, {"id", "partners"});
      const int id = tape.ReadInt(Require(tape, item, pair[0], "id"), SmallestInt, LargestInt);
      for (const std::size_t partner : tape.Items(Require(tape, item, pair[1], "partners"))) {
        check.SetMachineMachine(id, tape.ReadInt(partner, SmallestInt, LargestInt), true);
      }
    }
  }
  using Set = void (Kin::CollisionCheck::*)(const Kin::EntityId&, bool);
  const Set sets[] = {&Kin::CollisionCheck::SetMachineStock, &Kin::CollisionCheck::SetMachinePart,
                      &Kin::CollisionCheck::SetMachineFixture,
                      &Kin::CollisionCheck::SetMachineTool};
  for (std::size_t i = 0; i < std::size(sets); ++i) {
    if (members[i + 1] == 0) {
      continue;
    }
    const Set set = sets[i];
    for (const std::size_t item : tape.Items(members[i + 1])) {
      (check.*set)(tape.ReadInt(item, SmallestInt, LargestInt), true);
    }
  }
}

void MachineBuilder::ReadHead(const JsonTape& tape, bool isFormat) {
  if (isFormat) {
    if (tape.ReadText(0) != JsonFormat) {
      tape.Fail(0, "the format \"" + std::string(JsonFormat) + "\" was expected");
    }
    return;
  }
  if (tape.ReadInteger(0, std::numeric_limits<std::int64_t>::min(),
                       std::numeric_limits<std::int64_t>::max()) != JsonVersion) {
    tape.Fail(0, "version " + std::to_string(JsonVersion) + " was expected; others aren't known");
  }
}

void MachineBuilder::Finish() {
  // Deliberate: a machine that is not valid was read all the same.
  machine_->Finish();
}

}  // namespace Orvo::Exchange
