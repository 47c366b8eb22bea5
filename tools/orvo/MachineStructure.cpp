#include "MachineStructure.h"

#include "FileForest.h"
#include "NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvoTool {
namespace {

constexpr double Pi = 3.141592653589793;

/// The reader takes shorter directions for none, and puts (1, 0, 0) in their place.
constexpr double ShortestDirection = 0.001;

/// How far the length of a direction may be from 1: files have six decimals.
constexpr double UnitTolerance = 5e-6;

/// How far the axes of a frame may be from unit length and from right angles, for the same reason.
constexpr double RigidTolerance = 5e-6;

/// Axes within this many degrees of a right angle are at one: files have six decimals.
constexpr double RightAngleToleranceDeg = 1e-3;

/// Axes whose unit directions span less volume than this don't span space.
constexpr double SmallestVolume = 1e-6;

/// Beyond this many registers, positions get much longer than any machine needs.
constexpr int ManyRegisters = 1000;

/// How many elements of a cycle a message names.
constexpr std::size_t MaxNamed = 8;

using Rotation = std::array<FileVector, 3>;  // columns

double Dot(const FileVector& a, const FileVector& b) {
  return a[0] * b[0] + (a[1] * b[1] + a[2] * b[2]);
}

FileVector Cross(const FileVector& a, const FileVector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Length(const FileVector& v) { return std::hypot(v[0], v[1], v[2]); }

FileVector Turn(const Rotation& rotation, const FileVector& v) {
  FileVector turned = {};
  for (std::size_t i = 0; i < 3; ++i) {
    turned[i] = rotation[0][i] * v[0] + (rotation[1][i] * v[1] + rotation[2][i] * v[2]);
  }
  return turned;
}

/// Returns a direction at unit length, as the reader makes it.
FileVector Unit(const FileVector& v) {
  const double length = Length(v);
  return length < ShortestDirection ? FileVector{1.0, 0.0, 0.0}
                                    : FileVector{v[0] / length, v[1] / length, v[2] / length};
}

std::string Named(const FileElement& element) {
  const std::string name = element.name.empty() ? "an element without name" : element.name;
  return element.id.isGood ? name + " (id " + std::to_string(element.id.value) + ")" : name;
}

std::string VectorText(const FileVector& v) {
  return "(" + ShortNumber(v[0], 9) + ", " + ShortNumber(v[1], 9) + ", " + ShortNumber(v[2], 9) +
         ")";
}

class ElementCheck {
 public:
  ElementCheck(const FileMachine& machine, MachineFindings* findings)
      : machine_(machine),
        forest_(machine),
        findings_(findings),
        areIdsGood_(std::all_of(machine.elements.begin(), machine.elements.end(),
                                [](const FileElement& element) { return element.id.isGood; })) {}

  void Run() {
    for (std::size_t i = 0; i < machine_.elements.size(); ++i) {
      const FileElement& element = machine_.elements[i];
      CheckIdAndName(i);
      CheckRegister(i);
      CheckParent(i);
      CheckLink(element);
    }
    CheckRoots();
    CheckWhole();
  }

 private:
  void Add(FindingCode code, const TextPlace& place, const FileElement& element,
           const std::string& text) {
    findings_->Add(AboutElement(code, place, element, text));
  }

  void CheckIdAndName(std::size_t i) {
    const FileElement& element = machine_.elements[i];
    if (element.id.isGood && element.id.value < 0) {
      Add(FindingCode::NoId, element.id.place, element,
          "the id is negative, so that no element can name this one");
    }
    if (element.id.isGood && element.id.value >= 0) {
      const auto [first, isNew] = ids_.emplace(element.id.value, i);
      if (!isNew) {
        Add(FindingCode::DuplicateId, element.id.place, element,
            "the id " + std::to_string(element.id.value) + " is that of " +
                Named(machine_.elements[first->second]) + " in line " +
                std::to_string(machine_.elements[first->second].place.line) +
                " too; the last one counts");
      }
    }
    if (element.name.empty()) {
      Add(FindingCode::NoName, element.place, element, "the element has no name");
      return;
    }
    const auto [first, isNew] = names_.emplace(element.name, i);
    if (!isNew) {
      Add(FindingCode::DuplicateName, element.place, element,
          "the name " + element.name + " is that of " + Named(machine_.elements[first->second]) +
              " in line " + std::to_string(machine_.elements[first->second].place.line) + " too");
    }
  }

  void CheckRegister(std::size_t i) {
    const FileElement& element = machine_.elements[i];
    if (!element.reg.isGood || !element.link.isGood) {
      return;
    }
    const std::string number = std::to_string(element.reg.value);
    if (element.reg.value < 0) {
      if (element.IsMoving()) {
        Add(FindingCode::NoRegister, element.reg.place, element,
            "a moving element needs a register for its axis value");
      }
      return;
    }
    largestRegister_ = std::max(largestRegister_, element.reg.value);
    if (!element.IsMoving()) {
      Add(FindingCode::NeedlessRegister, element.reg.place, element,
          "register " + number + " belongs to an element that does not move");
    }
    const auto [first, isNew] = registers_.emplace(element.reg.value, i);
    if (!isNew) {
      Add(FindingCode::DuplicateRegister, element.reg.place, element,
          "register " + number + " belongs to " + Named(machine_.elements[first->second]) +
              " in line " + std::to_string(machine_.elements[first->second].place.line) +
              " too; the last one is found by it");
    }
  }

  void CheckParent(std::size_t i) {
    const FileElement& element = machine_.elements[i];
    const std::size_t parent = forest_.GetParent(i);
    if (element.parentId.isGood && element.parentId.value >= 0 && parent == FileForest::None) {
      // Where ids can't be read, the parent may be one of those.
      if (areIdsGood_) {
        Add(FindingCode::ParentMissing, element.parentId.place, element,
            "no element has the id " + std::to_string(element.parentId.value) +
                ", which is to be the parent");
      }
    }
    // A cycle is told once, where its first element stands.
    if (!forest_.IsInCycle(i) || isTold_.count(i) != 0) {
      return;
    }
    std::string names = Named(element);
    std::size_t named = 1;
    isTold_[i] = true;
    for (std::size_t at = parent; at != i; at = forest_.GetParent(at)) {
      isTold_[at] = true;
      ++named;
      if (named <= MaxNamed) {
        names += " -> " + Named(machine_.elements[at]);
      }
    }
    names += named > MaxNamed ? " -> ... (" + std::to_string(named) + " in all)" : "";
    Add(FindingCode::ParentCycle, element.parentId.place, element,
        "the parents form a cycle: " + names + " -> " + Named(element));
  }

  void CheckLink(const FileElement& element) {
    if (!element.link.isGood) {
      return;
    }
    if (element.link.value == FileLink::Other) {
      Add(FindingCode::LinkNotComputable, element.link.place, element,
          "a link of the type " + element.linkWord + " is stored, but can't be computed with");
    }
    if (element.link.value == FileLink::Position && element.frame.isGood) {
      CheckFrame(element);
    }
    if (!element.IsMoving()) {
      return;
    }
    if (element.direction.isGood) {
      const double length = Length(element.direction.value);
      if (!(length >= ShortestDirection)) {
        // The reader of JSON keeps what is null, so that nothing gets lost.
        Add(FindingCode::NoDirection, element.direction.place, element,
            "the direction " + VectorText(element.direction.value) +
                (machine_.isJson && length == 0.0 ? " is none"
                                                  : " is too short to be one; (1, 0, 0) is taken"));
      } else if (std::abs(length - 1.0) > UnitTolerance) {
        Add(FindingCode::DirectionNotUnit, element.direction.place, element,
            "the direction " + VectorText(element.direction.value) + " has the length " +
                ShortNumber(length, 9) + " instead of 1; its length is lost when it is read");
      }
    }
    if (element.rangeMin.isGood && element.rangeMax.isGood && element.isRangeChecked.isGood &&
        element.isRangeChecked.value && element.rangeMin.value > element.rangeMax.value) {
      Add(FindingCode::RangeReversed, element.rangeMin.place, element,
          "the range is reversed: from " + ShortNumber(element.rangeMin.value, 12) + " to " +
              ShortNumber(element.rangeMax.value, 12) + "; no value lies in it");
    }
  }

  void CheckFrame(const FileElement& element) {
    const Rotation& axes = element.frame.value;
    double worst = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
      worst = std::max(worst, std::abs(Length(axes[i]) - 1.0));
      worst = std::max(worst, std::abs(Dot(axes[i], axes[(i + 1) % 3])));
    }
    if (worst > RigidTolerance) {
      Add(FindingCode::FrameNotRigid, element.frame.place, element,
          "the frame is not rigid: its axes are off unit length or right angles by " +
              ShortNumber(worst, 3) + "; inverses come out wrong");
    } else if (Dot(Cross(axes[0], axes[1]), axes[2]) < 0.0) {
      Add(FindingCode::FrameNotRigid, element.frame.place, element,
          "the frame is left-handed: it mirrors what it carries");
    }
  }

  /// Tells which elements hang on another root than the first head.
  void CheckRoots() {
    std::size_t main = FileForest::None;
    for (std::size_t i = 0; i < machine_.elements.size() && main == FileForest::None; ++i) {
      const Placed<FileRole>& role = machine_.elements[i].role;
      main = role.isGood && role.value == FileRole::Head ? forest_.GetRoot(i) : main;
    }
    if (main == FileForest::None) {
      return;
    }
    for (std::size_t i = 0; i < machine_.elements.size(); ++i) {
      const FileElement& element = machine_.elements[i];
      // Those with a faulty parent have their own finding.
      if (forest_.GetRoot(i) == i && i != main && !forest_.IsInCycle(i) &&
          element.parentId.isGood && element.parentId.value < 0) {
        Add(FindingCode::Unconnected, element.place, element,
            Named(element) + " and what it carries hang on another root than the first head");
      }
    }
  }

  void CheckWhole() {
    int heads = 0;
    int tables = 0;
    int linear = 0;
    bool areRolesGood = true;
    for (const FileElement& element : machine_.elements) {
      areRolesGood = areRolesGood && element.role.isGood && element.link.isGood;
      heads += element.role.value == FileRole::Head ? 1 : 0;
      tables += element.role.value == FileRole::Table ? 1 : 0;
      linear += element.role.value == FileRole::Axis && element.link.isGood &&
                        element.link.value == FileLink::Linear
                    ? 1
                    : 0;
    }
    const TextPlace whole = {0, 0};
    // What is missing may be what could not be read.
    if (areRolesGood && heads == 0) {
      findings_->Add(FindingCode::NoHead, whole,
                     "no element is a HEAD, so nothing carries the tool");
    }
    if (areRolesGood && tables == 0) {
      findings_->Add(FindingCode::NoTable, whole,
                     "no element is a TABLE, so nothing carries the workpiece");
    }
    if (areRolesGood && linear < 3) {
      findings_->Add(FindingCode::FewLinearAxes, whole,
                     std::to_string(linear) +
                         (linear == 1 ? " axis is linear" : " axes are linear") +
                         "; three are needed");
    }
    if (largestRegister_ > ManyRegisters) {
      findings_->Add(FindingCode::RegisterFarAway, whole,
                     "the largest register is " + std::to_string(largestRegister_) +
                         ": every position holds that many values");
    }
  }

  const FileMachine& machine_;
  FileForest forest_;
  MachineFindings* findings_;
  std::unordered_map<int, std::size_t> ids_;
  std::unordered_map<int, std::size_t> registers_;
  std::unordered_map<std::string, std::size_t> names_;
  std::unordered_map<std::size_t, bool> isTold_;
  bool areIdsGood_;
  int largestRegister_ = -1;
};

class SystemCheck {
 public:
  SystemCheck(const FileMachine& machine, MachineFindings* findings)
      : machine_(machine), forest_(machine), findings_(findings) {
    for (std::size_t i = 0; i < machine.elements.size(); ++i) {
      const Placed<FileRole>& role = machine.elements[i].role;
      areRolesGood_ = areRolesGood_ && role.isGood;
      if (role.value == FileRole::Head) {
        heads_.push_back(i);
      } else if (role.value == FileRole::Table) {
        tables_.push_back(i);
      }
    }
    FindRotations();
  }

