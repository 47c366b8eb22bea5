// Calls every exported member of the geometry kernel from outside the library. What the members do
// in detail is tested with their sources; here each must be there, and give a result of its own.

#include "support/NearVector.h"
#include "support/SameBits.h"

#include <Orvo/Orvo.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

namespace Orvo::Testing {
namespace {

constexpr double Pi = 3.141592653589793;

TEST(InterfaceAngle, ConvertsBetweenRadiansAndDegrees) {
  Angle angle;
  EXPECT_EQ(angle.GetRadian(), 0.0);
  angle.SetRadian(1.25);
  EXPECT_EQ(angle.GetRadian(), 1.25);
  angle.SetDegre(180.0);
  EXPECT_EQ(angle.GetRadian(), Pi);
  EXPECT_EQ(angle.GetDegre(), 180.0);
}

TEST(InterfaceAngle, AddsScalesAndCompares) {
  Angle one(1.0);
  const Angle half = 0.5;
  EXPECT_EQ((one + half).GetRadian(), 1.5);
  EXPECT_EQ((one - half).GetRadian(), 0.5);
  EXPECT_EQ((-one).GetRadian(), -1.0);
  EXPECT_EQ((one * 3.0).GetRadian(), 3.0);
  EXPECT_EQ(half < one, 1);
  EXPECT_EQ(half > one, 0);
  EXPECT_EQ(one > half, 1);
}

TEST(InterfaceAngle, CopiesItsRadians) {
  const Angle angle(0.75);
  const Angle copy(angle);
  Angle assigned;
  assigned = angle;
  EXPECT_EQ(copy.GetRadian(), 0.75);
  EXPECT_EQ(assigned.GetRadian(), 0.75);
}

TEST(InterfaceAngle, HasSineAndCosine) {
  EXPECT_DOUBLE_EQ(Angle(Pi / 6).Sin(), 0.5);
  EXPECT_DOUBLE_EQ(Angle(Pi / 3).Cos(), 0.5);
}

TEST(InterfaceAngle, MeasuresBetweenDirections) {
  Angle angle;
  EXPECT_TRUE(angle.SetVector3DRef(AxisX, AxisY, AxisZ));
  EXPECT_DOUBLE_EQ(angle.GetDegre(), 90.0);
  EXPECT_TRUE(angle.SetVector3DRef(AxisY, AxisX, AxisZ));
  EXPECT_DOUBLE_EQ(angle.GetDegre(), -90.0);
  EXPECT_FALSE(angle.SetVector3DRef(NullVector, AxisX, AxisZ));
  EXPECT_EQ(angle.GetRadian(), 0.0);
}

TEST(InterfaceVector, IsMadeFromNumbersPointersAndLanes) {
  const double numbers[4] = {1.0, 2.0, 3.0, 4.0};
  const Vector3D expected(1.0, 2.0, 3.0);
  const Vector3D fromPointer(numbers);
  EXPECT_TRUE(SameBits(fromPointer, expected));
  Vector3D lanes(1.0, 2.0, 3.0);
  const Vector3D fromLanes(lanes.Get_m128d());
  EXPECT_TRUE(SameBits(fromLanes, expected));
  const Vector3D fromTwoLanes(lanes.Get_m128d_0(), lanes.Get_m128d_1());
  EXPECT_TRUE(SameBits(fromTwoLanes, expected));
  EXPECT_TRUE(SameBits(Vector3D(), NullVector));
  const Vector3D copy(expected);
  EXPECT_TRUE(SameBits(copy, expected));
}

TEST(InterfaceVector, TakesNumbersPointersAndLanes) {
  const double numbers[4] = {1.0, 2.0, 3.0, 4.0};
  const Vector3D expected(1.0, 2.0, 3.0);
  Vector3D source(expected);
  Vector3D v;
  v = expected;
  EXPECT_TRUE(SameBits(v, expected));
  v.Reset();
  EXPECT_TRUE(SameBits(v, NullVector));
  v = numbers;
  EXPECT_TRUE(SameBits(v, expected));
  v.Reset();
  v.Set(1.0, 2.0, 3.0);
  EXPECT_TRUE(SameBits(v, expected));
  v.Reset();
  v.Set(numbers);
  EXPECT_TRUE(SameBits(v, expected));
  v.Reset();
  v.Set(source.Get_m128d_0(), source.Get_m128d_1());
  EXPECT_TRUE(SameBits(v, expected));
  v.Reset();
  v.Set(expected);
  EXPECT_TRUE(SameBits(v, expected));
}

TEST(InterfaceVector, GivesItsComponents) {
  Vector3D v(1.0, 2.0, 3.0);
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  v.Get(&x, &y, &z);
  EXPECT_EQ(x, 1.0);
  EXPECT_EQ(y, 2.0);
  EXPECT_EQ(z, 3.0);
  double numbers[3] = {};
  v.Get(numbers);
  EXPECT_EQ(numbers[2], 3.0);
  double* writable = v;
  writable[1] = 5.0;
  EXPECT_EQ(v[1], 5.0);
  v[0] = 7.0;
  const Vector3D& fixed = v;
  const double* readable = fixed;
  EXPECT_EQ(readable[0], 7.0);
  EXPECT_EQ(fixed[3], 0.0);
  double lane[2] = {};
  const __m128d second = v.Get_m128d_1();
  std::memcpy(lane, &second, sizeof lane);
  EXPECT_EQ(lane[0], 3.0);
  EXPECT_EQ(static_cast<const void*>(fixed.Get_m128d()), static_cast<const void*>(readable));
}

TEST(InterfaceVector, ComputesSumsAndProducts) {
  Vector3D a(1.0, 2.0, 3.0);
  const Vector3D b(4.0, -5.0, 6.0);
  EXPECT_TRUE(SameBits(a + b, Vector3D(5.0, -3.0, 9.0)));
  EXPECT_TRUE(SameBits(a - b, Vector3D(-3.0, 7.0, -3.0)));
  EXPECT_TRUE(SameBits(-a, Vector3D(-1.0, -2.0, -3.0)));
  EXPECT_TRUE(SameBits(a * 2.0, Vector3D(2.0, 4.0, 6.0)));
  EXPECT_EQ(a * b, 12.0);
  EXPECT_TRUE(SameBits(a & b, Vector3D(27.0, 6.0, -13.0)));
  EXPECT_EQ(&(a += b), &a);
  EXPECT_TRUE(SameBits(a, Vector3D(5.0, -3.0, 9.0)));
  EXPECT_EQ(&(a -= b), &a);
  EXPECT_TRUE(SameBits(a, Vector3D(1.0, 2.0, 3.0)));
  EXPECT_EQ(&(a *= 2.0), &a);
  EXPECT_TRUE(SameBits(a, Vector3D(2.0, 4.0, 6.0)));
}

TEST(InterfaceVector, MeasuresLengths) {
  const Vector3D v(2.0, -3.0, 6.0);
  EXPECT_EQ(v.Norm(), 7.0);
  EXPECT_EQ(v.NormSquare(), 49.0);
  EXPECT_EQ(v.NormSup(), 6.0);
  EXPECT_EQ(v.Distance(Vector3D(2.0, 0.0, 2.0)), 5.0);
  Vector3D unit(0.0, 0.0, -4.0);
  EXPECT_TRUE(unit.MakeUnit(0.001));
  EXPECT_TRUE(unit.IsSame(ZMinus, 1e-12));
  EXPECT_FALSE(unit.IsSame(ZPlus, 1e-12));
}

TEST(InterfaceVector, Compares) {
  const Vector3D v(1.0, 2.0, 3.0);
  EXPECT_EQ(v == Vector3D(1.0, 2.0, 3.0), 1);
  EXPECT_EQ(v == Vector3D(1.0, 2.0, 4.0), 0);
  EXPECT_TRUE(v.IsSame(Vector3D(1.0, 2.0, 3.5), 0.6));
  EXPECT_FALSE(v.IsSame(Vector3D(1.0, 2.0, 3.5), 0.4));
  double ratio = 0.0;
  EXPECT_TRUE(v.IsColinear(Vector3D(-2.0, -4.0, -6.0), 1e-6, &ratio));
  EXPECT_EQ(ratio, -2.0);
  EXPECT_FALSE(v.IsColinear(AxisX, 1e-6, nullptr));
}

TEST(InterfaceVector, GrowsABox) {
  Vector3D corner(1.0, 2.0, 3.0);
  corner.ModificationMax(Vector3D(0.0, 5.0, 3.0));
  EXPECT_TRUE(SameBits(corner, Vector3D(1.0, 5.0, 3.0)));
  corner.ModificationMin(Vector3D(-1.0, 9.0, 0.0));
  EXPECT_TRUE(SameBits(corner, Vector3D(-1.0, 5.0, 0.0)));
}

TEST(InterfaceVector, HasAText) {
  std::wstring text = L"old";
  Vector3D(1.0, -2.5, 1000.0).GetStringDebug(&text);
  EXPECT_EQ(text, L"(1.000, -2.500, 1000.000)");
}

TEST(InterfaceConstants, HoldTheAxesAndTheIdentity) {
  EXPECT_TRUE(AxisX.IsSame(XPlus, 1e-15));
  EXPECT_TRUE(AxisY.IsSame(YPlus, 1e-15));
  EXPECT_TRUE(AxisZ.IsSame(ZPlus, 1e-15));
  EXPECT_EQ(NullVector.Norm(), 0.0);
  const Matrix43 identity;
  const double* elements = identity;
  EXPECT_TRUE(SameBits(elements, IdentityFrame, 16, "the identity's"));
}

TEST(InterfaceFrame, LoadsAndGivesItsElements) {
  Matrix43 frame;
  EXPECT_TRUE(frame.IsIdentity());
  double elements[16];
  std::memcpy(elements, IdentityFrame, sizeof elements);
  elements[12] = 3.0;
  frame = elements;
  EXPECT_FALSE(frame.IsIdentity());
  EXPECT_TRUE(frame.IsTranslation());
  const Matrix43& fixed = frame;
  const double* readable = fixed;
  EXPECT_EQ(readable[12], 3.0);
  double* writable = frame;
  EXPECT_EQ(writable, readable);
  const Matrix43 fromLanes(fixed.Get_m128d());
  EXPECT_TRUE(SameBits(fromLanes, frame));
  const Matrix43 copy(frame);
  EXPECT_EQ(copy == frame, 1);
  frame.SetIdentity();
  EXPECT_TRUE(frame.IsIdentity());
  EXPECT_EQ(copy == frame, 0);
  frame = copy;
  EXPECT_TRUE(SameBits(frame, copy));
}

TEST(InterfaceFrame, TakesAndGivesItsColumns) {
  const Vector3D origin(1.0, 2.0, 3.0);
  Matrix43 frame;
  frame.SetUVWT(AxisY, AxisZ, AxisX, origin);
  EXPECT_TRUE(SameBits(frame.GetU(), AxisY));
  EXPECT_TRUE(SameBits(frame.GetV(), AxisZ));
  EXPECT_TRUE(SameBits(frame.GetW(), AxisX));
  EXPECT_TRUE(SameBits(frame.GetTrans(), origin));
  Matrix43 other;
  other.SetTUVW(origin, AxisY, AxisZ, AxisX);
  EXPECT_TRUE(SameBits(other, frame));
  Matrix43 inSteps;
  inSteps.SetUVW(AxisY, AxisZ, AxisX);
  inSteps.SetTrans(origin);
  EXPECT_TRUE(SameBits(inSteps, frame));
  EXPECT_TRUE(frame.IsRotary());
}

TEST(InterfaceFrame, ComposesAndApplies) {
  Matrix43 frame;
  frame.SetUVWT(AxisY, AxisZ, AxisX, Vector3D(1.0, 2.0, 3.0));
  const Vector3D point(10.0, 20.0, 30.0);
  const Vector3D image(31.0, 12.0, 23.0);
  EXPECT_TRUE(SameBits(frame.ApplyToPoint(point), image));
  EXPECT_TRUE(SameBits(frame * point, image));
  EXPECT_TRUE(SameBits(frame.ApplyToVector3D(point), Vector3D(30.0, 10.0, 20.0)));
  const Matrix43 identity;
  EXPECT_TRUE((frame * frame.Inverse()).IsSame(identity, 1e-12));
  EXPECT_TRUE((frame.HInverse() * frame).IsSame(identity, 1e-12));
  EXPECT_FALSE((frame * frame).IsSame(identity, 1e-12));
}

TEST(InterfaceFrame, Rotates) {
  Angle quarter;
  quarter.SetDegre(90.0);
  Matrix43 aboutZ;
  aboutZ.SetRotation(Direction::Z, quarter);
  EXPECT_TRUE(NearVector(aboutZ.ApplyToPoint(AxisX), AxisY, 1e-15));
  Matrix43 aboutAxis;
  aboutAxis.SetRotation(Vector3D(0.0, 0.0, 1.0), quarter);
  EXPECT_TRUE(NearFrame(aboutAxis, aboutZ, 1e-15));
  Matrix43 fromAxis;
  EXPECT_TRUE(fromAxis.MakeAxisW(Vector3D(0.0, 3.0, 4.0)));
  EXPECT_TRUE(NearVector(fromAxis.GetW(), Vector3D(0.0, 0.6, 0.8), 1e-15));
  EXPECT_TRUE(fromAxis.IsRotary());
  EXPECT_FALSE(fromAxis.MakeAxisW(NullVector));
  EXPECT_TRUE(fromAxis.IsIdentity());
}

TEST(InterfaceFrame, HasAText) {
  std::wstring text = L"old";
  Matrix43().GetStringDebug(&text);
  EXPECT_NE(text.find(L"1.000"), std::wstring::npos);
  EXPECT_EQ(text.find(L"old"), std::wstring::npos);
}

TEST(InterfaceMesh, StartsEmpty) {
  const Mesh mesh;
  EXPECT_EQ(mesh.GetTabNVerts(), nullptr);
  EXPECT_EQ(mesh.GetTabIVertex(), nullptr);
  EXPECT_EQ(mesh.GetTabVertices(), nullptr);
  EXPECT_EQ(mesh.GetTabINormal(), nullptr);
  EXPECT_EQ(mesh.GetTabNormals(), nullptr);
  EXPECT_EQ(mesh.GetDimNVerts(), 0U);
  EXPECT_EQ(mesh.GetDimIVertex(), 0U);
  EXPECT_EQ(mesh.GetDimVertices(), 0U);
  EXPECT_EQ(mesh.GetDimINormal(), 0U);
  EXPECT_EQ(mesh.GetDimNormals(), 0U);
}

TEST(InterfaceMesh, HandsOutItsArraysAndSharesThemWithCopies) {
  Mesh mesh;
  unsigned int* nVerts = mesh.AllocTabNVerts(1);
  unsigned int* iVertex = mesh.AllocTabIVertex(2);
  Vector3D* vertices = mesh.AllocTabVertices(3);
  unsigned int* iNormal = mesh.AllocTabINormal(4);
  Vector3D* normals = mesh.AllocTabNormals(5);
  EXPECT_EQ(mesh.GetTabNVerts(), nVerts);
  EXPECT_EQ(mesh.GetTabIVertex(), iVertex);
  EXPECT_EQ(mesh.GetTabVertices(), vertices);
  EXPECT_EQ(mesh.GetTabINormal(), iNormal);
  EXPECT_EQ(mesh.GetTabNormals(), normals);
  EXPECT_EQ(mesh.GetDimNVerts(), 1U);
  EXPECT_EQ(mesh.GetDimIVertex(), 2U);
  EXPECT_EQ(mesh.GetDimVertices(), 3U);
  EXPECT_EQ(mesh.GetDimINormal(), 4U);
  EXPECT_EQ(mesh.GetDimNormals(), 5U);
  vertices[2].Set(1.0, 2.0, 3.0);
  EXPECT_TRUE(SameBits(normals[4], NullVector));

  const Mesh copy(mesh);
  EXPECT_EQ(copy.GetTabVertices(), vertices);
  Mesh assigned;
  assigned = std::move(mesh);
  EXPECT_EQ(assigned.GetTabVertices()[2][1], 2.0);
}

}  // namespace
}  // namespace Orvo::Testing
