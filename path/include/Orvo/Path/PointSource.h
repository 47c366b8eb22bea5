#pragma once

#include <Orvo/Path/Export.h>
#include <Orvo/Path/ToolPoint.h>

#include <cstddef>
#include <memory>

namespace Orvo::Path {

/// A place in a source, to return to. Only the source that gave it knows what it holds.
class ORVO_PATH_API SourcePlace {
 public:
  virtual ~SourcePlace();
};

/// Hands out the points of a tool path in order, as often as asked.
///
/// Solvers read a source more than once, so that a path of any length takes little memory. One
/// thread at a time.
class ORVO_PATH_API PointSource {
 public:
  virtual ~PointSource();

  /// Reads the next points.
  /// @param points    receives them
  /// @param capacity  how many there is room for
  /// @return how many were read; 0 behind the last one, if @p capacity isn't 0
  /// @throws ReadError where the path can't be understood
  virtual std::size_t Read(ToolPoint* points, std::size_t capacity) = 0;

  /// Returns the place of the point that the next Read() begins with.
  virtual std::shared_ptr<const SourcePlace> Mark() = 0;

  /// Goes back, or forth, to a place that this source gave; null is the beginning.
  /// @throws ReadError where the source can't go there, as a pipe can't
  virtual void Return(const std::shared_ptr<const SourcePlace>& place) = 0;

 protected:
  PointSource() = default;

  /// @{
  /// For sources that can be copied.
  PointSource(const PointSource&) = default;
  PointSource& operator=(const PointSource&) = default;
  /// @}
};

}  // namespace Orvo::Path
