#pragma once

#include <filesystem>

namespace OrvoTool {

/// Sees to it that a file goes when the user ends the program by a signal, which else ends it as
/// ever. Four files at a time.
/// @return what KeepWhenInterrupted() wants to know; -1 where the file would not go
int RemoveWhenInterrupted(const std::filesystem::path& file);

/// Leaves a file where it is.
/// @param slot  what RemoveWhenInterrupted() returned
void KeepWhenInterrupted(int slot);

/// Removes the files that would go by a signal.
void RemoveUnfinishedFiles();

/// Makes a file that grows beyond the system's limit an error of its writer instead of the end of
/// the program.
void ReportFileSizeLimit();

}  // namespace OrvoTool
