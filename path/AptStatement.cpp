#include "path/AptStatement.h"

#include <algorithm>

namespace Orvo::Path {
namespace {

/// A statement may go on over so many bytes; one that does so further is no statement.
constexpr std::size_t MaxStatementBytes = 65536;

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool IsText(std::string_view word) { return word == "PARTNO" || word == "PPRINT"; }

bool IsLetter(char c) {
  c = Upper(c);
  return c >= 'A' && c <= 'Z';
}

bool IsComment(std::string_view line) {
  line = Trim(line);
  return line.substr(0, 2) == "$$";
}

/// Cuts a line at its comment and at its continuation mark; tells whether the statement goes on.
bool CutLine(std::string_view* line) {
  const std::size_t mark = line->find('$');
  if (mark == std::string_view::npos) {
    return false;
  }
  const bool isComment = mark + 1 < line->size() && (*line)[mark + 1] == '$';
  *line = line->substr(0, mark);
  return !isComment;
}

/// Collects the tokens of a statement while its lines come.
class Collector {
 public:
  Collector(const TextLines& lines, AptStatement* statement)
      : lines_(lines), statement_(statement) {}

  void Add(std::string_view line) {
    isGap_ = true;
    for (std::size_t i = 0; i < line.size(); ++i) {
      const char c = line[i];
      if (c == ' ' || c == '\t') {
        isGap_ = true;
        continue;
      }
      if (c == '/' && !statement_->hasSlash) {
        EndWord(i);
        statement_->hasSlash = true;
        StartToken();
      } else if (c == ',' && statement_->hasSlash) {
        EndParameter(i);
        StartToken();
      } else if (c == ')' && !statement_->hasSlash && !token_.text.empty() &&
                 token_.text.find('(') == std::string::npos) {
        // What came so far is the statement's label.
        StartToken();
      } else {
        Append(c, i);
      }
      isGap_ = false;
    }
    last_ = lines_.GetColumn(line.size());
    lastLine_ = lines_.GetNumber();
  }

  bool IsEmpty() const { return !statement_->hasSlash && token_.text.empty(); }
  std::size_t Size() const { return size_; }

  void End() {
    if (!statement_->hasSlash) {
      statement_->word = token_;
    } else if (!token_.text.empty() || !statement_->parameters.empty()) {
      if (token_.text.empty()) {
        token_.line = lastLine_;
        token_.column = last_;
      }
      statement_->parameters.push_back(token_);
    }
  }

 private:
  void StartToken() { token_ = AptToken(); }

  void Append(char c, std::size_t offset) {
    if (token_.text.empty()) {
      token_.line = lines_.GetNumber();
      token_.column = lines_.GetColumn(offset);
    } else if (isGap_ && token_.text.back() != '+' && token_.text.back() != '-') {
      token_.hasGap = true;
    }
    token_.text += Upper(c);
    ++size_;
  }

  void EndWord(std::size_t offset) {
    if (token_.text.empty()) {
      lines_.Blame(offset, "a slash without a word; expected a word such as GOTO");
    }
    statement_->word = token_;
  }

  void EndParameter(std::size_t offset) {
    if (token_.text.empty()) {
      token_.line = lines_.GetNumber();
      token_.column = lines_.GetColumn(offset);
    }
    statement_->parameters.push_back(token_);
    ++size_;
  }

  const TextLines& lines_;
  AptStatement* statement_;
  AptToken token_;
  bool isGap_ = false;  ///< what comes next does not follow what came last
  std::size_t size_ = 0;
  std::uint64_t lastLine_ = 0;
  std::uint64_t last_ = 1;
};

/// Tells whether a line begins with a word whose rest is text; such a line ends where it ends.
bool BeginsText(std::string_view line) {
  const std::string_view trimmed = Trim(line);
  std::string word;
  for (const char c : trimmed.substr(0, std::min<std::size_t>(trimmed.size(), 6))) {
    word += Upper(c);
  }
  return IsText(word) && (trimmed.size() == 6 || !IsLetter(trimmed[6]));
}

}  // namespace

bool ReadAptStatement(TextLines* lines, AptStatement* statement) {
  while (lines->Next()) {
    std::string_view line = lines->GetLine();
    if (BeginsText(line)) {
      continue;
    }
    *statement = AptStatement();
    Collector collector(*lines, statement);
    bool goesOn = CutLine(&line);
    collector.Add(line);
    while (goesOn && lines->Next()) {
      line = lines->GetLine();
      if (IsComment(line)) {
        continue;
      }
      goesOn = CutLine(&line);
      collector.Add(line);
      if (collector.Size() > MaxStatementBytes) {
        lines->Blame(0, "the statement is longer than " + std::to_string(MaxStatementBytes) +
                            " bytes; expected its end");
      }
    }
    if (!collector.IsEmpty()) {
      collector.End();
      return true;
    }
  }
  return false;
}

}  // namespace Orvo::Path
