#include <Orvo/ISerializableXML.h>

namespace Orvo {

ISerializableXML::~ISerializableXML() = default;

}  // namespace Orvo
