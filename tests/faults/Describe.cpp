#include "faults/Describe.h"

#include <cstdio>
#include <list>

namespace Orvo::Testing {

using Kin::CollisionCheck;
using Kin::Entity;
using Kin::EntityId;
using Kin::EntityLink;
using Kin::EntityMesh;
using Kin::Machine;
using Kin::MachinePosition;
using Kin::ProgramSystem;

namespace {

std::string Text(int value) { return std::to_string(value) + ' '; }

std::string Text(unsigned long long value) { return std::to_string(value) + ' '; }

std::string Text(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%a ", value);
  return text;
}

std::string Text(const std::wstring& name) {
  std::string text = "'";
  for (const wchar_t c : name) {
    text += c > 0 && c < 0x80 ? std::string(1, static_cast<char>(c))
                              : "\\" + std::to_string(static_cast<unsigned long>(c)) + ";";
  }
  return text + "' ";
}

// What a pointer into a machine leads to.
std::string Text(const Entity* entity) {
  return entity == nullptr ? "- " : Text(entity->GetEntityName());
}

std::string Text(const unsigned int* values, unsigned int count) {
  std::string text = values == nullptr ? "none: " : "[" + std::to_string(count) + "]: ";
  for (unsigned int i = 0; i < count; ++i) {
    text += std::to_string(values[i]) + ' ';
  }
  return text;
}

std::string Text(const Vector3D* values, unsigned int count) {
  std::string text = values == nullptr ? "none: " : "[" + std::to_string(count) + "]: ";
  for (unsigned int i = 0; i < count; ++i) {
    text += Describe(values[i]);
  }
  return text;
}

std::string Text(const std::list<EntityId>& ids) {
  std::string text;
  for (const EntityId& id : ids) {
    text += Text(id.GetVal());
  }
  return text + "| ";
}

}  // namespace

std::string Describe(const Vector3D& vector) {
  return Text(vector[0]) + Text(vector[1]) + Text(vector[2]) + Text(vector[3]);
}

std::string Describe(const Matrix43& frame) {
  const double* const elements = frame;
  std::string text;
  for (int i = 0; i < 16; ++i) {
    text += Text(elements[i]);
  }
  return text;
}

std::string Describe(const Angle& angle) { return Text(angle.GetRadian()); }

std::string Describe(const Mesh& mesh) {
  return "faces " + Text(mesh.GetTabNVerts(), mesh.GetDimNVerts()) + "corners " +
         Text(mesh.GetTabIVertex(), mesh.GetDimIVertex()) + "vertices " +
         Text(mesh.GetTabVertices(), mesh.GetDimVertices()) + "normals of corners " +
         Text(mesh.GetTabINormal(), mesh.GetDimINormal()) + "normals " +
         Text(mesh.GetTabNormals(), mesh.GetDimNormals()) + '\n';
}

std::string Describe(const EntityMesh& list) {
  std::string text = "meshes " + Text(static_cast<unsigned long long>(list.GetMeshNb())) + '\n';
  for (int i = 0; i < static_cast<int>(list.GetMeshNb()); ++i) {
    text += "color " + std::to_string(list.GetMeshColor(i)) + ' ';
    text += list.GetMesh(i) == nullptr ? "null\n" : Describe(*list.GetMesh(i));
  }
  return text;
}

std::string Describe(const EntityLink& link) {
  std::string text = "link " + Text(static_cast<int>(link.GetEntityLinkType())) +
                     Describe(link.GetCenter()) + Describe(link.GetDir()) +
                     Describe(link.GetPosition());
  for (unsigned int slot = 0; slot < Kin::LinkSlotCount; ++slot) {
    text +=
        Text(link.GetZeroRef(slot)) + Text(link.GetRangeMin(slot)) + Text(link.GetRangeMax(slot));
  }
  return text + '\n';
}

std::string Describe(const Entity& entity) {
  return "element " + Text(entity.GetEntityName()) +
         Text(static_cast<int>(entity.GetEntityType())) +
         Text(static_cast<int>(entity.GetEntityParallelType())) +
         Text(entity.GetEntityId().GetVal()) + Text(entity.GetParentEntityId().GetVal()) +
         Text(entity.GetRegister().GetVal()) + (entity.GetIsMotor() ? "motor " : "") +
         (entity.GetCheckRangeAxis() ? "checked " : "") +
         (entity.GetIsMounting() ? "mounting " : "") + "below " + Text(entity.GetParentEntity()) +
         "level " + Text(entity.GetLevel()) + Describe(entity.GetEntityLink()) +
         (entity.GetEntityMesh() == nullptr ? "no meshes\n" : Describe(*entity.GetEntityMesh()));
}

std::string Describe(ProgramSystem programSystem) {
  return "program system " + Text(programSystem.GetProgramSystemName()) +
         Text(programSystem.GetTableIndex().GetVal()) +
         Text(programSystem.GetHeadIndex().GetVal()) +
         Text(programSystem.GetMainLinear(0).GetVal()) +
         Text(programSystem.GetMainLinear(1).GetVal()) +
         Text(programSystem.GetMainLinear(2).GetVal()) +
         Text(programSystem.GetMainRotary(0).GetVal()) +
         Text(programSystem.GetMainRotary(1).GetVal()) +
         Text(static_cast<int>(programSystem.GetRotariesCompute())) + '\n';
}

std::string Describe(const MachinePosition& position) {
  std::string text = "position " + Text(position.Size());
  for (int i = 0; i < static_cast<int>(position.Size()); ++i) {
    text += Text(position[Kin::Register(i)]);
  }
  return text + '\n';
}

std::string Describe(const Kin::RotariesSolution& solution) {
  return "solutions " + Text(static_cast<unsigned long long>(solution.Count)) +
         Text(solution.FreeRegister) + Describe(solution.Alpha1) + Describe(solution.Beta1) +
         Describe(solution.Alpha2) + Describe(solution.Beta2) + '\n';
}

std::string Describe(const std::vector<Matrix43>& frames) {
  std::string text = "frames " + Text(static_cast<unsigned long long>(frames.size()));
  for (const Matrix43& frame : frames) {
    text += Describe(frame);
  }
  return text + '\n';
}

std::string Describe(const CollisionCheck& check, int largestId) {
  std::list<EntityId> ids;
  std::string text = "collision ";
  check.GetListMachineStock(&ids);
  text += Text(ids);
  check.GetListMachinePart(&ids);
  text += Text(ids);
  check.GetListMachineFixture(&ids);
  text += Text(ids);
  check.GetListMachineTool(&ids);
  text += Text(ids);
  for (int id = -1; id <= largestId; ++id) {
    check.GetListMachineMachine(id, &ids, true);
    text += Text(ids);
    text += check.GetMachineStock(id) ? "s" : "";
    text += check.GetMachinePart(id) ? "p" : "";
    text += check.GetMachineFixture(id) ? "f" : "";
    text += check.GetMachineTool(id) ? "t" : "";
    for (int other = -1; other <= largestId; ++other) {
      text += check.GetMachineMachine(id, other) ? "1" : "0";
    }
    text += ' ';
  }
  return text + '\n';
}

std::string Describe(Machine& machine) {
  const Kin::Kinematic& kinematic = machine.GetKinematic();
  const int elementNb = static_cast<int>(kinematic.GetListEntity().size());
  std::string text = std::string(machine.IsFinished() ? "finished " : "open ") +
                     Text(static_cast<int>(machine.GetLastError())) + Text(machine.GetEntityNb()) +
                     Text(machine.GetEntityIdMax().GetVal()) +
                     Text(machine.GetRegisterNb().GetVal()) + Text(machine.GetTableNb().GetVal()) +
                     Text(machine.GetHeadNb().GetVal()) + Text(machine.GetLinearAxesNb()) + '\n';
  for (const Entity& entity : kinematic.GetListEntity()) {
    text += Describe(entity);
  }
  for (int i = -1; i <= elementNb + 1; ++i) {
    text += Text(kinematic.GetEntity(EntityId(i))) + Text(kinematic.GetEntity(Kin::Register(i))) +
            Text(kinematic.GetEntityHead(Kin::HeadIndex(i))) +
            Text(kinematic.GetEntityTable(Kin::TableIndex(i)));
  }
  text += '\n';
  for (const ProgramSystem& programSystem : machine.GetListProgramSystem()) {
    text += Describe(programSystem);
  }
  return text + Describe(machine.GetCollisionCheck(), elementNb + 1);
}

}  // namespace Orvo::Testing
