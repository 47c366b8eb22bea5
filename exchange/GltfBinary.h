#pragma once

#include <Orvo/Mesh.h>
#include <Orvo/Vector3D.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace Orvo::Exchange {

/// Where the bytes of the binary part go, in their order.
class BinarySink {
 public:
  enum class Form : int { Plain, Base64 };

  BinarySink(std::ostream* out, Form form) : out_(out), form_(form) {}

  void Float(float value);
  void Integer(std::uint32_t value);

  /// Hands on what is left.
  /// @throws ExchangeError when the stream fails
  void Finish();

 private:
  void Flush(bool isEnd);

  std::ostream* out_;
  Form form_;
  std::string bytes_;
};

/// One view of the binary part with the accessor to it; what it holds is made as it is written.
struct BinaryPart {
  enum class Shape : int { Scalar, Vec3, Vec4 };

  Shape shape = Shape::Scalar;
  bool isInteger = false;
  int target = 0;           ///< what glTF calls the view's target; 0 for none
  std::uint64_t count = 0;  ///< elements of the accessor
  std::vector<float> min;   ///< empty where glTF asks for none
  std::vector<float> max;
  std::function<void(BinarySink*)> write;

  std::uint64_t GetSize() const;
};

/// The parts of a mesh: vertices and, where corners share them, indices.
struct MeshParts {
  BinaryPart vertices;
  BinaryPart indices;  ///< its count is 0 where the vertices stand corner after corner
};

/// Looks a mesh through.
///
/// @param mesh   must be there when the parts are written
/// @param pivot  where the node stands in the mesh's frame
/// @param scale  meters a unit
/// @param owner  names the element in messages
/// @return parts whose vertices number 0 where the mesh has no triangle
/// @throws ExchangeError: an index beyond its array, a number that is no 32-bit float
MeshParts MakeMeshParts(const Mesh& mesh, const Vector3D& pivot, double scale,
                        const std::string& owner);

}  // namespace Orvo::Exchange
