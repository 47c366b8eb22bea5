#include "OutputFile.h"

#include "Failure.h"
#include "Interruption.h"
#include "StandardInput.h"
#include "WideText.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <random>
#include <system_error>
#include <utility>

namespace OrvoTool {
namespace {

constexpr std::size_t PendingBytes = 65536;

/// Returns a part of a file name that no other run has.
std::string RandomPart() {
  std::random_device random;
  std::array<char, 8> text = {};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), random(), 16);
  return std::string(text.data(), result.ptr);
}

}  // namespace

void RefuseToReplaceInput(const std::string& option, const std::string& output,
                          std::initializer_list<std::string> inputs) {
  std::error_code ignored;
  const std::filesystem::path target = FileFromUtf8(output);
  // What is no regular file is written to, not replaced.
  if (output.empty() || IsStandardStream(output) ||
      !std::filesystem::is_regular_file(target, ignored)) {
    return;
  }
  for (const std::string& input : inputs) {
    // Where there is no such device, nothing is equivalent to it.
    const std::filesystem::path source =
        IsStandardStream(input) ? std::filesystem::path("/dev/stdin") : FileFromUtf8(input);
    if (!input.empty() && std::filesystem::equivalent(source, target, ignored)) {
      throw UsageFailure(option + ": " + Printable(output) + " would replace what is read");
    }
  }
}

OutputFile::OutputFile(std::string shownName, std::filesystem::path target)
    : shownName_(std::move(shownName)), target_(std::move(target)) {}

// The destructor runs for all that this body throws: the object is whole after the other one.
OutputFile::OutputFile(const std::string& name) : OutputFile(Printable(name), FileFromUtf8(name)) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(target_, error);
  if (std::filesystem::is_directory(status)) {
    throw Failure(ExitCode::Unreadable, shownName_ + ": is a folder");
  }
  if (std::filesystem::exists(status)) {
    // The file that a link leads to is replaced, not the link.
    const std::filesystem::path resolved = std::filesystem::canonical(target_, error);
    target_ = error ? target_ : resolved;
  }
  written_ = target_;
  ReportFileSizeLimit();
  if (!std::filesystem::exists(status) || std::filesystem::is_regular_file(status)) {
    written_ += "." + RandomPart() + ".part";
    interruptionSlot_ = RemoveWhenInterrupted(written_);
    isTemporary_ = true;
  }
  pending_.reserve(2 * PendingBytes);
  errno = 0;
  stream_.rdbuf()->pubsetbuf(nullptr, 0);
  stream_.open(written_, std::ios::binary | std::ios::trunc);
  if (!stream_) {
    KeepWhenInterrupted(interruptionSlot_);
    isTemporary_ = false;
    Blame("can't be made");
  }
}

OutputFile::~OutputFile() {
  if (isTemporary_) {
    stream_.close();
    std::error_code ignored;
    std::filesystem::remove(written_, ignored);
    KeepWhenInterrupted(interruptionSlot_);
  }
}

void OutputFile::Blame(const std::string& what) {
  const std::string reason = errno != 0 ? ": " + std::generic_category().message(errno) : "";
  throw Failure(ExitCode::Unreadable, shownName_ + ": " + what + reason);
}

void OutputFile::Flush() {
  errno = 0;
  stream_.write(pending_.data(), static_cast<std::streamsize>(pending_.size()));
  if (!stream_) {
    Blame("can't be written");
  }
  pending_.clear();
}

void OutputFile::Write(std::string_view bytes) {
  pending_.append(bytes);
  if (pending_.size() >= PendingBytes) {
    Flush();
  }
}

void OutputFile::Finish() {
  Flush();
  errno = 0;
  stream_.close();
  if (!stream_) {
    Blame("can't be written");
  }
  if (isTemporary_) {
    std::error_code error;
    std::filesystem::rename(written_, target_, error);
    if (error) {
      errno = error.value();
      Blame("can't be replaced");
    }
    KeepWhenInterrupted(interruptionSlot_);
    isTemporary_ = false;
  }
}

}  // namespace OrvoTool
