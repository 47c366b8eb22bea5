#include "path/Polish.h"

#include <algorithm>
#include <cmath>

namespace Orvo::Path {
namespace {

/// Two unit directions this near are the same one, up to rounding.
constexpr double SameDirection = 1e-15;

/// Where the two solutions meet, each step halves the distance: enough steps for the digits that
/// can be had there.
constexpr int MaxSteps = 40;

/// Below this a branch isn't told: the derivatives are then those of a singular place.
constexpr double SingularDeterminant = 1e-9;

Vec3 Missing(const ChainModel& model, const Vec3& direction, const ChainModel::Trig& trig) {
  const Vec3 reached = model.Direction(trig);
  return direction - reached * (1.0 / Norm(reached));
}

/// The derivative of the unit direction.
Vec3 UnitDerivative(const ChainModel& model, const ChainModel::Trig& trig, std::size_t axis) {
  const Vec3 d = model.Direction(trig);
  const double norm = Norm(d);
  const Vec3 unit = d * (1.0 / norm);
  const Vec3 derivative = model.DirectionDerivative(trig, axis) * (1.0 / norm);
  return derivative - unit * Dot(unit, derivative);
}

}  // namespace

// Levenberg's method ("A Method for the Solution of Certain Non-Linear Problems in Least Squares",
// 1944): Gauss-Newton steps, damped only where they don't come nearer.
double Polish(const ChainModel& model, const Vec3& direction, std::array<double, 2>* rad) {
  ChainModel::Trig trig = ChainModel::MakeTrig(*rad);
  Vec3 missing = Missing(model, direction, trig);
  double distance = Norm(missing);
  double damping = 0.0;
  for (int step = 0; step < MaxSteps && distance > SameDirection; ++step) {
    const Vec3 da = UnitDerivative(model, trig, 0);
    const Vec3 db = UnitDerivative(model, trig, 1);
    const double aa = Dot(da, da);
    const double bb = Dot(db, db);
    const double ab = Dot(da, db);
    // A little damping keeps an axis that moves nothing where it is.
    const double scale = std::max(aa, bb);
    const double mu = std::max(damping, 1e-18 * scale) + 1e-300;
    const double determinant = (aa + mu) * (bb + mu) - ab * ab;
    if (!(determinant > 0.0)) {
      break;
    }
    const double ra = Dot(da, missing);
    const double rb = Dot(db, missing);
    const std::array<double, 2> next = {(*rad)[0] + ((bb + mu) * ra - ab * rb) / determinant,
                                        (*rad)[1] + ((aa + mu) * rb - ab * ra) / determinant};
    const ChainModel::Trig nextTrig = ChainModel::MakeTrig(next);
    const Vec3 nextMissing = Missing(model, direction, nextTrig);
    const double nextDistance = Norm(nextMissing);
    if (nextDistance < distance) {
      const bool isSlow = nextDistance > 0.9 * distance;
      *rad = next;
      trig = nextTrig;
      missing = nextMissing;
      distance = nextDistance;
      damping *= 0.1;
      if (isSlow) {
        break;
      }
    } else if (distance < 1e-14) {
      break;
    } else {
      damping = std::max(100.0 * damping, 1e-8 * scale);
    }
  }
  return distance;
}

int BranchOf(const ChainModel& model, const std::array<double, 2>& rad) {
  const ChainModel::Trig trig = ChainModel::MakeTrig(rad);
  const double determinant = Dot(model.Direction(trig), Cross(model.DirectionDerivative(trig, 0),
                                                              model.DirectionDerivative(trig, 1)));
  return determinant > SingularDeterminant ? 1 : determinant < -SingularDeterminant ? -1 : 0;
}

}  // namespace Orvo::Path
