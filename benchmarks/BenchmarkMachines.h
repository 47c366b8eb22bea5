#pragma once

#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Vector3D.h>

#include <string>
#include <vector>

namespace Orvo::Benchmarks {

/// A request to the solvers, and the axis values that the machine has before it.
struct Request {
  Kin::MachinePosition current;
  Vector3D ijk;    // in the table's frame, of unit length
  Vector3D point;  // in the table's frame
};

/// A machine with what it is asked for. Requests can all be reached.
struct Subject {
  std::string name;
  Kin::Machine machine;
  Kin::ProgramSystem programSystem;
  Vector3D offset;

  /// Axis values, all different from one to the next.
  std::vector<Kin::MachinePosition> positions;

  /// Along a path: only the five axes of the program system move.
  std::vector<Request> requests;
};

/// Five axes, 9 elements: X, Y and Z carry the head, A and C the table.
Subject MakeM5();

/// Five axes, 9 elements: X, Y, Z and B carry the head, C the table.
Subject MakeHeadTable();

/// A mill-turn of 25 elements with twelve axes, two heads and two tables.
Subject MakeM12();

/// One chain of 1000 elements from the table through the root to the head, nearly all of them axes.
/// The five axes of the program system are those next to the head and the table.
Subject MakeM1000();

/// A chain of as many elements, of the same make.
Subject MakeChain(int elementNb);

/// A machine of examples/, with the first of its program systems.
Subject ReadExample(const std::string& name);

/// Builds a machine whose elements hang on the root side by side (wide) or in one chain (deep).
Kin::Machine MakeWide(int elementNb);
Kin::Machine MakeDeep(int elementNb);

}  // namespace Orvo::Benchmarks
