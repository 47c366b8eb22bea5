// The exported interface of the geometry kernel, member by member. Nothing here runs: a file that
// compiles is a test that passes.

#include "Signature.h"

#include <Orvo/Orvo.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

namespace Orvo {
namespace {

using Testing::HasVirtualDestructor;
using Testing::IsCopyable;
using Testing::IsPlainIntEnumeration;

// Angle.
static_assert(IsCopyable<Angle> && HasVirtualDestructor<Angle>);
static_assert(std::is_default_constructible_v<Angle> && std::is_convertible_v<double, Angle>);
static_assert(sizeof(Angle) == 16);
ORVO_EXPECT_MEMBER(void (Angle::*)(double), Angle::SetRadian);
ORVO_EXPECT_MEMBER(double (Angle::*)() const, Angle::GetRadian);
ORVO_EXPECT_MEMBER(void (Angle::*)(double), Angle::SetDegre);
ORVO_EXPECT_MEMBER(double (Angle::*)() const, Angle::GetDegre);
ORVO_EXPECT_MEMBER(double (Angle::*)() const, Angle::Sin);
ORVO_EXPECT_MEMBER(double (Angle::*)() const, Angle::Cos);
ORVO_EXPECT_MEMBER(Angle (Angle::*)(const Angle&), Angle::operator+);
ORVO_EXPECT_MEMBER(Angle (Angle::*)(const Angle&), Angle::operator-);
ORVO_EXPECT_MEMBER(Angle (Angle::*)(), Angle::operator-);
ORVO_EXPECT_MEMBER(Angle (Angle::*)(double), Angle::operator*);
ORVO_EXPECT_MEMBER(int (Angle::*)(const Angle&) const, Angle::operator<);
ORVO_EXPECT_MEMBER(int (Angle::*)(const Angle&) const, Angle::operator>);
ORVO_EXPECT_MEMBER(bool (Angle::*)(const Vector3D&, const Vector3D&, const Vector3D&),
                   Angle::SetVector3DRef);

// DirectionSign and Direction.
static_assert(IsPlainIntEnumeration<DirectionSign>);
static_assert(XPlus == 0 && XMinus == 1 && YPlus == 2 && YMinus == 3 && ZPlus == 4 && ZMinus == 5);
static_assert(DirectionSign::ZMinus == ZMinus);
static_assert(IsPlainIntEnumeration<Direction>);
static_assert(X == 0 && Y == 1 && Z == 2 && Direction::Z == Z);

// Vector3D.
static_assert(IsCopyable<Vector3D> && !std::is_polymorphic_v<Vector3D>);
static_assert(std::is_trivially_destructible_v<Vector3D>);
static_assert(sizeof(Vector3D) == 4 * sizeof(double) && alignof(Vector3D) == 16);
static_assert(std::is_default_constructible_v<Vector3D>);
static_assert(std::is_constructible_v<Vector3D, double, double, double>);
static_assert(std::is_convertible_v<const double*, Vector3D>);
static_assert(requires(const __m128d* lanes, void (*take)(Vector3D)) { take(lanes); });
static_assert(requires(const __m128d& lane) { Vector3D(lane, lane); });
ORVO_EXPECT_MEMBER(Vector3D& (Vector3D::*)(const Vector3D&), Vector3D::operator=);
ORVO_EXPECT_MEMBER(Vector3D& (Vector3D::*)(const double*), Vector3D::operator=);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(double, double, double), Vector3D::Set);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(const double*), Vector3D::Set);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(const __m128d&, const __m128d&), Vector3D::Set);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(const Vector3D&), Vector3D::Set);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(), Vector3D::Reset);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(double*, double*, double*), Vector3D::Get);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(double*), Vector3D::Get);
ORVO_EXPECT_MEMBER(__m128d (Vector3D::*)(), Vector3D::Get_m128d_0);
ORVO_EXPECT_MEMBER(__m128d (Vector3D::*)(), Vector3D::Get_m128d_1);
ORVO_EXPECT_MEMBER(const __m128d* (Vector3D::*)() const, Vector3D::Get_m128d);
ORVO_EXPECT_MEMBER(double* (Vector3D::*)(), Vector3D::operator double*);
ORVO_EXPECT_MEMBER(const double* (Vector3D::*)() const, Vector3D::operator const double*);
static_assert(std::is_convertible_v<Vector3D&, double*>);
static_assert(std::is_convertible_v<const Vector3D&, const double*>);
static_assert(!std::is_convertible_v<const Vector3D&, double*>);
ORVO_EXPECT_MEMBER(double& (Vector3D::*)(int), Vector3D::operator[]);
ORVO_EXPECT_MEMBER(double (Vector3D::*)(int) const, Vector3D::operator[]);
ORVO_EXPECT_MEMBER(int (Vector3D::*)(const Vector3D&) const, Vector3D::operator==);
ORVO_EXPECT_MEMBER(Vector3D (Vector3D::*)(const Vector3D&), Vector3D::operator+);
ORVO_EXPECT_MEMBER(Vector3D (Vector3D::*)(const Vector3D&), Vector3D::operator-);
ORVO_EXPECT_MEMBER(Vector3D (Vector3D::*)(), Vector3D::operator-);
ORVO_EXPECT_MEMBER(Vector3D (Vector3D::*)(double), Vector3D::operator*);
ORVO_EXPECT_MEMBER(double (Vector3D::*)(const Vector3D&) const, Vector3D::operator*);
ORVO_EXPECT_MEMBER(Vector3D (Vector3D::*)(const Vector3D&), Vector3D::operator&);
ORVO_EXPECT_MEMBER(const Vector3D& (Vector3D::*)(const Vector3D&), Vector3D::operator+=);
ORVO_EXPECT_MEMBER(const Vector3D& (Vector3D::*)(const Vector3D&), Vector3D::operator-=);
ORVO_EXPECT_MEMBER(const Vector3D& (Vector3D::*)(double), Vector3D::operator*=);
ORVO_EXPECT_MEMBER(double (Vector3D::*)() const, Vector3D::Norm);
ORVO_EXPECT_MEMBER(double (Vector3D::*)() const, Vector3D::NormSquare);
ORVO_EXPECT_MEMBER(double (Vector3D::*)() const, Vector3D::NormSup);
ORVO_EXPECT_MEMBER(double (Vector3D::*)(const Vector3D&) const, Vector3D::Distance);
ORVO_EXPECT_MEMBER(bool (Vector3D::*)(double), Vector3D::MakeUnit);
ORVO_EXPECT_MEMBER(bool (Vector3D::*)(const Vector3D&, double) const, Vector3D::IsSame);
ORVO_EXPECT_MEMBER(bool (Vector3D::*)(const DirectionSign&, double) const, Vector3D::IsSame);
ORVO_EXPECT_MEMBER(bool (Vector3D::*)(const Vector3D&, double, double*) const,
                   Vector3D::IsColinear);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(const Vector3D&), Vector3D::ModificationMax);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(const Vector3D&), Vector3D::ModificationMin);
