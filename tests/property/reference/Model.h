#pragma once

#include "property/reference/Frame.h"
#include "property/reference/Vector.h"

#include <array>
#include <cstddef>
#include <list>
#include <string>
#include <utility>
#include <vector>

namespace Reference {

enum LinkType { Linear = 0, Rotary = 1, Fixed = 2, Abc = 3, Identity = 5, Undef = 8 };
enum ElementType { Axis = 0, Table = 1, Head = 2 };

struct Link {
  int type = Undef;
  Vector center;
  Vector dir;
  Frame position;
  std::array<double, 6> zeroRef{};
  std::array<double, 6> rangeMin{};
  std::array<double, 6> rangeMax{};

  void SetLinear(const Vector& direction);
  void SetRotary(const Vector& point, const Vector& direction);
  void SetFixed(const Frame& frame);
};

struct Element {
  std::wstring name;
  int type = Axis;
  int parallel = 0;
  int id = -1;
  int parentId = -1;
  int reg = -1;
  bool motor = false;
  bool checkRange = true;
  bool mounting = false;
  Link link;
  bool hasMeshes = false;
  std::vector<unsigned int> colors;
  const Element* parent = nullptr;
  int level = 0;

  /// Takes over what a copy takes: all but the meshes and the parent pointer.
  void CopyFrom(const Element& other);
};

struct Program {
  std::wstring name;
  int table = -1;
  int head = -1;
  std::array<int, 3> linear = {-1, -1, -1};
  std::array<int, 2> rotary = {-1, -1};
  int policy = 1;
};

/// The five collision lists; every question is a walk from the front.
struct Collisions {
  std::list<std::pair<int, int>> pairs;
  std::list<int> sets[4];  ///< stock, part, fixture, tool

  void Set(int which, int id, bool on);
  bool Get(int which, int id) const;
  void SetPair(int a, int b, bool on);
  bool GetPair(int a, int b) const;
  std::list<int> Partners(int id, bool all) const;
};

/// One value per register.
struct Position {
  std::vector<double> values;

  Position() = default;
  Position(const Position& other);
  Position& operator=(const Position& other);
  ~Position() = default;

  void Alloc(int n);
  bool Holds(int reg) const;
  int Size() const;
  double& operator[](int reg) { return values[static_cast<std::size_t>(reg)]; }
  double operator[](int reg) const { return values[static_cast<std::size_t>(reg)]; }
};

struct Machine {
  std::list<Element> elements;
  std::vector<const Element*> byId;
  std::vector<const Element*> byRegister;
  std::vector<const Element*> heads;
  std::vector<const Element*> tables;
  Collisions collisions;
  std::list<Program> programs;
  bool finished = false;
  int registerNb = -1;
  int elementNb = 0;
  int idMax = -1;
  int tableNb = -1;
  int headNb = -1;
  int linearAxesNb = 0;
  int lastError = 0;

  Machine() = default;
  Machine(const Machine& other) = delete;
  Machine& operator=(const Machine& other) = delete;

  Element* Add();
  bool Finish();
  const Element* ById(int id) const;
  const Element* ByRegister(int reg) const;
  const Element* HeadAt(int index) const;
  const Element* TableAt(int index) const;

 private:
  bool ResolveParents();
  void AddDefaultProgram();
};

}  // namespace Reference
