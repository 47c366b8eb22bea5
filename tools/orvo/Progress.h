#pragma once

#include <cstddef>
#include <cstdint>

namespace OrvoTool {

/// Tells on the error stream how far a long run has come, on one line that is wiped at the end:
/// "42 %  1200000 points  310000/s  0:12 left". Rate and time left appear after a second. Says
/// nothing where the error stream is no terminal.
class Progress {
 public:
  /// @param unit  what is counted
  explicit Progress(const char* unit = "points");
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Wipes the line.
  ~Progress();

  /// Shows a state, a few times a second at most.
  /// @param doneNb  how many points are done
  /// @param share   how much of the work that is, from 0 to 1; negative when not known
  void Show(std::uint64_t doneNb, double share);

  /// Wipes the line before something else is written; the next state shows again.
  void Wipe();

 private:
  const char* unit_;
  bool isTerminal_ = false;
  std::size_t shownWidth_ = 0;
  std::int64_t beginMilliseconds_ = 0;
  std::int64_t nextMilliseconds_ = 0;
  std::uint64_t nextDoneNb_ = 0;
};

}  // namespace OrvoTool
