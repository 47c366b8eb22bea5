// Frames against the plain twin, bit for bit and kind for kind.

#include "property/Compare.h"
#include "property/Draw.h"
#include "property/RandomGeometry.h"
#include "property/reference/Frame.h"

#include <Orvo/Angle.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace Orvo::Property {
namespace {

using Reference::Frame;
using Reference::Kind;
using Reference::Vector;

Frame Drawn(Draw& draw) { return draw.Chance(0.5) ? MadeFrame(draw) : AnyFrame(draw); }

Vector DrawnVector(Draw& draw) {
  return draw.Chance(0.3) ? AnyVector(draw) : draw.Chance(0.5) ? AnyDirection(draw) : Point(draw);
}

TEST(FrameProperty, AppliesAndMultipliesAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    const Frame a = Drawn(draw);
    const Frame b = Drawn(draw);
    const Vector p = DrawnVector(draw);
    Matrix43 f = ToOrvo(a);
    const Matrix43 g = ToOrvo(b);
    EXPECT_TRUE(SameBits(f, a));
    EXPECT_TRUE(SameBits(f.ApplyToPoint(ToOrvo(p)), a.ApplyToPoint(p))) << Text(a) << Text(p);
    EXPECT_TRUE(SameBits(f * ToOrvo(p), a.ApplyToPoint(p))) << Text(a) << Text(p);
    EXPECT_TRUE(SameBits(f.ApplyToVector3D(ToOrvo(p)), a.ApplyToVector(p))) << Text(a) << Text(p);
    EXPECT_TRUE(SameBits(f * g, a.Times(b))) << Text(a) << Text(b);
    EXPECT_TRUE(SameBits(f.GetU(), a.Column(0)));
    EXPECT_TRUE(SameBits(f.GetV(), a.Column(1)));
    EXPECT_TRUE(SameBits(f.GetW(), a.Column(2)));
    EXPECT_TRUE(SameBits(f.GetTrans(), a.Column(3)));
    EXPECT_TRUE(SameBits(f, a)) << "an operand changed";
  });
}

TEST(FrameProperty, AnswersAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    const Frame a = Drawn(draw);
    Frame b = draw.Chance(0.5) ? a : Drawn(draw);
    if (draw.Chance(0.5)) {
      b.m[draw.Int(0, 15)] += draw.Uniform(-2e-4, 2e-4);
    }
    const double tol = draw.Chance(0.5) ? 0.0 : draw.Uniform(0.0, 2e-4);
    const Matrix43 f = ToOrvo(a);
    const Matrix43 g = ToOrvo(b);
    EXPECT_EQ(f.IsIdentity(), a.IsIdentity()) << Text(a);
    EXPECT_EQ(f.IsTranslation(), a.IsTranslation()) << Text(a);
    EXPECT_EQ(f.IsRotary(), a.IsRotary()) << Text(a);
    EXPECT_EQ(f.IsSame(g, tol), a.IsSame(b, tol)) << Text(a) << Text(b) << tol;
    EXPECT_EQ(f == g, a.Equal(b) ? 1 : 0) << Text(a) << Text(b);
    Matrix43 target = g;
    Frame expected = b;
    target = f;
    expected = a;
    EXPECT_TRUE(SameBits(target, expected)) << "assigned " << Text(a) << " to " << Text(b);
    if (draw.Chance(0.05)) {
      std::wstring text = L"before";
      f.GetStringDebug(&text);
      EXPECT_EQ(text, a.DebugText());
    }
  });
}

TEST(FrameProperty, InvertsRigidKindsAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    const Frame a = Drawn(draw);
    Matrix43 f = ToOrvo(a);
    EXPECT_TRUE(SameBits(f.HInverse(), a.HInverse())) << Text(a);
    if (a.kind != Kind::General && a.kind != Kind::Projective) {
      EXPECT_TRUE(SameBits(f.Inverse(), a.Inverse())) << Text(a);
    }
    EXPECT_TRUE(SameBits(f, a)) << "the operand changed";
  });
}

// The largest sum of products that any order of the determinant's terms can meet.
double DeterminantOfSizes(const Frame& f) {
  Frame sizes = f;
  for (double& element : sizes.m) {
    element = std::fabs(element);
  }
  double sum = 0.0;
  const int size = f.kind == Kind::Projective ? 4 : 3;
  int order[4] = {0, 1, 2, 3};
  do {
    double product = 1.0;
    for (int c = 0; c < size; ++c) {
      product *= sizes.m[4 * c + order[c]];
    }
    sum += product;
  } while (std::next_permutation(order, order + size));
  return sum;
}