  void Run() {
    std::unordered_map<std::string, std::uint64_t> names;
    for (const FileProgramSystem& system : machine_.programSystems) {
      shown_ = "program system " + std::to_string(number_) + " (" + system.name + "): ";
      ++number_;
      const auto [first, isNew] = names.emplace(system.name, system.place.line);
      if (!isNew) {
        Add(FindingCode::DuplicateSystemName, system.place,
            "the program system in line " + std::to_string(first->second) +
                " has the same name; it can be chosen by its number only");
      }
      Check(system);
    }
    for (const Placed<int>& id : machine_.collisionIds) {
      if (id.isGood && forest_.FindId(id.value) == FileForest::None) {
        findings_->Add(FindingCode::CollisionElementMissing, id.place,
                       "the collision check names the id " + std::to_string(id.value) +
                           ", which no element has");
      }
    }
  }

 private:
  void Add(FindingCode code, const TextPlace& place, const std::string& text) {
    findings_->Add(code, place, shown_ + text);
  }

  /// Finds how each element stands in its root when all axis values are 0.
  void FindRotations() {
    const Rotation identity = {FileVector{1, 0, 0}, FileVector{0, 1, 0}, FileVector{0, 0, 1}};
    rotations_.assign(machine_.elements.size(), identity);
    for (const std::size_t i : forest_.GetOrder()) {
      const FileElement& element = machine_.elements[i];
      const bool isRoot = forest_.GetRoot(i) == i;
      const Rotation& above = isRoot ? identity : rotations_[forest_.GetParent(i)];
      rotations_[i] = above;
      if (element.link.isGood && element.link.value == FileLink::Position && element.frame.isGood) {
        for (std::size_t column = 0; column < 3; ++column) {
          rotations_[i][column] = Turn(above, element.frame.value[column]);
        }
      }
    }
  }

