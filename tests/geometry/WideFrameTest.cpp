// Frames a whole column at a time, row by row and four numbers at once, against the kernels that
// all of them must agree with bit for bit.

#include "geometry/AngleKernel.h"
#include "geometry/Coordinates.h"
#include "geometry/Degrees.h"
#include "geometry/FrameKernel.h"
#include "geometry/FrameRows.h"
#include "geometry/FrameTwin.h"
#include "geometry/PrincipalAxis.h"
#include "geometry/Quad.h"
#include "geometry/VectorKernel.h"
#include "geometry/WideFrame.h"
#include "geometry/WideRows.h"
#include "support/SameBits.h"
#include "support/TestRandom.h"

#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>

namespace Orvo {
namespace {

using Testing::AllTypes;
using Testing::DrawTwin;
using Testing::ProductTwin;
using Testing::SameBits;
using Testing::TestRandom;
using Testing::Twin;
using Testing::Type;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

constexpr ProductRule AffineRules[] = {
    ProductRule::Left,       ProductRule::Right,     ProductRule::Turn,  ProductRule::RightTurned,
    ProductRule::RightMoved, ProductRule::LeftMoved, ProductRule::Affine};

// Any number: special ones of all sorts among ordinary ones.
double DrawAny(TestRandom& random) {
  static const double special[] = {0.0,   -0.0,   1.0,      -1.0,      Infinity,   -Infinity,
                                   1e308, -1e308, 5e-324,   -1e-310,   NotANumber, 1e-160,
                                   1e150, 0.1,    -0.00001, 1.0 / 3.0, 2.0,        -0.5};
  if (random.Chance(0.3)) {
    return special[random.Integer(0, static_cast<int>(std::size(special)) - 1)];
  }
  return random.Chance(0.1) ? std::ldexp(random.Real(-1.0, 1.0), random.Integer(-1000, 1000))
                            : random.Real(-10.0, 10.0);
}

struct alignas(32) Frame16 {
  double m[16];
};

Frame16 DrawFrame(TestRandom& random) {
  Frame16 frame;
  const bool isOrdinary = random.Chance(0.5);
  for (double& element : frame.m) {
    element = isOrdinary ? random.Real(-10.0, 10.0) : DrawAny(random);
  }
  return frame;
}

// A frame as products leave it: the fourth row is exactly (0, 0, 0, 1).
Frame16 WithExactFourthRow(Frame16 frame) {
  frame.m[3] = frame.m[7] = frame.m[11] = 0.0;
  frame.m[15] = 1.0;
  return frame;
}

#ifdef ORVO_WIDE

// The two ways to a product with whole registers: by columns and by rows.
ORVO_WIDE void MultiplyByColumns(ProductRule rule, const Frame16& a, const Frame16& b,
                                 double* product) {
  StoreWide(MultiplyFrameWide(rule, LoadWide(a.m), b.m), product);
}

ORVO_WIDE void MultiplyByRows(ProductRule rule, const Frame16& a, const Frame16& b,
                              double* product) {
  StoreWide(FrameOfRows(MultiplyRowsWide(rule, a.m, RowsOfFrame(b.m))), product);
}

// Compares both ways with the kernel. Frames of callers stand at any multiple of 16 bytes.
testing::AssertionResult MultipliesAsKernel(ProductRule rule, const Frame16& a, const Frame16& b) {
  Frame16 expected;
  MultiplyFrames(rule, a.m, b.m, expected.m);
  for (const auto multiply : {MultiplyByColumns, MultiplyByRows}) {
    alignas(32) double product[20] = {};
    product[1] = 4.0;
    product[18] = 5.0;
    multiply(rule, a, b, product + 2);
    const testing::AssertionResult result = SameBits(product + 2, expected.m, 16, "the product's");
    if (!result) {
      return result;
    }
    if (product[1] != 4.0 || product[18] != 5.0) {
      return testing::AssertionFailure() << "written outside the product";
    }
  }
  return testing::AssertionSuccess();
}

TEST(WideFrame, MultipliesAsTheKernelByAllRulesBitForBit) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const ProductRule rule : AffineRules) {
    SCOPED_TRACE(static_cast<int>(rule));
    for (int i = 0; i < 4000; ++i) {
      const Frame16 a = WithExactFourthRow(DrawFrame(random));
      const Frame16 b = WithExactFourthRow(DrawFrame(random));
      ASSERT_TRUE(MultipliesAsKernel(rule, a, b)) << i;
    }
  }
}

