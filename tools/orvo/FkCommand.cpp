#include "FkCommand.h"

#include "AxisAssignment.h"
#include "AxisNames.h"
#include "AxisRowReader.h"
#include "CsvText.h"
#include "Failure.h"
#include "JsonText.h"
#include "MachineFile.h"
#include "MachineJson.h"
#include "NumberText.h"
#include "OutputFile.h"
#include "OutputFormat.h"
#include "PointRequest.h"
#include "ProgramSystemChoice.h"
#include "Progress.h"
#include "ResultOutput.h"
#include "StandardInput.h"
#include "Terminal.h"
#include "TextTable.h"
#include "WideText.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace OrvoTool {
namespace {

const char Description[] =
    R"(Tells where the machine stands for given axis values: the tool tip and the tool
direction in the frame of the table, and the frames of elements in the frame of
the machine's root.)";

const char Footer[] =
    R"(Axis values: NAME=VALUE for some axes, the others are 0; or one argument with a
value for each register, such as 10,5,2.5,30,0; or a file of values, CSV or
JSON Lines (by its suffix .jsonl), as 'orvo solve' writes them; '-' is CSV from
the standard input. Lengths are in the machine's unit, angles in degrees.

With csv, each row has the line of the file of axis values (0 if they were
given here), then the tip and the direction; where elements are asked for, a
row for each, with its axes U, V, W and its origin.

Exit status:
  0  everything is computed
  1  the command line is wrong
  2  a file can't be read, or the result can't be written
  3  the machine, or its program system, can't be computed with

Examples:
  orvo fk machine.xml A=30 C=90 X=10.5 --offset 0,0,75
  orvo fk machine.xml A=30 --all
  orvo fk machine.xml axes.csv --format csv -o tips.csv
)";

struct FkOptions {
  std::string machine;
  std::vector<std::string> axes;
  std::string programSystem = "0";
  std::string offset = "0,0,0";
  std::vector<std::string> elements;
  bool isAll = false;
  std::string outputFile;
  OutputChoice output;
};

/// An element that is asked for.
struct Wanted {
  const Orvo::Kin::Entity* entity = nullptr;
  std::string name;  ///< UTF-8
};

std::vector<Wanted> FindElements(const Orvo::Kin::Machine& machine, const FkOptions& options) {
  const auto& all = machine.GetKinematic().GetListEntity();
  std::vector<Wanted> wanted;
  if (options.isAll) {
    for (const Orvo::Kin::Entity& entity : all) {
      wanted.push_back({&entity, Utf8FromWide(entity.GetEntityName())});
    }
    return wanted;
  }
  for (const std::string& choice : options.elements) {
    int id = -1;
    const auto [end, error] = std::from_chars(choice.data(), choice.data() + choice.size(), id);
    const bool isId = error == std::errc() && end == choice.data() + choice.size();
    const std::size_t before = wanted.size();
    for (const Orvo::Kin::Entity& entity : all) {
      const std::string name = Utf8FromWide(entity.GetEntityName());
      if (name == choice || (isId && entity.GetEntityId().GetVal() == id)) {
        wanted.push_back({&entity, name});
      }
    }
    if (wanted.size() == before) {
      throw UsageFailure("--element: no element has the name or the id '" + Printable(choice) +
                         "'");
    }
  }
  return wanted;
}

/// One position and what comes out for it.
struct FkResult {
  std::uint64_t line = 0;
  bool hasTool = false;
  Orvo::Matrix43 tableFromTool;
  std::vector<Orvo::Matrix43> rootFromElements;
};

class FkRun {
 public:
  explicit FkRun(const FkOptions& options)
      : options_(options),
        offset_(ReadVector("--offset", options.offset)),
        style_(options.output.color),
        output_(Opened()) {}

  ExitCode Run() {
    compute_.emplace(machine_);
    Begin();
    if (IsFile()) {
      RunFile();
    } else {
      Orvo::Kin::MachinePosition position;
      machine_.Alloc(&position);
      if (!options_.axes.empty()) {
        PutAssignments(ReadAxisAssignments("AXES", Joined(), *names_), &position);
      }
      Write(Compute(position, 0), position);
    }
    End();
    output_.Finish();
    return ExitCode::Success;
  }

