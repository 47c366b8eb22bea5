// Runs a target on files, one after the other, where no fuzzer is there.
//
//   program FILE|FOLDER...    a folder stands for the files in it, by name
//
// Says which file it is at when something breaks.

#include "Target.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

// What the handler below says; it must not allocate.
char currentFile[4096] = "(none)";

void SayWhere(int signal) {
  std::fprintf(stderr, "signal %d at the input %s\n", signal, currentFile);
  std::_Exit(128 + signal);
}

void AddFiles(const std::filesystem::path& path, std::vector<std::filesystem::path>* files) {
  if (!std::filesystem::is_directory(path)) {
    files->push_back(path);
    return;
  }
  const std::size_t first = files->size();
  for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
    if (entry.is_regular_file()) {
      files->push_back(entry.path());
    }
  }
  std::sort(files->begin() + static_cast<std::ptrdiff_t>(first), files->end());
}

int Replay(const std::filesystem::path& path) {
  const std::string name = path.string();
  std::strncpy(currentFile, name.c_str(), sizeof currentFile - 1);
  std::ifstream stream(path, std::ios::binary);
  if (!stream) {
    std::fprintf(stderr, "can't read %s\n", name.c_str());
    return 1;
  }
  const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  // Of its exact size, so that reading behind the end is seen.
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  try {
    LLVMFuzzerTestOneInput(input.data(), input.size());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "exception at the input %s: %s\n", name.c_str(), error.what());
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  for (const int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGILL}) {
    std::signal(signal, SayWhere);
  }
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    AddFiles(argv[i], &files);
  }
  if (files.empty()) {
    std::fprintf(stderr, "no inputs; usage: %s FILE|FOLDER...\n", argv[0]);
    return 2;
  }
  int status = 0;
  for (const std::filesystem::path& file : files) {
    status |= Replay(file);
  }
  std::printf("%zu inputs\n", files.size());
  return status;
}
