#include "geometry/WithFourth.h"
#include "support/SameBits.h"
#include "support/Signature.h"
#include "support/TestRandom.h"

#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace Orvo {
namespace {

using Testing::HasSignature;
using Testing::SameBits;
using Testing::TestRandom;
using Testing::WithFourth;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

static_assert(!std::is_polymorphic_v<Vector3D>);
static_assert(std::is_trivially_destructible_v<Vector3D>);
static_assert(std::is_trivially_copyable_v<Vector3D>);
static_assert(sizeof(Vector3D) == 4 * sizeof(double));
static_assert(sizeof(DirectionSign) == 4);
static_assert(XPlus == 0 && XMinus == 1 && YPlus == 2 && YMinus == 3 && ZPlus == 4 && ZMinus == 5);
static_assert(DirectionSign::ZMinus == ZMinus);

// Naming a member by its exact type fails to compile where the signature differs.
static_assert(HasSignature<Vector3D (Vector3D::*)(const Vector3D&)>(&Vector3D::operator+));
static_assert(HasSignature<Vector3D (Vector3D::*)(const Vector3D&)>(&Vector3D::operator-));
static_assert(HasSignature<Vector3D (Vector3D::*)()>(&Vector3D::operator-));
static_assert(HasSignature<Vector3D (Vector3D::*)(double)>(&Vector3D::operator*));
static_assert(HasSignature<double (Vector3D::*)(const Vector3D&) const>(&Vector3D::operator*));
static_assert(HasSignature<Vector3D (Vector3D::*)(const Vector3D&)>(&Vector3D::operator&));
static_assert(HasSignature<const Vector3D& (Vector3D::*)(const Vector3D&)>(&Vector3D::operator+=));
static_assert(HasSignature<const Vector3D& (Vector3D::*)(const Vector3D&)>(&Vector3D::operator-=));
static_assert(HasSignature<const Vector3D& (Vector3D::*)(double)>(&Vector3D::operator*=));
static_assert(HasSignature<int (Vector3D::*)(const Vector3D&) const>(&Vector3D::operator==));
static_assert(HasSignature<double& (Vector3D::*)(int)>(&Vector3D::operator[]));
static_assert(HasSignature<double (Vector3D::*)(int) const>(&Vector3D::operator[]));
static_assert(HasSignature<__m128d (Vector3D::*)()>(&Vector3D::Get_m128d_0));
static_assert(HasSignature<__m128d (Vector3D::*)()>(&Vector3D::Get_m128d_1));
static_assert(HasSignature<const __m128d* (Vector3D::*)() const>(&Vector3D::Get_m128d));
static_assert(HasSignature<void (Vector3D::*)(double*, double*, double*)>(&Vector3D::Get));
static_assert(HasSignature<void (Vector3D::*)(double*)>(&Vector3D::Get));
static_assert(HasSignature<void (Vector3D::*)(double, double, double)>(&Vector3D::Set));
static_assert(HasSignature<void (Vector3D::*)(const double*)>(&Vector3D::Set));
static_assert(HasSignature<void (Vector3D::*)(const __m128d&, const __m128d&)>(&Vector3D::Set));
static_assert(HasSignature<void (Vector3D::*)(const Vector3D&)>(&Vector3D::Set));
static_assert(HasSignature<void (Vector3D::*)()>(&Vector3D::Reset));
static_assert(HasSignature<double (Vector3D::*)() const>(&Vector3D::Norm));
static_assert(HasSignature<double (Vector3D::*)() const>(&Vector3D::NormSquare));
static_assert(HasSignature<double (Vector3D::*)() const>(&Vector3D::NormSup));
static_assert(HasSignature<double (Vector3D::*)(const Vector3D&) const>(&Vector3D::Distance));
static_assert(HasSignature<bool (Vector3D::*)(double)>(&Vector3D::MakeUnit));
static_assert(HasSignature<bool (Vector3D::*)(const Vector3D&, double) const>(&Vector3D::IsSame));
static_assert(
    HasSignature<bool (Vector3D::*)(const DirectionSign&, double) const>(&Vector3D::IsSame));
static_assert(HasSignature<bool (Vector3D::*)(const Vector3D&, double, double*) const>(
    &Vector3D::IsColinear));
static_assert(HasSignature<void (Vector3D::*)(const Vector3D&)>(&Vector3D::ModificationMax));
static_assert(HasSignature<void (Vector3D::*)(const Vector3D&)>(&Vector3D::ModificationMin));
static_assert(HasSignature<void (Vector3D::*)(std::wstring*) const>(&Vector3D::GetStringDebug));

testing::AssertionResult Holds(const Vector3D& v, double x, double y, double z, double w) {
  return SameBits(v, WithFourth(x, y, z, w));
}

// Numbers of all kinds, for comparing with a scalar twin.
double DrawNumber(TestRandom& random) {
  switch (random.Integer(0, 11)) {
    case 0:
      return 0.0;
    case 1:
      return -0.0;
    case 2:
      return random.Real(-1.0, 1.0) * 1e160;
    case 3:
      return random.Real(-1.0, 1.0) * 1e-170;
    case 4:
      return static_cast<double>(random.Integer(-3, 3));
    default:
      return random.Real(-100.0, 100.0);
  }
}

Vector3D DrawVector(TestRandom& random) {
  return WithFourth(DrawNumber(random), DrawNumber(random), DrawNumber(random),
                    random.Chance(0.5) ? 0.0 : DrawNumber(random));
}

TEST(Vector3D, AxesAreConstantsOfTheirNames) {
  EXPECT_TRUE(Holds(AxisX, 1, 0, 0, 0));
  EXPECT_TRUE(Holds(AxisY, 0, 1, 0, 0));
  EXPECT_TRUE(Holds(AxisZ, 0, 0, 1, 0));
  EXPECT_TRUE(Holds(NullVector, 0, 0, 0, 0));
}

TEST(Vector3D, StartsNull) { EXPECT_TRUE(Holds(Vector3D(), 0, 0, 0, 0)); }

TEST(Vector3D, ConstructorsSetTheFourthComponentToZero) {
  const double numbers[4] = {1.5, -2.5, 3.5, 99.0};
  const __m128d lanes[2] = {_mm_setr_pd(1.5, -2.5), _mm_setr_pd(3.5, 99.0)};
  EXPECT_TRUE(Holds(Vector3D(1.5, -2.5, 3.5), 1.5, -2.5, 3.5, 0.0));
  EXPECT_TRUE(Holds(Vector3D(numbers), 1.5, -2.5, 3.5, 0.0));
  EXPECT_TRUE(Holds(Vector3D(lanes), 1.5, -2.5, 3.5, 0.0));
  EXPECT_TRUE(Holds(Vector3D(lanes[0], lanes[1]), 1.5, -2.5, 3.5, 0.0));
}

TEST(Vector3D, SettersSetTheFourthComponentToZero) {
  const double numbers[4] = {1.5, -2.5, 3.5, 99.0};
  Vector3D v = WithFourth(7, 7, 7, 7);
  v.Set(1.5, -2.5, 3.5);
  EXPECT_TRUE(Holds(v, 1.5, -2.5, 3.5, 0.0));
  v = WithFourth(7, 7, 7, 7);
  v.Set(numbers);
  EXPECT_TRUE(Holds(v, 1.5, -2.5, 3.5, 0.0));
  v = WithFourth(7, 7, 7, 7);
  v.Set(_mm_setr_pd(1.5, -2.5), _mm_setr_pd(3.5, 99.0));
  EXPECT_TRUE(Holds(v, 1.5, -2.5, 3.5, 0.0));
  v = WithFourth(7, 7, 7, 7);
  v = numbers;
  EXPECT_TRUE(Holds(v, 1.5, -2.5, 3.5, 0.0));
}

TEST(Vector3D, CopiesTakeAllFourComponents) {
  const Vector3D source = WithFourth(1, 2, 3, 4);
  const Vector3D copy(source);
  EXPECT_TRUE(Holds(copy, 1, 2, 3, 4));
  Vector3D assigned;
  EXPECT_EQ(&(assigned = source), &assigned);
  EXPECT_TRUE(Holds(assigned, 1, 2, 3, 4));
  Vector3D set;
  set.Set(source);
  EXPECT_TRUE(Holds(set, 1, 2, 3, 4));
}

TEST(Vector3D, CopyOntoItselfChangesNothing) {
  Vector3D v = WithFourth(1, 2, 3, 4);
  const Vector3D& self = v;
  v = self;
  EXPECT_TRUE(Holds(v, 1, 2, 3, 4));
  v.Set(self);
  EXPECT_TRUE(Holds(v, 1, 2, 3, 4));
}

TEST(Vector3D, AssignmentFromNumbersReturnsItsTarget) {
  const double numbers[3] = {1, 2, 3};
  Vector3D v;
  EXPECT_EQ(&(v = numbers), &v);
}

TEST(Vector3D, NumbersMayBeItsOwn) {
  Vector3D v = WithFourth(1, 2, 3, 4);
  v.Set(static_cast<const double*>(&v[0]));
  EXPECT_TRUE(Holds(v, 1, 2, 3, 0));
  v = WithFourth(1, 2, 3, 4);
  v = static_cast<const double*>(&v[1]);
  EXPECT_TRUE(Holds(v, 2, 3, 4, 0));
  v = WithFourth(1, 2, 3, 4);
  v.Set(v.Get_m128d()[1], v.Get_m128d()[0]);
  EXPECT_TRUE(Holds(v, 3, 4, 1, 0));
}

TEST(Vector3D, ANullPointerCountsAsThreeZeros) {
  const double* noNumbers = nullptr;
  const __m128d* noLanes = nullptr;
  EXPECT_TRUE(Holds(Vector3D(noNumbers), 0, 0, 0, 0));
  EXPECT_TRUE(Holds(Vector3D(noLanes), 0, 0, 0, 0));
  Vector3D v = WithFourth(1, 2, 3, 4);
  v.Set(noNumbers);
  EXPECT_TRUE(Holds(v, 0, 0, 0, 0));
  v = WithFourth(1, 2, 3, 4);
  v = noNumbers;
  EXPECT_TRUE(Holds(v, 0, 0, 0, 0));
}

TEST(Vector3D, ResetZeroesAllFourComponents) {
  Vector3D v = WithFourth(1, 2, 3, 4);
  v.Reset();
  EXPECT_TRUE(Holds(v, 0, 0, 0, 0));
}

TEST(Vector3D, GetWritesThreeComponents) {
  Vector3D v = WithFourth(1, 2, 3, 4);
  double x = 0;
  double y = 0;
  double z = 0;
  v.Get(&x, &y, &z);
  EXPECT_EQ(x, 1);
  EXPECT_EQ(y, 2);
  EXPECT_EQ(z, 3);
  double numbers[4] = {9, 9, 9, 9};
  v.Get(numbers);
  EXPECT_EQ(numbers[0], 1);
  EXPECT_EQ(numbers[1], 2);
  EXPECT_EQ(numbers[2], 3);
  EXPECT_EQ(numbers[3], 9);
}

TEST(Vector3D, GetLeavesNullPlacesAlone) {
  Vector3D v(1, 2, 3);
  double x = 0;
  double y = 0;
  double z = 0;
  v.Get(nullptr, &y, &z);
  v.Get(&x, nullptr, nullptr);
  v.Get(nullptr);
  EXPECT_EQ(x, 1);
  EXPECT_EQ(y, 2);
  EXPECT_EQ(z, 3);
}

TEST(Vector3D, LanesHoldTheComponentsInPairs) {
  Vector3D v = WithFourth(1, 2, 3, 4);
  double pair[2];
  _mm_storeu_pd(pair, v.Get_m128d_0());
  EXPECT_EQ(pair[0], 1);
  EXPECT_EQ(pair[1], 2);
  _mm_storeu_pd(pair, v.Get_m128d_1());
  EXPECT_EQ(pair[0], 3);
  EXPECT_EQ(pair[1], 4);
  const Vector3D& constant = v;
  _mm_storeu_pd(pair, constant.Get_m128d()[0]);
  EXPECT_EQ(pair[0], 1);
  EXPECT_EQ(pair[1], 2);
  _mm_storeu_pd(pair, constant.Get_m128d()[1]);
  EXPECT_EQ(pair[0], 3);
  EXPECT_EQ(pair[1], 4);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(constant.Get_m128d()) % 16, 0U);
}

