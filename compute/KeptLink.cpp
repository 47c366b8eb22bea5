#include "compute/KeptLink.h"

#include "compute/SameValue.h"
#include "geometry/PrincipalAxis.h"

#include <algorithm>
#include <utility>

namespace Orvo::Kin {

bool HasExactFourthRow(const TypedFrame& frame) {
  for (int i = 3; i < 16; i += 4) {
    if (!IsSameValue(frame.elements[i], IdentityFrame[i])) {
      return false;
    }
  }
  return true;
}

bool HasExactUnitAxes(const TypedFrame& frame) {
  return std::equal(frame.elements, frame.elements + 12, IdentityFrame, IsSameValue);
}

bool KeptLink::TakeDown(const Entity& entity) {
  const EntityLink& from = entity.GetEntityLink();
  *this = KeptLink();
  CopyFrame(IdentityFrame, frame_.elements);
  frame_.type = Matrix43::Identity;
  switch (from.GetEntityLinkType()) {
    case EntityLinkTypeIdentity:
      return true;
    case EntityLinkTypePosition:
      frame_.type = FrameAccess::Type(from.GetPosition());
      if (frame_.type != Matrix43::Identity) {
        CopyFrame(FrameAccess::Elements(from.GetPosition()), frame_.elements);
      }
      return frame_.type != Matrix43::Projective;
    case EntityLinkTypeLinear:
      kind_ = Kind::Linear;
      vector_ = from.GetDir();
      zeroReference_ = from.GetZeroRef(0);
      frame_.type = Matrix43::Translation;
      break;
    case EntityLinkTypeRotary:
      TakeDownRotary(from);
      break;
    default:
      return false;
  }
  reg_ = entity.GetRegister().GetVal();
  SetAxisValue(0.0);
  return reg_ >= 0;
}

void KeptLink::TakeDownRotary(const EntityLink& from) {
  vector_ = from.GetCenter();
  const PrincipalAxis* const principal = FindPrincipalAxis(from.GetDir());
  Matrix43 fromAxis;
  if (principal == nullptr && fromAxis.MakeAxisW(from.GetDir())) {
    kind_ = Kind::TiltedRotary;
    auto tilt = std::make_unique<Tilt>();
    const double* const m = FrameAccess::Elements(std::as_const(fromAxis));
    tilt->fromAxis = LoadDirections(m);
    tilt->turnedW = CombineColumns(m, 0.0, 0.0, 1.0);
    InvertRigid(m, FrameAccess::Type(fromAxis), tilt->toAxis);
    tilt_ = std::move(tilt);
    return;
  }
  // A direction that is too short counts as Z.
  kind_ = Kind::PrincipalRotary;
  axis_ = principal == nullptr ? Z : principal->direction;
  sense_ = principal != nullptr && principal->isReversed ? -1.0 : 1.0;
  const Lanes turned = CombineColumns(IdentityFrame, vector_[0], vector_[1], vector_[2]);
  alignas(16) double origin[4];
  StoreLanes(origin, Subtract(LoadLanes(vector_), turned));
  originOnAxis_ = origin[axis_];
  onAxis_ = 0.0 * vector_[axis_];
}

void KeptLink::SetNoTurn() {
  double* const m = frame_.elements;
  CopyFrame(IdentityFrame, m);
  const Lanes center = LoadLanes(vector_);
  StoreLanes(m + 12, WithW(Subtract(center, center), 1.0));
  frame_.type = Matrix43::Translation;
}

// The turn goes by way of the frame whose W is the axis: from there about Z, and back.
void KeptLink::SetTiltedTurn(double radians) {
  double s;
  double c;
  SinCos(radians, &s, &c);
  const Directions& fromAxis = tilt_->fromAxis;
  const Directions turned = {CombineColumns(fromAxis, c, s, 0.0),
                             CombineColumns(fromAxis, -s, c, 0.0), tilt_->turnedW};
  const Directions turn = ImageOfDirections(turned, tilt_->toAxis);
  const Lanes center = LoadLanes(vector_);
  double* const m = frame_.elements;
  StoreLanes(m, WithW(turn.u, 0.0));
  StoreLanes(m + 4, WithW(turn.v, 0.0));
  StoreLanes(m + 8, WithW(turn.w, 0.0));
  const Lanes turnedCenter = CombineColumns(turn, vector_[0], vector_[1], vector_[2]);
  StoreLanes(m + 12, WithW(Subtract(center, turnedCenter), 1.0));
  frame_.type = Matrix43::RotationTranslation;
}

}  // namespace Orvo::Kin
