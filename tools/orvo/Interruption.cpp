#include "Interruption.h"

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <string>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace OrvoTool {
namespace {

// All that the handler touches: it may run between any two instructions.
constexpr std::size_t MaxFileBytes = 4096;
char fileToRemove[MaxFileBytes];
volatile std::sig_atomic_t isFileSet = 0;

extern "C" void RemoveFileAndDie(int signal) {
  if (isFileSet != 0) {
#ifdef _WIN32
    std::remove(fileToRemove);
#else
    unlink(fileToRemove);
#endif
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

/// A signal that is ignored, as under nohup, stays so.
void Catch(int signal) {
  if (std::signal(signal, RemoveFileAndDie) == SIG_IGN) {
    std::signal(signal, SIG_IGN);
  }
}

}  // namespace

void RemoveWhenInterrupted(const std::filesystem::path& file) {
  const std::string name = file.string();
  isFileSet = 0;
  if (name.size() < MaxFileBytes) {
    fileToRemove[name.copy(fileToRemove, MaxFileBytes - 1)] = '\0';
    isFileSet = 1;
  }
  Catch(SIGINT);
  Catch(SIGTERM);
#ifdef SIGHUP
  Catch(SIGHUP);
#endif
}

void KeepWhenInterrupted() { isFileSet = 0; }

void ReportFileSizeLimit() {
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);
#endif
}

}  // namespace OrvoTool