TEST(Vector3D, PointersAndIndicesReachTheComponents) {
  Vector3D v = WithFourth(1, 2, 3, 4);
  double* numbers = v;
  const Vector3D& constant = v;
  const double* constantNumbers = constant;
  EXPECT_EQ(numbers, constantNumbers);
  EXPECT_EQ(static_cast<const void*>(constantNumbers),
            static_cast<const void*>(constant.Get_m128d()));
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(numbers[i], i + 1.0);
    EXPECT_EQ(constant[i], i + 1.0);
    EXPECT_EQ(&v[i], numbers + i);
  }
  v[1] = 7.0;
  numbers[2] = 8.0;
  EXPECT_TRUE(Holds(v, 1, 7, 8, 4));
}

TEST(Vector3D, EqualityIsExactAndIgnoresTheFourthComponent) {
  struct Case {
    const char* name;
    Vector3D a;
    Vector3D b;
    int equal;
  };
  const Case cases[] = {
      {"equal", {1, 2, 3}, {1, 2, 3}, 1},
      {"another fourth component", WithFourth(1, 2, 3, 4), WithFourth(1, 2, 3, 5), 1},
      {"x one bit off", {std::nextafter(1.0, 2.0), 2, 3}, {1, 2, 3}, 0},
      {"y one bit off", {1, std::nextafter(2.0, 3.0), 3}, {1, 2, 3}, 0},
      {"z one bit off", {1, 2, std::nextafter(3.0, 4.0)}, {1, 2, 3}, 0},
      {"zeros of both signs", {0.0, -0.0, 0.0}, {-0.0, 0.0, 0.0}, 1},
      {"NaN equals nothing", {NotANumber, 0, 0}, {NotANumber, 0, 0}, 0},
      {"NaN in z", {0, 0, NotANumber}, {0, 0, NotANumber}, 0},
      {"infinity equals itself", {Infinity, 0, 0}, {Infinity, 0, 0}, 1},
      {"NaN as fourth component", WithFourth(1, 2, 3, NotANumber), {1, 2, 3}, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.a == c.b, c.equal);
  }
}

