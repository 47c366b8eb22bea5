#include "PathReader.h"

#include "NumberText.h"
#include "WideText.h"

#include <algorithm>
#include <cmath>

namespace OrvoTool {
namespace {

/// The columns that are known; the needed ones come first, in the order in which points hold them.
constexpr std::array<std::string_view, 8> Names = {"x", "y", "z", "i", "j", "k", "feed", "rapid"};
constexpr std::size_t FeedPlace = 6;
constexpr std::size_t RapidPlace = 7;

constexpr std::size_t Absent = static_cast<std::size_t>(-1);

/// How much of a wrong text a message quotes.
constexpr std::size_t QuotedBytes = 40;

std::string Quote(std::string_view text) {
  return "'" + Printable(text.substr(0, QuotedBytes)) + (text.size() > QuotedBytes ? "...'" : "'");
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return lower;
}

std::size_t FindName(std::string_view text) {
  const std::string name = Lower(text);
  const auto* const found = std::find(Names.begin(), Names.end(), name == "f" ? "feed" : name);
  return found == Names.end() ? Absent : static_cast<std::size_t>(found - Names.begin());
}

/// Makes a vector unit without overflow or underflow; false for the null vector.
bool MakeUnitExactly(Orvo::Vector3D* v, bool* wasUnit) {
  const double largest = v->NormSup();
  if (largest == 0.0) {
    return false;
  }
  const double norm = v->Norm();
  *wasUnit = std::abs(norm - 1.0) <= 0.001;
  if (!(norm > 1e-100 && norm < 1e100)) {
    v->Set((*v)[0] / largest, (*v)[1] / largest, (*v)[2] / largest);
  }
  const double scale = v->Norm();
  v->Set((*v)[0] / scale, (*v)[1] / scale, (*v)[2] / scale);
  return true;
}

}  // namespace

PathReader::PathReader(const std::string& name) : lines_(name) {
  std::string_view content;
  if (!NextContent(&content)) {
    lines_.BlameBegin("the file is empty; its first line must name the columns x,y,z,i,j,k");
  }
  ReadHeader(content);
}

bool PathReader::NextContent(std::string_view* content) {
  while (lines_.Next()) {
    const std::string_view line = lines_.GetLine();
    *content = line.substr(0, line.find('#'));
    if (!Trim(*content).empty()) {
      const std::size_t quote = content->find('"');
      if (quote != std::string_view::npos) {
        lines_.Blame(quote, "quoted fields are not read; write the plain value");
      }
      return true;
    }
  }
  return false;
}

bool PathReader::TakeField(std::string_view content, std::size_t* position, Field* field) const {
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

void PathReader::ReadHeader(std::string_view content) {
  separator_ = content.find(';') != std::string_view::npos ? ';' : ',';
  columns_.fill(Absent);
  Field field;
  std::size_t position = 0;
  while (TakeField(content, &position, &field)) {
    const std::size_t place = FindName(field.text);
    if (place != Absent) {
      if (columns_[place] != Absent) {
        lines_.Blame(field.begin, "the column " + std::string(Names[place]) + " is named twice");
      }
      columns_[place] = columnCount_;
    }
    ++columnCount_;
  }
  std::string missing;
  for (std::size_t i = 0; i < NeededCount; ++i) {
    if (columns_[i] == Absent) {
      missing += (missing.empty() ? "" : ",") + std::string(Names[i]);
    }
  }
  if (missing.empty()) {
    return;
  }
  double ignored = 0.0;
  position = 0;
  TakeField(content, &position, &field);
  if (ReadNumber(field.text, &ignored) == NumberFault::None) {
    lines_.Blame(field.begin, "the columns have no names; the first line must name x,y,z,i,j,k");
  }
  const bool otherSeparator = columnCount_ == 1 && content.find('\t') != std::string_view::npos;
  lines_.Blame(field.begin,
               "there is no column " + missing + "; found " + Quote(Trim(content)) +
                   (otherSeparator ? ", but columns are separated by commas or semicolons" : ""));
}

double PathReader::ReadValue(const Field& field, std::size_t place) const {
  double value = 0.0;
  const NumberFault fault = ReadNumber(field.text, &value);
  if (fault != NumberFault::None) {
    const std::string column(Names[place]);
    const bool hasComma = field.text.find(',') != std::string_view::npos;
    lines_.Blame(field.begin, field.text.empty()
                                  ? column + " is empty"
                                  : column + ": " + Quote(field.text) + " " + DescribeFault(fault) +
                                        (hasComma ? "; write a decimal point" : ""));
  }
  return value;
}

void PathReader::CheckFeedAndRapid(const Field& feed, const Field& rapid) const {
  if (!feed.text.empty() && ReadValue(feed, FeedPlace) < 0.0) {
    lines_.Blame(feed.begin, "the feed is negative");
  }
  const std::string word = Lower(rapid.text);
  if (!word.empty() && word != "0" && word != "1" && word != "false" && word != "true") {
    lines_.Blame(rapid.begin,
                 "rapid: " + Quote(rapid.text) + " is none of 0, 1, true, false or nothing");
  }
}

bool PathReader::Next(PathPoint* point) {
  std::string_view content;
  if (!NextContent(&content)) {
    return false;
  }
  std::array<Field, KnownCount> known;
  std::size_t position = 0;
  std::size_t count = 0;
  Field field;
  while (TakeField(content, &position, &field)) {
    if (count == columnCount_) {
      lines_.Blame(field.begin, "more fields than the " + std::to_string(columnCount_) +
                                    " columns that the first line names");
    }
    for (std::size_t i = 0; i < KnownCount; ++i) {
      if (columns_[i] == count) {
        known[i] = field;
      }
    }
    ++count;
  }
  if (count < columnCount_) {
    lines_.Blame(content.size(), "only " + std::to_string(count) + " of the " +
                                     std::to_string(columnCount_) +
                                     " columns that the first line names");
  }
  std::array<double, NeededCount> values = {};
  for (std::size_t i = 0; i < NeededCount; ++i) {
    values[i] = ReadValue(known[i], i);
  }
  point->point.Set(values[0], values[1], values[2]);
  point->direction.Set(values[3], values[4], values[5]);
  point->line = lines_.GetNumber();
  if (!MakeUnitExactly(&point->direction, &point->wasUnit)) {
    lines_.Blame(known[3].begin, "the direction i,j,k is null");
  }
  CheckFeedAndRapid(known[FeedPlace], known[RapidPlace]);
  return true;
}

}  // namespace OrvoTool
