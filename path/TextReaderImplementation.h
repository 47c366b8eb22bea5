#pragma once

#include "path/TextLines.h"

#include <Orvo/Path/PointSource.h>
#include <Orvo/Path/ReadError.h>
#include <Orvo/Path/ToolPoint.h>

#include <cstdint>
#include <filesystem>
#include <istream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvo::Path {

/// What readers of one format do for TextReader.
struct TextReaderImplementation {
  explicit TextReaderImplementation(const std::filesystem::path& file) : lines(file) {}
  TextReaderImplementation(std::unique_ptr<std::istream> stream, std::string name)
      : lines(std::move(stream), std::move(name)) {}
  TextReaderImplementation(const TextReaderImplementation&) = delete;
  TextReaderImplementation& operator=(const TextReaderImplementation&) = delete;
  virtual ~TextReaderImplementation() = default;

  /// Reads one point; false behind the last one.
  virtual bool Next(ToolPoint* point) = 0;

  /// What the format carries from one point to the next; null where it carries nothing.
  virtual std::shared_ptr<const SourcePlace> GetState() const { return nullptr; }

  /// Takes what GetState() gave; null is the state before the first point.
  virtual void SetState(const SourcePlace* state) { static_cast<void>(state); }

  /// Notes something that is passed over, once however often its line is read.
  void Note(std::uint64_t line, std::uint64_t column, std::string text);

  TextLines lines;
  TextLines::Place firstLine;
  std::vector<ReadNote> notes;
  std::uint64_t noteNb = 0;
  std::uint64_t notedLine = 0;
  std::uint64_t notedColumn = 0;
};

}  // namespace Orvo::Path