TEST(Vector3D, ArithmeticIsLaneWise) {
  Vector3D a = WithFourth(1, 2, 3, 4);
  const Vector3D b = WithFourth(10, -20, 30, 40);
  EXPECT_TRUE(Holds(a + b, 11, -18, 33, 44));
  EXPECT_TRUE(Holds(a - b, -9, 22, -27, -36));
  EXPECT_TRUE(Holds(a * 2.0, 2, 4, 6, 8));
  EXPECT_TRUE(Holds(a, 1, 2, 3, 4));
}

TEST(Vector3D, ArithmeticOfOrdinaryVectorsKeepsTheFourthComponentZero) {
  Vector3D a(1, 2, 3);
  const Vector3D b(4, 5, 6);
  EXPECT_TRUE(SameBits((a + b)[3], 0.0));
  EXPECT_TRUE(SameBits((a - b)[3], 0.0));
  EXPECT_TRUE(SameBits((a & b)[3], 0.0));
  EXPECT_TRUE(SameBits((-a)[3], 0.0));
  EXPECT_TRUE(SameBits((a * 3.0)[3], 0.0));
}

TEST(Vector3D, UnaryMinusFlipsThreeSignsAndClearsTheFourth) {
  EXPECT_TRUE(Holds(-WithFourth(1, -2, 0.0, 4), -1, 2, -0.0, 0.0));
  EXPECT_TRUE(Holds(-WithFourth(-0.0, Infinity, -Infinity, -4), 0.0, -Infinity, Infinity, 0.0));
}

