#pragma once

#include "geometry/Degrees.h"
#include "geometry/FrameKernel.h"
#include "geometry/SinCos.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <memory>

namespace Orvo::Kin {

/// A frame and its kind.
struct TypedFrame {
  alignas(16) double elements[16];
  Matrix43::Type type;
};

inline void Multiply(const TypedFrame& a, const TypedFrame& b, TypedFrame* product) {
  product->type = MultiplyFrames(a.elements, a.type, b.elements, b.type, product->elements);
}

/// Returns x, y and z of the origin of a product of frames that are not projective.
inline Lanes OriginOfProduct(const TypedFrame& a, const TypedFrame& b) {
  const Lanes left = LoadLanes(a.elements + 12);
  const Lanes right = LoadLanes(b.elements + 12);
  switch (KindsOfProducts.kinds[a.type][b.type].rule) {
    case ProductRule::Left:
    case ProductRule::RightTurned:
      return left;
    case ProductRule::RightMoved:
      return Add(left, right);
    case ProductRule::LeftMoved:
    case ProductRule::Affine:
      return ImageOfPoint(a.elements, b.elements[12], b.elements[13], b.elements[14]);
    case ProductRule::Turn:
      return LoadLanes(IdentityFrame + 12);
    default:
      return right;
  }
}

/// Tells whether the fourth row is (0, 0, 0, 1), bit for bit.
bool HasExactFourthRow(const TypedFrame& frame);

/// Tells whether the directions are the unit axes with the fourth row 0, bit for bit.
bool HasExactUnitAxes(const TypedFrame& frame);

inline void Invert(const TypedFrame& frame, TypedFrame* inverse) {
  inverse->type = frame.type;
  InvertRigid(frame.elements, frame.type, inverse->elements);
}

/// The link of an element as it was when it was taken down, and its frame for one axis value.
class KeptLink {
 public:
  /// Takes down the link of an element, with its axis at 0. Returns false for a link that only the
  /// general computation takes: of no known kind, without a register, or with a projective frame.
  bool TakeDown(const Entity& entity);

  bool IsAxis() const { return kind_ != Kind::Fixed; }
  bool IsRotary() const { return kind_ == Kind::PrincipalRotary || kind_ == Kind::TiltedRotary; }

  /// The register of an axis; negative for other links.
  int Reg() const { return reg_; }

  /// Computes the frame for a value of the axis, as ComputeRelativePosition does, bit for bit.
  void SetAxisValue(double value) {
    if (kind_ == Kind::Linear) {
      SetTravel(value);
    } else {
      SetTurn(value);
    }
  }

  /// The same for a linear axis.
  void SetTravel(double value) {
    const double way = zeroReference_ + value;
    double* const m = frame_.elements;
    m[12] = vector_[0] * way;
    m[13] = vector_[1] * way;
    m[14] = vector_[2] * way;
  }

  /// The same for a rotary axis.
  void SetTurn(double value) {
    const double radians = RadiansFromDegrees(value);
    if (radians == 0.0) {
      SetNoTurn();
    } else if (kind_ == Kind::PrincipalRotary) {
      SetPrincipalTurn(radians * sense_);
    } else {
      SetTiltedTurn(radians);
    }
  }

  const TypedFrame& Frame() const { return frame_; }

  /// The rule for a product with this link that is Affine by its kind.
  ProductRule AffineRule() const {
    return kind_ == Kind::PrincipalRotary && frame_.type == Matrix43::RotationTranslation
               ? TurnRule(axis_)
               : ProductRule::Affine;
  }

 private:
  enum class Kind {
    Fixed,  ///< IDENTITY and POSITION
    Linear,
    PrincipalRotary,  ///< about X, Y or Z, either way
    TiltedRotary      ///< about any other direction
  };

  /// A frame whose W is the axis, its W after a turn about Z, and its inverse.
  struct Tilt {
    Directions fromAxis;
    Lanes turnedW;
    alignas(16) double toAxis[16];
  };

  static ProductRule TurnRule(Direction axis) {
    return axis == X ? ProductRule::TurnedX
                     : (axis == Y ? ProductRule::TurnedY : ProductRule::TurnedZ);
  }

  void TakeDownRotary(const EntityLink& from);
  void SetNoTurn();
  void SetTiltedTurn(double radians);

  // Writes what depends on the angle: a block of 2 x 2 numbers, and the origin, which is the center
  // less the turned center. The numbers are those of PrincipalTurn().
  void SetPrincipalTurn(double radians) {
    double s;
    double c;
    SinCos(radians, &s, &c);
    double* const m = frame_.elements;
    const double x = vector_[0];
    const double y = vector_[1];
    const double z = vector_[2];
    const auto set = [m](int place, double first, double second) {
      m[place] = first;
      m[place + 1] = second;
    };
    switch (axis_) {
      case X:
        set(5, c, s);
        set(9, -s, c);
        m[12] = originOnAxis_;
        set(13, y - (onAxis_ + (c * y + -s * z)), z - (onAxis_ + (s * y + c * z)));
        break;
      case Y:
        m[0] = m[10] = c;
        m[2] = -s;
        m[8] = s;
        set(12, x - (c * x + (onAxis_ + s * z)), originOnAxis_);
        m[14] = z - (-s * x + (onAxis_ + c * z));
        break;
      default:
        set(0, c, s);
        set(4, -s, c);
        set(12, x - (c * x + (-s * y + onAxis_)), y - (s * x + (c * y + onAxis_)));
        m[14] = originOnAxis_;
        break;
    }
    frame_.type = Matrix43::RotationTranslation;
  }

  TypedFrame frame_{};
  Kind kind_ = Kind::Fixed;
  int reg_ = -1;
  Vector3D vector_;             // Linear: the direction. Rotary: the center.
  double zeroReference_ = 0.0;  // Linear

  // PrincipalRotary: the axis and the sense of the turn; along the axis the origin, and what the
  // center adds to the other numbers of the turned center.
  Direction axis_ = X;
  double sense_ = 1.0;
  double originOnAxis_ = 0.0;
  double onAxis_ = 0.0;

  std::unique_ptr<const Tilt> tilt_;
};

}  // namespace Orvo::Kin
