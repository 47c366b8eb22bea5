#pragma once

#include "AxisNames.h"
#include "JsonText.h"

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Path/MainAxes.h>
#include <Orvo/Path/ToolPoint.h>
#include <Orvo/Vector3D.h>

#include <memory>
#include <string>

namespace CLI {
class App;
}

namespace OrvoTool {

/// What the command line says of one request.
struct RequestOptions {
  std::string machine;
  std::string point;
  std::string direction;
  std::string programSystem = "0";
  std::string offset = "0,0,0";
  std::string start;
};

/// Adds the arguments MACHINE, POINT and DIRECTION, and --program-system, --offset and --start.
void AddRequestOptions(CLI::App* command, RequestOptions* options);

/// Reads a vector from the command line.
/// @param name  the option or argument, for the message
/// @throws UsageFailure
Orvo::Vector3D ReadVector(const char* name, const std::string& text);

/// One request to a program system of a machine, read from the command line.
class PointRequest {
 public:
  /// Reads the machine.
  /// @throws Failure; UsageFailure for a text that is no vector, a null direction, an axis or a
  ///   program system that isn't there
  explicit PointRequest(const RequestOptions& options);

  const Orvo::Kin::Machine& GetMachine() const { return machine_; }
  const Orvo::Kin::ProgramSystem& GetProgramSystem() const { return programSystem_; }
  const AxisNames& GetNames() const { return *names_; }
  const Orvo::Vector3D& GetOffset() const { return offset_; }
  const Orvo::Kin::MachinePosition& GetStart() const { return start_; }

  /// Tells whether the command line says where the axes stand.
  bool HasStart() const { return hasStart_; }

  /// Returns the point, with the direction as it was given.
  const Orvo::Path::ToolPoint& GetPoint() const { return point_; }

  /// Returns the first line of a report: machine, program system and policy.
  std::string GetTitle() const;

  /// Returns machine, program system, start and request for a program.
  JsonValue MakeJson() const;

 private:
  std::string shownMachine_;
  Orvo::Kin::Machine machine_;
  std::unique_ptr<AxisNames> names_;
  int number_ = 0;
  Orvo::Kin::ProgramSystem programSystem_;
  Orvo::Vector3D offset_;
  Orvo::Kin::MachinePosition start_;
  bool hasStart_ = false;
  Orvo::Path::ToolPoint point_;
};

/// Returns the values of the axes that a program system moves, as members called after the axes.
JsonValue AxisValuesJson(const AxisNames& names, const Orvo::Path::MainAxes& axes,
                         const Orvo::Path::AxisValues& values);

/// Returns an axis value or a component for people: nine decimals, or twelve digits where that
/// would be longer than any machine needs.
std::string PlainNumber(double value);

/// Returns a vector for people: "(1, 0.5, -2)".
std::string VectorText(const Orvo::Vector3D& vector, int digits = 9);

}  // namespace OrvoTool
