#include "exchange/TurnAngles.h"

#include <cmath>
#include <cstddef>

namespace Orvo::Exchange {
namespace {

constexpr double Pi = 3.141592653589793;

constexpr int StepNb = 8;

double At(const std::array<double, 9>& m, std::size_t row, std::size_t column) {
  return m[3 * column + row];
}

/// Returns the matrix of cofactors: the inverse's transpose times the determinant.
std::array<double, 9> Cofactors(const std::array<double, 9>& m) {
  std::array<double, 9> out = {};
  for (std::size_t column = 0; column < 3; ++column) {
    for (std::size_t row = 0; row < 3; ++row) {
      const std::size_t r1 = (row + 1) % 3;
      const std::size_t r2 = (row + 2) % 3;
      const std::size_t c1 = (column + 1) % 3;
      const std::size_t c2 = (column + 2) % 3;
      out[3 * column + row] = At(m, r1, c1) * At(m, r2, c2) - At(m, r1, c2) * At(m, r2, c1);
    }
  }
  return out;
}

}  // namespace

// The orthogonal factor of the polar decomposition, by Newton's iteration (Higham: Computing the
// polar decomposition - with applications, 1986): the mean of a matrix and its inverse's transpose.
std::array<double, 9> NearestRotation(const Matrix43& frame) {
  std::array<double, 9> m = {};
  const double* const elements = frame;
  for (std::size_t i = 0; i < 9; ++i) {
    m[i] = elements[4 * (i / 3) + i % 3];
  }
  for (int step = 0; step < StepNb; ++step) {
    const std::array<double, 9> cofactors = Cofactors(m);
    const double determinant = m[0] * cofactors[0] + (m[1] * cofactors[1] + m[2] * cofactors[2]);
    std::array<double, 9> next = {};
    for (std::size_t i = 0; i < 9; ++i) {
      next[i] = 0.5 * (m[i] + cofactors[i] / determinant);
    }
    if (next == m) {
      break;
    }
    m = next;
  }
  return m;
}

// Yaw is taken first; roll is then what is left of the rotation once yaw is taken off, so that it
// makes good for whatever yaw came out where both turn about one axis.
std::array<double, 3> RollPitchYaw(const std::array<double, 9>& m) {
  const double yaw = std::atan2(At(m, 1, 0), At(m, 0, 0));
  const double sine = std::sin(yaw);
  const double cosine = std::cos(yaw);
  const double pitch = std::atan2(-At(m, 2, 0), cosine * At(m, 0, 0) + sine * At(m, 1, 0));
  const double roll = std::atan2(sine * At(m, 0, 2) - cosine * At(m, 1, 2),
                                 cosine * At(m, 1, 1) - sine * At(m, 0, 1));
  return {roll, pitch, yaw};
}

std::array<double, 4> TurnQuaternion(const Vector3D& unitAxis, double angleDeg) {
  const double half = angleDeg / 360.0 * Pi;
  const double sine = std::sin(half);
  return {unitAxis[0] * sine, unitAxis[1] * sine, unitAxis[2] * sine, std::cos(half)};
}

}  // namespace Orvo::Exchange