  /// Returns the direction of an axis as the root sees it, at unit length.
  FileVector DirectionInRoot(std::size_t axis) const {
    const FileVector direction = Unit(machine_.elements[axis].direction.value);
    return forest_.GetRoot(axis) == axis
               ? direction
               : Unit(Turn(rotations_[forest_.GetParent(axis)], direction));
  }

  std::size_t Place(const Placed<int>& index, const std::vector<std::size_t>& places,
                    FindingCode code, const char* what) {
    if (!index.isGood || !areRolesGood_) {
      return FileForest::None;
    }
    if (index.value < 0 || static_cast<std::size_t>(index.value) >= places.size()) {
      Add(code, index.place,
          std::string("there is no ") + what + " " + std::to_string(index.value) +
              "; the machine has " + std::to_string(places.size()) + ", counted from 0");
      return FileForest::None;
    }
    return places[static_cast<std::size_t>(index.value)];
  }

  void Check(const FileProgramSystem& system) {
    const std::size_t head = Place(system.head, heads_, FindingCode::HeadMissing, "head");
    const std::size_t table = Place(system.table, tables_, FindingCode::TableMissing, "table");
    bool areJoined = head != FileForest::None && table != FileForest::None;
    if (areJoined && forest_.GetRoot(head) != forest_.GetRoot(table)) {
      Add(FindingCode::NoCommonRoot, system.head.place,
          "its head and its table hang on different roots");
      areJoined = false;
    }
    std::array<std::size_t, 5> axes = {};
    bool areAxesGood = true;
    for (std::size_t place = 0; place < axes.size(); ++place) {
      axes[place] = FindAxis(system, place);
      areAxesGood = areAxesGood && (axes[place] != FileForest::None || place >= 3);
      if (axes[place] != FileForest::None && areJoined) {
        CheckBetween(system, place, axes[place], head, table);
      }
    }
    if (areAxesGood) {
      CheckAngles(system, {axes[0], axes[1], axes[2]});
    }
    if (axes[3] != FileForest::None && axes[4] != FileForest::None) {
      const double sine = Length(Cross(DirectionInRoot(axes[3]), DirectionInRoot(axes[4])));
      if (sine < SmallestVolume) {
        Add(FindingCode::ParallelRotaryAxes, system.registers[3].place,
            "its two rotary axes are parallel where all axes stand at 0");
      }
    }
  }

