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
constexpr int SlotNb = 4;
char filesToRemove[SlotNb][MaxFileBytes];
volatile std::sig_atomic_t isFileSet[SlotNb] = {};

void RemoveFiles() {
  for (int slot = 0; slot < SlotNb; ++slot) {
    if (isFileSet[slot] != 0) {
#ifdef _WIN32
      std::remove(filesToRemove[slot]);
#else
      unlink(filesToRemove[slot]);
#endif
    }
  }
}

extern "C" void RemoveFilesAndDie(int signal) {
  RemoveFiles();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

/// A signal that is ignored, as under nohup, stays so.
void Catch(int signal) {
  if (std::signal(signal, RemoveFilesAndDie) == SIG_IGN) {
    std::signal(signal, SIG_IGN);
  }
}

}  // namespace

int RemoveWhenInterrupted(const std::filesystem::path& file) {
  const std::string name = file.string();
  int slot = 0;
  while (slot < SlotNb && isFileSet[slot] != 0) {
    ++slot;
  }
  if (slot == SlotNb || name.size() >= MaxFileBytes) {
    return -1;
  }
  filesToRemove[slot][name.copy(filesToRemove[slot], MaxFileBytes - 1)] = '\0';
  isFileSet[slot] = 1;
  Catch(SIGINT);
  Catch(SIGTERM);
#ifdef SIGHUP
  Catch(SIGHUP);
#endif
  return slot;
}

void KeepWhenInterrupted(int slot) {
  if (slot >= 0) {
    isFileSet[slot] = 0;
  }
}

void RemoveUnfinishedFiles() { RemoveFiles(); }

void ReportFileSizeLimit() {
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);
#endif
}

}  // namespace OrvoTool
