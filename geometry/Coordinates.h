#pragma once

#include "geometry/Quad.h"

namespace Orvo {

/// x, y and z of a vector in registers, or of four vectors at once where Number is a Quad. The
/// formulas are those of VectorKernel.h, number by number.
template <typename Number>
struct Coordinates {
  Number x;
  Number y;
  Number z;
};

using Coordinates1 = Coordinates<double>;
using Coordinates4 = Coordinates<Quad>;

inline Coordinates1 LoadCoordinates(const double* v) { return {v[0], v[1], v[2]}; }

/// Four vectors, each the same or not.
inline Coordinates4 Gather(const Coordinates1& a, const Coordinates1& b, const Coordinates1& c,
                           const Coordinates1& d) {
  return {Quad(a.x, b.x, c.x, d.x), Quad(a.y, b.y, c.y, d.y), Quad(a.z, b.z, c.z, d.z)};
}

/// The first two vectors of one and the last two of the other.
inline Coordinates4 Join(const Coordinates4& first, const Coordinates4& last) {
  return {Quad::Join(first.x, last.x), Quad::Join(first.y, last.y), Quad::Join(first.z, last.z)};
}

template <typename Number>
Number Dot(const Coordinates<Number>& a, const Coordinates<Number>& b) {
  return a.x * b.x + (a.y * b.y + a.z * b.z);
}

template <typename Number>
Coordinates<Number> Cross(const Coordinates<Number>& a, const Coordinates<Number>& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

template <typename Number>
Coordinates<Number> Plus(const Coordinates<Number>& a, const Coordinates<Number>& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}

template <typename Number>
Coordinates<Number> Minus(const Coordinates<Number>& a, const Coordinates<Number>& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

template <typename Number>
Coordinates<Number> Times(const Coordinates<Number>& a, const Number& factor) {
  return {a.x * factor, a.y * factor, a.z * factor};
}

template <typename Number>
Coordinates<Number> DividedBy(const Coordinates<Number>& a, const Number& divisor) {
  return {a.x / divisor, a.y / divisor, a.z / divisor};
}

}  // namespace Orvo
