#include "SolvedRow.h"

#include "JsonText.h"
#include "NumberText.h"

#include <Orvo/Kin/Register.h>

#include <algorithm>
#include <cstddef>

namespace OrvoTool {
namespace {

using Orvo::Path::Diagnosis;
using Orvo::Path::DiagnosisCode;
using Orvo::Path::SolvedPoint;

constexpr double DegreesPerRadian = 180.0 / 3.141592653589793;

/// Digits of what is left: nobody needs more of an error.
constexpr int ResidualDigits = 3;

/// What goes to "flags", in this order.
std::vector<std::string> FlagsOf(const SolvedPoint& point) {
  std::vector<std::string> flags;
  if (point.isInserted) {
    flags.push_back("inserted");
  }
  if (!point.isSolved) {
    flags.push_back(IsOnlyOutOfRange(point) ? "out-of-range" : "unreachable");
  }
  if (point.isHeld) {
    flags.push_back("held");
  }
  if (point.isBranchChange) {
    flags.push_back("branch-change");
  }
  if (point.isUnwinding) {
    flags.push_back("unwinding");
  }
  if (flags.empty()) {
    flags.push_back("ok");
  }
  return flags;
}

void AppendMember(const char* name, double value, std::string* row) {
  *row += ",\"";
  *row += name;
  *row += "\":" + ExactNumber(value);
}

}  // namespace

bool IsOnlyOutOfRange(const SolvedPoint& point) {
  return !point.isSolved &&
         std::all_of(point.diagnoses.begin(), point.diagnoses.end(), [](const Diagnosis& d) {
           return !d.IsFailure() || d.GetCode() == DiagnosisCode::LinearRange;
         });
}

std::vector<std::string> QuoteNames(const AxisNames& names) {
  std::vector<std::string> quoted;
  for (int r = 0; r < names.GetCount(); ++r) {
    std::string line = JsonLine(JsonValue(names.GetName(r)));
    line.pop_back();
    quoted.push_back(line);
  }
  return quoted;
}

void AppendAxesJson(const std::vector<std::string>& quotedNames,
                    const Orvo::Kin::MachinePosition& position, std::string* row) {
  *row += "{";
  for (std::size_t r = 0; r < quotedNames.size(); ++r) {
    *row += (r > 0 ? "," : "") + quotedNames[r] + ":" +
            ExactNumber(position[Orvo::Kin::Register(static_cast<int>(r))]);
  }
  *row += "}";
}

SolvedRowWriter::SolvedRowWriter(const AxisNames& names, const Orvo::Path::MainAxes& axes,
                                 const Orvo::Kin::MachinePosition& start, RowFormat format,
                                 const RowColumns& columns)
    : names_(names),
      axes_(axes),
      position_(start),
      format_(format),
      columns_(columns),
      quotedNames_(QuoteNames(names)) {}

std::string SolvedRowWriter::GetHeader() const {
  if (format_ != RowFormat::Csv) {
    return std::string();
  }
  std::string header;
  for (int r = 0; r < names_.GetCount(); ++r) {
    header += names_.GetName(r) + ",";
  }
  header += "line,branch,flags,codes";
  header += columns_.hasResiduals ? ",residual,angle_residual" : "";
  header += columns_.hasDeviations ? ",tip_deviation,angle_deviation" : "";
  header += columns_.hasInverseTime ? ",inverse_time" : "";
  return header + "\n";
}

void SolvedRowWriter::Append(const SolvedPoint& point, std::string* row) {
  axes_.Put(point.values, &position_);
  if (format_ == RowFormat::Csv) {
    AppendCsv(point, row);
  } else {
    AppendJson(point, row);
  }
}

void SolvedRowWriter::AppendCsv(const SolvedPoint& point, std::string* row) const {
  for (int r = 0; r < names_.GetCount(); ++r) {
    AppendFixed(position_[Orvo::Kin::Register(r)], row, columns_.decimals);
    row->push_back(',');
  }
  *row += std::to_string(point.target.line) + "," + std::to_string(point.branch) + ",";
  const char* separator = "";
  for (const std::string& flag : FlagsOf(point)) {
    *row += separator + flag;
    separator = " ";
  }
  row->push_back(',');
  separator = "";
  for (const Diagnosis& diagnosis : point.diagnoses) {
    *row += separator + std::to_string(static_cast<int>(diagnosis.GetCode()));
    separator = " ";
  }
  const auto append = [row](double value) { *row += "," + ShortNumber(value, ResidualDigits); };
  if (columns_.hasResiduals) {
    append(point.residual.tip);
    append(point.residual.direction * DegreesPerRadian);
  }
  if (columns_.hasDeviations) {
    append(point.tipDeviation);
    append(point.directionDeviation * DegreesPerRadian);
  }
  if (columns_.hasInverseTime) {
    *row += "," + ShortNumber(point.inverseTime, 9);
  }
  row->push_back('\n');
}

void SolvedRowWriter::AppendJson(const SolvedPoint& point, std::string* row) const {
  *row += "{\"point\":" + std::to_string(point.index) +
          ",\"line\":" + std::to_string(point.target.line) + ",\"axes\":";
  AppendAxesJson(quotedNames_, position_, row);
  *row += point.isSolved ? ",\"solved\":true" : ",\"solved\":false";
  *row += ",\"branch\":" + std::to_string(point.branch) + ",\"flags\":[";
  const char* separator = "\"";
  for (const std::string& flag : FlagsOf(point)) {
    *row += separator + flag + "\"";
    separator = ",\"";
  }
  *row += "]";
  AppendMember("cost", point.cost, row);
  if (columns_.hasResiduals) {
    AppendMember("residual", point.residual.tip, row);
    AppendMember("angle_residual", point.residual.direction * DegreesPerRadian, row);
  }
  if (columns_.hasDeviations) {
    AppendMember("tip_deviation", point.tipDeviation, row);
    AppendMember("angle_deviation", point.directionDeviation * DegreesPerRadian, row);
  }
  if (columns_.hasInverseTime) {
    AppendMember("inverse_time", point.inverseTime, row);
  }
  *row += ",\"diagnoses\":[";
  for (std::size_t i = 0; i < point.diagnoses.size(); ++i) {
    *row += (i > 0 ? "," : "") + point.diagnoses[i].MakeJson();
  }
  *row += "]}\n";
}

}  // namespace OrvoTool
