#include "PathInput.h"

#include "ChoiceOption.h"
#include "Failure.h"
#include "WideText.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <limits>
#include <system_error>
#include <utility>

namespace OrvoTool {
namespace {

/// How many notes of a reader are shown.
constexpr std::size_t MaxShownNotes = 10;

std::string Lower(std::string text) {
  for (char& c : text) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return text;
}

std::unique_ptr<Orvo::Path::TextReader> MakeReader(PathKind kind,
                                                   std::unique_ptr<std::istream> stream,
                                                   const std::string& shownName) {
  switch (kind) {
    case PathKind::JsonLines:
      return std::make_unique<Orvo::Path::JsonLinesReader>(std::move(stream), shownName);
    case PathKind::Apt:
      return std::make_unique<Orvo::Path::AptReader>(std::move(stream), shownName);
    case PathKind::BySuffix:
    case PathKind::Csv:
      break;
  }
  return std::make_unique<Orvo::Path::CsvReader>(std::move(stream), shownName);
}

std::unique_ptr<Orvo::Path::TextReader> OpenFile(PathKind kind, const std::filesystem::path& file) {
  switch (kind) {
    case PathKind::JsonLines:
      return std::make_unique<Orvo::Path::JsonLinesReader>(file);
    case PathKind::Apt:
      return std::make_unique<Orvo::Path::AptReader>(file);
    case PathKind::BySuffix:
    case PathKind::Csv:
      break;
  }
  return std::make_unique<Orvo::Path::CsvReader>(file);
}

}  // namespace

void AddPathKindOption(CLI::App* command, PathKind* kind) {
  AddChoice<PathKind>(
      command, "--from", kind,
      {{"csv", PathKind::Csv}, {"jsonl", PathKind::JsonLines}, {"apt", PathKind::Apt}},
      "what kind of path is read; by the file's suffix if not given: .jsonl and .ndjson are JSON "
      "Lines; .apt, .aptsource, .cl, .cls and .ncl are APT source; all else is CSV");
}

PathKind FindPathKind(const std::string& name, PathKind asked) {
  if (asked != PathKind::BySuffix) {
    return asked;
  }
  const std::size_t dot = name.find_last_of("./\\");
  const std::string suffix =
      dot != std::string::npos && name[dot] == '.' ? Lower(name.substr(dot)) : std::string();
  if (suffix == ".jsonl" || suffix == ".ndjson") {
    return PathKind::JsonLines;
  }
  for (const char* const apt : {".apt", ".aptsource", ".cl", ".cls", ".ncl"}) {
    if (suffix == apt) {
      return PathKind::Apt;
    }
  }
  return PathKind::Csv;
}

PathInput::PathInput(const std::string& name, PathKind kind) : shownName_(ShownInput(name)) {
  kind = FindPathKind(name, kind);
  if (!IsStandardStream(name)) {
    std::error_code ignored;
    const std::filesystem::file_status status =
        std::filesystem::status(FileFromUtf8(name), ignored);
    if (std::filesystem::is_fifo(status) || std::filesystem::is_character_file(status)) {
      throw Failure(ExitCode::Unreadable,
                    shownName_ +
                        ": is a pipe or a device, and the path is read more than once; "
                        "give '-' and feed it to the standard input");
    }
    Open([&]() { return OpenFile(kind, FileFromUtf8(name)); });
    return;
  }
  spooled_.emplace(".path", std::numeric_limits<std::uintmax_t>::max());
  errno = 0;
  auto stream = std::make_unique<std::ifstream>(spooled_->GetFile(), std::ios::binary);
  if (!*stream) {
    throw Failure(ExitCode::Unreadable, shownName_ + ": its copy can't be opened: " +
                                            std::generic_category().message(errno));
  }
  Open([&]() { return MakeReader(kind, std::move(stream), shownName_); });
}

template <typename Opener>
void PathInput::Open(const Opener& open) {
  try {
    reader_ = open();
  } catch (const Orvo::Path::ReadError& error) {
    throw Failure(ExitCode::Unreadable, Printable(error.what()));
  }
}

std::size_t PathInput::Read(Orvo::Path::ToolPoint* points, std::size_t capacity) {
  try {
    return reader_->Read(points, capacity);
  } catch (const Orvo::Path::ReadError& error) {
    throw Failure(ExitCode::Unreadable, Printable(error.what()));
  }
}

std::string PathInput::DescribeNotes() const {
  const std::vector<Orvo::Path::ReadNote>& notes = reader_->GetNotes();
  std::string text;
  for (std::size_t i = 0; i < std::min(notes.size(), MaxShownNotes); ++i) {
    text += shownName_ + ":" + std::to_string(notes[i].line) + ":" +
            std::to_string(notes[i].column) + ": passed over: " + Printable(notes[i].text) + "\n";
  }
  if (reader_->GetNoteNb() > MaxShownNotes) {
    text += shownName_ + ": " + std::to_string(reader_->GetNoteNb() - MaxShownNotes) +
            " more places were passed over\n";
  }
  return text;
}

}  // namespace OrvoTool
