#pragma once

#include "geometry/FrameKernel.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Matrix43.h>

namespace Orvo::Kin {

/// What of the frame of a link does not depend on the value of its axis.
struct LinkShape {
  enum class Kind {
    Fixed,            ///< IDENTITY and POSITION
    Linear,
    PrincipalRotary,  ///< about X, Y or Z, either way
    Rotary,
    Unknown           ///< of no known kind, or with a frame that only the general formulas take
  };

  Kind kind = Kind::Unknown;
  Direction direction = X;  // PrincipalRotary
  bool isReversed = false;  // PrincipalRotary
  int reg = -1;             // negative for fixed links: they need none
  double zeroReference = 0.0;
  alignas(16) double dir[4] = {};
  alignas(16) double center[4] = {};

  // Fixed: the frame. Rotary: from the frame whose W is the axis, and back.
  alignas(16) double frame[16] = {};
  alignas(16) double inverse[16] = {};
  Matrix43::Type type = Matrix43::Identity;

  bool IsAxis() const { return kind != Kind::Fixed && kind != Kind::Unknown; }
  bool IsRotary() const { return kind == Kind::PrincipalRotary || kind == Kind::Rotary; }
};

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

/// Takes down the link of an element as it is now.
LinkShape ShapeOfLink(const Entity& entity);

/// Computes the frame of a link of a known kind, as ComputeRelativePosition does, bit for bit.
void ComputeLinkFrame(const LinkShape& shape, double value, TypedFrame* frame);

}  // namespace Orvo::Kin