TEST(Vector3D, CrossProductIsRightHanded) {
  Vector3D x = AxisX;
  Vector3D y = AxisY;
  Vector3D z = AxisZ;
  EXPECT_EQ((x & y) == AxisZ, 1);
  EXPECT_EQ((y & z) == AxisX, 1);
  EXPECT_EQ((z & x) == AxisY, 1);
  EXPECT_EQ((y & x) == Vector3D(0, 0, -1), 1);
  EXPECT_EQ((x & x) == NullVector, 1);
  EXPECT_TRUE(Holds(WithFourth(1, 2, 3, 4) & WithFourth(5, 7, 11, 13), 1, 4, -3, 0));
}

TEST(Vector3D, InPlaceOperatorsReturnThisObject) {
  Vector3D a = WithFourth(1, 2, 3, 4);
  EXPECT_EQ(&(a += WithFourth(10, 20, 30, 40)), &a);
  EXPECT_TRUE(Holds(a, 11, 22, 33, 44));
  EXPECT_EQ(&(a -= WithFourth(1, 2, 3, 4)), &a);
  EXPECT_TRUE(Holds(a, 10, 20, 30, 40));
  EXPECT_EQ(&(a *= 0.5), &a);
  EXPECT_TRUE(Holds(a, 5, 10, 15, 20));
}

