#pragma once

#include "MachineFinding.h"
#include "XmlOutline.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace OrvoTool {

/// What an element of a machine file is.
enum class FileRole : int { Axis, Head, Table };

/// The kinds of links that can be computed with, and all others.
enum class FileLink : int { Linear, Rotary, Position, Identity, Other };

/// A vector as the file gives it.
using FileVector = std::array<double, 3>;

/// A value with its place in the file.
template <typename Value>
struct Placed {
  Value value = {};
  TextPlace place;
  bool isGood = false;  ///< whether the file gives it, and gives it rightly
};

/// An element as the file gives it.
struct FileElement {
  TextPlace place;
  std::string name;  ///< UTF-8, for people
  Placed<FileRole> role;
  Placed<int> id;
  Placed<int> parentId;
  Placed<int> reg;
  Placed<bool> isRangeChecked;
  Placed<FileLink> link;
  std::string linkWord;
  Placed<FileVector> direction;
  Placed<std::array<FileVector, 3>> frame;  ///< the axes U, V, W
  Placed<double> rangeMin;
  Placed<double> rangeMax;
  int meshNb = 0;
  std::vector<Placed<std::string>> meshFiles;  ///< those that the file names, as JSON does

  bool IsMoving() const {
    return link.isGood && (link.value == FileLink::Linear || link.value == FileLink::Rotary);
  }
};

/// A program system as the file gives it.
struct FileProgramSystem {
  TextPlace place;
  std::string name;
  Placed<int> table;
  Placed<int> head;
  std::array<Placed<int>, 5> registers;  ///< X, Y, Z, then the first and the second rotary axis
};

/// A machine file as it stands, with the places of what it says.
struct FileMachine {
  bool isJson = false;
  std::vector<FileElement> elements;
  std::vector<FileProgramSystem> programSystems;
  std::vector<Placed<int>> collisionIds;  ///< all that the collision check names
};

/// Takes a machine file apart and tells all that is wrong with its text: what is missing, what is
/// no number or no known word, what the reader of machine files passes over.
/// @return nothing where the file's top element is none of a machine
std::optional<FileMachine> ReadFileMachine(const XmlOutline& outline, MachineFindings* findings);

/// Makes the finding that is about an element.
MachineFinding AboutElement(FindingCode code, const TextPlace& place, const FileElement& element,
                            const std::string& text);

}  // namespace OrvoTool
