#include "path/TextReaderImplementation.h"

#include <Orvo/Path/Readers.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace Orvo::Path {
namespace {

constexpr std::size_t MaxNotes = 1000;

class TextPlace : public SourcePlace {
 public:
  TextLines::Place line;
  std::shared_ptr<const SourcePlace> state;
};

}  // namespace

void TextReaderImplementation::Note(std::uint64_t line, std::uint64_t column, std::string text) {
  if (line < notedLine || (line == notedLine && column <= notedColumn)) {
    return;
  }
  notedLine = line;
  notedColumn = column;
  ++noteNb;
  if (notes.size() < MaxNotes) {
    notes.push_back({line, column, std::move(text)});
  }
}

TextReader::TextReader(std::unique_ptr<TextReaderImplementation> implementation)
    : implementation_(std::move(implementation)) {}

TextReader::~TextReader() = default;

std::size_t TextReader::Read(ToolPoint* points, std::size_t capacity) {
  std::size_t count = 0;
  while (count < capacity && implementation_->Next(&points[count])) {
    ++count;
  }
  return count;
}

std::shared_ptr<const SourcePlace> TextReader::Mark() {
  auto place = std::make_shared<TextPlace>();
  place->line = implementation_->lines.GetPlace();
  place->state = implementation_->GetState();
  return place;
}

void TextReader::Return(const std::shared_ptr<const SourcePlace>& place) {
  const auto* text = dynamic_cast<const TextPlace*>(place.get());
  implementation_->lines.Return(text != nullptr ? text->line : implementation_->firstLine);
  implementation_->SetState(text != nullptr ? text->state.get() : nullptr);
}

const std::vector<ReadNote>& TextReader::GetNotes() const { return implementation_->notes; }

std::uint64_t TextReader::GetNoteNb() const { return implementation_->noteNb; }

double TextReader::GetShareRead() const { return implementation_->lines.GetShareRead(); }

std::unique_ptr<TextReader> OpenPath(const std::filesystem::path& file) {
  std::string suffix = NameOf(file.extension());
  std::transform(suffix.begin(), suffix.end(), suffix.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  if (suffix == ".csv") {
    return std::make_unique<CsvReader>(file);
  }
  if (suffix == ".jsonl" || suffix == ".ndjson") {
    return std::make_unique<JsonLinesReader>(file);
  }
  constexpr std::string_view aptSuffixes[] = {".apt", ".aptsource", ".cl", ".cls", ".ncl"};
  if (std::find(std::begin(aptSuffixes), std::end(aptSuffixes), suffix) != std::end(aptSuffixes)) {
    return std::make_unique<AptReader>(file);
  }
  throw ReadError(NameOf(file), 0, 0,
                  "the suffix " + Quote(suffix) +
                      " names no kind of path; expected .csv, .jsonl, .ndjson, .apt, .aptsource, "
                      ".cl, .cls or .ncl");
}

}  // namespace Orvo::Path