 private:
  /// Reads the machine and checks the command line, before a file is made for the result.
  std::string Opened() {
    if (IsFile()) {
      RefuseSecondStandardInput(options_.machine, options_.axes[0]);
    }
    RefuseToReplaceInput("--output", options_.outputFile,
                         {options_.machine, IsFile() ? options_.axes[0] : std::string()});
    ReadValidMachine(options_.machine, &machine_);
    names_ = std::make_unique<AxisNames>(machine_);
    number_ = FindProgramSystem(machine_, options_.programSystem);
    system_ = GetProgramSystem(machine_, number_);
    wanted_ = FindElements(machine_, options_);
    return options_.outputFile;
  }

  std::string Joined() const {
    std::string joined;
    for (const std::string& part : options_.axes) {
      joined += (joined.empty() ? "" : ",") + part;
    }
    return joined;
  }

  /// One argument that is neither NAME=VALUE nor a list of numbers is a file.
  bool IsFile() const {
    if (options_.axes.size() != 1 || options_.axes[0].find('=') != std::string::npos) {
      return false;
    }
    double ignored = 0.0;
    const std::string& text = options_.axes[0];
    return ReadNumber(Trim(std::string_view(text).substr(0, text.find(','))), &ignored) !=
           NumberFault::None;
  }

  void RunFile() {
    const std::string& name = options_.axes[0];
    const auto endsWith = [&name](std::string_view suffix) {
      return name.size() >= suffix.size() &&
             name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
    };
    const std::size_t count = static_cast<std::size_t>(names_->GetCount());
    AxisRowReader reader(name, endsWith(".jsonl") || endsWith(".ndjson"), *names_, {},
                         std::vector<double>(count, 0.0));
    Progress progress("rows");
    Orvo::Kin::MachinePosition position;
    machine_.Alloc(&position);
    AxisRow row;
    std::uint64_t rowNb = 0;
    while (reader.Next(&row)) {
      for (std::size_t r = 0; r < count; ++r) {
        position[Orvo::Kin::Register(static_cast<int>(r))] = row.values[r];
      }
      Write(Compute(position, row.line), position);
      ++rowNb;
      progress.Show(rowNb, reader.GetShareRead());
    }
  }

  FkResult Compute(const Orvo::Kin::MachinePosition& position, std::uint64_t line) {
    FkResult result;
    result.line = line;
    result.hasTool = compute_->ComputeMcsToToolTcs(
        position, system_.GetHeadIndex(), system_.GetTableIndex(), offset_, &result.tableFromTool);
    if (!result.hasTool && wanted_.empty()) {
      Blame("the tool");
    }
    for (const Wanted& element : wanted_) {
      Orvo::Matrix43 frame;
      if (!compute_->ComputePositionEntity(*element.entity, position, &frame)) {
        Blame("element " + Printable(element.name));
      }
      result.rootFromElements.push_back(frame);
    }
    return result;
  }

  [[noreturn]] void Blame(const std::string& what) {
    throw Failure(ExitCode::MachineInvalid,
                  ShownInput(options_.machine) + ": " + what +
                      " can't be computed: " + DescribeComputeError(compute_->GetLastError()));
  }

  void Begin() {
    if (options_.output.format == OutputFormat::Csv) {
      output_.Write(wanted_.empty() ? "line,x,y,z,i,j,k\n"
                                    : "line,id,name,ux,uy,uz,vx,vy,vz,wx,wy,wz,x,y,z\n");
    } else if (options_.output.format == OutputFormat::Text) {
      output_.Write(ShownInput(options_.machine) + ", program system " + std::to_string(number_) +
                    " (" + PrintableFromWide(system_.GetProgramSystemName()) + ")\n");
      if (IsFile()) {
        output_.Write("tool tip and direction in the frame of the table, by the line of " +
                      ShownInput(options_.axes[0]) + "\n");
      }
    } else if (options_.output.format == OutputFormat::Json) {
      output_.Write("[\n");
    }
  }

