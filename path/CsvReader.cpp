#include "path/TextReaderImplementation.h"

#include <Orvo/Path/Readers.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace Orvo::Path {
namespace {

constexpr std::size_t Absent = static_cast<std::size_t>(-1);

/// The columns in the order in which a row's values are kept: the six needed ones come first.
constexpr std::array<std::string_view, 8> Names = {"x", "y", "z", "i", "j", "k", "feed", "rapid"};
constexpr std::size_t NeededNb = 6;
constexpr std::size_t FeedPlace = 6;
constexpr std::size_t RapidPlace = 7;

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return lower;
}

std::size_t FindName(std::string_view text) {
  const std::string name = Lower(text);
  if (name == "f") {
    return FeedPlace;
  }
  const auto* const found = std::find(Names.begin(), Names.end(), name);
  return found == Names.end() ? Absent : static_cast<std::size_t>(found - Names.begin());
}

struct Field {
  std::size_t begin = 0;
  std::string_view text;
};

struct CsvImplementation : TextReaderImplementation {
  using TextReaderImplementation::TextReaderImplementation;

  void ReadHeader();
  bool Next(ToolPoint* point) override;

 private:
  bool NextContent(std::string_view* content);
  bool TakeField(std::string_view content, std::size_t* position, Field* field) const;
  void NameColumn(const Field& field);
  double ReadValue(const Field& field, std::size_t place) const;
  bool ReadRapid(const Field& field) const;

  char separator_ = ',';
  std::size_t columnNb_ = 0;
  std::array<std::size_t, Names.size()> columns_ = {};
};

bool CsvImplementation::NextContent(std::string_view* content) {
  while (lines.Next()) {
    const std::string_view line = lines.GetLine();
    *content = line.substr(0, line.find('#'));
    if (!Trim(*content).empty()) {
      const std::size_t quote = content->find('"');
      if (quote != std::string_view::npos) {
        lines.Blame(quote, "a quoted field; expected the plain value");
      }
      return true;
    }
  }
  return false;
}

bool CsvImplementation::TakeField(std::string_view content, std::size_t* position,
                                  Field* field) const {
  if (*position > content.size()) {
    return false;
  }
  const std::size_t end = std::min(content.find(separator_, *position), content.size());
  const std::string_view raw = content.substr(*position, end - *position);
  field->text = Trim(raw);
  field->begin = field->text.empty()
                     ? *position
                     : *position + static_cast<std::size_t>(field->text.data() - raw.data());
  *position = end + 1;
  return true;
}

void CsvImplementation::NameColumn(const Field& field) {
  const std::size_t place = FindName(field.text);
  if (place == Absent) {
    return;
  }
  if (columns_[place] != Absent) {
    lines.Blame(field.begin,
                "the column " + std::string(Names[place]) + " is named twice; expected it once");
  }
  columns_[place] = columnNb_;
}

void CsvImplementation::ReadHeader() {
  std::string_view content;
  if (!NextContent(&content)) {
    lines.BlameLine(1, 1, "the file is empty; expected the names of the columns x,y,z,i,j,k");
  }
  separator_ = content.find(';') != std::string_view::npos ? ';' : ',';
  columns_.fill(Absent);
  Field field;
  std::size_t position = 0;
  while (TakeField(content, &position, &field)) {
    NameColumn(field);
    ++columnNb_;
  }
  std::string missing;
  for (std::size_t i = 0; i < NeededNb; ++i) {
    if (columns_[i] == Absent) {
      missing += (missing.empty() ? "" : ",") + std::string(Names[i]);
    }
  }
  if (!missing.empty()) {
    const std::size_t begin = static_cast<std::size_t>(Trim(content).data() - content.data());
    lines.Blame(begin, "there is no column " + missing + " in " + Quote(Trim(content)) +
                           "; expected the names x,y,z,i,j,k, separated by commas or semicolons");
  }
  firstLine = lines.GetPlace();
}

double CsvImplementation::ReadValue(const Field& field, std::size_t place) const {
  double value = 0.0;
  const char* const fault = ReadNumber(field.text, &value);
  if (fault != nullptr) {
    const std::string column(Names[place]);
    const bool isDecimalComma = field.text.find(',') != std::string_view::npos;
    lines.Blame(field.begin, field.text.empty()
                                 ? column + " is empty; expected a number"
                                 : column + ": " + Quote(field.text) + " " + fault +
                                       "; expected a number" +
                                       (isDecimalComma ? " with a decimal point" : ""));
  }
  return value;
}

bool CsvImplementation::ReadRapid(const Field& field) const {
  const std::string word = Lower(field.text);
  if (word == "1" || word == "true") {
    return true;
  }
  if (!word.empty() && word != "0" && word != "false") {
    lines.Blame(field.begin,
                "rapid: " + Quote(field.text) + "; expected 0, 1, true, false or nothing");
  }
  return false;
}

bool CsvImplementation::Next(ToolPoint* point) {
  std::string_view content;
  if (!NextContent(&content)) {
    return false;
  }
  std::array<Field, Names.size()> fields;
  std::size_t position = 0;
  std::size_t count = 0;
  Field field;
  while (TakeField(content, &position, &field)) {
    if (count == columnNb_) {
      lines.Blame(field.begin,
                  "one field too many; expected " + std::to_string(columnNb_) + " fields");
    }
    for (std::size_t i = 0; i < Names.size(); ++i) {
      if (columns_[i] == count) {
        fields[i] = field;
      }
    }
    ++count;
  }
  if (count < columnNb_) {
    lines.Blame(content.size(),
                "only " + std::to_string(count) + " fields; expected " + std::to_string(columnNb_));
  }
  std::array<double, NeededNb> values = {};
  for (std::size_t i = 0; i < NeededNb; ++i) {
    values[i] = ReadValue(fields[i], i);
  }
  if (!MakeDirection(&values[3])) {
    lines.Blame(fields[3].begin, "the direction i,j,k is null; expected a direction");
  }
  *point = ToolPoint();
  point->point.Set(values[0], values[1], values[2]);
  point->direction.Set(values[3], values[4], values[5]);
  point->line = lines.GetNumber();
  if (!fields[FeedPlace].text.empty()) {
    point->feed = ReadValue(fields[FeedPlace], FeedPlace);
    if (point->feed < 0.0) {
      lines.Blame(fields[FeedPlace].begin, "the feed is negative; expected 0 or more");
    }
  }
  point->isRapid = ReadRapid(fields[RapidPlace]);
  return true;
}

std::unique_ptr<TextReaderImplementation> WithHeader(std::unique_ptr<CsvImplementation> reader) {
  reader->ReadHeader();
  return reader;
}

}  // namespace

CsvReader::CsvReader(const std::filesystem::path& file)
    : TextReader(WithHeader(std::make_unique<CsvImplementation>(file))) {}

CsvReader::CsvReader(std::unique_ptr<std::istream> stream, const std::string& name)
    : TextReader(WithHeader(std::make_unique<CsvImplementation>(std::move(stream), name))) {}

}  // namespace Orvo::Path