// A turn about a principal axis, with any origin.
Frame16 DrawTurn(TestRandom& random, Direction axis, double s, double c) {
  Frame16 turn;
  CopyFrame(IdentityFrame, turn.m);
  const Directions directions = PrincipalTurn(axis, s, c);
  StoreLanes(turn.m, WithW(directions.u, 0.0));
  StoreLanes(turn.m + 4, WithW(directions.v, 0.0));
  StoreLanes(turn.m + 8, WithW(directions.w, 0.0));
  for (int i = 12; i < 15; ++i) {
    turn.m[i] = DrawAny(random);
  }
  return turn;
}

// The same by any cosine and sine.
Frame16 DrawTurn(TestRandom& random, Direction axis) {
  const double c = random.Chance(0.5) ? random.Real(-1.0, 1.0) : DrawAny(random);
  const double s = random.Chance(0.5) ? random.Real(-1.0, 1.0) : DrawAny(random);
  return DrawTurn(random, axis, s, c);
}

TEST(WideFrame, TurnsAsTheKernelMultipliesBitForBit) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const ProductRule rules[] = {ProductRule::TurnedX, ProductRule::TurnedY, ProductRule::TurnedZ};
  for (const Direction axis : {X, Y, Z}) {
    SCOPED_TRACE(static_cast<int>(axis));
    for (int i = 0; i < 4000; ++i) {
      const Frame16 other = WithExactFourthRow(DrawFrame(random));
      const Frame16 turn = DrawTurn(random, axis);
      // The turn stands on the right where columns are multiplied, and on the left of rows.
      Frame16 expected;
      Frame16 product;
      MultiplyFrames(ProductRule::Affine, other.m, turn.m, expected.m);
      MultiplyByColumns(rules[axis], other, turn, product.m);
      ASSERT_TRUE(SameBits(product.m, expected.m, 16, "the columns'")) << i;
      MultiplyFrames(ProductRule::Affine, turn.m, other.m, expected.m);
      MultiplyByRows(rules[axis], turn, other, product.m);
      ASSERT_TRUE(SameBits(product.m, expected.m, 16, "the rows'")) << i;
    }
  }
}

TEST(WideFrame, ShiftsAsTheKernelMultipliesBitForBit) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 4000; ++i) {
    Frame16 shifts[2];
    for (Frame16& shift : shifts) {
      CopyFrame(IdentityFrame, shift.m);
      for (int k = 12; k < 15; ++k) {
        shift.m[k] = DrawAny(random);
      }
    }
    ASSERT_TRUE(MultipliesAsKernel(ProductRule::Shifted, shifts[0], shifts[1])) << i;
  }
}

ORVO_WIDE void TransposeColumns(const Frame16& frame, double* transposed) {
  const WideFrame m = LoadWide(frame.m);
  const WideTriple columns = TransposeWide({m.u, m.v, m.w});
  StoreWide({columns.x, columns.y, columns.z, m.t}, transposed);
}

TEST(WideFrame, TransposesAsTheKernel) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 100; ++i) {
    const Frame16 frame = DrawFrame(random);
    Frame16 transposed;
    TransposeColumns(frame, transposed.m);
    const Directions expected = Transpose(LoadDirections(frame.m));
    Frame16 kernel;
    StoreLanes(kernel.m, expected.u);
    StoreLanes(kernel.m + 4, expected.v);
    StoreLanes(kernel.m + 8, expected.w);
    ASSERT_TRUE(SameBits(transposed.m, kernel.m, 12, "the directions'")) << i;
  }
}

