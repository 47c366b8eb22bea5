#pragma once

#include "geometry/FrameKernel.h"

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

inline void Invert(const TypedFrame& frame, TypedFrame* inverse) {
  inverse->type = frame.type;
  InvertRigid(frame.elements, frame.type, inverse->elements);
}

/// The link of an element as it was when it was taken down, and its frame for one axis value.
struct KeptLink {
  enum class Kind {
    Fixed,  ///< IDENTITY and POSITION
    Linear,
    PrincipalRotary,  ///< about X, Y or Z, either way
    TiltedRotary      ///< about any other direction
  };

  /// The frame whose W is the axis, and its inverse.
  struct Tilt {
    TypedFrame fromAxis;
    TypedFrame toAxis;
  };

  bool IsRotary() const { return kind == Kind::PrincipalRotary || kind == Kind::TiltedRotary; }

  Kind kind = Kind::Fixed;
  int reg = -1;                // of the axis; fixed links need none
  Direction direction = X;     // PrincipalRotary
  bool isReversed = false;     // PrincipalRotary
  double zeroReference = 0.0;  // Linear
  Vector3D vector;             // Linear: the direction. Rotary: the center.
  std::unique_ptr<const Tilt> tilt;
  TypedFrame frame;
};

/// Takes down the link of an element, with its axis at 0. Returns false for a link that only the
/// general computation takes: of no known kind, without a register, or with a projective frame.
bool TakeDown(const Entity& entity, KeptLink* link);

/// Computes the frame for a value of the link's axis, as ComputeRelativePosition does, bit for bit.
void SetAxisValue(double value, KeptLink* link);

}  // namespace Orvo::Kin
