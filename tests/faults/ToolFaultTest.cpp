#include "support/FaultReport.h"
#include "support/Sanitizers.h"
#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

/// A run of the program that writes a result, in the folder of a ToolRun.
struct Command {
  const char* name;
  std::string line;
  bool hasFile;  ///< whether the result is a file, axes.csv, beside the standard output
};

std::vector<Command> Commands() {
  const std::string machine = "'" + ExampleMachine("trunnion_ac") + "'";
  return {{"orvo info", "info " + machine, false},
          {"orvo solve", "solve " + machine + " path.csv --offset 0,0,30 -o axes.csv", true},
          {"orvo solve --policy optimal",
           "solve " + machine + " few.csv --offset 0,0,30 --policy optimal --threads 2 -o axes.csv",
           true},
          {"orvo check", "check " + machine + " rows.csv --path few.csv --offset 0,0,30", false},
          {"orvo vectors", "vectors write " + machine + " --count 2 -o axes.csv", true},
          {"orvo validate", "validate " + machine, false},
          {"orvo fk", "fk " + machine + " rows.csv --all --format csv -o axes.csv", true},
          {"orvo ik", "ik " + machine + " 10,2,30 0,0.5,0.8", false},
          {"orvo explain", "explain " + machine + " 1,2,30 0,0,1 --format json", false},
          {"orvo new", "new trunnion-ac -o axes.csv", true}};
}

// Enough points for several writes.
std::string PathOfManyPoints() {
  std::string text = "x,y,z,i,j,k\n";
  for (int i = 0; i < 4000; ++i) {
    text += std::to_string(i % 90) + ",2,3,0,0.6,0.8\n";
  }
  return text;
}

// A short path, and axis values that follow it with a tool of 30.
std::string FewPoints() {
  std::string text = "x,y,z,i,j,k\n";
  for (int i = 0; i < 20; ++i) {
    text += std::to_string(i) + ",2,3,0,0,1\n";
  }
  return text;
}

std::string RowsOfFewPoints() {
  std::string text = "X,Y,Z,A,C\n";
  for (int i = 0; i < 20; ++i) {
    text += std::to_string(i) + ",2,43,0,0\n";
  }
  return text;
}

/// How many files the commands read.
constexpr std::size_t InputNb = 3;

/// A call that fails in a run, and how.
struct CallFault {
  const char* call;
  int error = 0;  ///< 0: half of the bytes
  bool isLasting = false;

  std::string Name() const {
    return std::string(call) + ": " + (error == 0 ? "half of the bytes" : strerrorname_np(error)) +
           (isLasting ? ", lasting" : ", once");
  }
};

class ToolFaults : public testing::Test {
 protected:
  void SetUp() override {
    tool_.Write("path.csv", PathOfManyPoints());
    tool_.Write("few.csv", FewPoints());
    tool_.Write("rows.csv", RowsOfFewPoints());
  }

  ToolResult RunWith(const Command& command, const CallFault& fault, std::size_t place) {
    std::filesystem::remove(tool_.Folder().File("axes.csv"));
    // The JSON library loses what it built so far where memory is refused; the run ends then.
    const std::string environment =
        "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0 LD_PRELOAD='" ORVO_FAILING_CALLS_PATH
        "' ORVO_FAIL_CALL=" +
        std::string(fault.call) + " ORVO_FAIL_HOW='" + std::to_string(place) + ' ' +
        std::to_string(fault.error) + ' ' + (fault.isLasting ? "1" : "0") + "' ORVO_FAIL_RESULT='" +
        results_.Narrow("calls") + "'";
    return tool_.Shell("exec env " + environment + " \"$ORVO\" " + command.line);
  }

  /// How many calls of the kind the last run made.
  std::size_t CallNb() const { return std::stoul(results_.Read("calls")); }

  /// Expects a run that met a fault to be whole, or to say by its status and its message that it is
  /// not and to leave no part of its file.
  FaultEnding ExpectWholeOrSaidNotToBe(const ToolResult& result, const Command& command,
                                       const ToolResult& undisturbed, const std::string& axes) {
    EXPECT_EQ(result.signal, 0);
    EXPECT_TRUE(result.status == 0 || result.status == 2) << result.status;
    const bool hasFile = tool_.Folder().Has("axes.csv");
    EXPECT_EQ(tool_.CountFiles(), InputNb + (hasFile ? 1U : 0U)) << "no other file is left";
    if (hasFile) {
      EXPECT_EQ(tool_.Folder().Read("axes.csv"), axes);
    }
    if (result.status == 0) {
      EXPECT_EQ(result.out, undisturbed.out);
      EXPECT_EQ(hasFile, command.hasFile);
    }
    return result.status == 0 ? FaultEnding::Completed : FaultEnding::Failed;
  }

