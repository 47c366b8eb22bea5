#include "exchange/JsonText.h"

#include "exchange/TextEncoding.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace Orvo::Exchange {

void JsonText::NewLine() {
  if (!isCompact_) {
    text_ += '\n';
    text_.append(2 * levels_.size(), ' ');
  }
}

void JsonText::BeginValue() {
  if (isAfterKey_ || levels_.empty()) {
    isAfterKey_ = false;
    return;
  }
  Level& level = levels_.back();
  if (!level.isEmpty) {
    text_ += level.isRow && !isCompact_ ? ", " : ",";
  }
  level.isEmpty = false;
  if (!level.isRow) {
    NewLine();
  }
}

void JsonText::Begin(char bracket, bool isRow) {
  BeginValue();
  text_ += bracket;
  levels_.push_back({isRow, true});
}

void JsonText::End(char bracket) {
  const Level level = levels_.back();
  levels_.pop_back();
  if (!level.isRow && !level.isEmpty) {
    NewLine();
  }
  text_ += bracket;
  if (levels_.empty() && !isCompact_) {
    text_ += '\n';
  }
}

void JsonText::BeginObject() { Begin('{', false); }
void JsonText::EndObject() { End('}'); }
void JsonText::BeginArray() { Begin('[', false); }
void JsonText::BeginRow() { Begin('[', true); }
void JsonText::EndArray() { End(']'); }

void JsonText::Key(std::string_view name) {
  Text(name);
  text_ += isCompact_ ? ":" : ": ";
  isAfterKey_ = true;
}

void JsonText::Text(std::string_view text) {
  BeginValue();
  text_ += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void JsonText::Integer(std::int64_t value) {
  BeginValue();
  text_ += std::to_string(value);
}

void JsonText::Bool(bool value) {
  BeginValue();
  text_ += value ? "true" : "false";
}

void JsonText::Number(double value) {
  BeginValue();
  AppendNumber(value, &text_);
}

void JsonText::Numbers(const double* values, int count) {
  BeginRow();
  for (int i = 0; i < count; ++i) {
    Number(values[i]);
  }
  EndArray();
}

void JsonText::Member(std::string_view name, std::string_view text) {
  Key(name);
  Text(text);
}

void JsonText::Member(std::string_view name, int value) {
  Member(name, static_cast<std::int64_t>(value));
}

void JsonText::Member(std::string_view name, std::int64_t value) {
  Key(name);
  Integer(value);
}

void JsonText::Member(std::string_view name, std::uint64_t value) {
  Member(name, static_cast<std::int64_t>(value));
}

void JsonText::Member(std::string_view name, double value) {
  Key(name);
  Number(value);
}

void JsonText::Member(std::string_view name, bool value) {
  Key(name);
  Bool(value);
}

std::string JsonText::Take() { return std::exchange(text_, std::string()); }

}  // namespace Orvo::Exchange
