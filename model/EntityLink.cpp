#include "model/LinkDirection.h"
#include "model/Words.h"

#include <Orvo/Kin/EntityLink.h>

#include <algorithm>

namespace Orvo::Kin {

namespace {

double ReadSlot(const double* slots, unsigned int slot) {
  return slot < LinkSlotCount ? slots[slot] : 0.0;
}

void WriteSlot(double* slots, unsigned int slot, double value) {
  if (slot < LinkSlotCount) {
    slots[slot] = value;
  }
}

}  // namespace

EntityLink::EntityLink() : type_(EntityLinkTypeUndef), zeroRef_{}, rangeMin_{}, rangeMax_{} {}

EntityLink::EntityLink(const EntityLink& other) : EntityLink() { *this = other; }

EntityLink& EntityLink::operator=(const EntityLink& other) {
  if (this != &other) {
    CountChange();
    type_ = other.type_;
    center_ = other.center_;
    dir_ = other.dir_;
    position_ = other.position_;
    std::copy_n(other.zeroRef_, LinkSlotCount, zeroRef_);
    std::copy_n(other.rangeMin_, LinkSlotCount, rangeMin_);
    std::copy_n(other.rangeMax_, LinkSlotCount, rangeMax_);
  }
  return *this;
}

EntityLink::~EntityLink() = default;

void EntityLink::CountChange() {
  if (changeNb_ != nullptr) {
    ++*changeNb_;
  }
}

void EntityLink::SetEntityLinkLinear(const Vector3D& dir) {
  CountChange();
  type_ = EntityLinkTypeLinear;
  dir_ = dir;
  dir_.MakeUnit(SmallestLinkDirection);
}

void EntityLink::SetEntityLinkRotary(const Vector3D& center, const Vector3D& dir) {
  CountChange();
  // The arguments may be this link's own fields.
  const Vector3D givenDir = dir;
  type_ = EntityLinkTypeRotary;
  center_ = center;
  dir_ = givenDir;
  dir_.MakeUnit(SmallestLinkDirection);
}

void EntityLink::SetEntityLinkPosition(const Matrix43& position) {
  CountChange();
  type_ = EntityLinkTypePosition;
  position_ = position;
}

void EntityLink::SetZeroRef(unsigned int slot, double value) {
  CountChange();
  WriteSlot(zeroRef_, slot, value);
}

void EntityLink::SetZeroRef(double value) { SetZeroRef(0, value); }

void EntityLink::SetRangeMin(unsigned int slot, double value) {
  CountChange();
  WriteSlot(rangeMin_, slot, value);
}

void EntityLink::SetRangeMin(double value) { SetRangeMin(0, value); }

void EntityLink::SetRangeMax(unsigned int slot, double value) {
  CountChange();
  WriteSlot(rangeMax_, slot, value);
}

void EntityLink::SetRangeMax(double value) { SetRangeMax(0, value); }

const EntityLinkType& EntityLink::GetEntityLinkType() const { return type_; }

const Vector3D& EntityLink::GetCenter() const { return center_; }

const Vector3D& EntityLink::GetDir() const { return dir_; }

const Matrix43& EntityLink::GetPosition() const { return position_; }

double EntityLink::GetZeroRef(unsigned int slot) const { return ReadSlot(zeroRef_, slot); }

double EntityLink::GetZeroRef() const { return GetZeroRef(0); }

double EntityLink::GetRangeMin(unsigned int slot) const { return ReadSlot(rangeMin_, slot); }

double EntityLink::GetRangeMin() const { return GetRangeMin(0); }

double EntityLink::GetRangeMax(unsigned int slot) const { return ReadSlot(rangeMax_, slot); }

double EntityLink::GetRangeMax() const { return GetRangeMax(0); }

bool EntityLink::GetEntityLinkTypeFromDict(const std::wstring& word, EntityLinkType& type) {
  return EntityLinkTypeWords.Find(word, &type);
}

}  // namespace Orvo::Kin
