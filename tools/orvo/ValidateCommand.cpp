#include "ValidateCommand.h"

#include "Failure.h"
#include "JsonText.h"
#include "MachineValidation.h"
#include "OutputFormat.h"
#include "StandardInput.h"
#include "StandardOutput.h"
#include "Terminal.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>

namespace OrvoTool {
namespace {

const char Description[] =
    R"(Tells all that is wrong with a machine file, with line and column: XML that is
not well-formed, missing and unknown parts, ids and registers that are missing
or there twice, parents that form a cycle or don't exist, directions without
unit length, reversed ranges, frames that are not rigid, linear axes that are
off right angles, program systems that name what isn't there, missing mesh
files.)";

const char Footer[] = R"(Each finding is a line like those of compilers:
  machine.xml:17:13: error V201 duplicate-id: ...
Codes and their names are stable. V1.. are about the text, V2.. about elements,
V3.. about program systems, V4.. about collision lists and mesh files, V9..
about what only the library refuses.

Exit status:
  0  nothing is wrong, or there are warnings only
  1  the command line is wrong
  2  the file can't be read, is no well-formed XML or no machine file
  3  there are errors; with --strict, warnings too

Examples:
  orvo validate machine.xml
  orvo validate --strict --format jsonl machine.xml
  orvo new trunnion-ac | orvo validate -
)";

struct ValidateOptions {
  std::string machine;
  bool isStrict = false;
  OutputChoice output;
};

const char* GetWord(Severity severity) { return severity == Severity::Error ? "error" : "warning"; }

JsonValue FindingJson(const MachineFinding& finding) {
  JsonValue json = {{"code", fmt::format("V{}", static_cast<int>(finding.code))},
                    {"name", GetFindingName(finding.code)},
                    {"severity", GetWord(GetSeverity(finding.code))}};
  json["line"] = finding.place.line > 0 ? JsonValue(finding.place.line) : JsonValue();
  json["column"] = finding.place.line > 0 ? JsonValue(finding.place.column) : JsonValue();
  json["elementId"] = finding.elementId ? JsonValue(*finding.elementId) : JsonValue();
  json["elementName"] = finding.elementName.empty() ? JsonValue() : JsonValue(finding.elementName);
  json["text"] = finding.text;
  return json;
}

std::string FindingText(const std::string& file, const MachineFinding& finding,
                        const TextStyle& style) {
  const Severity severity = GetSeverity(finding.code);
  std::string text = file;
  if (finding.place.line > 0) {
    text += fmt::format(":{}:{}", finding.place.line, finding.place.column);
  }
  text += ": " + (severity == Severity::Error ? style.Bad("error") : style.Warning("warning")) +
          fmt::format(" V{} {}: ", static_cast<int>(finding.code), GetFindingName(finding.code));
  if (!finding.elementName.empty() || finding.elementId) {
    text += finding.elementName;
    if (finding.elementId) {
      text += fmt::format("{}(id {})", finding.elementName.empty() ? "" : " ", *finding.elementId);
    }
    text += ": ";
  }
  return text + finding.text + "\n";
}

std::string Counted(std::size_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string MakeText(const std::string& file, const MachineFindings& findings,
                     const TextStyle& style) {
  std::string text;
  for (const MachineFinding& finding : findings.GetAll()) {
    text += FindingText(file, finding, style);
  }
  const std::size_t total = findings.GetErrorNb() + findings.GetWarningNb();
  if (total > findings.GetAll().size()) {
    text += fmt::format("{}: {} more are not shown\n", file, total - findings.GetAll().size());
  }
  if (total == 0) {
    return file + ": " + style.Good("nothing is wrong") + "\n";
  }
  return text + file + ": " + Counted(findings.GetErrorNb(), "error") + ", " +
         Counted(findings.GetWarningNb(), "warning") + "\n";
}

std::string MakeJson(const std::string& file, const MachineFindings& findings) {
  JsonValue all = JsonValue::array();
  for (const MachineFinding& finding : findings.GetAll()) {
    all.push_back(FindingJson(finding));
  }
  return JsonDocument(JsonValue{{"file", file},
                                {"valid", findings.GetErrorNb() == 0},
                                {"errorCount", findings.GetErrorNb()},
                                {"warningCount", findings.GetWarningNb()},
                                {"findings", all}});
}

ExitCode RunValidate(const ValidateOptions& options) {
  const MachineValidation validation = ValidateMachineFile(options.machine);
  const MachineFindings& findings = validation.findings;
  const std::string file = ShownInput(options.machine);
  if (options.output.format == OutputFormat::Json) {
    WriteStandardOutput(MakeJson(file, findings));
  } else if (options.output.format == OutputFormat::JsonLines) {
    std::string lines;
    for (const MachineFinding& finding : findings.GetAll()) {
      lines += JsonLine(FindingJson(finding));
    }
    WriteStandardOutput(lines);
  } else {
    WriteStandardOutput(MakeText(file, findings, TextStyle(options.output.color)));
  }
  if (!validation.refusal.empty()) {
    throw Failure(ExitCode::Unreadable, validation.refusal);
  }
  if (!validation.isMachineFile) {
    return ExitCode::Unreadable;
  }
  const bool isBad = findings.GetErrorNb() > 0 || (options.isStrict && findings.GetWarningNb() > 0);
  return isBad ? ExitCode::MachineInvalid : ExitCode::Success;
}

}  // namespace

CommandAction AddValidateCommand(CLI::App* command) {
  const auto options = std::make_shared<ValidateOptions>();
  command->description(Description);
  command->footer(Footer);
  AddMachineArgument(command, &options->machine);
  command->add_flag("--strict", options->isStrict, "take warnings for errors in the exit status");
  AddOutputOptions(command, &options->output,
                   {OutputFormat::Text, OutputFormat::Json, OutputFormat::JsonLines});
  return [options]() { return RunValidate(*options); };
}

}  // namespace OrvoTool
