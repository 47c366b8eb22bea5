#pragma once

#include <filesystem>

namespace OrvoTool {

/// Sees to it that a file goes when the user ends the program by a signal, which else ends it as
/// ever. One file at a time.
void RemoveWhenInterrupted(const std::filesystem::path& file);

/// Leaves the file of the last call where it is.
void KeepWhenInterrupted();

/// Makes a file that grows beyond the system's limit an error of its writer instead of the end of
/// the program.
void ReportFileSizeLimit();

}  // namespace OrvoTool
