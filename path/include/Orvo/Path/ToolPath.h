#pragma once

#include <Orvo/Path/Export.h>
#include <Orvo/Path/PointSource.h>
#include <Orvo/Path/ToolPoint.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace Orvo::Path {

/// A tool path in memory.
class ORVO_PATH_API ToolPath {
 public:
  /// Makes an empty path.
  ToolPath();

  /// Takes the points.
  explicit ToolPath(std::vector<ToolPoint> points);

  /// Reads all points that a source has left.
  /// @throws ReadError as the source does
  static ToolPath ReadAll(PointSource& source);

  /// Appends a point.
  void Add(const ToolPoint& point);

  /// Returns the points.
  const std::vector<ToolPoint>& GetPoints() const { return points_; }

  /// Returns the points for change in place.
  std::vector<ToolPoint>& GetPointsMod() { return points_; }

  /// Returns the number of points.
  std::size_t GetPointNb() const { return points_.size(); }

  /// Adds a vector to the tip of each point: where the path's origin lies in the table's frame.
  void Shift(const Vector3D& shift);

 private:
  std::vector<ToolPoint> points_;
};

/// Hands out the points of a path in memory, which must outlive it and not change meanwhile.
class ORVO_PATH_API ToolPathSource : public PointSource {
 public:
  /// Begins with the first point.
  explicit ToolPathSource(const ToolPath& path);

  std::size_t Read(ToolPoint* points, std::size_t capacity) override;
  std::shared_ptr<const SourcePlace> Mark() override;
  void Return(const std::shared_ptr<const SourcePlace>& place) override;

 private:
  const ToolPath* path_;
  std::size_t next_ = 0;
};

/// Hands out the points of another source with a vector added to each tip: where the path's origin
/// lies in the table's frame. The other source must outlive it.
class ORVO_PATH_API ShiftedSource : public PointSource {
 public:
  /// Begins where the other source stands.
  ShiftedSource(PointSource& source, const Vector3D& shift);

  std::size_t Read(ToolPoint* points, std::size_t capacity) override;
  std::shared_ptr<const SourcePlace> Mark() override;
  void Return(const std::shared_ptr<const SourcePlace>& place) override;

 private:
  PointSource* source_;
  Vector3D shift_;
};

}  // namespace Orvo::Path