  /// Returns the element of one of the main axes, if it is what it has to be.
  std::size_t FindAxis(const FileProgramSystem& system, std::size_t place) {
    const char* const names[] = {"X", "Y", "Z", "first rotary", "second rotary"};
    const Placed<int>& reg = system.registers[place];
    if (!reg.isGood) {
      return FileForest::None;
    }
    const std::string what = std::string(names[place]) + " axis";
    if (reg.value < 0) {
      if (place < 3) {
        Add(FindingCode::AxisNotNamed, reg.place, "it names no " + what);
      }
      return FileForest::None;
    }
    const std::string number = "register " + std::to_string(reg.value);
    for (std::size_t other = 0; other < place; ++other) {
      if (system.registers[other].isGood && system.registers[other].value == reg.value) {
        Add(FindingCode::AxisNamedTwice, reg.place,
            fmt::format("{} is named as the {} axis and as the {}", number, names[other], what));
        return FileForest::None;
      }
    }
    const std::size_t axis = forest_.FindRegister(reg.value);
    if (axis == FileForest::None) {
      Add(FindingCode::AxisMissing, reg.place,
          number + ", named as the " + what + ", belongs to no element");
      return FileForest::None;
    }
    const FileElement& element = machine_.elements[axis];
    const FileLink wanted = place < 3 ? FileLink::Linear : FileLink::Rotary;
    if (!element.link.isGood || !element.role.isGood) {
      return FileForest::None;
    }
    if (element.link.value != wanted || element.role.value != FileRole::Axis) {
      Add(FindingCode::AxisOfWrongKind, reg.place,
          number + ", named as the " + what + ", belongs to " + Named(element) + ", which is no " +
              (place < 3 ? "linear" : "rotary") + " axis");
      return FileForest::None;
    }
    return axis;
  }

