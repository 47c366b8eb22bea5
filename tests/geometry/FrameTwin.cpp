#include "geometry/FrameTwin.h"

#include "geometry/FrameKernel.h"
#include "support/SameBits.h"

#include <Orvo/Vector3D.h>

#include <limits>

namespace Orvo::Testing {

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

Type TypeOf(const Matrix43& frame) { return FrameAccess::Type(frame); }

Twin TwinOf(const Matrix43& frame) {
  Twin twin;
  const double* elements = FrameAccess::Elements(frame);
  for (int i = 0; i < 16; ++i) {
    twin.m[i] = elements[i];
  }
  twin.type = TypeOf(frame);
  return twin;
}

Matrix43 FrameOf(const Twin& twin) {
  Matrix43 frame;
  switch (twin.type) {
    case Matrix43::General:
      frame = Matrix43(Matrix43().Get_m128d());
      break;
    case Matrix43::Identity:
      break;
    case Matrix43::Rotation:
      frame.SetUVW(AxisX, AxisY, AxisZ);
      break;
    case Matrix43::Translation:
      frame.SetTrans(NullVector);
      break;
    case Matrix43::RotationTranslation:
      frame.SetUVWT(AxisX, AxisY, AxisZ, NullVector);
      break;
    case Matrix43::Projective: {
      double numbers[16] = {};
      frame = numbers;
      break;
    }
  }
  double* raw = frame;
  for (int i = 0; i < 16; ++i) {
    raw[i] = twin.m[i];
  }
  return frame;
}

testing::AssertionResult IsTwin(const Matrix43& frame, const Twin& twin) {
  if (TypeOf(frame) != twin.type) {
    return testing::AssertionFailure()
           << "the kind is " << TypeOf(frame) << " and not " << twin.type;
  }
  return SameBits(FrameAccess::Elements(frame), twin.m, 16, "the frame's");
}

testing::AssertionResult HoldsElements(const Matrix43& frame, const double (&m)[16]) {
  return SameBits(FrameAccess::Elements(frame), m, 16, "the frame's");
}

Matrix43 Load(const double (&m)[16]) {
  Matrix43 frame;
  frame = static_cast<const double*>(m);
  return frame;
}

double DrawNumber(TestRandom& random) {
  switch (random.Integer(0, 15)) {
    case 0:
      return 0.0;
    case 1:
      return -0.0;
    case 2:
      return 1.0;
    case 3:
      return random.Real(-1.0, 1.0) * 1e200;
    case 4:
      return random.Chance(0.1) ? Infinity : -3.0;
    case 5:
      return random.Chance(0.1) ? NotANumber : 2.0;
    default:
      return random.Real(-10.0, 10.0);
  }
}

Twin DrawTwin(TestRandom& random, Type type) {
  Twin twin;
  for (double& element : twin.m) {
    element = DrawNumber(random);
  }
  twin.type = type;
  return twin;
}

double Combined(const double* m, int row, double x, double y, double z) {
  return Sum3(m[row] * x, m[4 + row] * y, m[8 + row] * z);
}

Twin ProductTwin(const Twin& a, const Twin& b) {
  const bool aIsRotation = a.type == Matrix43::Rotation;
  const bool aIsTranslation = a.type == Matrix43::Translation;
  if (a.type == Matrix43::Identity) {
    return b;
  }
  if (b.type == Matrix43::Identity) {
    return a;
  }
  Twin product;
  if (a.type == Matrix43::Projective || b.type == Matrix43::Projective) {
    product.type = Matrix43::Projective;
    for (int column = 0; column < 16; column += 4) {
      for (int row = 0; row < 4; ++row) {
        product.m[column + row] =
            Combined(a.m, row, b.m[column], b.m[column + 1], b.m[column + 2]) +
            a.m[12 + row] * b.m[column + 3];
      }
    }
    return product;
  }
  const bool copiesA =
      (aIsRotation || a.type == Matrix43::RotationTranslation) && b.type == Matrix43::Translation;
  const bool copiesB =
      aIsTranslation && (b.type == Matrix43::Rotation || b.type == Matrix43::RotationTranslation);
  for (int column = 0; column < 12; column += 4) {
    for (int row = 0; row < 3; ++row) {
      const int i = column + row;
      product.m[i] = copiesA   ? a.m[i]
                     : copiesB ? b.m[i]
                               : Combined(a.m, row, b.m[column], b.m[column + 1], b.m[column + 2]);
    }
  }
  for (int row = 0; row < 3; ++row) {
    double& origin = product.m[12 + row];
    if (aIsRotation && b.type == Matrix43::Rotation) {
      origin = 0.0;
    } else if (aIsTranslation && b.type == Matrix43::Rotation) {
      origin = a.m[12 + row];
    } else if (aIsTranslation && b.type == Matrix43::RotationTranslation) {
      origin = a.m[12 + row] + b.m[12 + row];
    } else {
      origin = Combined(a.m, row, b.m[12], b.m[13], b.m[14]) + a.m[12 + row];
    }
  }
  if (aIsRotation && b.type == Matrix43::Rotation) {
    product.type = Matrix43::Rotation;
  } else if (a.type == Matrix43::General || b.type == Matrix43::General) {
    product.type = Matrix43::General;
  } else {
    product.type = Matrix43::RotationTranslation;
  }
  return product;
}

Twin HInverseTwin(const Twin& f) {
  Twin inverse;
  inverse.type = f.type;
  const bool transposes = f.type == Matrix43::General || f.type == Matrix43::Rotation ||
                          f.type == Matrix43::RotationTranslation;
  if (transposes) {
    for (int column = 0; column < 3; ++column) {
      for (int row = 0; row < 3; ++row) {
        inverse.m[4 * column + row] = f.m[4 * row + column];
      }
    }
  }
  if (f.type == Matrix43::Identity || f.type == Matrix43::Rotation ||
      f.type == Matrix43::Projective) {
    return inverse;
  }
  for (int row = 0; row < 3; ++row) {
    const double image = f.type == Matrix43::Translation
                             ? f.m[12 + row] + 0.0
                             : Combined(inverse.m, row, f.m[12], f.m[13], f.m[14]) + 0.0;
    inverse.m[12 + row] = -image;
  }
  return inverse;
}

}  // namespace Orvo::Testing
