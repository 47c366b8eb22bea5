#include "StandardInput.h"

#include "Failure.h"
#include "Interruption.h"
#include "WideText.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <functional>
#include <random>
#include <string_view>
#include <system_error>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace OrvoTool {
namespace {

constexpr std::size_t ChunkBytes = 65536;

/// How often another name is tried for the temporary file.
constexpr int MaxNames = 16;

/// Makes a file that was not there before, so that nobody can lay a link in the way, and that only
/// its owner reads; null where that fails.
std::FILE* MakeNewFile(const std::filesystem::path& file) {
#ifdef _WIN32
  return std::fopen(file.string().c_str(), "wbx");
#else
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  std::FILE* stream = descriptor >= 0 ? fdopen(descriptor, "wb") : nullptr;
  if (descriptor >= 0 && stream == nullptr) {
    close(descriptor);
    unlink(file.c_str());
  }
  return stream;
#endif
}

[[noreturn]] void Blame(const std::string& what, int error) {
  const std::string reason = error != 0 ? ": " + std::generic_category().message(error) : "";
  throw Failure(ExitCode::Unreadable, "standard input: " + what + reason);
}

/// Hands out the standard input part by part.
void ReadParts(std::uintmax_t maxBytes, const std::function<void(std::string_view)>& take) {
  std::array<char, ChunkBytes> chunk;
  std::uintmax_t byteNb = 0;
  for (;;) {
    const std::size_t count = ReadStandardInputPart(chunk.data(), chunk.size());
    if (count == 0) {
      return;
    }
    byteNb += count;
    if (byteNb > maxBytes) {
      Blame("is larger than " + std::to_string(maxBytes >> 20U) + " MiB", 0);
    }
    take(std::string_view(chunk.data(), count));
  }
}

}  // namespace

std::string ShownInput(const std::string& name) {
  return IsStandardStream(name) ? "standard input" : Printable(name);
}

void RefuseSecondStandardInput(const std::string& first, const std::string& second) {
  if (IsStandardStream(first) && IsStandardStream(second)) {
    throw UsageFailure("the standard input, '-', can be read only once");
  }
}

std::size_t ReadStandardInputPart(char* bytes, std::size_t capacity) {
#ifdef _WIN32
  _setmode(_fileno(stdin), _O_BINARY);
#endif
  errno = 0;
  const std::size_t count = std::fread(bytes, 1, capacity, stdin);
  if (count < capacity && std::ferror(stdin) != 0) {
    Blame("can't be read", errno);
  }
  return count;
}

std::string ReadStandardInput(std::uintmax_t maxBytes) {
  std::string bytes;
  ReadParts(maxBytes, [&bytes](std::string_view part) { bytes.append(part); });
  return bytes;
}

SpooledInput::SpooledInput(const std::string& suffix, std::uintmax_t maxBytes) {
  Fill(suffix, [maxBytes](const Taker& take) { ReadParts(maxBytes, take); });
}

SpooledInput::SpooledInput(const std::string& suffix, const std::string& bytes) {
  Fill(suffix, [&bytes](const Taker& take) { take(bytes); });
}

void SpooledInput::Fill(const std::string& suffix, const std::function<void(const Taker&)>& give) {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  if (error) {
    Blame("there is no folder for temporary files", error.value());
  }
  std::random_device random;
  std::FILE* stream = nullptr;
  for (int i = 0; i < MaxNames && stream == nullptr; ++i) {
    file_ = folder / ("orvo-" + std::to_string(random()) + "-" + std::to_string(random()) + suffix);
    errno = 0;
    stream = MakeNewFile(file_);
  }
  if (stream == nullptr) {
    Blame("can't be copied to " + Printable(file_.string()), errno);
  }
  interruptionSlot_ = RemoveWhenInterrupted(file_);
  ReportFileSizeLimit();
  bool isGood = true;
  int reason = 0;
  const auto remove = [this]() {
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
    KeepWhenInterrupted(interruptionSlot_);
  };
  try {
    give([stream, &isGood, &reason](std::string_view part) {
      errno = 0;
      if (isGood && std::fwrite(part.data(), 1, part.size(), stream) != part.size()) {
        isGood = false;
        reason = errno;
      }
    });
  } catch (...) {
    std::fclose(stream);
    remove();
    throw;
  }
  errno = 0;
  if (std::fclose(stream) != 0 || !isGood) {
    reason = reason != 0 ? reason : errno;
    remove();
    Blame("can't be copied to " + Printable(file_.string()), reason);
  }
}

SpooledInput::~SpooledInput() {
  std::error_code ignored;
  std::filesystem::remove(file_, ignored);
  KeepWhenInterrupted(interruptionSlot_);
}

std::string SpooledInput::GetName() const { return Utf8FromFile(file_); }

}  // namespace OrvoTool
