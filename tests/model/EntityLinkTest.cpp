#include "geometry/FrameKernel.h"
#include "support/SameBits.h"
#include "support/Signature.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/EntityLink.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace Orvo::Kin {
namespace {

using Testing::HasSignature;
using Testing::SameBits;

static_assert(LinkSlotCount == 6);
static_assert(std::has_virtual_destructor_v<EntityLink>);
static_assert(std::is_base_of_v<ISerializableXML, EntityLink>);
static_assert(
    HasSignature<const EntityLinkType& (EntityLink::*)() const>(&EntityLink::GetEntityLinkType));
static_assert(HasSignature<const Vector3D& (EntityLink::*)() const>(&EntityLink::GetCenter));
static_assert(HasSignature<const Vector3D& (EntityLink::*)() const>(&EntityLink::GetDir));
static_assert(HasSignature<const Matrix43& (EntityLink::*)() const>(&EntityLink::GetPosition));
static_assert(
    HasSignature<void (EntityLink::*)(const Vector3D&)>(&EntityLink::SetEntityLinkLinear));
static_assert(HasSignature<void (EntityLink::*)(const Vector3D&, const Vector3D&)>(
    &EntityLink::SetEntityLinkRotary));
static_assert(
    HasSignature<void (EntityLink::*)(const Matrix43&)>(&EntityLink::SetEntityLinkPosition));

using SlotGetter = double (EntityLink::*)(unsigned int) const;
using Slot0Getter = double (EntityLink::*)() const;
using SlotSetter = void (EntityLink::*)(unsigned int, double);
using Slot0Setter = void (EntityLink::*)(double);

struct SlotFamily {
  const char* name;
  SlotGetter get;
  Slot0Getter get0;
  SlotSetter set;
  Slot0Setter set0;
};

const SlotFamily Families[] = {
    {"zero reference", &EntityLink::GetZeroRef, &EntityLink::GetZeroRef, &EntityLink::SetZeroRef,
     &EntityLink::SetZeroRef},
    {"lower limit", &EntityLink::GetRangeMin, &EntityLink::GetRangeMin, &EntityLink::SetRangeMin,
     &EntityLink::SetRangeMin},
    {"upper limit", &EntityLink::GetRangeMax, &EntityLink::GetRangeMax, &EntityLink::SetRangeMax,
     &EntityLink::SetRangeMax},
};

Matrix43 SomeFrame() {
  Matrix43 frame;
  frame.SetRotation(X, Angle(0.5));
  frame.SetTrans(Vector3D(1, 2, 3));
  return frame;
}

/// A link in which every field differs from its default and from every other.
EntityLink FullLink() {
  EntityLink link;
  link.SetEntityLinkPosition(SomeFrame());
  link.SetEntityLinkRotary(Vector3D(10, 20, 30), Vector3D(0, 3, 4));
  for (unsigned int slot = 0; slot < LinkSlotCount; ++slot) {
    link.SetZeroRef(slot, 100.0 + slot);
    link.SetRangeMin(slot, 200.0 + slot);
    link.SetRangeMax(slot, 300.0 + slot);
  }
  return link;
}

void ExpectEqualLinks(const EntityLink& a, const EntityLink& b) {
  EXPECT_EQ(a.GetEntityLinkType(), b.GetEntityLinkType());
  EXPECT_TRUE(SameBits(a.GetCenter(), b.GetCenter()));
  EXPECT_TRUE(SameBits(a.GetDir(), b.GetDir()));
  EXPECT_TRUE(SameBits(a.GetPosition(), b.GetPosition()));
  EXPECT_EQ(FrameAccess::Type(a.GetPosition()), FrameAccess::Type(b.GetPosition()));
  for (unsigned int slot = 0; slot < LinkSlotCount; ++slot) {
    SCOPED_TRACE(slot);
    EXPECT_TRUE(SameBits(a.GetZeroRef(slot), b.GetZeroRef(slot)));
    EXPECT_TRUE(SameBits(a.GetRangeMin(slot), b.GetRangeMin(slot)));
    EXPECT_TRUE(SameBits(a.GetRangeMax(slot), b.GetRangeMax(slot)));
  }
}

TEST(EntityLink, StartsUndefinedAndZero) {
  const EntityLink link;
  EXPECT_EQ(link.GetEntityLinkType(), 8);
  EXPECT_TRUE(SameBits(link.GetCenter(), NullVector));
  EXPECT_TRUE(SameBits(link.GetDir(), NullVector));
  EXPECT_TRUE(SameBits(link.GetPosition(), Matrix43()));
  EXPECT_EQ(FrameAccess::Type(link.GetPosition()), Matrix43::Identity);
  for (const SlotFamily& family : Families) {
    SCOPED_TRACE(family.name);
    for (unsigned int slot = 0; slot < LinkSlotCount; ++slot) {
      EXPECT_TRUE(SameBits((link.*family.get)(slot), 0.0));
    }
    EXPECT_TRUE(SameBits((link.*family.get0)(), 0.0));
  }
}

TEST(EntityLink, LinearStoresTheUnitDirectionOnly) {
  EntityLink link = FullLink();
  link.SetEntityLinkLinear(Vector3D(0, 0, 5));
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypeLinear);
  EntityLink expected = FullLink();
  expected.SetEntityLinkRotary(Vector3D(10, 20, 30), Vector3D(0, 0, 1));
  EXPECT_TRUE(SameBits(link.GetDir(), AxisZ));
  EXPECT_TRUE(SameBits(link.GetCenter(), expected.GetCenter()));
  EXPECT_TRUE(SameBits(link.GetPosition(), expected.GetPosition()));
  EXPECT_EQ(link.GetRangeMin(5), 205.0);
}

