#include "AxisRowReader.h"

#include "Failure.h"
#include "NumberText.h"
#include "WideText.h"

#include <nlohmann/json.hpp>

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
      return true;
    }
  }
  return false;
}

void AxisRowReader::RequireAll(const std::vector<bool>& isThere, std::size_t offset) const {
  std::string missing;
  for (const int reg : needed_) {
    if (!isThere[static_cast<std::size_t>(reg)]) {
      missing += (missing.empty() ? "" : ",") + names_.GetName(reg);
    }
  }
  if (!missing.empty()) {
    lines_.Blame(offset, "there is no value for " + missing +
                             ", which the program system moves; the registers are " +
                             names_.GetName(0) + " to " + names_.GetName(names_.GetCount() - 1));
  }
}

void AxisRowReader::ReadHeader() {
  if (!NextContent()) {
    lines_.Blame(0, "the file is empty; its first line must name the axes");
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

void AxisRowReader::TakeText(int column, std::string_view text, std::size_t offset, AxisRow* row) {
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

bool AxisRowReader::NextJson(AxisRow* row) {
  const nlohmann::json object = nlohmann::json::parse(content_, nullptr, false);
  if (!object.is_object()) {
    lines_.Blame(0, Quote(content_) + " is no JSON object");
  }
  std::vector<bool> isThere(start_.size());
  const auto take = [&](const nlohmann::json& members, bool isAxes) {
    for (const auto& member : members.items()) {
      const int column = FindColumn(names_, member.key());
      const nlohmann::json& value = member.value();
      if (column == Flags && value.is_array()) {
        row->isInserted =
            std::find(value.begin(), value.end(), nlohmann::json("inserted")) != value.end();
      } else if (column == Rapid && value.is_boolean()) {
        row->isRapid = value.get<bool>();
      } else if (value.is_number() && column != Ignored && column != Flags && column != Rapid) {
        TakeNumber(column, value.get<double>(), 0, row);
        if (column >= 0) {
          isThere[static_cast<std::size_t>(column)] = true;
        }
      } else if (isAxes || column >= 0) {
        lines_.Blame(0, Quote(member.key()) + (column >= 0 ? " is no number" : " names no axis"));
      }
    }
  };
  const auto axes = object.find("axes");
  if (axes != object.end() && axes->is_object()) {
    take(*axes, true);
    nlohmann::json others = object;
    others.erase("axes");
    take(others, false);
  } else {
    take(object, false);
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
