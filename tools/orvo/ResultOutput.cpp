#include "ResultOutput.h"

#include "StandardOutput.h"

namespace OrvoTool {
namespace {

constexpr std::size_t PendingBytes = 65536;

}  // namespace

ResultOutput::ResultOutput(const std::string& name) {
  if (!name.empty() && name != "-") {
    file_.emplace(name);
  }
}

void ResultOutput::Write(std::string_view bytes) {
  if (file_) {
    file_->Write(bytes);
    return;
  }
  pending_.append(bytes);
  if (pending_.size() >= PendingBytes) {
    WriteStandardOutput(pending_);
    pending_.clear();
  }
}

void ResultOutput::Finish() {
  if (file_) {
    file_->Finish();
    return;
  }
  WriteStandardOutput(pending_);
  pending_.clear();
}

}  // namespace OrvoTool