TEST(EntityLink, RotaryStoresTheCenterAsGivenAndTheUnitDirection) {
  EntityLink link;
  link.SetEntityLinkPosition(SomeFrame());
  link.SetEntityLinkRotary(Vector3D(10, 0, 0), Vector3D(0, 2, 0));
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypeRotary);
  EXPECT_TRUE(SameBits(link.GetCenter(), Vector3D(10, 0, 0)));
  EXPECT_TRUE(SameBits(link.GetDir(), AxisY));
  EXPECT_TRUE(SameBits(link.GetPosition(), SomeFrame()));
}

TEST(EntityLink, PositionStoresTheFrameAsGiven) {
  EntityLink link = FullLink();
  Matrix43 frame;
  const double skewed[16] = {2, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 2};
  frame = skewed;
  link.SetEntityLinkPosition(frame);
  EXPECT_EQ(link.GetEntityLinkType(), EntityLinkTypePosition);
  EXPECT_TRUE(SameBits(link.GetPosition(), frame));
  EXPECT_EQ(FrameAccess::Type(link.GetPosition()), Matrix43::Projective);
  EXPECT_TRUE(SameBits(link.GetCenter(), Vector3D(10, 20, 30)));
  EXPECT_TRUE(SameBits(link.GetDir(), Vector3D(0, 0.6, 0.8)));
}