ORVO_EXPECT_MEMBER(void (Vector3D::*)(std::wstring*) const, Vector3D::GetStringDebug);

// The constants.
static_assert(std::is_same_v<decltype(AxisX), const Vector3D>);
static_assert(std::is_same_v<decltype(AxisY), const Vector3D>);
static_assert(std::is_same_v<decltype(AxisZ), const Vector3D>);
static_assert(std::is_same_v<decltype(NullVector), const Vector3D>);
static_assert(std::is_same_v<decltype(IdentityFrame), const double[16]>);
static_assert(IdentityFrame[0] == 1.0 && IdentityFrame[5] == 1.0 && IdentityFrame[10] == 1.0 &&
              IdentityFrame[15] == 1.0 && IdentityFrame[1] == 0.0 && IdentityFrame[12] == 0.0);

// Matrix43.
static_assert(IsCopyable<Matrix43> && HasVirtualDestructor<Matrix43>);
static_assert(std::is_default_constructible_v<Matrix43>);
static_assert(requires(const __m128d* lanes, void (*take)(Matrix43)) { take(lanes); });
static_assert(alignof(Matrix43) == 16 && sizeof(Matrix43) == 160);
static_assert(IsPlainIntEnumeration<Matrix43::Type>);
static_assert(Matrix43::General == 0 && Matrix43::Identity == 1 && Matrix43::Rotation == 2 &&
              Matrix43::Translation == 3 && Matrix43::RotationTranslation == 4 &&
              Matrix43::Projective == 5);
static_assert(Matrix43::Type::Projective == Matrix43::Projective);
ORVO_EXPECT_MEMBER(Matrix43& (Matrix43::*)(const Matrix43&), Matrix43::operator=);
ORVO_EXPECT_MEMBER(Matrix43& (Matrix43::*)(const double*), Matrix43::operator=);
ORVO_EXPECT_MEMBER(double* (Matrix43::*)(), Matrix43::operator double*);
ORVO_EXPECT_MEMBER(const double* (Matrix43::*)() const, Matrix43::operator const double*);
static_assert(std::is_convertible_v<Matrix43&, double*>);
static_assert(!std::is_convertible_v<const Matrix43&, double*>);
ORVO_EXPECT_MEMBER(const __m128d* (Matrix43::*)() const, Matrix43::Get_m128d);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(), Matrix43::SetIdentity);
ORVO_EXPECT_MEMBER(Vector3D (Matrix43::*)(), Matrix43::GetU);
ORVO_EXPECT_MEMBER(Vector3D (Matrix43::*)(), Matrix43::GetV);
ORVO_EXPECT_MEMBER(Vector3D (Matrix43::*)(), Matrix43::GetW);
ORVO_EXPECT_MEMBER(Vector3D (Matrix43::*)(), Matrix43::GetTrans);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(const Vector3D&, const Vector3D&, const Vector3D&),
                   Matrix43::SetUVW);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(const Vector3D&, const Vector3D&, const Vector3D&,
                                      const Vector3D&),
                   Matrix43::SetUVWT);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(const Vector3D&, const Vector3D&, const Vector3D&,
                                      const Vector3D&),
                   Matrix43::SetTUVW);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(const Vector3D&), Matrix43::SetTrans);
