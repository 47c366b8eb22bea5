#include "tools/ToolRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace Orvo::Testing {
namespace {

std::vector<char*> PointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) {
    pointers.push_back(const_cast<char*>(text.c_str()));
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> Environment() {
  std::vector<std::string> variables = {"ORVO=" ORVO_TOOL_PATH};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (std::strncmp(*variable, "ORVO=", 5) != 0) {
      variables.push_back(*variable);
    }
  }
  return variables;
}

/// Starts a program with the given files as its output and error streams.
pid_t Start(const std::vector<std::string>& arguments, const std::string& out, int errDescriptor,
            const std::string& err) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (errDescriptor >= 0) {
    posix_spawn_file_actions_adddup2(&actions, errDescriptor, STDERR_FILENO);
  } else {
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
  }
  // Signals act as they do for a program that a user starts, whatever started the tests.
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
    sigaddset(&signals, signal);
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  const std::vector<std::string> environment = Environment();
  pid_t child = -1;
  const int error = posix_spawn(&child, arguments[0].c_str(), &actions, &attributes,
                                PointersTo(arguments).data(), PointersTo(environment).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    throw std::runtime_error("can't run " + arguments[0] + ": " + std::strerror(error));
  }
  return child;
}

ToolResult Wait(pid_t child) {
  int status = 0;
  struct rusage usage = {};
  if (wait4(child, &status, 0, &usage) != child) {
    throw std::runtime_error("the program can't be waited for");
  }
  ToolResult result;
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  result.peakKilobytes = usage.ru_maxrss;
  return result;
}

/// Runs what `start` starts with a terminal as its error stream; `finish` gets what the terminal
/// got.
template <typename Starter, typename Finisher>
ToolResult RunWithTerminal(const Starter& start, const Finisher& finish) {
  const int controller = posix_openpt(O_RDWR | O_NOCTTY);
  if (controller < 0 || grantpt(controller) != 0 || unlockpt(controller) != 0) {
    throw std::runtime_error("there is no terminal to be had");
  }
  const int terminal = open(ptsname(controller), O_RDWR | O_NOCTTY);
  fcntl(controller, F_SETFD, FD_CLOEXEC);
  fcntl(terminal, F_SETFD, FD_CLOEXEC);
  const pid_t child = start(terminal);
  close(terminal);
  std::string seen;
  char chunk[4096];
  // Reading fails when the program, the last to hold the terminal, has ended.
  for (ssize_t count = 0; (count = read(controller, chunk, sizeof chunk)) > 0;) {
    seen.append(chunk, static_cast<std::size_t>(count));
  }
  close(controller);
  ToolResult result = Wait(child);
  finish(seen, &result);
  return result;
}

std::vector<std::string> WithProgram(const std::vector<std::string>& arguments) {
  std::vector<std::string> all = {ORVO_TOOL_PATH};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return all;
}

ToolResult RunProgram(const std::vector<std::string>& arguments) {
  const TemporaryFolder streams;
  ToolResult result = Wait(Start(arguments, streams.Narrow("out"), -1, streams.Narrow("err")));
  result.out = streams.Read("out");
  result.err = streams.Read("err");
  return result;
}

}  // namespace

ToolResult ToolRun::Run(const std::vector<std::string>& arguments) const {
  return RunProgram(WithProgram(arguments));
}

ToolResult ToolRun::Shell(const std::string& line) const {
  return RunProgram({"/bin/sh", "-c", "cd '" + folder_.Path().string() + "'; " + line});
}

ToolResult ToolRun::RunAtTerminal(const std::vector<std::string>& arguments) const {
  const TemporaryFolder streams;
  return RunWithTerminal(
      [&streams, &arguments](int terminal) {
        return Start(WithProgram(arguments), streams.Narrow("out"), terminal, "");
      },
      [&streams](const std::string& seen, ToolResult* result) {
        result->out = streams.Read("out");
        result->err = seen;
      });
}

ToolResult ToolRun::ShellAtTerminal(const std::string& line) const {
  const TemporaryFolder streams;
  const std::string err = streams.Narrow("err");
  const std::string inFolder =
      "cd '" + folder_.Path().string() + "'; exec 1>&2 2>'" + err + "'; " + line;
  return RunWithTerminal(
      [&streams, &inFolder](int terminal) {
        return Start({"/bin/sh", "-c", inFolder}, streams.Narrow("out"), terminal, "");
      },
      [&streams](const std::string& seen, ToolResult* result) {
        result->out = seen;
        result->err = streams.Read("err");
      });
}

ToolResult ToolRun::RunEndlessPathAndSignal(const std::vector<std::string>& arguments,
                                            const std::string& pipe, int signal) const {
  if (mkfifo(pipe.c_str(), 0600) != 0) {
    throw std::runtime_error("there is no pipe to be had");
  }
  const TemporaryFolder streams;
  const pid_t feeder =
      Start({"/bin/sh", "-c", "exec >'" + pipe + "'; echo x,y,z,i,j,k; exec yes 1,2,3,0,0,1"},
            streams.Narrow("feeder.out"), -1, streams.Narrow("feeder.err"));
  const pid_t child =
      Start(WithProgram(arguments), streams.Narrow("out"), -1, streams.Narrow("err"));
  // The second file in the folder is the result, under its temporary name.
  const auto hasEnded = [child]() {
    siginfo_t ended = {};
    waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOHANG | WNOWAIT);
    return ended.si_pid != 0;
  };
  while (CountFiles() < 2 && !hasEnded()) {
    usleep(1000);
  }
  kill(child, signal);
  ToolResult result = Wait(child);
  kill(feeder, SIGKILL);
  Wait(feeder);
  result.out = streams.Read("out");
  result.err = streams.Read("err");
  return result;
}

std::size_t ToolRun::CountFiles() const {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
    count += entry.exists() ? 1U : 0U;
  }
  return count;
}

std::string ExampleMachine(const std::string& name) {
  return std::string(ORVO_EXAMPLES_DIR) + "/machines/" + name + "/" + name + ".xml";
}

std::string ExamplePath(const std::string& name) {
  return std::string(ORVO_EXAMPLES_DIR) + "/paths/" + name + ".csv";
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(stream, line)) {
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> Fields(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> fields;
  std::string field;
  while (std::getline(stream, field, ',')) {
    fields.push_back(field);
  }
  return fields;
}

}  // namespace Orvo::Testing
