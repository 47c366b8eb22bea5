#pragma once

#include "exchange/GltfBinary.h"
#include "exchange/JsonText.h"
#include "exchange/MachineTree.h"

#include <Orvo/Exchange/Gltf.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Orvo::Exchange {

/// The largest size of a file and of its binary part, in bytes.
inline constexpr std::uint64_t LargestSize = std::numeric_limits<std::uint32_t>::max();

/// A machine as glTF: everything but the bytes of the binary part.
class GltfScene {
 public:
  GltfScene(const Kin::Machine& machine, const GltfOptions& options);

  /// Returns the text.
  /// @param uri  of the binary part; empty for the one in the same file
  std::string MakeText(const std::string& uri) const;

  std::uint64_t GetBinarySize() const { return binarySize_; }
  void WriteBinary(std::ostream& out, BinarySink::Form form) const;

 private:
  struct Primitive {
    std::size_t vertices = 0;
    std::optional<std::size_t> indices;
    std::size_t material = 0;
  };

  struct Channel {
    std::size_t node = 0;
    bool isRotary = false;
    std::size_t times = 0;
    std::size_t values = 0;
  };

  std::size_t Add(BinaryPart part);
  std::size_t AddMaterial(unsigned int color);
  void AddMeshes();
  void AddChannels();
  double RestValue(const TreeNode& node) const;
  void WriteNodes(JsonText* json) const;
  void WriteNode(std::size_t place, JsonText* json) const;
  void WriteExtras(const TreeNode& node, JsonText* json) const;
  void WriteMeshes(JsonText* json) const;
  void WriteAnimation(JsonText* json) const;
  void WriteParts(JsonText* json) const;

  const GltfOptions& options_;
  std::vector<TreeNode> nodes_;
  std::vector<BinaryPart> parts_;
  std::vector<std::uint64_t> offsets_;
  std::uint64_t binarySize_ = 0;
  std::vector<std::size_t> meshOfNode_;  ///< by node; NoParent where it has none
  std::vector<std::vector<Primitive>> meshes_;
  std::vector<std::string> meshNames_;
  std::map<unsigned int, std::size_t> materialOfColor_;
  std::vector<unsigned int> colors_;
  std::vector<Channel> channels_;
};

}  // namespace Orvo::Exchange
