#include "AxisValueReader.h"

#include "NumberText.h"
#include "TextLines.h"
#include "WideText.h"

#include <cstddef>
#include <string_view>

namespace OrvoTool {
namespace {

using Orvo::Exchange::AnimationKey;

constexpr double SecondsOfRow = 0.1;

// What a column holds, where it isn't a register.
constexpr int TimeColumn = -2;
constexpr int OtherColumn = -1;

struct Field {
  std::size_t begin = 0;
  std::string_view text;
};

std::vector<Field> FieldsOf(std::string_view line) {
  std::vector<Field> fields;
  std::size_t begin = 0;
  for (;;) {
    const std::size_t end = std::min(line.find(',', begin), line.size());
    const std::string_view field = line.substr(begin, end - begin);
    const std::string_view text = Trim(field);
    fields.push_back(
        {begin + static_cast<std::size_t>(text.empty() ? 0 : text.data() - field.data()), text});
    if (end == line.size()) {
      return fields;
    }
    begin = end + 1;
  }
}

bool IsContent(std::string_view line) {
  const std::string_view text = Trim(line);
  return !text.empty() && text[0] != '#';
}

double ReadField(const TextLines& lines, const Field& field) {
  double value = 0.0;
  const NumberFault fault = ReadNumber(field.text, &value);
  if (fault != NumberFault::None) {
    lines.Blame(field.begin, "'" + Printable(field.text) + "' " + DescribeFault(fault));
  }
  return value;
}

std::vector<int> ReadColumns(TextLines* lines, const AxisNames& names) {
  while (lines->Next()) {
    if (!IsContent(lines->GetLine())) {
      continue;
    }
    std::vector<int> columns;
    bool hasAxis = false;
    for (const Field& field : FieldsOf(lines->GetLine())) {
      const int reg = names.Find(field.text);
      hasAxis = hasAxis || reg >= 0;
      columns.push_back(reg >= 0 ? reg : (field.text == "time" ? TimeColumn : OtherColumn));
    }
    if (!hasAxis) {
      lines->Blame(0, "no column is named after an axis of the machine");
    }
    return columns;
  }
  lines->Blame(0, "the names of the columns were expected");
}

}  // namespace

std::vector<AnimationKey> ReadAxisValues(const std::string& name, const Orvo::Kin::Machine& machine,
                                         double seconds) {
  const AxisNames names(machine, {"time", "solutions", "flags"});
  TextLines lines(name);
  const std::vector<int> columns = ReadColumns(&lines, names);
  std::vector<AnimationKey> keys;
  bool isTimed = false;
  while (lines.Next()) {
    if (!IsContent(lines.GetLine())) {
      continue;
    }
    const std::vector<Field> fields = FieldsOf(lines.GetLine());
    if (fields.size() != columns.size()) {
      lines.Blame(0, std::to_string(columns.size()) + " values are needed, as many as columns");
    }
    AnimationKey key;
    machine.Alloc(&key.position);
    bool isWhole = true;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (columns[i] == OtherColumn) {
        continue;
      }
      if (fields[i].text.empty()) {
        isWhole = false;
      } else if (columns[i] == TimeColumn) {
        key.seconds = ReadField(lines, fields[i]);
        isTimed = true;
      } else {
        key.position[Orvo::Kin::Register(columns[i])] = ReadField(lines, fields[i]);
      }
    }
    if (isWhole) {
      keys.push_back(key);
    }
  }
  const double step = seconds > 0.0 && keys.size() > 1
                          ? seconds / static_cast<double>(keys.size() - 1)
                          : SecondsOfRow;
  for (std::size_t i = 0; i < keys.size() && !isTimed; ++i) {
    keys[i].seconds = step * static_cast<double>(i);
  }
  return keys;
}

}  // namespace OrvoTool
