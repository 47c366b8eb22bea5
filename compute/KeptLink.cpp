#include "compute/KeptLink.h"

#include "geometry/Degrees.h"
#include "geometry/PrincipalAxis.h"
#include "geometry/SinCos.h"

#include <utility>

namespace Orvo::Kin {

namespace {

void SetRotary(const Directions& turn, KeptLink* link) {
  double* const m = link->frame.elements;
  StoreLanes(m, turn.u);
  StoreLanes(m + 4, turn.v);
  StoreLanes(m + 8, turn.w);
  const Vector3D& center = link->vector;
  const Lanes turned = CombineColumns(turn, center[0], center[1], center[2]);
  StoreLanes(m + 12, WithW(Subtract(LoadLanes(center), turned), 1.0));
  link->frame.type = Matrix43::RotationTranslation;
}

// The turn goes by way of the frame whose W is the axis.
Directions TiltedTurn(const KeptLink::Tilt& tilt, double sine, double cosine) {
  alignas(16) double aboutZ[16];
  CopyFrame(IdentityFrame, aboutZ);
  const Directions turn = PrincipalTurn(Z, sine, cosine);
  StoreLanes(aboutZ, turn.u);
  StoreLanes(aboutZ + 4, turn.v);
  alignas(16) double fromZ[16];
  const Matrix43::Type fromZType =
      MultiplyFrames(tilt.fromAxis.elements, tilt.fromAxis.type, aboutZ, Matrix43::Rotation, fromZ);
  alignas(16) double turned[16];
  MultiplyFrames(fromZ, fromZType, tilt.toAxis.elements, tilt.toAxis.type, turned);
  const auto column = [&turned](int place) { return WithW(LoadLanes(turned + place), 0.0); };
  return {column(0), column(4), column(8)};
}

void TakeDownRotary(const EntityLink& from, KeptLink* link) {
  link->vector = from.GetCenter();
  if (const PrincipalAxis* const principal = FindPrincipalAxis(from.GetDir())) {
    link->kind = KeptLink::Kind::PrincipalRotary;
    link->direction = principal->direction;
    link->isReversed = principal->isReversed;
    return;
  }
  link->kind = KeptLink::Kind::TiltedRotary;
  Matrix43 fromAxis;
  fromAxis.MakeAxisW(from.GetDir());
  auto tilt = std::make_unique<KeptLink::Tilt>();
  tilt->fromAxis.type = FrameAccess::Type(fromAxis);
  CopyFrame(FrameAccess::Elements(fromAxis), tilt->fromAxis.elements);
  Invert(tilt->fromAxis, &tilt->toAxis);
  link->tilt = std::move(tilt);
}

}  // namespace

bool TakeDown(const Entity& entity, KeptLink* link) {
  const EntityLink& from = entity.GetEntityLink();
  *link = KeptLink();
  CopyFrame(IdentityFrame, link->frame.elements);
  link->frame.type = Matrix43::Identity;
  switch (from.GetEntityLinkType()) {
    case EntityLinkTypeIdentity:
      return true;
    case EntityLinkTypePosition:
      link->frame.type = FrameAccess::Type(from.GetPosition());
      if (link->frame.type != Matrix43::Identity) {
        CopyFrame(FrameAccess::Elements(from.GetPosition()), link->frame.elements);
      }
      return link->frame.type != Matrix43::Projective;
    case EntityLinkTypeLinear:
      link->kind = KeptLink::Kind::Linear;
      link->vector = from.GetDir();
      link->zeroReference = from.GetZeroRef(0);
      link->frame.type = Matrix43::Translation;
      break;
    case EntityLinkTypeRotary:
      TakeDownRotary(from, link);
      break;
    default:
      return false;
  }
  link->reg = entity.GetRegister().GetVal();
  SetAxisValue(0.0, link);
  return link->reg >= 0;
}

void SetAxisValue(double value, KeptLink* link) {
  double* const m = link->frame.elements;
  if (link->kind == KeptLink::Kind::Linear) {
    const Lanes way = Scale(LoadLanes(link->vector), link->zeroReference + value);
    StoreLanes(m + 12, WithW(way, 1.0));
    return;
  }
  const double radians = RadiansFromDegrees(value);
  if (radians == 0.0) {
    CopyFrame(IdentityFrame, m);
    const Lanes center = LoadLanes(link->vector);
    StoreLanes(m + 12, WithW(Subtract(center, center), 1.0));
    link->frame.type = Matrix43::Translation;
    return;
  }
  double sine;
  double cosine;
  if (link->kind == KeptLink::Kind::PrincipalRotary) {
    SinCos(link->isReversed ? -radians : radians, &sine, &cosine);
    SetRotary(PrincipalTurn(link->direction, sine, cosine), link);
  } else {
    SinCos(radians, &sine, &cosine);
    SetRotary(TiltedTurn(*link->tilt, sine, cosine), link);
  }
}

}  // namespace Orvo::Kin
