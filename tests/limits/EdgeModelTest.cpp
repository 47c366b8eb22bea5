// Every number of every exported operation of the model at the edge of what doubles and ints hold.

#include "EdgeNumbers.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Mesh.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <list>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::EntityId;
using Kin::EntityLink;
using Kin::EntityMesh;
using Kin::Machine;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::Register;

using Doubles = std::vector<double>;

constexpr double Infinity = std::numeric_limits<double>::infinity();

Doubles Of(const Vector3D& v) { return {v[0], v[1], v[2], v[3]}; }

Doubles Join(Doubles a, const Doubles& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Doubles Of(const MachinePosition& position) {
  Doubles values;
  for (int i = 0; i < static_cast<int>(position.Size()); ++i) {
    values.push_back(position[i]);
  }
  return values;
}

TEST(EdgeModel, NumbersOfLinksAndPositions) {
  const EdgeOperation operations[] = {
      {"linear link",
       {1, 2, 3},
       "nnn",
       [](const double* a) {
         EntityLink link;
         link.SetEntityLinkLinear(Vector3D(a));
         return Of(link.GetDir());
       }},
      {"rotary link",
       {4, 5, 6, 1, 2, 3},
       "nnnnnn",
       [](const double* a) {
         EntityLink link;
         link.SetEntityLinkRotary(Vector3D(a), Vector3D(a + 3));
         return Join(Of(link.GetCenter()), Of(link.GetDir()));
       }},
      {"zero reference and range",
       {1, 2, 3},
       "nnn",
       [](const double* a) {
         Entity entity;
         entity.GetEntityLinkMod()->SetZeroRef(a[0]);
         entity.SetRange(a[1], a[2]);
         const Entity copy(entity);
         return Doubles{copy.GetEntityLink().GetZeroRef(), copy.GetRangeMin(), copy.GetRangeMax()};
       }},
      {"arithmetic of positions", {1, 2, 3, 4, 5}, "nnnnn", [](const double* a) {
         MachinePosition x;
         x.Alloc(2ULL);
         x[0] = a[0];
         x[1] = a[1];
         MachinePosition y;
         y.Alloc(2ULL);
         y.SetAll(a[3]);
         y[0] = a[2];
         MachinePosition z(x);
         z += y;
         z -= x;
         return Join(Join(Join(Of(x + y), Of(x - y)), Join(Of(-x), Of(x * a[4]))),
                     Join(Of(x / a[4]), Of(z)));
       }}};
  for (const EdgeOperation& operation : operations) {
    HoldAtTheEdge(operation);
  }
}

TEST(EdgeModel, StoredNumbersComeBackBitForBit) {
  for (const double edge : EdgeNumbers) {
    EntityLink link;
    for (unsigned int slot = 0; slot < Kin::LinkSlotCount; ++slot) {
      link.SetZeroRef(slot, edge);
      link.SetRangeMin(slot, edge);
      link.SetRangeMax(slot, edge);
      EXPECT_TRUE(SameBits(link.GetZeroRef(slot), edge));
      EXPECT_TRUE(SameBits(link.GetRangeMin(slot), edge));
      EXPECT_TRUE(SameBits(link.GetRangeMax(slot), edge));
    }
    link.SetEntityLinkRotary(Vector3D(edge, edge, edge), AxisZ);
    EXPECT_TRUE(SameBits(link.GetCenter(), Vector3D(edge, edge, edge)));
    Matrix43 frame;
    frame.SetTrans(Vector3D(edge, edge, edge));
    link.SetEntityLinkPosition(frame);
    EXPECT_TRUE(SameBits(link.GetPosition(), frame));
    Machine machine;
    const Entity* const axis = machine.AddEntityLinear(L"x", 1, Vector3D(edge, 0, 0));
    EntityLink expected;
    expected.SetEntityLinkLinear(Vector3D(edge, 0, 0));
    EXPECT_TRUE(SameBits(axis->GetEntityLink().GetDir(), expected.GetDir()));
  }
}

TEST(EdgeModel, SlotsOutsideALinkReadAsZero) {
  EntityLink link;
  for (const unsigned int slot : {6U, 7U, 2147483647U, 2147483648U, 4294967295U}) {
    link.SetZeroRef(slot, 1.0);
    link.SetRangeMin(slot, 1.0);
    link.SetRangeMax(slot, 1.0);
    EXPECT_EQ(link.GetZeroRef(slot) + link.GetRangeMin(slot) + link.GetRangeMax(slot), 0.0);
  }
}

TEST(EdgeModel, IntsOfLookups) {
  Machine machine;
  Entity* const head = machine.AddEntityHead(L"head", -1, Matrix43());
  machine.AddEntityTable(L"table", -1, Matrix43());
  head->SetRegister(0);
  machine.Finish();
  machine.AddProgramSystem(ProgramSystem());
  const Kin::Kinematic& kinematic = machine.GetKinematic();
  ProgramSystem programSystem;
  programSystem.SetMainLinear(7, 8, 9);
  programSystem.SetMainRotary(5, 6);
  EntityMesh meshes;
  meshes.AddMesh(new Mesh, 3);
  for (const int edge : EdgeInts) {
    SCOPED_TRACE(edge);
    EXPECT_EQ(kinematic.GetEntity(EntityId(edge)) != nullptr, edge == 1);
    EXPECT_EQ(kinematic.GetEntity(Register(edge)) != nullptr, edge == 0);
    EXPECT_EQ(kinematic.GetEntityHead(edge) != nullptr, edge == 0);
    EXPECT_EQ(kinematic.GetEntityTable(edge) != nullptr, edge == 0);
    EXPECT_EQ(machine.GetProgramSystem(edge) != nullptr, edge == 0 || edge == 1);
    EXPECT_EQ(programSystem.GetMainLinear(edge).GetVal(), edge == 1 ? 8 : 7);
    EXPECT_EQ(programSystem.GetMainRotary(edge).GetVal(), edge == 1 ? 6 : 5);
    EXPECT_EQ(meshes.GetMesh(edge) != nullptr, edge == 0);
    EXPECT_EQ(meshes.GetMeshColor(edge), edge == 0 ? 3U : 0U);
    EXPECT_FALSE(meshes.ReadCadStlBin(L"/no/such/file", edge));
    EXPECT_FALSE(meshes.WriteCadStlBin(L"/no/such/file", edge));
    Register next(edge);
    ++next;
    EXPECT_EQ(next.GetVal(),
              edge == std::numeric_limits<int>::max() ? std::numeric_limits<int>::min() : edge + 1);
    EXPECT_EQ(EntityId(edge).IsDefined(), edge >= 0);
  }
}

TEST(EdgeModel, IntsOfCollisionLists) {
  Kin::CollisionCheck check;
  for (const int edge : EdgeInts) {
    check.SetMachineTool(edge, true);
    check.SetMachineMachine(edge, 0, true);
  }
  for (const int edge : EdgeInts) {
    SCOPED_TRACE(edge);
    EXPECT_TRUE(check.GetMachineTool(edge));
    EXPECT_FALSE(check.GetMachineStock(edge));
    EXPECT_EQ(check.GetMachineMachine(0, edge), edge != 0);
    std::list<EntityId> partners;
    check.GetListMachineMachine(edge, &partners, true);
    EXPECT_EQ(partners.size(), edge == 0 ? std::size(EdgeInts) - 1 : 1U);
    check.GetListMachineMachine(edge, &partners, false);
    EXPECT_EQ(partners.size(), edge == 0 ? 5U : edge > 0 ? 1U : 0U);
  }
  for (const int edge : EdgeInts) {
    check.SetMachineTool(edge, false);
    check.SetMachineMachine(0, edge, false);
    EXPECT_FALSE(check.GetMachineTool(edge));
    EXPECT_FALSE(check.GetMachineMachine(0, edge));
  }
}

TEST(EdgeModel, IntsOfPositions) {
  for (const int edge : EdgeInts) {
    SCOPED_TRACE(edge);
    MachinePosition position;
    position.Alloc(2ULL);
    position.SetAll(3.0);
    if (edge == 0 || edge == 1) {
      EXPECT_EQ(position[edge], 3.0);
    } else {
      EXPECT_THROW(position[edge], std::out_of_range);
      EXPECT_THROW(static_cast<void>(std::as_const(position)[edge]), std::out_of_range);
    }
    if (edge <= 16777216) {
      position.Alloc(Register(edge));
      EXPECT_EQ(position.Size(), edge < 0 ? 2U : static_cast<unsigned int>(edge));
      EXPECT_TRUE(position.Size() == 0 || position[0] == 0.0);
    }
  }
  MachinePosition position;
  position.Alloc(2ULL);
  EXPECT_THROW(position.Alloc(std::numeric_limits<unsigned long long>::max()), std::length_error);
  EXPECT_EQ(position.Size(), 2U);
}

TEST(EdgeModel, IntsOfElementsBeforeFinish) {
  for (const int edge : EdgeInts) {
    SCOPED_TRACE(edge);
    Machine machine;
    Entity* const entity = machine.AddEntityStatic(L"element", edge);
    entity->SetRegister(edge);
    if (edge > 16777215) {
      EXPECT_THROW(machine.Finish(), std::length_error);
      EXPECT_EQ(machine.GetRegisterNb().GetVal(), -1) << "unchanged";
      EXPECT_EQ(machine.GetKinematic().GetEntity(EntityId(1)), nullptr);
      continue;
    }
    EXPECT_FALSE(machine.Finish());
    EXPECT_EQ(machine.GetRegisterNb().GetVal(), edge < 0 ? 1 : edge + 1);
    EXPECT_EQ(machine.GetKinematic().GetEntity(Register(edge)), edge < 0 ? nullptr : entity);
    EXPECT_EQ(machine.GetLastError(),
              edge == 1 ? Kin::MachineErrorParentCycle : Kin::MachineErrorNoHead);
    EXPECT_EQ(entity->GetParentEntity(), nullptr);
  }
}

// What single precision can't hold becomes an infinity or zero; NaN stays.
TEST(EdgeModel, MeshFilesHoldEveryNumber) {
  const TemporaryFolder folder;
  for (const double edge : EdgeNumbers) {
    SCOPED_TRACE(HexText(edge));
    auto mesh = std::make_unique<Mesh>();
    *mesh->AllocTabNVerts(1) = 3;
    unsigned int* const vertexPlaces = mesh->AllocTabIVertex(3);
    Vector3D* const vertices = mesh->AllocTabVertices(3);
    mesh->AllocTabINormal(3);
    *mesh->AllocTabNormals(1) = Vector3D(edge, -edge, 0);
    for (unsigned int i = 0; i < 3; ++i) {
      vertexPlaces[i] = i;
      vertices[i] = Vector3D(edge, i, -edge);
    }
    EntityMesh meshes;
    meshes.AddMesh(mesh.release(), 0);
    ASSERT_TRUE(meshes.WriteCadStlBin(folder.Wide("mesh.stl"), 0));
    ASSERT_TRUE(meshes.AddCadStlBin(folder.Wide("mesh.stl"), 0));
    const double expected = std::fabs(edge) > 1e100   ? std::copysign(Infinity, edge)
                            : std::fabs(edge) < 1e-50 ? std::copysign(0.0, edge)
                                                      : edge;
    EXPECT_TRUE(SameBits(meshes.GetMesh(1)->GetTabVertices()[1], Vector3D(expected, 1, -expected)));
    EXPECT_TRUE(SameBits(meshes.GetMesh(1)->GetTabNormals()[0], Vector3D(expected, -expected, 0)));
  }
}

TEST(EdgeModel, MeshArraysOfAnySize) {
  Mesh mesh;
  mesh.AllocTabNVerts(1);
  for (const unsigned int edge : {0U, 1U, 65536U}) {
    EXPECT_NE(mesh.AllocTabVertices(edge), nullptr);
    EXPECT_EQ(mesh.GetDimVertices(), edge);
  }
  EXPECT_EQ(mesh.GetDimNVerts(), 1U);
}

}  // namespace
}  // namespace Orvo::Testing
