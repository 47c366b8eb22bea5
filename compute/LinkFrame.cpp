#include "compute/LinkFrame.h"

#include "geometry/Degrees.h"
#include "geometry/PrincipalAxis.h"
#include "geometry/SinCos.h"

#include <algorithm>

namespace Orvo::Kin {

namespace {

void SetShapeOfRotary(const EntityLink& link, LinkShape* shape) {
  std::copy_n(static_cast<const double*>(link.GetCenter()), 3, shape->center);
  if (const PrincipalAxis* const principal = FindPrincipalAxis(link.GetDir())) {
    shape->kind = LinkShape::Kind::PrincipalRotary;
    shape->direction = principal->direction;
    shape->isReversed = principal->isReversed;
    return;
  }
  Matrix43 fromAxis;
  fromAxis.MakeAxisW(link.GetDir());
  shape->kind = LinkShape::Kind::Rotary;
  shape->type = FrameAccess::Type(fromAxis);
  CopyFrame(FrameAccess::Elements(fromAxis), shape->frame);
  InvertRigid(shape->frame, shape->type, shape->inverse);
}

// The frame of a turn about X, Y or Z through the origin.
void ComputePrincipalTurn(Direction direction, double radians, double* m) {
  double s;
  double c;
  SinCos(radians, &s, &c);
  CopyFrame(IdentityFrame, m);
  SetPrincipalTurn(direction, s, c, m);
}

}  // namespace

LinkShape ShapeOfLink(const Entity& entity) {
  const EntityLink& link = entity.GetEntityLink();
  LinkShape shape;
  switch (link.GetEntityLinkType()) {
    case EntityLinkTypeLinear:
      shape.kind = LinkShape::Kind::Linear;
      std::copy_n(static_cast<const double*>(link.GetDir()), 3, shape.dir);
      shape.zeroReference = link.GetZeroRef(0);
      break;
    case EntityLinkTypeRotary:
      SetShapeOfRotary(link, &shape);
      break;
    case EntityLinkTypePosition:
      shape.type = FrameAccess::Type(link.GetPosition());
      if (shape.type != Matrix43::Projective) {
        shape.kind = LinkShape::Kind::Fixed;
      }
      CopyFrame(shape.type == Matrix43::Identity ? IdentityFrame
                                                 : FrameAccess::Elements(link.GetPosition()),
                shape.frame);
      break;
    case EntityLinkTypeIdentity:
      shape.kind = LinkShape::Kind::Fixed;
      CopyFrame(IdentityFrame, shape.frame);
      break;
    default:
      break;
  }
  if (shape.IsAxis()) {
    shape.reg = entity.GetRegister().GetVal();
    if (shape.reg < 0) {
      shape.kind = LinkShape::Kind::Unknown;
    }
  }
  return shape;
}

void ComputeLinkFrame(const LinkShape& shape, double value, TypedFrame* frame) {
  double* const m = frame->elements;
  switch (shape.kind) {
    case LinkShape::Kind::Fixed:
      CopyFrame(shape.frame, m);
      frame->type = shape.type;
      return;
    case LinkShape::Kind::Linear:
      CopyFrame(IdentityFrame, m);
      StoreLanes(m + 12, WithW(Scale(LoadLanes(shape.dir), shape.zeroReference + value), 1.0));
      frame->type = Matrix43::Translation;
      return;
    default:
      break;
  }
  const double radians = RadiansFromDegrees(value);
  Matrix43::Type turnType = Matrix43::Rotation;
  if (radians == 0.0) {
    CopyFrame(IdentityFrame, m);
    turnType = Matrix43::Identity;
  } else if (shape.kind == LinkShape::Kind::PrincipalRotary) {
    ComputePrincipalTurn(shape.direction, shape.isReversed ? -radians : radians, m);
  } else {
    alignas(16) double aboutZ[16];
    ComputePrincipalTurn(Z, radians, aboutZ);
    alignas(16) double fromZ[16];
    const Matrix43::Type fromZType =
        MultiplyFrames(shape.frame, shape.type, aboutZ, Matrix43::Rotation, fromZ);
    alignas(16) double turn[16];
    MultiplyFrames(fromZ, fromZType, shape.inverse, shape.type, turn);
    CopyFrame(IdentityFrame, m);
    CopyDirections(turn, m);
  }
  const Lanes center = LoadLanes(shape.center);
  const Lanes turned = ApplyFrameToDirection(m, turnType, shape.center);
  StoreLanes(m + 12, WithW(Subtract(center, turned), 1.0));
  frame->type =
      turnType == Matrix43::Identity ? Matrix43::Translation : Matrix43::RotationTranslation;
}

}  // namespace Orvo::Kin
