#include "VectorFile.h"

#include "HexNumber.h"
#include "NumberText.h"
#include "WideText.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <system_error>

namespace OrvoTool {
namespace {

constexpr std::string_view Signature = "orvo-vectors 1";
constexpr std::string_view ToolWord = "tool-offset:";
constexpr std::string_view EndWord = "end ";

std::string Quote(std::string_view text) {
  constexpr std::size_t most = 40;
  return "'" + Printable(text.substr(0, most)) + (text.size() > most ? "...'" : "'");
}

void AppendNumbers(const std::vector<double>& values, std::string* line) {
  for (const double value : values) {
    line->push_back(' ');
    AppendHex(value, line);
  }
}

/// Returns a number for people and for programs.
std::string BothWays(double value) {
  std::string text;
  AppendHex(value, &text);
  return text + " (" + ShortNumber(value, 17) + ")";
}

double DifferenceOf(const VectorRecord& expected, const VectorRecord& found, std::size_t i) {
  const double difference = found.values[i] - expected.values[i];
  return std::abs(found.isModuloTurn ? std::remainder(difference, 360.0) : difference);
}

}  // namespace

std::string VectorLine(const VectorRecord& record) {
  std::string line = record.head + ":";
  AppendNumbers(record.values, &line);
  return line + "\n";
}

std::string VectorHeader(const std::string& shape, const Orvo::Vector3D& offset) {
  std::string text(Signature);
  text += "\n" + shape + "\n" + std::string(ToolWord);
  AppendNumbers({offset[0], offset[1], offset[2]}, &text);
  return text + "\n";
}

VectorReader::VectorReader(const std::string& name) : lines_(name) {
  if (!NextContent() || lines_.GetLine() != Signature) {
    lines_.Blame(0, "no file of golden vectors; its first line must be " + Quote(Signature));
  }
  if (!NextContent() || lines_.GetLine().substr(0, 9) != "elements ") {
    lines_.Blame(0, "expected the numbers of elements, registers and systems");
  }
  shape_ = std::string(lines_.GetLine());
  std::vector<double> offset;
  if (NextContent() && lines_.GetLine().substr(0, ToolWord.size()) == ToolWord) {
    ReadNumbers(lines_.GetLine().substr(ToolWord.size()), &offset);
  }
  if (offset.size() != 3) {
    lines_.Blame(0, "expected " + Quote(ToolWord) + " and three numbers");
  }
  offset_.Set(offset[0], offset[1], offset[2]);
}

bool VectorReader::NextContent() {
  while (lines_.Next()) {
    if (!Trim(lines_.GetLine()).empty() && lines_.GetLine()[0] != '#') {
      return true;
    }
  }
  return false;
}

void VectorReader::ReadNumbers(std::string_view text, std::vector<double>* numbers) const {
  numbers->clear();
  while (!(text = Trim(text)).empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    double value = 0.0;
    if (!ReadHex(word, &value)) {
      lines_.Blame(static_cast<std::size_t>(word.data() - lines_.GetLine().data()),
                   Quote(word) + " is no hexadecimal number such as 0x1.8p+1");
    }
    numbers->push_back(value);
    text.remove_prefix(word.size());
  }
}

bool VectorReader::Next(VectorRecord* record) {
  if (isEnded_) {
    if (NextContent()) {
      lines_.Blame(0, "the file goes on behind its end");
    }
    return false;
  }
  if (!NextContent()) {
    lines_.Blame(0, "the file ends before its last line, 'end' and the number of samples");
  }
  const std::string_view line = lines_.GetLine();
  if (line.substr(0, EndWord.size()) == EndWord) {
    if (line.substr(EndWord.size()) != std::to_string(sampleNb_)) {
      lines_.Blame(0, Quote(line) + " stands behind " + std::to_string(sampleNb_) + " samples");
    }
    isEnded_ = true;
    return Next(record);
  }
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) {
    lines_.Blame(0, Quote(line) + " has no ':'");
  }
  record->head = std::string(line.substr(0, colon));
  sampleNb_ += record->head.compare(0, 5, "axes ") == 0 ? 1U : 0U;
  ReadNumbers(line.substr(colon + 1), &record->values);
  return true;
}

void VectorComparer::Fail(std::uint64_t line, const std::string& what) {
  if (result.failure.empty()) {
    result.failure = what;
    result.failureLine = line;
  }
}

bool VectorComparer::Compare(const VectorRecord& expected, const VectorRecord& found,
                             std::uint64_t line) {
  if (expected.head != found.head || expected.values.size() != found.values.size()) {
    Fail(line, "the file has '" + Printable(expected.head) + "' with " +
                   std::to_string(expected.values.size()) + " numbers, the machine gives '" +
                   found.head + "' with " + std::to_string(found.values.size()));
    return false;
  }
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    ++result.numberNb;
    if (IsSameBits(expected.values[i], found.values[i])) {
      continue;
    }
    ++result.differentNb;
    const double difference = DifferenceOf(expected, found, i);
    if (!(difference <= result.largestDifference)) {
      result.largestDifference = difference;
      result.largestLine = line;
    }
    if (!(difference <= tolerance_) || tolerance_ == 0.0) {
      Fail(line, found.head + ", number " + std::to_string(i + 1) + ": the file has " +
                     BothWays(expected.values[i]) + ", the machine gives " +
                     BothWays(found.values[i]));
      return false;
    }
  }
  return true;
}

}  // namespace OrvoTool
