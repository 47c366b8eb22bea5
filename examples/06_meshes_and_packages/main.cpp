// Gives an element a mesh, writes the machine and its meshes as files side by side, and reads both.

#include <Orvo/Orvo.h>

#include <cstdio>
#include <filesystem>
#include <memory>

using namespace Orvo;
using namespace Orvo::Kin;

namespace {

// A tetrahedron: four triangles over four corners.
std::unique_ptr<Mesh> MakeTetrahedron(double size) {
  auto mesh = std::make_unique<Mesh>();
  Vector3D* const corners = mesh->AllocTabVertices(4);
  corners[1] = Vector3D(size, 0.0, 0.0);
  corners[2] = Vector3D(0.0, size, 0.0);
  corners[3] = Vector3D(0.0, 0.0, size);
  const unsigned int faces[4][3] = {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}};

  unsigned int* const cornerNb = mesh->AllocTabNVerts(4);    // corners of each face
  unsigned int* const cornerOf = mesh->AllocTabIVertex(12);  // face after face: which corner
  unsigned int* const normalOf = mesh->AllocTabINormal(12);  // and which normal it has there
  Vector3D* const normals = mesh->AllocTabNormals(4);        // one normal for each face
  for (unsigned int face = 0; face < 4; ++face) {
    cornerNb[face] = 3;
    for (unsigned int i = 0; i < 3; ++i) {
      cornerOf[3 * face + i] = faces[face][i];
      normalOf[3 * face + i] = face;
    }
    Vector3D along = corners[faces[face][1]] - corners[faces[face][0]];
    normals[face] = along & (corners[faces[face][2]] - corners[faces[face][0]]);
    normals[face].MakeUnit(0.001);
  }
  return mesh;
}

}  // namespace

// The first argument names the folder to write to; the current one without it.
int main(int argumentNb, char** arguments) {
  const std::filesystem::path folder = argumentNb > 1 ? arguments[1] : ".";
  const std::wstring path = (folder / "three_axes.xml").wstring();

  Machine machine;
  const EntityId bed = machine.AddEntityStatic(L"Bed", EntityId())->GetEntityId();
  Entity* axis = machine.AddEntityLinear(L"X", bed, AxisX);
  axis->SetRegister(0);
  axis = machine.AddEntityLinear(L"Y", axis->GetEntityId(), AxisY);
  axis->SetRegister(1);
  axis = machine.AddEntityLinear(L"Z", axis->GetEntityId(), AxisZ);
  axis->SetRegister(2);
  Entity* const head = machine.AddEntityHead(L"Head", axis->GetEntityId(), Matrix43());
  Entity* const table = machine.AddEntityTable(L"Table", bed, Matrix43());

  // An element takes its meshes over, each with a color. Lengths stand in the element's own frame.
  head->AllocEntityMesh()->AddMesh(MakeTetrahedron(20.0).release(), 0xFF8000);
  table->AllocEntityMesh()->AddMesh(MakeTetrahedron(100.0).release(), 0x808080);
  table->AllocEntityMesh()->AddMesh(MakeTetrahedron(50.0).release(), 0x404040);
  if (!machine.Finish() || !machine.WriteMachineWithMeshStl(path)) return 1;

  // One package: the machine file, and beside it one file for each mesh, named after the machine
  // file, the element's id and the mesh's place.
  for (const char* const name :
       {"three_axes.xml", "three_axes_5_0.stl", "three_axes_6_0.stl", "three_axes_6_1.stl"}) {
    std::printf("%s %s\n", name, std::filesystem::exists(folder / name) ? "written" : "missing");
  }

  Machine copy;
  if (!copy.ReadMachineWithMeshStl(path)) return 1;
  for (const Entity& entity : copy.GetKinematic().GetListEntity()) {
    const EntityMesh* const meshes = entity.GetEntityMesh();
    if (meshes == nullptr) continue;
    for (int i = 0; i < static_cast<int>(meshes->GetMeshNb()); ++i) {
      std::printf("%ls: %u triangles, color %06X\n", entity.GetEntityName().c_str(),
                  meshes->GetMesh(i)->GetDimNVerts(), meshes->GetMeshColor(i));
    }
  }
}