// With numbers where the origins of the rows were: the origin stands by itself.
ORVO_WIDE StoredRows Store(const Frame16& frame) {
  StoredRows stored{};
  const WideRows rows = RowsOfFrame(frame.m);
  StoreRowsWide(rows, stored.rows);
  StoreLanes(stored.origin, OriginOfRows(rows));
  stored.rows[0] = 1e10;
  stored.rows[4] = NotANumber;
  stored.rows[8] = -7.0;
  stored.origin[3] = NotANumber;
  return stored;
}

ORVO_WIDE void StoreAndTakeBack(const Frame16& frame, double* same) {
  StoreWide(FrameOfRows(Store(frame)), same);
}

TEST(WideFrame, ComesBackFromStoredRows) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 1000; ++i) {
    const Frame16 frame = WithExactFourthRow(DrawFrame(random));
    Frame16 same;
    StoreAndTakeBack(frame, same.m);
    ASSERT_TRUE(SameBits(same.m, frame.m, 16, "the frame's")) << i;
  }
}

ORVO_WIDE void ImagesAsFrame(const Frame16& frame, double* images) {
  const WideFrame m = LoadWide(frame.m);
  const WideTriple found = ImagesOfUnitAxes({m.u, m.v, m.w});
  StoreWide({found.x, found.y, found.z, m.t}, images);
}

TEST(WideFrame, TurnsUnitAxesAsTheKernel) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 4000; ++i) {
    const Frame16 frame = DrawFrame(random);
    const Directions expected = ImageOfDirections(LoadDirections(frame.m), IdentityFrame);
    Frame16 kernel;
    StoreLanes(kernel.m, expected.u);
    StoreLanes(kernel.m + 4, expected.v);
    StoreLanes(kernel.m + 8, expected.w);
    Frame16 images;
    ImagesAsFrame(frame, images.m);
    ASSERT_TRUE(SameBits(images.m, kernel.m, 12, "the directions'")) << i;
  }
}

ORVO_WIDE void TurnByRows(ProductRule rule, const Frame16& a, const Frame16& b, double* product) {
  StoreWide(FrameOfRows(TurnRowsWide(rule, a.m, RowsOfFrame(b.m))), product);
}

// A sine and a cosine that are neither 0 nor no number leave a copy of the turn's directions.
TEST(WideFrame, TurnsShiftsIntoCopiesOfTheTurn) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  const ProductRule rules[] = {ProductRule::TurnedX, ProductRule::TurnedY, ProductRule::TurnedZ};
  const double rare[] = {1.0, -1.0, 5e-324, -5e-324, 1e-200, -1e-17};
  const auto draw = [&random, &rare] {
    return random.Chance(0.3) ? rare[random.Integer(0, 5)] : random.Real(-1.0, 1.0);
  };
  for (const Direction axis : {X, Y, Z}) {
    SCOPED_TRACE(static_cast<int>(axis));
    for (int i = 0; i < 4000; ++i) {
      const double sine = draw();
      const Frame16 turn = DrawTurn(random, axis, sine, draw());
      Frame16 shift;
      CopyFrame(IdentityFrame, shift.m);
      for (int k = 12; k < 15; ++k) {
        shift.m[k] = DrawAny(random);
      }
      Frame16 expected;
      Frame16 product;
      MultiplyFrames(ProductRule::LeftMoved, turn.m, shift.m, expected.m);
      TurnByRows(rules[axis], turn, shift, product.m);
      ASSERT_TRUE(SameBits(product.m, expected.m, 16, "the product's")) << i;
    }
  }
}

ORVO_WIDE void InvertByRows(const Frame16& frame, double* inverse) {
  const WideInverse found = InvertStored(Store(frame));
  StoreWide(JoinColumns(found.directions, found.origin), inverse);
}

