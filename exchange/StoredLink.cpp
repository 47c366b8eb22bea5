#include "exchange/StoredLink.h"

#include "exchange/ByteSink.h"
#include "exchange/MachineWords.h"
#include "exchange/TextEncoding.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Kin/Machine.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace Orvo::Exchange {
namespace {

using Kin::EntityLink;

constexpr int MultipleNb = 64;

bool HasSameBits(const Vector3D& a, const Vector3D& b) {
  return std::memcmp(a.Get_m128d(), b.Get_m128d(), sizeof(Vector3D)) == 0;
}

bool IsNull(const Vector3D& v) { return HasSameBits(v, Vector3D()); }

// Links make their direction unit, which may move the last bits of one that is unit already. Of its
// multiples one comes out as it was: each is rounded anew.
Vector3D FindDirection(const Vector3D& dir) {
  for (int i = 0; i < MultipleNb; ++i) {
    Vector3D multiple = dir;
    multiple *= 1.0 + static_cast<double>(i) / MultipleNb;
    EntityLink trial;
    trial.SetEntityLinkLinear(multiple);
    if (HasSameBits(trial.GetDir(), dir)) {
      return multiple;
    }
  }
  return dir;
}

/// A file of its own that goes with this object.
class TemporaryFile {
 public:
  TemporaryFile() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error) {
      throw ExchangeError("the system has no folder for temporary files");
    }
    std::random_device random;
    std::string name = "orvo_";
    for (int i = 0; i < 4; ++i) {
      name += std::to_string(random()) + (i < 3 ? "_" : ".xml");
    }
    path_ = folder / name;
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  const std::filesystem::path& GetPath() const { return path_; }

 private:
  std::filesystem::path path_;
};

std::string NumberText(double value) {
  std::string text;
  if (std::isnan(value)) {
    text = "nan";
  } else if (std::isinf(value)) {
    text = "inf";
  } else {
    AppendNumber(std::abs(value), &text);
  }
  return (std::signbit(value) ? "-" : "") + text;
}

std::string VectorText(const char* name, const double* v) {
  return std::string("<") + name + " X=\"" + NumberText(v[0]) + "\" Y=\"" + NumberText(v[1]) +
         "\" Z=\"" + NumberText(v[2]) + "\"/>";
}

std::string EntityText(const StoredLink& stored) {
  const double* const m = stored.position;
  return "<Entity><Name/><Type>AXIS</Type><ParallelType>CHAIN</ParallelType><Id>1</Id>"
         "<ParentId>-1</ParentId><Register>-1</Register><Motor>false</Motor>"
         "<RangeAxis>false</RangeAxis><Mounting>false</Mounting><EntityLink><Type>" +
         std::string(LinkTypeWords[static_cast<std::size_t>(stored.type)]) + "</Type>" +
         VectorText("Center", stored.center) + VectorText("Dir", FindDirection(stored.dir)) +
         "<Position>" + VectorText("U", m) + VectorText("V", m + 4) + VectorText("W", m + 8) +
         VectorText("T", m + 12) +
         "</Position><ZeroRef>0</ZeroRef><RangeMin>0</RangeMin><RangeMax>0</RangeMax>"
         "</EntityLink></Entity>";
}

}  // namespace

bool CanBeRead(const StoredLink& stored) {
  const double* const m = stored.position;
  return m[3] == 0.0 && m[7] == 0.0 && m[11] == 0.0 && m[15] == 1.0;
}

bool CanBeSet(const StoredLink& stored) {
  switch (stored.type) {
    case Kin::EntityLinkTypeLinear:
    case Kin::EntityLinkTypeRotary:
    case Kin::EntityLinkTypePosition:
      return true;
    case Kin::EntityLinkTypeUndef:
      return IsNull(stored.center) && IsNull(stored.dir) &&
             std::memcmp(static_cast<const double*>(stored.position), IdentityFrame,
                         sizeof IdentityFrame) == 0;
    default:
      return false;
  }
}

void SetLink(const StoredLink& stored, EntityLink* link) {
  if (stored.type == Kin::EntityLinkTypeUndef) {
    return;
  }
  link->SetEntityLinkPosition(stored.position);
  const bool isAxis = stored.type != Kin::EntityLinkTypePosition;
  if (isAxis || !IsNull(stored.center) || !IsNull(stored.dir)) {
    link->SetEntityLinkRotary(stored.center, FindDirection(stored.dir));
  }
  if (stored.type == Kin::EntityLinkTypeLinear) {
    // The same argument again comes out the same.
    link->SetEntityLinkLinear(FindDirection(stored.dir));
  } else if (!isAxis) {
    link->SetEntityLinkPosition(stored.position);
  }
}

std::vector<EntityLink> ReadLinks(const std::vector<StoredLink>& stored) {
  const TemporaryFile file;
  FileSink sink(file.GetPath());
  WriteBytes("<Machine><Entities>", sink.Stream());
  for (const StoredLink& link : stored) {
    WriteBytes(EntityText(link), sink.Stream());
  }
  WriteBytes("</Entities></Machine>", sink.Stream());
  sink.Finish();
  Kin::Machine machine;
  if (!machine.ReadXML(WidePath(file.GetPath()))) {
    throw ExchangeError(NameOf(file.GetPath()) + ": the file can't be read");
  }
  std::vector<EntityLink> links;
  links.reserve(stored.size());
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    links.push_back(entity.GetEntityLink());
  }
  return links;
}

}  // namespace Orvo::Exchange
