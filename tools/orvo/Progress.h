#pragma once

#include <cstdint>

namespace OrvoTool {

/// Tells on the error stream how far a long run has come, on one line that is wiped at the end.
/// Says nothing where the error stream is no terminal.
class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Wipes the line.
  ~Progress();

  /// Shows a state, a few times a second at most.
  /// @param points  how many points are done
  /// @param share   how much of the work that is, from 0 to 1; negative when not known
  void Show(std::uint64_t points, double share);

 private:
  bool isTerminal_ = false;
  bool isShown_ = false;
  std::int64_t nextMilliseconds_ = 0;
};

}  // namespace OrvoTool
