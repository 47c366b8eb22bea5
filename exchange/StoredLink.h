#pragma once

#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Vector3D.h>

#include <vector>

namespace Orvo::Exchange {

/// What a link holds beside its slots.
struct StoredLink {
  Kin::EntityLinkType type = Kin::EntityLinkTypeUndef;
  Vector3D center;
  Vector3D dir;
  Matrix43 position;
};

/// Tells whether a link can be set by calls; the others need a machine file.
bool CanBeSet(const StoredLink& stored);

/// Tells whether a machine file can hold a link.
bool CanBeRead(const StoredLink& stored);

/// Sets a link by calls.
void SetLink(const StoredLink& stored, Kin::EntityLink* link);

/// Makes links by way of a machine file in the system's folder for temporary files, which is gone
/// when this returns.
/// @throws ExchangeError when the file can't be made or read
std::vector<Kin::EntityLink> ReadLinks(const std::vector<StoredLink>& stored);

}  // namespace Orvo::Exchange
