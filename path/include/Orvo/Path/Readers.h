#pragma once

#include <Orvo/Path/Export.h>
#include <Orvo/Path/PointSource.h>
#include <Orvo/Path/ReadError.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <istream>
#include <memory>
#include <string>
#include <vector>

namespace Orvo::Path {

struct TextReaderImplementation;

/// What the readers of text files have in common.
///
/// Files are UTF-8; lines end in a line feed, alone or behind a carriage return. Memory is
/// constant, whatever the file holds: lines of more than 65536 bytes are refused. Numbers have a
/// decimal point whatever the locale; they must be finite. Everything that can't be understood is a
/// ReadError that names file, line, column and what was expected.
class ORVO_PATH_API TextReader : public PointSource {
 public:
  ~TextReader() override;

  std::size_t Read(ToolPoint* points, std::size_t capacity) override;
  std::shared_ptr<const SourcePlace> Mark() override;
  void Return(const std::shared_ptr<const SourcePlace>& place) override;

  /// Returns what of APT source was passed over so far, in the order of the file; the first 1000 of
  /// it. Columns and members that other files have beyond those of a path are not noted.
  const std::vector<ReadNote>& GetNotes() const;

  /// Returns how much was passed over so far, beyond the 1000 that are kept.
  std::uint64_t GetNoteNb() const;

  /// Returns how much of the file has been read, from 0 to 1; negative where its size isn't known.
  double GetShareRead() const;

 protected:
  /// Takes what reads one format.
  explicit TextReader(std::unique_ptr<TextReaderImplementation> implementation);
  TextReader(const TextReader&) = delete;
  TextReader& operator=(const TextReader&) = delete;

 private:
  std::unique_ptr<TextReaderImplementation> implementation_;
};

/// Reads a path from comma-separated or semicolon-separated values.
///
/// The first line that is neither empty nor a comment names the columns, in any order and either
/// case: x, y, z, i, j, k are needed; f or feed, and rapid (0, 1, true, false), may be there and
/// may be empty; others are passed over. '#' starts a comment, at the start of a line or behind the
/// values. A header with a semicolon makes the semicolon the separator.
class ORVO_PATH_API CsvReader : public TextReader {
 public:
  /// Opens a file and reads its header.
  /// @throws ReadError
  explicit CsvReader(const std::filesystem::path& file);

  /// Reads from a stream; @p name stands for the file in messages.
  /// @throws ReadError
  CsvReader(std::unique_ptr<std::istream> stream, const std::string& name);
};

/// Reads a path from JSON Lines: one object a line, `{"x":0,"y":0,"z":0,"i":0,"j":0,"k":1}`, with
/// "feed" and "rapid" where they are known (null where not). Other members are passed over, and so
/// are empty lines.
class ORVO_PATH_API JsonLinesReader : public TextReader {
 public:
  /// Opens a file.
  /// @throws ReadError
  explicit JsonLinesReader(const std::filesystem::path& file);

  /// Reads from a stream; @p name stands for the file in messages.
  JsonLinesReader(std::unique_ptr<std::istream> stream, const std::string& name);
};

/// Reads a path from APT source or the text form of a CL file.
///
/// Understood are GOTO and FROM (three numbers, or six with the direction), MULTAX with ON or OFF,
/// FEDRAT, RAPID (for the next move, unless FEDRAT comes before it), UNITS with MM or INCHES,
/// CUTTER, LOADTL, PARTNO, PPRINT, the comment `$$`, the continuation `$`, and FINI, behind which
/// nothing is read. Words are taken in either case. A point without a direction keeps the one
/// before it, (0, 0, 1) at the start and behind MULTAX/OFF. FROM gives a point, marked as rapid.
/// Behind UNITS/INCHES lengths are multiplied by 25.4, so that points come out in millimeters;
/// feeds come out per minute, and a feed per revolution counts as none.
///
/// Labels are passed over. Any other word is noted, see GetNotes(), and so are words that would
/// repeat or transform points, as COPY and TRACUT. Arcs, curves, moves along geometry and
/// incremental moves are refused; so are blanks within a number, which mostly are a missing comma.
class ORVO_PATH_API AptReader : public TextReader {
 public:
  /// Opens a file.
  /// @throws ReadError
  explicit AptReader(const std::filesystem::path& file);

  /// Reads from a stream; @p name stands for the file in messages.
  AptReader(std::unique_ptr<std::istream> stream, const std::string& name);
};

/// Opens a path by the suffix of its file, in either case: .csv; .jsonl or .ndjson; .apt,
/// .aptsource, .cl, .cls or .ncl.
/// @throws ReadError, for any other suffix too
ORVO_PATH_API std::unique_ptr<TextReader> OpenPath(const std::filesystem::path& file);

}  // namespace Orvo::Path
