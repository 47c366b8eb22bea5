#include "support/FaultReport.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <map>
#include <utility>

namespace Orvo::Testing {
namespace {

class FaultCounts {
 public:
  FaultCounts() = default;
  FaultCounts(const FaultCounts&) = delete;
  FaultCounts& operator=(const FaultCounts&) = delete;

  ~FaultCounts() {
    const char* const file = std::getenv("ORVO_FAULT_REPORT");
    if (file == nullptr) {
      return;
    }
    std::ofstream stream(file, std::ios::app);
    for (const auto& [fault, endings] : counts_) {
      stream << fault.first << '\t' << fault.second;
      for (const unsigned long count : endings) {
        stream << '\t' << count;
      }
      stream << '\n';
    }
  }

  void Add(const std::string& operation, const std::string& fault, FaultEnding ending) {
    ++counts_[{operation, fault}][static_cast<std::size_t>(ending)];
  }

 private:
  std::map<std::pair<std::string, std::string>, std::array<unsigned long, 3>> counts_;
};

}  // namespace

void CountFault(const std::string& operation, const std::string& fault, FaultEnding ending) {
  static FaultCounts counts;
  counts.Add(operation, fault, ending);
}

}  // namespace Orvo::Testing