TEST(EntityLink, ADirectionBelowAThousandthBecomesTheXAxis) {
  struct Case {
    const char* name;
    Vector3D dir;
    Vector3D stored;
  };
  const Case cases[] = {
      {"null", {0, 0, 0}, {1, 0, 0}},
      {"at the limit", {0, 0, -0.001}, {0, 0, -1}},
      {"below the limit", {0, 0, -std::nextafter(0.001, 0.0)}, {1, 0, 0}},
      {"long", {0, -3000, 4000}, {0, -3000.0 / 5000.0, 4000.0 / 5000.0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EntityLink link;
    link.SetEntityLinkLinear(c.dir);
    EXPECT_EQ(link.GetDir() == c.stored, 1);
    EntityLink rotary;
    rotary.SetEntityLinkRotary(Vector3D(1, 2, 3), c.dir);
    EXPECT_EQ(rotary.GetDir() == c.stored, 1);
    EXPECT_TRUE(SameBits(rotary.GetCenter(), Vector3D(1, 2, 3)));
  }
}

TEST(EntityLink, TakesItsOwnFieldsAsArguments) {
  EntityLink link;
  link.SetEntityLinkRotary(Vector3D(0, 5, 0), Vector3D(0, 0, 1));
  link.SetEntityLinkRotary(link.GetDir(), link.GetCenter());
  EXPECT_TRUE(SameBits(link.GetCenter(), AxisZ));
  EXPECT_TRUE(SameBits(link.GetDir(), AxisY));
  link.SetEntityLinkRotary(link.GetCenter(), link.GetCenter());
  EXPECT_TRUE(SameBits(link.GetDir(), AxisZ));
  link.SetEntityLinkRotary(Vector3D(7, 0, 0), link.GetDir());
  link.SetEntityLinkRotary(link.GetDir(), link.GetDir());
  EXPECT_TRUE(SameBits(link.GetCenter(), AxisZ));
  link.SetEntityLinkRotary(Vector3D(7, 0, 0), link.GetDir());
  link.SetEntityLinkLinear(link.GetCenter());
  EXPECT_TRUE(SameBits(link.GetDir(), AxisX));
  EXPECT_TRUE(SameBits(link.GetCenter(), Vector3D(7, 0, 0)));
  link.SetEntityLinkPosition(SomeFrame());
  link.SetEntityLinkPosition(link.GetPosition());
  EXPECT_TRUE(SameBits(link.GetPosition(), SomeFrame()));
}

TEST(EntityLink, EachSlotOfEachFamilyIsItsOwn) {
  for (const SlotFamily& family : Families) {
    for (unsigned int slot = 0; slot < LinkSlotCount; ++slot) {
      SCOPED_TRACE(testing::Message() << family.name << " " << slot);
      EntityLink link = FullLink();
      (link.*family.set)(slot, -1.5);
      for (const SlotFamily& other : Families) {
        const double base = 100.0 * static_cast<double>(&other - Families + 1);
        for (unsigned int k = 0; k < LinkSlotCount; ++k) {
          const bool written = &other == &family && k == slot;
          EXPECT_EQ((link.*other.get)(k), written ? -1.5 : base + k);
        }
        EXPECT_EQ((link.*other.get0)(), (link.*other.get)(0));
      }
    }
  }
}

TEST(EntityLink, TheOperationsWithoutASlotMeanSlotZero) {
  for (const SlotFamily& family : Families) {
    SCOPED_TRACE(family.name);
    EntityLink link = FullLink();
    (link.*family.set0)(-100.0);
    EXPECT_EQ((link.*family.get)(0), -100.0);
    EXPECT_EQ((link.*family.get0)(), -100.0);
    EXPECT_NE((link.*family.get)(1), -100.0);
  }
}

TEST(EntityLink, StoresLimitsUnchecked) {
  EntityLink link;
  link.SetRangeMin(10.0);
  link.SetRangeMax(-10.0);
  link.SetZeroRef(std::numeric_limits<double>::infinity());
  EXPECT_EQ(link.GetRangeMin(), 10.0);
  EXPECT_EQ(link.GetRangeMax(), -10.0);
  EXPECT_TRUE(std::isinf(link.GetZeroRef()));
  link.SetRangeMin(std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::isnan(link.GetRangeMin()));
}

TEST(EntityLink, ASlotAboveFiveReadsZeroAndIsNotWritten) {
  const unsigned int slots[] = {6, 7, 100, 0x7fffffffU, 0xffffffffU};
  for (const SlotFamily& family : Families) {
    for (const unsigned int slot : slots) {
      SCOPED_TRACE(testing::Message() << family.name << " " << slot);
      EntityLink link = FullLink();
      (link.*family.set)(slot, 55.0);
      EXPECT_TRUE(SameBits((link.*family.get)(slot), 0.0));
      ExpectEqualLinks(link, FullLink());
    }
  }
}

TEST(EntityLink, CopiesTakeEverything) {
  const EntityLink source = FullLink();
  const EntityLink copy(source);
  ExpectEqualLinks(copy, source);
  EntityLink assigned;
  EXPECT_EQ(&(assigned = source), &assigned);
  ExpectEqualLinks(assigned, source);
  assigned = EntityLink();
  ExpectEqualLinks(assigned, EntityLink());
}

TEST(EntityLink, CopiesAreIndependent) {
  EntityLink source = FullLink();
  const EntityLink copy(source);
  source.SetEntityLinkLinear(AxisX);
  source.SetZeroRef(3, -1.0);
  source.SetEntityLinkPosition(Matrix43());
  ExpectEqualLinks(copy, FullLink());
}

TEST(EntityLink, AssignmentOntoItselfChangesNothing) {
  EntityLink link = FullLink();
  const EntityLink& self = link;
  link = self;
  ExpectEqualLinks(link, FullLink());
}

TEST(EntityLink, AMovedLinkStaysUsable) {
  EntityLink source = FullLink();
  const EntityLink target(std::move(source));
  ExpectEqualLinks(target, FullLink());
  source.SetEntityLinkLinear(AxisY);  // NOLINT: a move is a copy here
  EXPECT_TRUE(SameBits(source.GetDir(), AxisY));
}

}  // namespace
}  // namespace Orvo::Kin
