// A tool path of any bytes: the first byte chooses among the readers, the others are the file. What
// is read holds what it promises, and comes out the same when it is read again, as a whole and from
// a place in its middle.

#include "Check.h"
#include "InputFile.h"
#include "Target.h"

#include <Orvo/Path/ReadError.h>
#include <Orvo/Path/Readers.h>

#include <cmath>
#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

using namespace Orvo;
using namespace Orvo::Fuzz;
using namespace Orvo::Path;

namespace {

std::unique_ptr<TextReader> Open(unsigned int kind, std::string_view text) {
  auto stream = std::make_unique<std::istringstream>(std::string(text));
  switch (kind % 3) {
    case 0:
      return std::make_unique<CsvReader>(std::move(stream), "in");
    case 1:
      return std::make_unique<JsonLinesReader>(std::move(stream), "in");
    default:
      return std::make_unique<AptReader>(std::move(stream), "in");
  }
}

void RequireSound(const ToolPoint& point) {
  for (int i = 0; i < 3; ++i) {
    Require(std::isfinite(point.point[i]) || std::abs(point.point[i]) > 1e300,
            "a tip is finite, but for inches beyond the largest number");
  }
  Require(std::abs(point.direction.Norm() - 1.0) < 1e-12, "a direction is unit");
  Require(point.feed >= 0.0, "a feed is not negative");
  Require(point.line > 0, "a point knows its line");
}

bool IsSame(const ToolPoint& a, const ToolPoint& b) {
  bool isSame = true;
  for (int i = 0; i < 3; ++i) {
    isSame = isSame && a.point[i] == b.point[i] && a.direction[i] == b.direction[i];
  }
  return isSame && a.feed == b.feed && a.line == b.line && a.isRapid == b.isRapid;
}

/// Reads on, as far as the file can be understood; tells whether that was to its end.
bool ReadOn(TextReader* reader, std::vector<ToolPoint>* points) {
  try {
    ToolPoint point;
    while (reader->Read(&point, 1) == 1) {
      RequireSound(point);
      points->push_back(point);
    }
    return true;
  } catch (const ReadError& error) {
    Require(error.GetFile() == "in", "an error names the file");
    Require((error.GetLine() == 0) == (error.GetColumn() == 0), "a line has a column");
    Require(!error.GetMessage().empty(), "an error says something");
    return false;
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string_view text = TextOf(data + 1, size - 1);
  std::unique_ptr<TextReader> reader;
  try {
    reader = Open(data[0], text);
  } catch (const ReadError&) {
    return 0;
  }
  std::vector<ToolPoint> points;
  const bool isWhole = ReadOn(reader.get(), &points);
  const std::uint64_t noteNb = reader->GetNoteNb();

  reader->Return(nullptr);
  std::vector<ToolPoint> again(points.size() / 2);
  Require(reader->Read(again.data(), again.size()) == again.size(), "points come again");
  const auto middle = reader->Mark();
  const bool isWholeAgain = ReadOn(reader.get(), &again);
  Require(isWholeAgain == isWhole && again.size() == points.size(), "as many come again");
  reader->Return(middle);
  std::vector<ToolPoint> rest;
  ReadOn(reader.get(), &rest);
  for (std::size_t i = 0; i < points.size(); ++i) {
    Require(IsSame(points[i], again[i]), "the same points come again");
    const std::size_t half = points.size() / 2;
    Require(i < half || IsSame(points[i], rest[i - half]), "and from the middle on");
  }
  Require(reader->GetNoteNb() == noteNb, "what is passed over is noted once");
  return 0;
}
