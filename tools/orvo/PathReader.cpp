#include "PathReader.h"

#include "Failure.h"
#include "NumberText.h"
#include "StandardInput.h"
#include "WideText.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace OrvoTool {
namespace {

/// The needed columns, in the order in which points hold them.
constexpr std::string_view NeededNames = "xyzijk";

/// How much of a wrong text a message quotes.
constexpr std::size_t QuotedBytes = 40;

std::string Quote(std::string_view text) {
  return "'" + Printable(text.substr(0, QuotedBytes)) + (text.size() > QuotedBytes ? "...'" : "'");
}

std::optional<std::size_t> FindNeeded(std::string_view name) {
  if (name.size() != 1) {
    return std::nullopt;
  }
  const char lower =
      name[0] >= 'A' && name[0] <= 'Z' ? static_cast<char>(name[0] - 'A' + 'a') : name[0];
  const std::size_t needed = NeededNames.find(lower);
  return needed == std::string_view::npos ? std::nullopt : std::optional<std::size_t>(needed);
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
    throw Failure(ExitCode::Unreadable,
                  ShownInput(name) +
                      ":1:1: the file is empty; its first line must name the columns "
                      "x,y,z,i,j,k");
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

bool PathReader::TakeField(std::string_view content, std::size_t* position, Field* field) {
  if (*position > content.size()) {
    return false;
  }
  const std::size_t comma = std::min(content.find(',', *position), content.size());
  const std::string_view raw = content.substr(*position, comma - *position);
  field->text = Trim(raw);
  field->begin = field->text.empty()
                     ? *position
                     : *position + static_cast<std::size_t>(field->text.data() - raw.data());
  *position = comma + 1;
  return true;
}

void PathReader::ReadHeader(std::string_view content) {
  constexpr std::size_t absent = static_cast<std::size_t>(-1);
  columns_.fill(absent);
  Field field;
  std::size_t position = 0;
  while (TakeField(content, &position, &field)) {
    const std::optional<std::size_t> needed = FindNeeded(field.text);
    if (needed) {
      if (columns_[*needed] != absent) {
        lines_.Blame(field.begin,
                     "the column " + std::string(1, NeededNames[*needed]) + " is named twice");
      }
      columns_[*needed] = columnCount_;
    }
    ++columnCount_;
  }
  std::string missing;
  for (std::size_t i = 0; i < NeededCount; ++i) {
    if (columns_[i] == absent) {
      missing += (missing.empty() ? "" : ",") + std::string(1, NeededNames[i]);
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
  const bool otherSeparator =
      columnCount_ == 1 && content.find_first_of(";\t") != std::string_view::npos;
  lines_.Blame(field.begin, "there is no column " + missing + "; found " + Quote(Trim(content)) +
                                (otherSeparator ? ", but columns are separated by commas" : ""));
}

double PathReader::ReadValue(const Field& field, std::size_t needed) const {
  double value = 0.0;
  const NumberFault fault = ReadNumber(field.text, &value);
  if (fault != NumberFault::None) {
    const std::string column(1, NeededNames[needed]);
    lines_.Blame(field.begin, field.text.empty()
                                  ? column + " is empty"
                                  : column + ": " + Quote(field.text) + " " + DescribeFault(fault));
  }
  return value;
}

bool PathReader::Next(PathPoint* point) {
  std::string_view content;
  if (!NextContent(&content)) {
    return false;
  }
  std::array<Field, NeededCount> needed;
  std::size_t position = 0;
  std::size_t count = 0;
  Field field;
  while (TakeField(content, &position, &field)) {
    if (count == columnCount_) {
      lines_.Blame(field.begin, "more fields than the " + std::to_string(columnCount_) +
                                    " columns that the first line names");
    }
    for (std::size_t i = 0; i < NeededCount; ++i) {
      if (columns_[i] == count) {
        needed[i] = field;
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
    values[i] = ReadValue(needed[i], i);
  }
  point->point.Set(values[0], values[1], values[2]);
  point->direction.Set(values[3], values[4], values[5]);
  point->line = lines_.GetNumber();
  if (!MakeUnitExactly(&point->direction, &point->wasUnit)) {
    lines_.Blame(needed[3].begin, "the direction i,j,k is null");
  }
  return true;
}

}  // namespace OrvoTool