  /// Runs a command with each call of a kind failing in turn. Where there are many calls it is the
  /// first and the last ones, and some between; fewer where AddressSanitizer makes every start
  /// slow.
  void FailCalls(const Command& command, const CallFault& fault) {
    const ToolResult undisturbed = RunWith(command, fault, 1000000000);
    ASSERT_EQ(undisturbed.status, 0) << undisturbed.err;
    const std::string axes = command.hasFile ? tool_.Folder().Read("axes.csv") : "";
    const std::size_t callNb = CallNb();
#if defined(ORVO_TEST_HAS_ADDRESS_SANITIZER)
    const std::size_t step = std::max<std::size_t>(1, callNb / 40);
#else
    const std::size_t step = std::max<std::size_t>(1, callNb / 300);
#endif
    // Not every command reads a file, or writes both a file and to the standard output; these two
    // do between them.
    const std::string name = command.name;
    EXPECT_TRUE(callNb > 0 || (name != "orvo info" && name != "orvo solve"));
    for (std::size_t place = 0; place < callNb && !HasFailure();
         place += place < 20 || place + 20 > callNb ? 1 : step) {
      SCOPED_TRACE(command.name + (", " + fault.Name()) + ", call " + std::to_string(place));
      const ToolResult result = RunWith(command, fault, place);
      SCOPED_TRACE(result.err);
      CountFault(command.name, fault.Name(),
                 ExpectWholeOrSaidNotToBe(result, command, undisturbed, axes));
      // A message is the last thing that can be done, and may fail as well.
      if (result.status != 0 && !fault.isLasting) {
        EXPECT_NE(result.err, "");
      }
    }
  }

  ToolRun tool_;
  TemporaryFolder results_;
};

TEST_F(ToolFaults, RefusedMemoryIsSaid) {
  for (const Command& command : Commands()) {
    FailCalls(command, {"memory", ENOMEM, false});
    FailCalls(command, {"memory", ENOMEM, true});
  }
}

TEST_F(ToolFaults, FailingReadsAreSaid) {
  for (const Command& command : Commands()) {
    for (const int error : {EIO, 0}) {
      FailCalls(command, {"read", error, false});
      FailCalls(command, {"read", error, true});
    }
    FailCalls(command, {"open", EMFILE, false});
    FailCalls(command, {"open", EMFILE, true});
  }
}

TEST_F(ToolFaults, FailingWritesAreSaid) {
  for (const Command& command : Commands()) {
    for (const int error : {ENOSPC, EIO, 0}) {
      FailCalls(command, {"write", error, false});
      FailCalls(command, {"write", error, true});
    }
    FailCalls(command, {"flush", ENOSPC, false});
    FailCalls(command, {"close", ENOSPC, false});
    FailCalls(command, {"close", ENOSPC, true});
  }
  FailCalls(Commands()[1], {"rename", EIO, false});
}

// Without its streams the program says nothing, and writes nothing of itself to the files that get
// their numbers.
TEST_F(ToolFaults, ClosedStreamsDontReachTheResult) {
  const Command command = Commands()[1];
  ASSERT_EQ(tool_.Shell("exec \"$ORVO\" " + command.line).status, 0);
  const std::string axes = tool_.Folder().Read("axes.csv");
  for (const char* const closed :
       {">&-", "2>&-", "<&-", "<&- >&-", "<&- 2>&-", ">&- 2>&-", "<&- >&- 2>&-"}) {
    SCOPED_TRACE(closed);
    std::filesystem::remove(tool_.Folder().File("axes.csv"));
    const ToolResult result = tool_.Shell("exec \"$ORVO\" " + command.line + ' ' + closed);
    const bool hasOutput = std::string(closed).find(" >&-") == std::string::npos &&
                           std::string(closed).find(">&-") != 0;
    EXPECT_EQ(result.status, hasOutput ? 0 : 2);
    EXPECT_EQ(tool_.Folder().Read("axes.csv"), axes);
    EXPECT_EQ(tool_.CountFiles(), InputNb + 1U);
    CountFault(command.name, "system: closed streams",
               result.status == 0 ? FaultEnding::Completed : FaultEnding::Failed);
    const ToolResult info = tool_.Shell("exec \"$ORVO\" " + Commands()[0].line + ' ' + closed);
    EXPECT_EQ(info.status, hasOutput ? 0 : 2);
    CountFault("orvo info", "system: closed streams",
               info.status == 0 ? FaultEnding::Completed : FaultEnding::Failed);
  }
}

// Who reads the report may have gone: the program ends by the signal of the pipe like every
// program, or says so where the signal is ignored. The result is whole by then.
TEST_F(ToolFaults, ReaderThatGoesAwayLeavesTheResult) {
  const Command command = Commands()[1];
  ASSERT_EQ(tool_.Shell("exec \"$ORVO\" " + command.line).status, 0);
  const std::string axes = tool_.Folder().Read("axes.csv");
  const std::string goneReader = "mkfifo '" + results_.Narrow("pipe") + "'; : <'" +
                                 results_.Narrow("pipe") + "' & exec 4>'" +
                                 results_.Narrow("pipe") + "'; wait; ";
  for (const bool isIgnored : {false, true}) {
    std::filesystem::remove(tool_.Folder().File("axes.csv"));
    std::filesystem::remove(results_.File("pipe"));
    const ToolResult result = tool_.Shell((isIgnored ? "trap '' PIPE; " : "") + goneReader +
                                          "exec \"$ORVO\" " + command.line + " >&4");
    EXPECT_EQ(result.signal, isIgnored ? 0 : SIGPIPE);
    EXPECT_EQ(result.status, isIgnored ? 2 : -1);
    EXPECT_EQ(result.err,
              isIgnored ? "orvo: the standard output can't be written: Broken pipe\n" : "");
    EXPECT_EQ(tool_.Folder().Read("axes.csv"), axes);
    CountFault(command.name, "system: pipe that closes", FaultEnding::Failed);
  }
}

}  // namespace
}  // namespace Orvo::Testing
