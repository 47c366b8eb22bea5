#include "io/MeshFileName.h"

namespace Orvo::Kin {

std::wstring MeshFileName(const std::wstring& machinePath, const EntityId& id,
                          unsigned int meshIndex) {
  return machinePath.substr(0, machinePath.rfind(L'.')) + L"_" + std::to_wstring(id.GetVal()) +
         L"_" + std::to_wstring(meshIndex) + L".stl";
}

}  // namespace Orvo::Kin
