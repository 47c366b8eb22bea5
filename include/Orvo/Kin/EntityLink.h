#pragma once

#include <Orvo/Export.h>
#include <Orvo/ISerializableXML.h>
#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <string>

namespace Orvo::Kin {

/// The number of slots of a link's zero references and limits.
constexpr unsigned int LinkSlotCount = 6;

/// Joins one element to its parent: by a translation, a rotation or a fixed frame.
///
/// Also holds the zero reference and the travel limits, in six slots each. A simple axis uses slot
/// 0: the operations without a slot mean it, and the machine file keeps it alone. Lengths are in
/// the machine's unit, rotary limits in degrees. Directions, centers and frames stand in the
/// parent's frame. Setting one kind leaves the fields of the others as they were.
///
/// A slot above 5 reads as 0 and is not written. Nothing here fails: any doubles are stored as they
/// are, but for directions, which are made unit as Vector3D::MakeUnit() does it.
class ORVO_API EntityLink : public ISerializableXML {
 public:
  /// Makes a link of the type UNDEF: null center and direction, identity frame, zeros.
  EntityLink();

  /// Copies everything, all slots included.
  EntityLink(const EntityLink& other);

  /// Copies everything, all slots included.
  EntityLink& operator=(const EntityLink& other);
  ~EntityLink() override;

  /// Makes this a translation along @p dir, which is stored at unit length; a direction shorter
  /// than 0.001 is stored as (1, 0, 0).
  void SetEntityLinkLinear(const Vector3D& dir);

  /// Makes this a rotation about the line through @p center along @p dir; the direction is stored
  /// as SetEntityLinkLinear() stores it, the center as given.
  void SetEntityLinkRotary(const Vector3D& center, const Vector3D& dir);

  /// Makes this a fixed placement: @p position is parentFromElement.
  void SetEntityLinkPosition(const Matrix43& position);

  /// @{
  /// Stores a zero reference, a lower or an upper limit; nothing is checked.
  void SetZeroRef(unsigned int slot, double value);
  void SetZeroRef(double value);
  void SetRangeMin(unsigned int slot, double value);
  void SetRangeMin(double value);
  void SetRangeMax(unsigned int slot, double value);
  void SetRangeMax(double value);
  /// @}

  /// Returns the kind of joint.
  const EntityLinkType& GetEntityLinkType() const;

  /// Returns a point of the rotation axis, in the parent's frame.
  const Vector3D& GetCenter() const;

  /// Returns the unit direction of travel or of the rotation axis, in the parent's frame.
  const Vector3D& GetDir() const;

  /// Returns the fixed placement, parentFromElement.
  const Matrix43& GetPosition() const;

  /// @{
  /// Returns a zero reference or a limit.
  double GetZeroRef(unsigned int slot) const;
  double GetZeroRef() const;
  double GetRangeMin(unsigned int slot) const;
  double GetRangeMin() const;
  double GetRangeMax(unsigned int slot) const;
  double GetRangeMax() const;
  /// @}

 protected:
  bool SerializeXML(XMLWriter& writer, XMLElement* parent) override;
  bool DeserializeXML(XMLReader& reader, XMLElement* parent) override;

 private:
  friend class Entity;

  bool GetEntityLinkTypeFromDict(const std::wstring& word, EntityLinkType& type);
  ORVO_LOCAL void CountChange();

  EntityLinkType type_;
  Vector3D center_;
  Vector3D dir_;
  Matrix43 position_;
  double zeroRef_[LinkSlotCount];
  double rangeMin_[LinkSlotCount];
  double rangeMax_[LinkSlotCount];

  // Counts changes of the link; null where nobody asks. A copy has none.
  unsigned long long* changeNb_ = nullptr;
};

}  // namespace Orvo::Kin