TEST(Vector3D, InPlaceOperatorsTakeThisObjectItself) {
  Vector3D a = WithFourth(1, 2, 3, 4);
  const Vector3D& self = a;
  a += self;
  EXPECT_TRUE(Holds(a, 2, 4, 6, 8));
  a *= self[1];
  EXPECT_TRUE(Holds(a, 8, 16, 24, 32));
  a -= self;
  EXPECT_TRUE(Holds(a, 0, 0, 0, 0));
}

TEST(Vector3D, LaneOperationsAreTheScalarFormulasBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 5000; ++i) {
    Vector3D a = DrawVector(random);
    const Vector3D b = DrawVector(random);
    const double s = DrawNumber(random);
    Vector3D inPlace = a;
    ASSERT_TRUE(Holds(a + b, a[0] + b[0], a[1] + b[1], a[2] + b[2], a[3] + b[3]));
    ASSERT_TRUE(SameBits(inPlace += b, a + b));
    ASSERT_TRUE(Holds(a - b, a[0] - b[0], a[1] - b[1], a[2] - b[2], a[3] - b[3]));
    inPlace = a;
    ASSERT_TRUE(SameBits(inPlace -= b, a - b));
    ASSERT_TRUE(Holds(a * s, a[0] * s, a[1] * s, a[2] * s, a[3] * s));
    inPlace = a;
    ASSERT_TRUE(SameBits(inPlace *= s, a * s));
    ASSERT_TRUE(Holds(-a, -a[0], -a[1], -a[2], 0.0));
    ASSERT_TRUE(Holds(a & b, a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                      a[0] * b[1] - a[1] * b[0], 0.0));
  }
}