// The order of the terms in a cofactor is free, so the inverses agree within rounding only, and
// are compared where rounding can't decide whether the frame is singular.
TEST(FrameProperty, InvertsGeneralAndProjectiveKindsAsTheTwinDoes) {
  int compared = 0;
  ForCases(500000, [&compared](Draw& draw) {
    Frame a = MadeFrame(draw);
    if (draw.Chance(0.5)) {
      double m[16];
      for (double& element : m) {
        element = draw.Uniform(-2.0, 2.0);
      }
      const bool projective = draw.Chance(0.5);
      if (!projective) {
        m[3] = m[7] = m[11] = 0.0;
        m[15] = 1.0;
      }
      if (draw.Chance(0.2)) {
        const double scale = std::pow(1e-20, 1.0 / 3.0) * draw.Uniform(0.5, 2.0);
        for (int i = 0; i < 12; ++i) {
          m[i] *= scale;
        }
      }
      a.Load(m);
    }
    if (a.kind != Kind::General && a.kind != Kind::Projective) {
      return;
    }
    for (const double element : a.m) {
      if (!(std::fabs(element) < 1e6) || (element != 0.0 && std::fabs(element) < 1e-9)) {
        return;
      }
    }
    const double det = a.Determinant();
    const double rounding = 1e-13 * DeterminantOfSizes(a);
    const bool isGeneral = a.kind == Kind::General;
    const double limit = isGeneral ? 1e-20 : 0.0;
    if (!(std::fabs(det) > limit + rounding) && !(isGeneral && std::fabs(det) < limit - rounding) &&
        !(rounding == 0.0)) {
      return;
    }
    Matrix43 f = ToOrvo(a);
    const Matrix43 inverse = f.Inverse();
    const Frame expected = a.Inverse();
    EXPECT_EQ(KindOf(inverse), expected.kind) << Text(a);
    if (expected.kind == Kind::Identity) {
      EXPECT_TRUE(SameBits(inverse, expected)) << Text(a);
      return;
    }
    const double* elements = inverse;
    double largest = 0.0;
    for (const double element : expected.m) {
      largest = std::max(largest, std::fabs(element));
    }
    const double tol = 1e-9 * (1.0 + largest) * (rounding * 1e13 / std::fabs(det));
    for (int i = 0; i < 16; ++i) {
      EXPECT_NEAR(elements[i], expected.m[i], tol) << "element " << i << " of " << Text(a);
    }
    if (isGeneral) {
      EXPECT_TRUE(SameBits(elements[3], 0.0));
      EXPECT_TRUE(SameBits(elements[7], 0.0));
      EXPECT_TRUE(SameBits(elements[11], 0.0));
      EXPECT_TRUE(SameBits(elements[15], 1.0));
    }
    ++compared;
  });
  EXPECT_GT(compared, 0);
}

TEST(FrameProperty, RotatesAsTheTwinDoes) {
  ForCases(500000, [](Draw& draw) {
    const Frame before = Drawn(draw);
    const double radians =
        draw.Chance(0.8) ? Reference::DegreesToRadians(AngleDeg(draw)) : AnyNumber(draw);
    Matrix43 f = ToOrvo(before);
    Frame a = before;
    const int direction = draw.Int(-1, 3);
    f.SetRotation(static_cast<Direction>(direction), Angle(radians));
    a.SetRotation(direction, radians);
    EXPECT_TRUE(SameBits(f, a)) << direction << " " << Text(radians) << Text(before);
    f = ToOrvo(before);
    a = before;
    const Vector axis = DrawnVector(draw);
    f.SetRotation(ToOrvo(axis), Angle(radians));
    a.SetRotation(axis, radians);
    EXPECT_TRUE(SameBits(f, a)) << Text(axis) << " " << Text(radians) << Text(before);
    f = ToOrvo(before);
    a = before;
    EXPECT_EQ(f.MakeAxisW(ToOrvo(axis)), a.MakeAxisW(axis)) << Text(axis);
    EXPECT_TRUE(SameBits(f, a)) << Text(axis) << Text(before);
  });
}

// A walk of changes and products: a kind that goes wrong shows in what follows.
TEST(FrameProperty, StaysWithTheTwinOverLongWalks) {
  ForCases(50000, [](Draw& draw) {
    Frame a = Drawn(draw);
    Matrix43 f = ToOrvo(a);
    std::string history = Text(a);
    for (int step = 0; step < 12; ++step) {
      const int what = draw.Int(0, 11);
      history += "\nstep " + std::to_string(what);
      const Vector u = DrawnVector(draw);
      const Vector v = DrawnVector(draw);
      const Vector w = DrawnVector(draw);
      const Vector t = DrawnVector(draw);
      const Frame other = Drawn(draw);
      const double radians = Reference::DegreesToRadians(AngleDeg(draw));
      switch (what) {
        case 0:
          f.SetIdentity();
          a.SetIdentity();
          break;
        case 1:
          f.SetUVW(ToOrvo(u), ToOrvo(v), ToOrvo(w));
          a.SetUVW(u, v, w);
          break;
        case 2:
          f.SetUVWT(ToOrvo(u), ToOrvo(v), ToOrvo(w), ToOrvo(t));
          a.SetUVWT(u, v, w, t);
          break;
        case 3:
          f.SetTUVW(ToOrvo(t), ToOrvo(u), ToOrvo(v), ToOrvo(w));
          a.SetUVWT(u, v, w, t);
          break;
        case 4:
          f.SetTrans(ToOrvo(t));
          a.SetTrans(t);
          break;
        case 5:
          f = ToOrvo(other);
          a = other;
          break;
        case 6: {
          const double* p = other.m;
          f = p;
          a.Load(p);
          break;
        }
        case 7:
          f.SetRotation(ToOrvo(u), Angle(radians));
          a.SetRotation(u, radians);
          break;
        case 8:
          f.SetRotation(static_cast<Direction>(step % 3), Angle(radians));
          a.SetRotation(step % 3, radians);
          break;
        case 9:
          f = f * ToOrvo(other);
          a = a.Times(other);
          break;
        case 10:
          f = ToOrvo(other) * f;
          a = other.Times(a);
          break;
        default:
          f = f.HInverse();
          a = a.HInverse();
          break;
      }
      ASSERT_TRUE(SameBits(f, a)) << history << "\nwith " << Text(u) << Text(v) << Text(w)
                                  << Text(t) << Text(other);
    }
  });
}

TEST(FrameProperty, LoadsLanesAsGeneral) {
  ForCases(50000, [](Draw& draw) {
    const Frame other = Drawn(draw);
    const Frame expected = Frame::FromLanes(other.m);
    const Matrix43 source = ToOrvo(other);
    EXPECT_TRUE(SameBits(Matrix43(source.Get_m128d()), expected)) << Text(other);
  });
}

}  // namespace
}  // namespace Orvo::Property
