#include "AxisRowReader.h"

#include "JsonMembers.h"
#include "NumberText.h"
#include "WideText.h"

#include <algorithm>
#include <utility>

namespace OrvoTool {
namespace {

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

/// Tells whether a list of words, separated by blanks, has one of them.
bool HasWord(std::string_view text, std::string_view word) {
  while (!(text = Trim(text)).empty()) {
    const std::string_view first = text.substr(0, text.find(' '));
    if (first == word) {
      return true;
    }
    text.remove_prefix(first.size());
  }
  return false;
}

}  // namespace

AxisRowReader::AxisRowReader(const std::string& name, bool isJson, const AxisNames& names,
                             std::vector<int> needed, std::vector<double> start)
    : lines_(name),
      isJson_(isJson),
      names_(names),
      needed_(std::move(needed)),
      start_(std::move(start)) {
  if (!isJson_) {
    ReadHeader();
  }
}

int AxisRowReader::FindColumn(const AxisNames& names, std::string_view name) {
  const int reg = names.Find(name);
  if (reg >= 0) {
    return reg;
  }
  const std::string lower = Lower(name);
  return lower == "inverse_time"           ? InverseTime
         : lower == "feed" || lower == "f" ? Feed
         : lower == "rapid"                ? Rapid
         : lower == "flags"                ? Flags
                                           : Ignored;
}

bool AxisRowReader::NextContent() {
  while (lines_.Next()) {
    const std::string_view line = lines_.GetLine();
    content_ = isJson_ ? line : line.substr(0, line.find('#'));
    if (!Trim(content_).empty()) {
      const std::size_t quote = isJson_ ? std::string_view::npos : content_.find('"');
      if (quote != std::string_view::npos) {
        lines_.Blame(quote, "quoted fields are not read; write the plain value");
      }
      return true;
    }
  }
  return false;
}

void AxisRowReader::RequireAll(const std::vector<bool>& isThere, std::size_t offset) const {
  if (std::find(isThere.begin(), isThere.end(), true) == isThere.end()) {
    lines_.Blame(offset, std::string("no ") + (isJson_ ? "member" : "column") +
                             " is named as an axis; the axes are " + names_.List());
  }
  std::string missing;
  for (const int reg : needed_) {
    if (!isThere[static_cast<std::size_t>(reg)]) {
      missing += (missing.empty() ? "" : ",") + names_.GetName(reg);
    }
  }
  if (!missing.empty()) {
    lines_.Blame(offset, "there is no value for " + missing +
                             ", which the program system moves; the axes are " + names_.List());
  }
}

void AxisRowReader::ReadHeader() {
  if (!NextContent()) {
    lines_.BlameBegin("the file is empty; its first line must name the axes");
  }
  separator_ = content_.find(';') != std::string_view::npos ? ';' : ',';
  std::vector<bool> isThere(start_.size());
  for (std::size_t begin = 0; begin <= content_.size();) {
    const std::size_t end = std::min(content_.find(separator_, begin), content_.size());
    const int column = FindColumn(names_, Trim(content_.substr(begin, end - begin)));
    if (column != Ignored &&
        std::find(columns_.begin(), columns_.end(), column) != columns_.end()) {
      lines_.Blame(begin, "the column " + Quote(Trim(content_.substr(begin, end - begin))) +
                              " is named twice");
    }
    columns_.push_back(column);
    if (column >= 0) {
      isThere[static_cast<std::size_t>(column)] = true;
    }
    begin = end + 1;
  }
  RequireAll(isThere, 0);
}

void AxisRowReader::TakeNumber(int column, double value, std::size_t offset, AxisRow* row) const {
  if (column >= 0) {
    row->values[static_cast<std::size_t>(column)] = value;
  } else if (value < 0.0) {
    lines_.Blame(offset, "a feed or an inverse time is negative");
  } else {
    (column == InverseTime ? row->inverseTime : row->feed) = value;
  }
}

void AxisRowReader::TakeText(int column, std::string_view text, std::size_t offset,
                             AxisRow* row) const {
  if (column == Ignored) {
    return;
  }
  if (column == Flags) {
    row->isInserted = HasWord(text, "inserted");
    return;
  }
  if (column == Rapid) {
    const std::string word = Lower(text);
    row->isRapid = word == "1" || word == "true";
    if (!row->isRapid && !word.empty() && word != "0" && word != "false") {
      lines_.Blame(offset, "rapid: " + Quote(text) + " is none of 0, 1, true, false or nothing");
    }
    return;
  }
  if (column < 0 && text.empty()) {
    return;
  }
  double value = 0.0;
  const NumberFault fault = ReadNumber(text, &value);
  if (fault != NumberFault::None) {
    const std::string what = column >= 0 ? names_.GetName(column) : "feed or inverse time";
    lines_.Blame(offset, text.empty() ? what + " is empty"
                                      : what + ": " + Quote(text) + " " + DescribeFault(fault));
  }
  TakeNumber(column, value, offset, row);
}

bool AxisRowReader::NextCsv(AxisRow* row) {
  std::size_t count = 0;
  for (std::size_t begin = 0; begin <= content_.size(); ++count) {
    const std::size_t end = std::min(content_.find(separator_, begin), content_.size());
    if (count == columns_.size()) {
      lines_.Blame(begin, "more fields than the " + std::to_string(columns_.size()) +
                              " columns that the first line names");
    }
    TakeText(columns_[count], Trim(content_.substr(begin, end - begin)), begin, row);
    begin = end + 1;
  }
  if (count < columns_.size()) {
    lines_.Blame(content_.size(), "only " + std::to_string(count) + " of the " +
                                      std::to_string(columns_.size()) +
                                      " columns that the first line names");
  }
  return true;
}

void AxisRowReader::TakeMember(const JsonMember& member, AxisRow* row,
                               std::vector<bool>* isThere) const {
  using Kind = JsonMember::Kind;
  const int column = FindColumn(names_, member.name);
  const auto blame = [&](const char* what) {
    lines_.Blame(member.offset, Quote(member.name) + what);
  };
  if (column >= 0 || (member.isNested && column == Ignored)) {
    if (column < 0) {
      blame(" names no axis");
    }
    const auto reg = static_cast<std::size_t>(column);
    if (member.kind != Kind::Number) {
      blame(" is no number");
    }
    if ((*isThere)[reg]) {
      blame(" is there twice");
    }
    (*isThere)[reg] = true;
  }
  if (column == Flags) {
    if (member.kind != Kind::Texts && member.kind != Kind::Text) {
      blame(" is neither a text nor an array of texts");
    }
    row->isInserted =
        std::any_of(member.texts.begin(), member.texts.end(),
                    [](const std::string& text) { return HasWord(text, "inserted"); });
  } else if (column == Rapid) {
    if (member.kind != Kind::Truth && member.kind != Kind::Null) {
      blame(" is neither true nor false");
    }
    row->isRapid = member.isTrue;
  } else if (column != Ignored && member.kind == Kind::Number) {
    TakeNumber(column, member.number, member.offset, row);
  } else if (column != Ignored && member.kind != Kind::Null) {
    blame(" is no number");
  } else if (member.name == "axes" && !member.isNested) {
    blame(" is no object with the axes as members");
  }
}

bool AxisRowReader::NextJson(AxisRow* row) {
  std::vector<bool> isThere(start_.size());
  for (const JsonMember& member : ReadJsonMembers(lines_, "axes")) {
    TakeMember(member, row, &isThere);
  }
  RequireAll(isThere, 0);
  return true;
}

bool AxisRowReader::Next(AxisRow* row) {
  if (!NextContent()) {
    return false;
  }
  *row = AxisRow();
  row->line = lines_.GetNumber();
  row->values = start_;
  return isJson_ ? NextJson(row) : NextCsv(row);
}

}  // namespace OrvoTool