TEST(WideFrame, InvertsStoredRowsAsTheKernel) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 4000; ++i) {
    Frame16 frame = WithExactFourthRow(DrawFrame(random));
    if (random.Chance(0.2)) {
      // Products that are all -0 tell whether 0 is added to their sum.
      for (int k = 0; k < 15; ++k) {
        frame.m[k] = k < 12 ? std::fabs(frame.m[k]) : -0.0;
      }
      frame = WithExactFourthRow(frame);
    }
    Frame16 inverse;
    InvertByRows(frame, inverse.m);
    Frame16 expected;
    InvertRigid(frame.m, Matrix43::RotationTranslation, expected.m);
    ASSERT_TRUE(SameBits(inverse.m, expected.m, 16, "the inverse's")) << i;
  }
}

ORVO_WIDE void CopyWide(const double* frame, double* copy) { StoreWide(LoadWide(frame), copy); }

TEST(WideFrame, ComesBackWithEveryBit) {
  if (!HasWideLanes()) {
    return;
  }
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 1000; ++i) {
    double frame[16];
    for (double& element : frame) {
      const std::uint64_t bits = random.Bits();
      std::memcpy(&element, &bits, sizeof element);
    }
    double copy[16];
    CopyWide(frame, copy);
    for (int k = 0; k < 16; ++k) {
      ASSERT_EQ(std::bit_cast<std::uint64_t>(frame[k]), std::bit_cast<std::uint64_t>(copy[k]));
    }
  }
}

#endif

TEST(FrameKernel, MultipliesByItsRuleAsTheScalarFormulaForAllPairsOfKinds) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const Type typeA : AllTypes) {
    for (const Type typeB : AllTypes) {
      SCOPED_TRACE(testing::Message() << typeA << " * " << typeB);
      for (int i = 0; i < 200; ++i) {
        alignas(16) Twin a = DrawTwin(random, typeA);
        alignas(16) Twin b = DrawTwin(random, typeB);
        const Twin expected = ProductTwin(a, b);
        Frame16 product;
        ASSERT_EQ(MultiplyFrames(a.m, typeA, b.m, typeB, product.m), expected.type);
        ASSERT_TRUE(SameBits(product.m, expected.m, 16, "the product's"));
      }
    }
  }
}

// Where the right factor's fourth row is exact, as rows have it.
TEST(FrameRows, MultiplyAsTheKernelByAllRulesBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (const ProductRule rule : AffineRules) {
    SCOPED_TRACE(static_cast<int>(rule));
    for (int i = 0; i < 4000; ++i) {
      const Frame16 a = WithExactFourthRow(DrawFrame(random));
      const Frame16 b = WithExactFourthRow(DrawFrame(random));
      Frame16 expected;
      MultiplyFrames(rule, a.m, b.m, expected.m);
      Frame16 product;
      StoreRows(MultiplyRows(rule, a.m, LoadRows(b.m)), product.m);
      ASSERT_TRUE(SameBits(product.m, expected.m, 16, "the product's")) << i;
    }
  }
}

TEST(FrameRows, ComeBackAsTheyWere) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 1000; ++i) {
    const Frame16 frame = DrawFrame(random);
    Frame16 back;
    StoreRows(LoadRows(frame.m), back.m);
    ASSERT_TRUE(SameBits(back.m, WithExactFourthRow(frame).m, 16, "the frame's"));
  }
}

Quad QuadOf(const double (&n)[4]) { return Quad(n[0], n[1], n[2], n[3]); }

struct alignas(16) Numbers {
  double n[4];
};

Numbers DrawNumbers(TestRandom& random) {
  return {{DrawAny(random), DrawAny(random), DrawAny(random), DrawAny(random)}};
}

// Compares four numbers with what a formula gives for each place alone.
template <typename Formula>
testing::AssertionResult EachIs(const Quad& quad, Formula formula) {
  Numbers actual;
  quad.Store(actual.n);
  Numbers expected;
  for (int i = 0; i < 4; ++i) {
    expected.n[i] = formula(i);
  }
  return SameBits(actual.n, expected.n, 4, "the four numbers'");
}

