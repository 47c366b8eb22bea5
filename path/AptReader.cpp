#include "path/AptStatement.h"
#include "path/TextReaderImplementation.h"

#include <Orvo/Path/Readers.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace Orvo::Path {
namespace {

constexpr double MillimetersPerInch = 25.4;

/// Words that move the tool otherwise than straight to given points.
constexpr std::array<std::string_view, 11> CurveWords = {"CIRCLE", "CYLNDR", "MOVARC", "ARC",
                                                         "ARCMOV", "HELIX",  "NURBS",  "SPLINE",
                                                         "INDIRV", "INDIRP", "GODLTA"};
constexpr std::array<std::string_view, 12> DrivenWords = {"GOFWD", "GOBACK", "GOLFT", "GORGT",
                                                          "GOUP",  "GODOWN", "GO",    "TLON",
                                                          "TLLFT", "TLRGT",  "TANTO", "GOHOME"};

/// Words that are known and change no point.
constexpr std::array<std::string_view, 4> IdleWords = {"CUTTER", "LOADTL", "PARTNO", "PPRINT"};

template <std::size_t N>
bool Holds(const std::array<std::string_view, N>& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

/// What one statement leaves to the next.
struct AptState : SourcePlace {
  std::array<double, 3> direction = {0.0, 0.0, 1.0};
  double feed = 0.0;
  double scale = 1.0;
  bool isRapid = false;
  bool isSingleAxis = false;  ///< MULTAX/OFF was said
  bool isAtEnd = false;
};

struct AptImplementation : TextReaderImplementation {
  using TextReaderImplementation::TextReaderImplementation;

  bool Next(ToolPoint* point) override;
  std::shared_ptr<const SourcePlace> GetState() const override {
    return std::make_shared<AptState>(state_);
  }
  void SetState(const SourcePlace* state) override {
    const auto* const given = dynamic_cast<const AptState*>(state);
    state_ = given != nullptr ? *given : AptState();
  }

 private:
  [[noreturn]] void Blame(const AptToken& token, const std::string& message) const {
    lines.BlameLine(token.line, token.column, message);
  }
  void NoteToken(const AptToken& token, const std::string& text) {
    Note(token.line, token.column, text);
  }
  void NoteRest(const AptStatement& statement, std::size_t first);
  double NumberOf(const AptToken& token) const;
  void TakePoint(const AptStatement& statement, ToolPoint* point);
  void TakeFeed(const AptStatement& statement);
  void TakeUnits(const AptStatement& statement);
  void TakeMultax(const AptStatement& statement);
  void RefuseMove(const AptToken& token, std::string_view word) const;
  void TakeOther(const AptStatement& statement);

  AptState state_;
};

// Parameters beyond those that a word has.
void AptImplementation::NoteRest(const AptStatement& statement, std::size_t first) {
  for (std::size_t i = first; i < statement.parameters.size(); ++i) {
    NoteToken(
        statement.parameters[i],
        statement.word.text + ": " + Quote(statement.parameters[i].text) + " isn't understood");
  }
}

double AptImplementation::NumberOf(const AptToken& token) const {
  if (token.hasGap) {
    Blame(token, "a blank within " + Quote(token.text) + "; expected a number, or a comma");
  }
  double value = 0.0;
  const char* const fault = ReadNumber(token.text, &value);
  if (fault != nullptr) {
    Blame(token, (token.text.empty() ? "nothing" : Quote(token.text) + " " + fault) +
                     "; expected a number");
  }
  return value;
}

void AptImplementation::TakePoint(const AptStatement& statement, ToolPoint* point) {
  const std::vector<AptToken>& parameters = statement.parameters;
  if (parameters.size() != 3 && parameters.size() != 6) {
    const AptToken& place = parameters.empty() ? statement.word : parameters.back();
    Blame(place, std::to_string(parameters.size()) + " values behind " + statement.word.text +
                     "; expected 3 or 6 numbers");
  }
  std::array<double, 6> values = {};
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    values[i] = NumberOf(parameters[i]);
  }
  if (parameters.size() == 6) {
    if (state_.isSingleAxis) {
      Blame(parameters[3], "a direction behind MULTAX/OFF; expected 3 numbers");
    }
    if (!MakeDirection(&values[3])) {
      Blame(parameters[3], "the direction is null; expected a direction");
    }
    std::copy_n(&values[3], 3, state_.direction.begin());
  }
  *point = ToolPoint();
  for (int i = 0; i < 3; ++i) {
    point->point[i] = values[static_cast<std::size_t>(i)] * state_.scale;
    point->direction[i] = state_.direction[static_cast<std::size_t>(i)];
  }
  point->feed = state_.feed;
  point->line = statement.word.line;
  point->isRapid = state_.isRapid || statement.word.text == "FROM";
  state_.isRapid = false;
}

void AptImplementation::TakeFeed(const AptStatement& statement) {
  const auto isPerTurn = [](const AptToken& token) {
    return token.text == "MMPR" || token.text == "IPR" || token.text == "PERREV";
  };
  const bool isPerMinute =
      std::none_of(statement.parameters.begin(), statement.parameters.end(), isPerTurn);
  if (!isPerMinute) {
    NoteToken(statement.word, "a feed per revolution counts as none");
  }
  bool hasNumber = false;
  double feed = 0.0;
  double scale = state_.scale;
  for (const AptToken& token : statement.parameters) {
    double value = 0.0;
    if (token.text == "MMPM" || token.text == "PERMIN") {
      scale = token.text == "MMPM" ? 1.0 : scale;
    } else if (token.text == "IPM") {
      scale = MillimetersPerInch;
    } else if (isPerTurn(token)) {
      continue;
    } else if (!hasNumber && ReadNumber(token.text, &value) == nullptr) {
      hasNumber = true;
      feed = value;
      if (feed < 0.0) {
        Blame(token, "the feed is negative; expected 0 or more");
      }
    } else {
      NoteToken(token, "FEDRAT: " + Quote(token.text) + " isn't understood");
    }
  }
  if (!hasNumber) {
    Blame(statement.word, "FEDRAT without a number; expected FEDRAT/ and the feed");
  }
  state_.feed = isPerMinute ? feed * scale : 0.0;
  state_.isRapid = false;
}

void AptImplementation::TakeUnits(const AptStatement& statement) {
  const AptToken& token =
      statement.parameters.empty() ? statement.word : statement.parameters.front();
  if (token.text == "MM") {
    state_.scale = 1.0;
  } else if (token.text == "INCHES" || token.text == "INCH") {
    state_.scale = MillimetersPerInch;
  } else {
    Blame(token, "the unit isn't known; expected UNITS/MM or UNITS/INCHES");
  }
  NoteRest(statement, 1);
}

void AptImplementation::TakeMultax(const AptStatement& statement) {
  const bool isOff = !statement.parameters.empty() && statement.parameters.front().text == "OFF";
  if (!isOff && !statement.parameters.empty() && statement.parameters.front().text != "ON") {
    Blame(statement.parameters.front(), "expected MULTAX, MULTAX/ON or MULTAX/OFF");
  }
  NoteRest(statement, 1);
  state_.isSingleAxis = isOff;
  if (isOff) {
    state_.direction = {0.0, 0.0, 1.0};
  }
}

// A word as it moves the tool, alone or behind others and a comma: none of those may be lost.
void AptImplementation::RefuseMove(const AptToken& token, std::string_view word) const {
  if (Holds(CurveWords, word)) {
    Blame(token, Quote(word) +
                     (word == "GODLTA" ? " is an incremental move" : " is an arc or curve") +
                     "; expected straight moves: post the path with points (GOTO) only");
  }
  if (Holds(DrivenWords, word)) {
    Blame(token, Quote(word) +
                     " moves along geometry, which this reader doesn't compute; expected the "
                     "cutter locations (GOTO) that it makes");
  }
  for (const std::string_view point : {"GOTO", "FROM"}) {
    if (word.starts_with(point) &&
        word.substr(point.size()).find_first_not_of("0123456789+-.") == std::string_view::npos) {
      Blame(token, Quote(token.text) + " is no statement; expected " + std::string(point) +
                       "/ and 3 or 6 numbers");
    }
  }
}

void AptImplementation::TakeOther(const AptStatement& statement) {
  const std::string& word = statement.word.text;
  for (std::string_view rest = word; !rest.empty();) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    RefuseMove(statement.word, rest.substr(0, comma));
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  for (const AptToken& token : statement.parameters) {
    if (token.text.find("(CIRCLE") != std::string::npos) {
      Blame(token, "an arc; expected straight moves: post the path with points (GOTO) only");
    }
  }
  if (!Holds(IdleWords, word)) {
    NoteToken(statement.word, Quote(word) + " isn't understood");
  } else if (word == "CUTTER") {
    for (const AptToken& token : statement.parameters) {
      double value = 0.0;
      if (ReadNumber(token.text, &value) != nullptr) {
        NoteToken(token, "CUTTER: " + Quote(token.text) + " isn't understood");
      }
    }
  }
}

bool AptImplementation::Next(ToolPoint* point) {
  AptStatement statement;
  while (!state_.isAtEnd && ReadAptStatement(&lines, &statement)) {
    const std::string& word = statement.word.text;
    if (word == "GOTO" || word == "FROM") {
      TakePoint(statement, point);
      return true;
    }
    if (word == "FEDRAT") {
      TakeFeed(statement);
    } else if (word == "RAPID") {
      NoteRest(statement, 0);
      state_.isRapid = true;
    } else if (word == "UNITS") {
      TakeUnits(statement);
    } else if (word == "MULTAX") {
      TakeMultax(statement);
    } else if (word == "FINI") {
      state_.isAtEnd = true;
    } else {
      TakeOther(statement);
    }
  }
  return false;
}

}  // namespace

AptReader::AptReader(const std::filesystem::path& file)
    : TextReader(std::make_unique<AptImplementation>(file)) {}

AptReader::AptReader(std::unique_ptr<std::istream> stream, const std::string& name)
    : TextReader(std::make_unique<AptImplementation>(std::move(stream), name)) {}

}  // namespace Orvo::Path