  void CheckBetween(const FileProgramSystem& system, std::size_t place, std::size_t axis,
                    std::size_t head, std::size_t table) {
    const bool carriesHead = forest_.Carries(axis, head);
    const bool carriesTable = forest_.Carries(axis, table);
    if (carriesHead != carriesTable) {
      return;
    }
    Add(FindingCode::AxisNotBetween, system.registers[place].place,
        Named(machine_.elements[axis]) + " carries " +
            (carriesHead ? "its head and its table alike" : "neither its head nor its table") +
            ", so it does not move one against the other");
  }

  void CheckAngles(const FileProgramSystem& system, const std::array<std::size_t, 3>& axes) {
    std::array<FileVector, 3> directions = {};
    for (std::size_t i = 0; i < 3; ++i) {
      directions[i] = DirectionInRoot(axes[i]);
    }
    const double volume = std::abs(Dot(Cross(directions[0], directions[1]), directions[2]));
    if (!(volume >= SmallestVolume)) {
      Add(FindingCode::AxesDontSpanSpace, system.registers[0].place,
          "its linear axes don't span space: the tool can't be brought to every point");
      return;
    }
    std::string angles;
    for (std::size_t i = 0; i < 3; ++i) {
      const std::size_t next = (i + 1) % 3;
      const double angleDeg = std::atan2(Length(Cross(directions[i], directions[next])),
                                         Dot(directions[i], directions[next])) *
                              180.0 / Pi;
      const double off = angleDeg > 90.0 ? angleDeg - 90.0 : 90.0 - angleDeg;
      if (off > RightAngleToleranceDeg) {
        angles += (angles.empty() ? "" : ", ") + Named(machine_.elements[axes[i]]) + " and " +
                  Named(machine_.elements[axes[next]]) + " by " + ShortNumber(off, 6) + " deg";
      }
    }
    if (!angles.empty()) {
      Add(FindingCode::ObliqueAxes, system.registers[0].place,
          "its linear axes are off right angles: " + angles +
              "; the calculator takes them for perpendicular, 'orvo solve' and 'orvo ik' don't");
    }
  }

  const FileMachine& machine_;
  FileForest forest_;
  MachineFindings* findings_;
  std::vector<std::size_t> heads_;
  std::vector<std::size_t> tables_;
  std::vector<Rotation> rotations_;
  bool areRolesGood_ = true;
  int number_ = 0;
  std::string shown_;
};

}  // namespace

void CheckElements(const FileMachine& machine, MachineFindings* findings) {
  ElementCheck(machine, findings).Run();
}

void CheckProgramSystems(const FileMachine& machine, MachineFindings* findings) {
  SystemCheck(machine, findings).Run();
}

}  // namespace OrvoTool
