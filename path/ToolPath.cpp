#include <Orvo/Path/ToolPath.h>

#include <algorithm>
#include <utility>

namespace Orvo::Path {
namespace {

constexpr std::size_t BlockPoints = 4096;

class IndexPlace : public SourcePlace {
 public:
  explicit IndexPlace(std::size_t index) : next(index) {}
  std::size_t next;
};

}  // namespace

SourcePlace::~SourcePlace() = default;
PointSource::~PointSource() = default;

ToolPath::ToolPath() = default;
ToolPath::ToolPath(std::vector<ToolPoint> points) : points_(std::move(points)) {}

ToolPath ToolPath::ReadAll(PointSource& source) {
  std::vector<ToolPoint> points;
  std::vector<ToolPoint> block(BlockPoints);
  for (std::size_t n = source.Read(block.data(), block.size()); n > 0;
       n = source.Read(block.data(), block.size())) {
    points.insert(points.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(n));
  }
  return ToolPath(std::move(points));
}

void ToolPath::Add(const ToolPoint& point) { points_.push_back(point); }

void ToolPath::Shift(const Vector3D& shift) {
  for (ToolPoint& point : points_) {
    point.point += shift;
  }
}

ToolPathSource::ToolPathSource(const ToolPath& path) : path_(&path) {}

std::size_t ToolPathSource::Read(ToolPoint* points, std::size_t capacity) {
  const std::size_t count = std::min(capacity, path_->GetPointNb() - next_);
  std::copy_n(path_->GetPoints().begin() + static_cast<std::ptrdiff_t>(next_), count, points);
  next_ += count;
  return count;
}

std::shared_ptr<const SourcePlace> ToolPathSource::Mark() {
  return std::make_shared<IndexPlace>(next_);
}

void ToolPathSource::Return(const std::shared_ptr<const SourcePlace>& place) {
  const auto* index = dynamic_cast<const IndexPlace*>(place.get());
  next_ = index != nullptr ? std::min(index->next, path_->GetPointNb()) : 0;
}

ShiftedSource::ShiftedSource(PointSource& source, const Vector3D& shift)
    : source_(&source), shift_(shift) {}

std::size_t ShiftedSource::Read(ToolPoint* points, std::size_t capacity) {
  const std::size_t count = source_->Read(points, capacity);
  for (std::size_t i = 0; i < count; ++i) {
    points[i].point += shift_;
  }
  return count;
}

std::shared_ptr<const SourcePlace> ShiftedSource::Mark() { return source_->Mark(); }

void ShiftedSource::Return(const std::shared_ptr<const SourcePlace>& place) {
  source_->Return(place);
}

}  // namespace Orvo::Path