TEST(Quad, ComputesEachNumberAsAlone) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 5000; ++i) {
    const Numbers a = DrawNumbers(random);
    const Numbers b = DrawNumbers(random);
    const Quad qa = QuadOf(a.n);
    const Quad qb = QuadOf(b.n);
    ASSERT_TRUE(EachIs(qa, [&](int k) { return a.n[k]; }));
    ASSERT_TRUE(EachIs(Quad(a.n[2]), [&](int) { return a.n[2]; }));
    ASSERT_TRUE(EachIs(Quad(), [](int) { return 0.0; }));
    ASSERT_TRUE(EachIs(Quad::Join(qa, qb), [&](int k) { return k < 2 ? a.n[k] : b.n[k]; }));
    ASSERT_TRUE(EachIs(qa + qb, [&](int k) { return a.n[k] + b.n[k]; }));
    ASSERT_TRUE(EachIs(qa - qb, [&](int k) { return a.n[k] - b.n[k]; }));
    ASSERT_TRUE(EachIs(qa * qb, [&](int k) { return a.n[k] * b.n[k]; }));
    ASSERT_TRUE(EachIs(qa / qb, [&](int k) { return a.n[k] / b.n[k]; }));
    ASSERT_TRUE(EachIs(Sqrt(qa), [&](int k) { return std::sqrt(a.n[k]); }));
    ASSERT_TRUE(EachIs(Abs(qa), [&](int k) { return std::fabs(a.n[k]); }));
    ASSERT_TRUE(EachIs(Clamp(qa, -1.0, 1.0), [&](int k) { return std::clamp(a.n[k], -1.0, 1.0); }));
    ASSERT_TRUE(EachIs(NegateWhereNegative(qa, qb),
                       [&](int k) { return b.n[k] < 0.0 ? -a.n[k] : a.n[k]; }));
    ASSERT_TRUE(EachIs(WhereLarger(qa, qb, Quad(7.0), qa),
                       [&](int k) { return a.n[k] > b.n[k] ? 7.0 : a.n[k]; }));
    bool isAnyBelow = false;
    bool areAllInOrder = true;
    for (int k = 0; k < 4; ++k) {
      isAnyBelow = isAnyBelow || a.n[k] < b.n[0];
      areAllInOrder = areAllInOrder && a.n[k] <= b.n[k];
    }
    ASSERT_EQ(IsAnyBelow(qa, b.n[0]), isAnyBelow);
    ASSERT_EQ(AreAllInOrder(qa, qb), areAllInOrder);
    ASSERT_TRUE(EachIs(DegreesFromRadians(qa), [&](int k) { return DegreesFromRadians(a.n[k]); }));
    ASSERT_TRUE(EachIs(RadiansFromDegrees(qa), [&](int k) { return RadiansFromDegrees(a.n[k]); }));
  }
}

// Any place decides alone: random draws seldom have all the others in order.
TEST(Quad, ComparesEveryPlace) {
  for (int place = 0; place < 4; ++place) {
    for (const double odd : {-0.5, NotANumber}) {
      Numbers a = {{1.0, 2.0, 3.0, 4.0}};
      const Quad bounds(1.0, 2.0, 3.0, 4.0);
      EXPECT_TRUE(AreAllInOrder(QuadOf(a.n), bounds)) << "equal ones are in order";
      EXPECT_FALSE(IsAnyBelow(QuadOf(a.n), 1.0)) << "none is below";
      a.n[place] = odd;
      EXPECT_EQ(IsAnyBelow(QuadOf(a.n), 1.0), odd < 1.0) << place;
      EXPECT_EQ(AreAllInOrder(QuadOf(a.n), bounds), odd < 1.0) << place;
      EXPECT_FALSE(AreAllInOrder(bounds, QuadOf(a.n))) << place;
    }
  }
}