TEST(Vector3D, MeasuresAreTheScalarFormulasBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  int telling = 0;
  for (int i = 0; i < 5000; ++i) {
    const Vector3D a = DrawVector(random);
    const Vector3D b = DrawVector(random);
    const double square = a[0] * a[0] + (a[1] * a[1] + a[2] * a[2]);
    telling += square != (a[0] * a[0] + a[1] * a[1]) + a[2] * a[2] ? 1 : 0;
    ASSERT_TRUE(SameBits(a * b, a[0] * b[0] + (a[1] * b[1] + a[2] * b[2])));
    ASSERT_TRUE(SameBits(a.NormSquare(), square));
    ASSERT_TRUE(SameBits(a.Norm(), std::sqrt(square)));
    ASSERT_TRUE(
        SameBits(a.NormSup(), std::max(std::abs(a[0]), std::max(std::abs(a[1]), std::abs(a[2])))));
    const double d[3] = {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
    ASSERT_TRUE(SameBits(a.Distance(b), std::sqrt(d[0] * d[0] + (d[1] * d[1] + d[2] * d[2]))));
  }
  EXPECT_GT(telling, 100) << "the association of the sums never showed";
}

TEST(Vector3D, MeasuresIgnoreTheFourthComponent) {
  const Vector3D a = WithFourth(2, 3, 6, 100);
  EXPECT_EQ(a.Norm(), 7.0);
  EXPECT_EQ(a.NormSquare(), 49.0);
  EXPECT_EQ(a.NormSup(), 6.0);
  EXPECT_EQ(a.Distance(WithFourth(2, 3, 6, -100)), 0.0);
  EXPECT_EQ(a * WithFourth(1, 1, 1, 100), 11.0);
}

TEST(Vector3D, NormSupTakesTheLargestSizeOfEitherSign) {
  EXPECT_EQ(Vector3D(-5, 2, 3).NormSup(), 5.0);
  EXPECT_EQ(Vector3D(1, -6, 3).NormSup(), 6.0);
  EXPECT_EQ(Vector3D(1, 2, -7).NormSup(), 7.0);
  EXPECT_TRUE(SameBits(Vector3D(-0.0, -0.0, -0.0).NormSup(), 0.0));
}

TEST(Vector3DModification, KeepsTheCornersOfABox) {
  Vector3D high = WithFourth(1, 5, -3, 0);
  Vector3D low = high;
  const Vector3D points[] = {{0, 7, -4}, {2, 6, -3.5}, {-8, 0, -1}};
  for (const Vector3D& point : points) {
    high.ModificationMax(point);
    low.ModificationMin(point);
  }
  EXPECT_TRUE(Holds(high, 2, 7, -1, 0));
  EXPECT_TRUE(Holds(low, -8, 0, -4, 0));
}

TEST(Vector3DModification, CarriesTheFourthComponent) {
  Vector3D v = WithFourth(0, 0, 0, 1);
  v.ModificationMax(WithFourth(0, 0, 0, 2));
  EXPECT_TRUE(Holds(v, 0, 0, 0, 2));
  v.ModificationMin(WithFourth(0, 0, 0, -3));
  EXPECT_TRUE(Holds(v, 0, 0, 0, -3));
}

// Only a strictly larger or smaller value replaces one, so NaN and the sign of zero stay.
TEST(Vector3DModification, AnEqualOrIncomparableValueChangesNothing) {
  const double values[] = {0.0, -0.0, 1.0, -1.0, 2.5, Infinity, -Infinity, NotANumber, 1e-320};
  for (const double mine : values) {
    for (const double other : values) {
      for (int component = 0; component < 4; ++component) {
        SCOPED_TRACE(testing::Message() << mine << " and " << other << " in " << component);
        Vector3D high = WithFourth(1, 2, 3, 4);
        high[component] = mine;
        Vector3D low = high;
        Vector3D point = WithFourth(1, 2, 3, 4);
        point[component] = other;
        high.ModificationMax(point);
        low.ModificationMin(point);
        EXPECT_TRUE(SameBits(high[component], other > mine ? other : mine));
        EXPECT_TRUE(SameBits(low[component], other < mine ? other : mine));
      }
    }
  }
}

TEST(Vector3DModification, TakesThisObjectItself) {
  Vector3D v = WithFourth(1, -2, 3, -4);
  v.ModificationMax(v);
  v.ModificationMin(v);
  EXPECT_TRUE(Holds(v, 1, -2, 3, -4));
}

TEST(Vector3DGetStringDebug, WritesThreeComponentsWithThreeDecimals) {
  struct Case {
    Vector3D v;
    std::wstring text;
  };
  const Case cases[] = {
      {{1, -2.5, 1000}, L"(1.000, -2.500, 1000.000)"},
      {{0, 0, 0}, L"(0.000, 0.000, 0.000)"},
      {{-0.0, -0.0001, 0.0004}, L"(-0.000, -0.000, 0.000)"},
      {{0.0005, 1.0005, 0.9996}, L"(0.001, 1.000, 1.000)"},
      {{0.0625, 0.1875, -0.0625}, L"(0.062, 0.188, -0.062)"},
      {{123456789.25, -0.5, 99.9996}, L"(123456789.250, -0.500, 100.000)"},
      {{Infinity, -Infinity, 5}, L"(  inf,  -inf, 5.000)"},
      {WithFourth(1, 2, 3, 4), L"(1.000, 2.000, 3.000)"},
  };
  for (const Case& c : cases) {
    std::wstring text = L"something before";
    c.v.GetStringDebug(&text);
    EXPECT_EQ(text, c.text);
  }
}

TEST(Vector3DGetStringDebug, NaNIsNamed) {
  std::wstring text;
  Vector3D(std::abs(NotANumber), 1, 2).GetStringDebug(&text);
  EXPECT_EQ(text, L"(  nan, 1.000, 2.000)");
}

TEST(Vector3DGetStringDebug, WritesTheLargestNumbersWhole) {
  const double largest = std::numeric_limits<double>::max();
  std::wstring text;
  Vector3D(largest, -largest, 1).GetStringDebug(&text);
  const std::wstring number = std::to_wstring(largest);  // six decimals, all zero
  const std::wstring shorter = number.substr(0, number.size() - 3);
  EXPECT_EQ(text, L"(" + shorter + L", -" + shorter + L", 1.000)");
}

TEST(Vector3DGetStringDebug, IgnoresNull) { Vector3D(1, 2, 3).GetStringDebug(nullptr); }

}  // namespace
}  // namespace Orvo