  void End() {
    if (options_.output.format == OutputFormat::Json) {
      output_.Write(isFirst_ ? "]\n" : "\n]\n");
    }
  }

  void Write(const FkResult& result, const Orvo::Kin::MachinePosition& position) {
    switch (options_.output.format) {
      case OutputFormat::Csv:
        WriteCsv(result);
        break;
      case OutputFormat::Json:
        output_.Write(isFirst_ ? "" : ",\n");
        WriteJson(result, position, false);
        break;
      case OutputFormat::JsonLines:
        WriteJson(result, position, true);
        break;
      case OutputFormat::Text:
        output_.Write(IsFile() ? LineText(result) : FullText(result, position));
        break;
    }
    isFirst_ = false;
  }

  static void AppendVector(const Orvo::Vector3D& vector, std::string* row) {
    for (int i = 0; i < 3; ++i) {
      AppendCsvNumber(vector[i], row);
    }
  }

  void WriteCsv(const FkResult& result) {
    Orvo::Matrix43 tool = result.tableFromTool;
    std::string rows;
    if (wanted_.empty()) {
      rows = std::to_string(result.line);
      AppendVector(tool.GetTrans(), &rows);
      AppendVector(tool.GetW(), &rows);
      rows += "\n";
    }
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
      Orvo::Matrix43 frame = result.rootFromElements[i];
      std::string row = std::to_string(result.line);
      AppendCsvField(std::to_string(wanted_[i].entity->GetEntityId().GetVal()), &row);
      AppendCsvField(wanted_[i].name, &row);
      AppendVector(frame.GetU(), &row);
      AppendVector(frame.GetV(), &row);
      AppendVector(frame.GetW(), &row);
      AppendVector(frame.GetTrans(), &row);
      rows += row + "\n";
    }
    output_.Write(rows);
  }

  /// Writes a result in JSON, its axes one by one: there may be millions of registers.
  void WriteJson(const FkResult& result, const Orvo::Kin::MachinePosition& position, bool isLine) {
    const JsonValue json = MakeJson(result);
    std::string text = isLine ? JsonLine(json) : JsonDocument(json);
    if (!isLine) {
      text.pop_back();
    }
    // Only a number or null stands before the axes.
    constexpr std::string_view empty = "{}";
    const std::size_t place = text.find(empty, text.find("\"axes\":"));
    output_.Write(text.substr(0, place + 1));
    const int count = names_->GetCount();
    for (int r = 0; r < count; ++r) {
      std::string member = r > 0 ? "," : "";
      member += isLine ? "" : "\n    ";
      member += JsonText(names_->GetName(r));
      member += isLine ? ":" : ": ";
      member += JsonText(position[Orvo::Kin::Register(r)]);
      output_.Write(member);
    }
    output_.Write((isLine || count == 0 ? "" : "\n  ") + text.substr(place + 1));
  }

  static std::string JsonText(const JsonValue& value) {
    std::string text = JsonLine(value);
    text.pop_back();
    return text;
  }

  /// Makes all of a result but its axes, which are left empty.
  JsonValue MakeJson(const FkResult& result) const {
    JsonValue json;
    json["line"] = result.line > 0 ? JsonValue(result.line) : JsonValue();
    json["axes"] = JsonValue::object();
    json["tool"] = JsonValue();
    if (result.hasTool) {
      Orvo::Matrix43 tool = result.tableFromTool;
      json["tool"] = JsonValue{{"tip", VectorJson(tool.GetTrans())},
                               {"direction", VectorJson(tool.GetW())},
                               {"frame", FrameJson(tool)}};
    }
    if (!wanted_.empty()) {
      JsonValue elements = JsonValue::array();
      for (std::size_t i = 0; i < wanted_.size(); ++i) {
        elements.push_back(JsonValue{{"id", wanted_[i].entity->GetEntityId().GetVal()},
                                     {"name", wanted_[i].name},
                                     {"frame", FrameJson(result.rootFromElements[i])}});
      }
      json["elements"] = elements;
    }
    return json;
  }

  std::string LineText(const FkResult& result) const {
    Orvo::Matrix43 tool = result.tableFromTool;
    std::string text = "  " + std::to_string(result.line) + ":  ";
    text += result.hasTool ? VectorText(tool.GetTrans()) + "  " + VectorText(tool.GetW()) : "-";
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
      Orvo::Matrix43 frame = result.rootFromElements[i];
      text += "\n    " + Printable(wanted_[i].name) + " at " + VectorText(frame.GetTrans()) +
              ", X to " + VectorText(frame.GetU()) + ", Z to " + VectorText(frame.GetW());
    }
    return text + "\n";
  }

  std::string FullText(const FkResult& result, const Orvo::Kin::MachinePosition& position) const {
    std::string text = "axes:";
    for (int r = 0; r < names_->GetCount() && r < MaxShownAxes; ++r) {
      text += " " + names_->GetName(r) + "=" + ShortNumber(position[Orvo::Kin::Register(r)], 12);
    }
    text += names_->GetCount() > MaxShownAxes ? " ...\n" : "\n";
    using Align = TextTable::Align;
    const std::vector<Align> columns = {Align::Left, Align::Right, Align::Right, Align::Right};
    if (result.hasTool) {
      Orvo::Matrix43 tool = result.tableFromTool;
      TextTable table(columns, 2);
      AddRow("tip", tool.GetTrans(), &table);
      AddRow("direction", tool.GetW(), &table);
      AddRow("tool X", tool.GetU(), &table);
      AddRow("tool Y", tool.GetV(), &table);
      text += "\n" + style_.Heading("Tool in the frame of the table") + "\n" + table.GetText();
    }
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
      Orvo::Matrix43 frame = result.rootFromElements[i];
      TextTable table(columns, 2);
      AddRow("origin", frame.GetTrans(), &table);
      AddRow("X", frame.GetU(), &table);
      AddRow("Y", frame.GetV(), &table);
      AddRow("Z", frame.GetW(), &table);
      text += "\n" +
              style_.Heading(Printable(wanted_[i].name) + " (id " +
                             std::to_string(wanted_[i].entity->GetEntityId().GetVal()) + ")") +
              " in the frame of the root\n" + table.GetText();
    }
    return text;
  }

  static void AddRow(const char* name, const Orvo::Vector3D& vector, TextTable* table) {
    table->AddRow({name, PlainNumber(vector[0]), PlainNumber(vector[1]), PlainNumber(vector[2])});
  }

  static constexpr int MaxShownAxes = 40;

  const FkOptions& options_;
  Orvo::Vector3D offset_;
  TextStyle style_;
  Orvo::Kin::Machine machine_;
  std::unique_ptr<AxisNames> names_;
  int number_ = 0;
  Orvo::Kin::ProgramSystem system_;
  std::vector<Wanted> wanted_;
  std::optional<Orvo::Kin::MachineCompute> compute_;
  ResultOutput output_;
  bool isFirst_ = true;
};

}  // namespace

CommandAction AddFkCommand(CLI::App* command) {
  const auto options = std::make_shared<FkOptions>();
  command->description(Description);
  command->footer(Footer);
  AddMachineArgument(command, &options->machine);
  command->add_option("AXES", options->axes, "axis values, or a file of them; 0 if not given")
      ->type_name("FILE")
      ->expected(0, 1000000);
  AddProgramSystemOption(command, &options->programSystem);
  command
      ->add_option("--offset", options->offset,
                   "the tool: 0,0,L for a length of L; 0,0,0 if not given")
      ->type_name("X,Y,Z");
  command
      ->add_option("--element", options->elements,
                   "an element whose frame is wanted too, by name or by id; can be given more than "
                   "once")
      ->type_name("NAME|ID")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command->add_flag("--all", options->isAll, "the frames of all elements are wanted too");
  command
      ->add_option("-o,--output", options->outputFile,
                   "where the result goes; to the standard output if not given, or '-'")
      ->type_name("FILE");
  AddOutputOptions(
      command, &options->output,
      {OutputFormat::Text, OutputFormat::Json, OutputFormat::JsonLines, OutputFormat::Csv});
  return [options]() { return FkRun(*options).Run(); };
}

}  // namespace OrvoTool