TEST(Coordinates, AreTheFormulasOfVectorsBitForBit) {
  TestRandom random;
  SCOPED_TRACE(random.Trace());
  for (int i = 0; i < 1000; ++i) {
    Vector3D a[4];
    Vector3D b[4];
    Coordinates1 ca[4];
    Coordinates1 cb[4];
    for (int k = 0; k < 4; ++k) {
      a[k] = Vector3D(DrawAny(random), DrawAny(random), DrawAny(random));
      b[k] = Vector3D(DrawAny(random), DrawAny(random), DrawAny(random));
      ca[k] = LoadCoordinates(a[k]);
      cb[k] = LoadCoordinates(b[k]);
    }
    const double factor = DrawAny(random);
    const Coordinates4 a4 = Gather(ca[0], ca[1], ca[2], ca[3]);
    const Coordinates4 b4 = Gather(cb[0], cb[1], cb[2], cb[3]);
    // One vector and four at once, each against the kernel.
    const auto areSame = [](const Coordinates1(&one)[4], const Coordinates4& four,
                            const Vector3D(&expected)[4]) {
      const Quad* const parts[3] = {&four.x, &four.y, &four.z};
      for (int axis = 0; axis < 3; ++axis) {
        testing::AssertionResult result =
            EachIs(*parts[axis], [&](int k) { return expected[k][axis]; });
        if (!result) {
          return result;
        }
        for (int k = 0; k < 4; ++k) {
          const double* const numbers[3] = {&one[k].x, &one[k].y, &one[k].z};
          result = SameBits(*numbers[axis], expected[k][axis]);
          if (!result) {
            return result;
          }
        }
      }
      return testing::AssertionSuccess();
    };
    Coordinates1 one[4];
    Vector3D expected[4];
    const auto forEach = [&](auto formula, auto kernel) {
      for (int k = 0; k < 4; ++k) {
        one[k] = formula(ca[k], cb[k]);
        expected[k] = kernel(a[k], b[k]);
      }
    };
    forEach([](const auto& p, const auto& q) { return Cross(p, q); },
            [](const double* p, const double* q) { return Cross(p, q); });
    ASSERT_TRUE(areSame(one, Cross(a4, b4), expected)) << "Cross";
    forEach([](const auto& p, const auto& q) { return Plus(p, q); },
            [](const double* p, const double* q) { return Plus(p, q); });
    ASSERT_TRUE(areSame(one, Plus(a4, b4), expected)) << "Plus";
    forEach([](const auto& p, const auto& q) { return Minus(p, q); },
            [](const double* p, const double* q) { return Minus(p, q); });
    ASSERT_TRUE(areSame(one, Minus(a4, b4), expected)) << "Minus";
    forEach([&](const auto& p, const auto&) { return Times(p, factor); },
            [&](const double* p, const double*) { return Times(p, factor); });
    ASSERT_TRUE(areSame(one, Times(a4, Quad(factor)), expected)) << "Times";
    forEach([&](const auto& p, const auto&) { return DividedBy(p, factor); },
            [&](const double* p, const double*) {
              return Vector3D(p[0] / factor, p[1] / factor, p[2] / factor);
            });
    ASSERT_TRUE(areSame(one, DividedBy(a4, Quad(factor)), expected)) << "DividedBy";
    const Coordinates4 joined = Join(a4, b4);
    for (int k = 0; k < 4; ++k) {
      one[k] = k < 2 ? ca[k] : cb[k];
      expected[k] = k < 2 ? a[k] : b[k];
    }
    ASSERT_TRUE(areSame(one, joined, expected)) << "Join";
    ASSERT_TRUE(EachIs(Dot(a4, b4), [&](int k) { return Dot(a[k], b[k]); }));
    for (int k = 0; k < 4; ++k) {
      ASSERT_TRUE(SameBits(Dot(ca[k], cb[k]), Dot(a[k], b[k])));
    }
  }
}

}  // namespace
}  // namespace Orvo
