#include "path/ChainModel.h"

#include <Orvo/Matrix43.h>

#include <algorithm>
#include <cmath>

namespace Orvo::Path {
namespace {

/// How far a linear axis goes for a sample: far enough that rounding of the tip's place leaves the
/// direction its digits.
constexpr double SampleTravel = 1048576.0;

/// Model and forward kinematics may differ by so much: by rounding alone.
constexpr double DirectionTolerance = 1e-12;
constexpr double TipTolerance = 1e-11;

/// Below this, for unit directions, the linear axes lie in a plane.
constexpr double SmallestDeterminant = 1e-9;

/// Asks forward kinematics at values of the main axes.
class Sampler {
 public:
  Sampler(const Kin::MachineCompute& compute, const Kin::ProgramSystem& programSystem,
          const MainAxes& axes, const Kin::MachinePosition& position, const Vector3D& offset)
      : compute_(compute),
        programSystem_(programSystem),
        axes_(axes),
        position_(position),
        offset_(offset) {}

  bool Take(const AxisValues& values, Vec3* direction, Vec3* tip) {
    axes_.Put(values, &position_);
    Matrix43 frame;
    if (!compute_.ComputeMcsToToolTcs(position_, programSystem_.GetHeadIndex(),
                                      programSystem_.GetTableIndex(), offset_, &frame)) {
      return false;
    }
    *direction = FromVector(frame.GetW());
    *tip = FromVector(frame.GetTrans());
    return true;
  }

 private:
  Kin::MachineCompute compute_;
  Kin::ProgramSystem programSystem_;
  const MainAxes& axes_;
  Kin::MachinePosition position_;
  Vector3D offset_;
};

/// Turns samples at 0, 90 and 180 degrees, in place, into the factors of 1, cos and sin.
void Separate(Vec3* first, Vec3* second, Vec3* third) {
  const Vec3 one = (*first + *third) * 0.5;
  const Vec3 cosine = (*first - *third) * 0.5;
  const Vec3 sine = *second - one;
  *first = one;
  *second = cosine;
  *third = sine;
}

/// Does so for both axes: samples by angle of the first axis, then of the second.
void SeparateBoth(std::array<Vec3, 9>* s) {
  for (std::size_t i = 0; i < 3; ++i) {
    Separate(&(*s)[3 * i], &(*s)[3 * i + 1], &(*s)[3 * i + 2]);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    Separate(&(*s)[i], &(*s)[i + 3], &(*s)[i + 6]);
  }
}

}  // namespace

ChainModel::ChainModel(const Kin::MachineCompute& compute, const Kin::ProgramSystem& programSystem,
                       const MainAxes& axes, const Kin::MachinePosition& position,
                       const Vector3D& offset) {
  Sampler sampler(compute, programSystem, axes, position, offset);
  AxisValues values = {};
  for (std::size_t a = 0; a < 3; ++a) {
    for (std::size_t b = 0; b < 3; ++b) {
      const std::size_t place = 3 * a + b;
      values = {0.0, 0.0, 0.0, 90.0 * static_cast<double>(a), 90.0 * static_cast<double>(b)};
      if (!sampler.Take(values, &coefficients_[DirectionRow][place],
                        &coefficients_[TipRow][place])) {
        return;
      }
      for (std::size_t i = 0; i < 3; ++i) {
        values[i] = SampleTravel;
        Vec3 direction;
        Vec3 tip;
        if (!sampler.Take(values, &direction, &tip)) {
          return;
        }
        values[i] = 0.0;
        coefficients_[LinearRow + i][place] =
            (tip - coefficients_[TipRow][place]) * (1.0 / SampleTravel);
      }
    }
  }
  for (std::array<Vec3, 9>& row : coefficients_) {
    SeparateBoth(&row);
  }

  // At angles and travels that have nothing to do with the samples.
  isValid_ = true;
  for (int i = 0; i < 6; ++i) {
    values = {13.0 + 31.0 * i, -17.0 * i, 5.0 - 41.0 * i, 33.7 + 71.3 * i, -112.3 + 97.1 * i};
    Vec3 direction;
    Vec3 tip;
    isValid_ = isValid_ && sampler.Take(values, &direction, &tip);
    const Trig trig = MakeTrig({RadFromDeg(values[3]), RadFromDeg(values[4])});
    Vec3 modeled = TipAtZero(trig);
    for (std::size_t k = 0; k < 3; ++k) {
      modeled = modeled + LinearDirection(trig, k) * values[k];
    }
    isValid_ = isValid_ && Norm(Direction(trig) - direction) <= DirectionTolerance &&
               Norm(modeled - tip) <= TipTolerance * (1.0 + Norm(tip));
  }
}

ChainModel::Trig ChainModel::MakeTrig(const std::array<double, 2>& rad) {
  return {{{{1.0, std::cos(rad[0]), std::sin(rad[0])}, {1.0, std::cos(rad[1]), std::sin(rad[1])}}}};
}

Vec3 ChainModel::Sum(const std::array<Vec3, 9>& c, const std::array<double, 3>& a,
                     const std::array<double, 3>& b) {
  Vec3 sum;
  for (std::size_t i = 0; i < 3; ++i) {
    const Vec3 row = c[3 * i] * b[0] + (c[3 * i + 1] * b[1] + c[3 * i + 2] * b[2]);
    sum = sum + row * a[i];
  }
  return sum;
}

Vec3 ChainModel::DirectionDerivative(const Trig& trig, std::size_t axis) const {
  const std::array<double, 3> derivative = {0.0, -trig.u[axis][2], trig.u[axis][1]};
  return axis == 0 ? Sum(coefficients_[DirectionRow], derivative, trig.u[1])
                   : Sum(coefficients_[DirectionRow], trig.u[0], derivative);
}

bool ChainModel::SolveLinear(const Trig& trig, const Vec3& point, double* values) const {
  const Vec3 x = LinearDirection(trig, 0);
  const Vec3 y = LinearDirection(trig, 1);
  const Vec3 z = LinearDirection(trig, 2);
  const Vec3 yz = Cross(y, z);
  const double determinant = Dot(x, yz);
  if (!(std::abs(determinant) > SmallestDeterminant * (Norm(x) * (Norm(y) * Norm(z))))) {
    return false;
  }
  const double inverse = 1.0 / determinant;
  const Vec3 rows[] = {yz * inverse, Cross(z, x) * inverse, Cross(x, y) * inverse};
  Vec3 missing = point - TipAtZero(trig);
  values[0] = values[1] = values[2] = 0.0;
  // The second round takes back what the first one lost to rounding.
  for (int round = 0; round < 2; ++round) {
    double step[3];
    for (int i = 0; i < 3; ++i) {
      step[i] = Dot(rows[i], missing);
      values[i] += step[i];
    }
    missing = missing - (x * step[0] + (y * step[1] + z * step[2]));
  }
  return IsFinite({values[0], values[1], values[2]});
}

}  // namespace Orvo::Path