ORVO_EXPECT_MEMBER(Matrix43 (Matrix43::*)(const Matrix43&), Matrix43::operator*);
ORVO_EXPECT_MEMBER(Vector3D (Matrix43::*)(const Vector3D&), Matrix43::operator*);
ORVO_EXPECT_MEMBER(Vector3D (Matrix43::*)(const Vector3D&), Matrix43::ApplyToPoint);
ORVO_EXPECT_MEMBER(Vector3D (Matrix43::*)(const Vector3D&), Matrix43::ApplyToVector3D);
ORVO_EXPECT_MEMBER(Matrix43 (Matrix43::*)(), Matrix43::Inverse);
ORVO_EXPECT_MEMBER(Matrix43 (Matrix43::*)(), Matrix43::HInverse);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(const Direction&, const Angle&), Matrix43::SetRotation);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(const Vector3D&, const Angle&), Matrix43::SetRotation);
ORVO_EXPECT_MEMBER(bool (Matrix43::*)(const Vector3D&), Matrix43::MakeAxisW);
ORVO_EXPECT_MEMBER(bool (Matrix43::*)() const, Matrix43::IsIdentity);
ORVO_EXPECT_MEMBER(bool (Matrix43::*)() const, Matrix43::IsTranslation);
ORVO_EXPECT_MEMBER(bool (Matrix43::*)() const, Matrix43::IsRotary);
ORVO_EXPECT_MEMBER(bool (Matrix43::*)(const Matrix43&, double) const, Matrix43::IsSame);
ORVO_EXPECT_MEMBER(int (Matrix43::*)(const Matrix43&) const, Matrix43::operator==);
ORVO_EXPECT_MEMBER(void (Matrix43::*)(std::wstring*) const, Matrix43::GetStringDebug);

// Mesh.
static_assert(IsCopyable<Mesh> && HasVirtualDestructor<Mesh>);
static_assert(std::is_default_constructible_v<Mesh>);
ORVO_EXPECT_MEMBER(unsigned int* (Mesh::*)(unsigned int), Mesh::AllocTabNVerts);
ORVO_EXPECT_MEMBER(unsigned int* (Mesh::*)(unsigned int), Mesh::AllocTabIVertex);
ORVO_EXPECT_MEMBER(Vector3D* (Mesh::*)(unsigned int), Mesh::AllocTabVertices);
ORVO_EXPECT_MEMBER(unsigned int* (Mesh::*)(unsigned int), Mesh::AllocTabINormal);
ORVO_EXPECT_MEMBER(Vector3D* (Mesh::*)(unsigned int), Mesh::AllocTabNormals);
ORVO_EXPECT_MEMBER(const unsigned int* (Mesh::*)() const, Mesh::GetTabNVerts);
ORVO_EXPECT_MEMBER(const unsigned int* (Mesh::*)() const, Mesh::GetTabIVertex);
ORVO_EXPECT_MEMBER(const Vector3D* (Mesh::*)() const, Mesh::GetTabVertices);
ORVO_EXPECT_MEMBER(const unsigned int* (Mesh::*)() const, Mesh::GetTabINormal);
ORVO_EXPECT_MEMBER(const Vector3D* (Mesh::*)() const, Mesh::GetTabNormals);
ORVO_EXPECT_MEMBER(unsigned int (Mesh::*)() const, Mesh::GetDimNVerts);
ORVO_EXPECT_MEMBER(unsigned int (Mesh::*)() const, Mesh::GetDimIVertex);
ORVO_EXPECT_MEMBER(unsigned int (Mesh::*)() const, Mesh::GetDimVertices);
ORVO_EXPECT_MEMBER(unsigned int (Mesh::*)() const, Mesh::GetDimINormal);
ORVO_EXPECT_MEMBER(unsigned int (Mesh::*)() const, Mesh::GetDimNormals);

}  // namespace
}  // namespace Orvo
