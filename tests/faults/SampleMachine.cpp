#include "faults/SampleMachine.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Mesh.h>

#include <memory>

namespace Orvo::Testing {

using Kin::Entity;
using Kin::EntityId;
using Kin::EntityMesh;
using Kin::Machine;
using Kin::ProgramSystem;
using Kin::Register;

namespace {

Matrix43 Shift(double x, double y, double z) {
  Matrix43 frame;
  frame.SetTrans(Vector3D(x, y, z));
  return frame;
}

void AddPolygons(EntityMesh& list) {
  auto mesh = std::make_unique<Mesh>();
  unsigned int* const nVerts = mesh->AllocTabNVerts(3);
  nVerts[0] = 3;
  nVerts[1] = 2;
  nVerts[2] = 3;
  unsigned int* const iVertex = mesh->AllocTabIVertex(8);
  for (unsigned int i = 0; i < 8; ++i) {
    iVertex[i] = i % 4;
  }
  Vector3D* const vertices = mesh->AllocTabVertices(4);
  for (unsigned int i = 0; i < 4; ++i) {
    vertices[i] = Vector3D(i, 2.0 * i, -3.0 * i);
  }
  mesh->AllocTabINormal(8);
  mesh->AllocTabNormals(1)[0] = AxisZ;
  list.AddMesh(mesh.get(), 7);
  static_cast<void>(mesh.release());
}

ProgramSystem MakeProgramSystem(const std::wstring& name, Kin::RotariesCompute policy) {
  ProgramSystem programSystem;
  programSystem.SetProgramSystemName(name);
  programSystem.SetTableIndex(0);
  programSystem.SetHeadIndex(0);
  programSystem.SetMainLinear(0, 1, 2);
  programSystem.SetMainRotary(3, 4);
  programSystem.SetRotariesCompute(policy);
  return programSystem;
}

}  // namespace

void AddTriangles(EntityMesh& list, unsigned int triangleNb, double first) {
  auto mesh = std::make_unique<Mesh>();
  unsigned int* const nVerts = mesh->AllocTabNVerts(triangleNb);
  unsigned int* const iVertex = mesh->AllocTabIVertex(3 * triangleNb);
  unsigned int* const iNormal = mesh->AllocTabINormal(3 * triangleNb);
  Vector3D* const vertices = mesh->AllocTabVertices(3 * triangleNb);
  Vector3D* const normals = mesh->AllocTabNormals(triangleNb);
  for (unsigned int i = 0; i < triangleNb; ++i) {
    nVerts[i] = 3;
    normals[i] = Vector3D(first, i, 1);
  }
  for (unsigned int i = 0; i < 3 * triangleNb; ++i) {
    iVertex[i] = i;
    iNormal[i] = i / 3;
    vertices[i] = Vector3D(first + i, first - i, 0.5 * i);
  }
  list.AddMesh(mesh.get(), triangleNb);
  static_cast<void>(mesh.release());
}

void BuildSample(Machine& machine) {
  Entity* const bed =
      machine.AddEntityStatic(L"a bed with a name that no short string can hold", EntityId());
  machine.AddEntityLinear(L"X", 1, AxisX)->SetRegister(0);
  machine.AddEntityLinear(L"Y", 2, AxisY)->SetRegister(1);
  machine.AddEntityLinear(L"Z \u00B7 \u4E3B\u8EF8 \U0001F529", 1, AxisZ)->SetRegister(2);
  Entity* const a = machine.AddEntityRotary(L"A", 3, Vector3D(0, 0, 50), AxisX);
  a->SetRegister(3);
  a->SetRange(-120.0, 120.0);
  a->SetIsMotor(true);
  machine.AddEntityRotary(L"C", 5, NullVector, AxisZ)->SetRegister(4);
  Entity* const table = machine.AddEntityTable(L"table", 6, Shift(1, 2, 3));
  Entity* const head = machine.AddEntityHead(L"head", 4, Shift(0, 0, 300));
  machine.AddEntityHead(L"second head", 4, Shift(0, 100, 300));
  machine.AddEntityTable(L"second table", 1, Shift(-400, 0, 0));
  Entity unlinked;
  unlinked.SetEntityName(L"an element without a link, of all flags");
  unlinked.SetParentEntityId(77);
  unlinked.SetIsMounting(true);
  machine.AddEntity(unlinked);
  machine.AddEntity()->SetParentEntityId(1);

  AddTriangles(*bed->AllocEntityMesh(), 1, 100.0);
  AddPolygons(*bed->AllocEntityMesh());
  AddTriangles(*table->AllocEntityMesh(), 70, 0.25);
  head->AllocEntityMesh();

  machine.AddProgramSystem(
      MakeProgramSystem(L"the first of two ways to program it", Kin::RotariesComputeShortestWay));
  machine.AddProgramSystem(MakeProgramSystem(L"second", Kin::RotariesComputeDefault));

  Kin::CollisionCheck& check = machine.GetCollisionCheckMod();
  check.SetMachineStock(1, true);
  check.SetMachinePart(2, true);
  check.SetMachineFixture(3, true);
  check.SetMachineTool(4, true);
  check.SetMachineTool(1, true);
  check.SetMachineMachine(1, 8, true);
  check.SetMachineMachine(8, 2, true);
  check.SetMachineMachine(3, 2, true);
}

std::filesystem::path ExampleMachineFile(const std::string& name) {
  return std::filesystem::path(ORVO_EXAMPLES_DIR) / "machines" / name / (name + ".xml");
}

}  // namespace Orvo::Testing
