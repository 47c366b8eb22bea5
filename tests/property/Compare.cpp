#include "property/Compare.h"

#include <Orvo/Kin/Register.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace Orvo::Property {
namespace {

using Reference::Kind;

bool SameDouble(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) {
    return std::isnan(a) && std::isnan(b);
  }
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool SameTriple(const Vector3D& v, double x, double y, double z) {
  return SameDouble(v[0], x) && SameDouble(v[1], y) && SameDouble(v[2], z);
}

}  // namespace

Vector3D ToOrvo(const Reference::Vector& v) {
  Vector3D out(v.x, v.y, v.z);
  out[3] = v.w;
  return out;
}

Matrix43 ToOrvo(const Reference::Frame& f) {
  Matrix43 out;
  switch (f.kind) {
    case Kind::General: {
      const double scaled[16] = {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1};
      out = scaled;
      break;
    }
    case Kind::Identity:
      break;
    case Kind::Rotation:
      out.SetUVW(AxisX, AxisY, AxisZ);
      break;
    case Kind::Translation:
      out.SetTrans(Vector3D(1, 2, 3));
      break;
    case Kind::RotationTranslation:
      out.SetUVWT(AxisX, AxisY, AxisZ, NullVector);
      break;
    case Kind::Projective: {
      const double projective[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2};
      out = projective;
      break;
    }
  }
  std::memcpy(static_cast<double*>(out), f.m, sizeof f.m);
  return out;
}

Kin::MachinePosition ToOrvo(const Reference::Position& p) {
  Kin::MachinePosition out;
  out.Alloc(Kin::Register(p.Size()));
  for (int i = 0; i < p.Size(); ++i) {
    out[Kin::Register(i)] = p[i];
  }
  return out;
}

Reference::Kind KindOf(const Matrix43& frame) {
  // A singular block without zeros: its general inverse is the identity, its transpose is not.
  const double values[16] = {2, 3, 5, 0, 7, 11, 13, 0, 9, 14, 18, 0, 17, 19, 23, 4};
  Matrix43 probe(frame);
  std::memcpy(static_cast<double*>(probe), values, sizeof values);
  const Vector3D image = probe.ApplyToPoint(Vector3D(1, 1, 1));
  if (SameTriple(image, 1, 1, 1)) {
    return Kind::Identity;
  }
  if (SameTriple(image, 18, 20, 24)) {
    return Kind::Translation;
  }
  if (SameTriple(image, 18, 28, 36)) {
    return Kind::Rotation;
  }
  if (SameTriple(image, 35.0 / 4.0, 47.0 / 4.0, 59.0 / 4.0)) {
    return Kind::Projective;
  }
  if (!SameTriple(image, 35, 47, 59)) {
    ADD_FAILURE() << "a frame has no kind at all";
  }
  const Matrix43 inverse = probe.Inverse();
  return static_cast<const double*>(inverse)[1] == 0.0 ? Kind::General : Kind::RotationTranslation;
}

std::string Text(double value) {
  char buffer[80];
  std::snprintf(buffer, sizeof buffer, "%.17g (%a)", value, value);
  return buffer;
}

std::string Text(const Reference::Vector& v) {
  return "(" + Text(v.x) + ", " + Text(v.y) + ", " + Text(v.z) + ", w " + Text(v.w) + ")";
}

std::string Text(const Reference::Frame& f) {
  std::string out = "kind " + std::to_string(static_cast<int>(f.kind)) + " {";
  for (int i = 0; i < 16; ++i) {
    out += (i % 4 == 0 ? "\n    " : ", ") + Text(f.m[i]);
  }
  return out + "}";
}

std::string Text(const Reference::Position& p) {
  std::string out = "[";
  for (int i = 0; i < p.Size(); ++i) {
    out += (i == 0 ? "" : ", ") + Text(p[i]);
  }
  return out + "]";
}

::testing::AssertionResult SameBits(double actual, double expected) {
  if (SameDouble(actual, expected)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << "got " << Text(actual) << ", expected " << Text(expected);
}

::testing::AssertionResult SameBits(const Vector3D& actual, const Reference::Vector& expected) {
  const Reference::Vector got = {actual[0], actual[1], actual[2], actual[3]};
  if (SameDouble(got.x, expected.x) && SameDouble(got.y, expected.y) &&
      SameDouble(got.z, expected.z) && SameDouble(got.w, expected.w)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << "got " << Text(got) << ", expected " << Text(expected);
}

::testing::AssertionResult SameBits(const Matrix43& actual, const Reference::Frame& expected) {
  const double* elements = actual;
  bool same = true;
  for (int i = 0; i < 16; ++i) {
    same = same && SameDouble(elements[i], expected.m[i]);
  }
  const Kind kind = KindOf(actual);
  if (same && kind == expected.kind) {
    return ::testing::AssertionSuccess();
  }
  Reference::Frame got;
  std::memcpy(got.m, elements, sizeof got.m);
  got.kind = kind;
  return ::testing::AssertionFailure() << "got " << Text(got) << "\nexpected " << Text(expected);
}

::testing::AssertionResult SameBits(const Kin::MachinePosition& actual,
                                    const Reference::Position& expected) {
  bool same = actual.Size() == expected.values.size();
  for (int i = 0; same && i < expected.Size(); ++i) {
    same = SameDouble(actual[Kin::Register(i)], expected[i]);
  }
  if (same) {
    return ::testing::AssertionSuccess();
  }
  Reference::Position got;
  for (int i = 0; i < static_cast<int>(actual.Size()); ++i) {
    got.values.push_back(actual[Kin::Register(i)]);
  }
  return ::testing::AssertionFailure() << "got " << Text(got) << "\nexpected " << Text(expected);
}

::testing::AssertionResult SameBits(const Kin::RotariesSolution& actual,
                                    const Reference::Rotaries& expected) {
  const double got[4] = {actual.Alpha1.GetRadian(), actual.Beta1.GetRadian(),
                         actual.Alpha2.GetRadian(), actual.Beta2.GetRadian()};
  const double wanted[4] = {expected.alpha1, expected.beta1, expected.alpha2, expected.beta2};
  bool same = actual.Count == expected.count && actual.FreeRegister == expected.freeRegister;
  for (int i = 0; i < 4; ++i) {
    same = same && SameDouble(got[i], wanted[i]);
  }
  if (same) {
    return ::testing::AssertionSuccess();
  }
  ::testing::AssertionResult result = ::testing::AssertionFailure();
  result << "got count " << actual.Count << ", free " << actual.FreeRegister << "; expected count "
         << expected.count << ", free " << expected.freeRegister;
  for (int i = 0; i < 4; ++i) {
    result << "\n  got " << Text(got[i]) << ", expected " << Text(wanted[i]);
  }
  return result;
}

}  // namespace Orvo::Property
