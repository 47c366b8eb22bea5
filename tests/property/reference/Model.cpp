#include "property/reference/Model.h"

#include <algorithm>
#include <cstddef>

namespace Reference {
namespace {

const Element* At(const std::vector<const Element*>& table, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= table.size()) {
    return nullptr;
  }
  return table[static_cast<std::size_t>(index)];
}

bool PointsAlong(const Vector& dir, double x, double y, double z) {
  const bool plus = dir.x == x && dir.y == y && dir.z == z;
  const bool minus = dir.x == -x && dir.y == -y && dir.z == -z;
  return plus || minus;
}

}  // namespace

void Link::SetLinear(const Vector& direction) {
  type = Linear;
  dir = direction;
  MakeUnit(&dir, 0.001);
}

void Link::SetRotary(const Vector& point, const Vector& direction) {
  type = Rotary;
  center = point;
  dir = direction;
  MakeUnit(&dir, 0.001);
}

void Link::SetFixed(const Frame& frame) {
  type = Fixed;
  position = frame;
}

void Element::CopyFrom(const Element& other) {
  name = other.name;
  type = other.type;
  parallel = other.parallel;
  id = other.id;
  parentId = other.parentId;
  reg = other.reg;
  motor = other.motor;
  checkRange = other.checkRange;
  mounting = other.mounting;
  link = other.link;
  parent = nullptr;
  level = other.level;
}

void Collisions::Set(int which, int id, bool on) {
  std::list<int>& set = sets[which];
  const auto found = std::find(set.begin(), set.end(), id);
  if (found != set.end()) {
    if (!on) {
      set.erase(found);
    }
  } else if (on) {
    set.push_back(id);
  }
}

bool Collisions::Get(int which, int id) const {
  return std::find(sets[which].begin(), sets[which].end(), id) != sets[which].end();
}

void Collisions::SetPair(int a, int b, bool on) {
  if (a == b) {
    return;
  }
  for (auto i = pairs.begin(); i != pairs.end(); ++i) {
    if ((i->first == a && i->second == b) || (i->first == b && i->second == a)) {
      if (!on) {
        pairs.erase(i);
      }
      return;
    }
  }
  if (on) {
    pairs.emplace_back(std::max(a, b), std::min(a, b));
  }
}

bool Collisions::GetPair(int a, int b) const {
  if (a == b) {
    return false;
  }
  for (const auto& pair : pairs) {
    if ((pair.first == a && pair.second == b) || (pair.first == b && pair.second == a)) {
      return true;
    }
  }
  return false;
}

std::list<int> Collisions::Partners(int id, bool all) const {
  std::list<int> out;
  for (const auto& pair : pairs) {
    if (all) {
      if (pair.first == id) {
        out.push_back(pair.second);
      }
      if (pair.second == id) {
        out.push_back(pair.first);
      }
    } else {
      if (pair.first == id && pair.second < id) {
        out.push_back(pair.second);
      }
      if (pair.second == id && pair.first < id) {
        out.push_back(pair.first);
      }
    }
  }
  return out;
}

Position::Position(const Position& other) { *this = other; }

Position& Position::operator=(const Position& other) {
  if (this == &other || other.values.empty()) {
    return *this;
  }
  if (values.size() < other.values.size()) {
    values.resize(other.values.size());
  }
  for (std::size_t i = 0; i < other.values.size(); ++i) {
    values[i] = other.values[i];
  }
  return *this;
}

void Position::Alloc(int n) {
  if (n >= 0) {
    values.resize(static_cast<std::size_t>(n));
  }
  std::fill(values.begin(), values.end(), 0.0);
}

int Position::Size() const { return static_cast<int>(values.size()); }

bool Position::Holds(int reg) const { return reg >= 0 && reg < Size(); }

Element* Machine::Add() {
  if (finished) {
    return nullptr;
  }
  elements.emplace_back();
  elements.back().id = static_cast<int>(elements.size());
  return &elements.back();
}

const Element* Machine::ById(int id) const { return At(byId, id); }
const Element* Machine::ByRegister(int reg) const { return At(byRegister, reg); }
const Element* Machine::HeadAt(int index) const { return At(heads, index); }
const Element* Machine::TableAt(int index) const { return At(tables, index); }

// Sets all parent pointers but those that would close a cycle; tells whether there was one.
bool Machine::ResolveParents() {
  bool cycle = false;
  for (Element& e : elements) {
    e.parent = nullptr;
  }
  for (Element& e : elements) {
    const Element* parent = ById(e.parentId);
    bool closes = false;
    for (const Element* walk = parent; walk != nullptr; walk = walk->parent) {
      closes = closes || walk == &e;
    }
    if (closes) {
      cycle = true;
    } else {
      e.parent = parent;
    }
  }
  return cycle;
}

void Machine::AddDefaultProgram() {
  Program program;
  program.table = 0;
  program.head = 0;
  int x = -1;
  int y = -1;
  int z = -1;
  int r0 = -1;
  int r1 = -1;
  for (const Element& e : elements) {
    if (e.link.type == Linear) {
      if (PointsAlong(e.link.dir, 1.0, 0.0, 0.0)) {
        x = e.reg;
      }
      if (PointsAlong(e.link.dir, 0.0, 1.0, 0.0)) {
        y = e.reg;
      }
      if (PointsAlong(e.link.dir, 0.0, 0.0, 1.0)) {
        z = e.reg;
      }
    } else if (e.link.type == Rotary) {
      if (r0 < 0) {
        r0 = e.reg;
      } else if (r1 < 0) {
        r1 = e.reg;
      }
    }
  }
  if (r0 >= 0 && r1 >= 0 && r0 > r1) {
    std::swap(r0, r1);
  }
  if (x >= 0 && y >= 0 && z >= 0) {
    program.linear = {x, y, z};
  }
  program.rotary = {r0, r1};
  program.name = L"Default";
  programs.push_back(program);
}

bool Machine::Finish() {
  int largestRegister = 0;
  int largestId = -1;
  for (const Element& e : elements) {
    largestRegister = std::max(largestRegister, e.reg);
    largestId = std::max(largestId, e.id);
  }
  elementNb = static_cast<int>(elements.size());
  idMax = largestId;
  registerNb = largestRegister + 1;
  byId.assign(static_cast<std::size_t>(idMax + 1), nullptr);
  byRegister.assign(static_cast<std::size_t>(registerNb), nullptr);
  for (const Element& e : elements) {
    if (e.id >= 0) {
      byId[static_cast<std::size_t>(e.id)] = &e;
    }
    if (e.reg >= 0) {
      byRegister[static_cast<std::size_t>(e.reg)] = &e;
    }
  }
  const bool cycle = ResolveParents();
  for (Element& e : elements) {
    e.level = 0;
    for (const Element* walk = e.parent; walk != nullptr; walk = walk->parent) {
      ++e.level;
    }
  }
  heads.clear();
  tables.clear();
  for (const Element& e : elements) {
    if (e.type == Table) {
      tables.push_back(&e);
    }
    if (e.type == Head) {
      heads.push_back(&e);
    }
  }
  tableNb = static_cast<int>(tables.size());
  headNb = static_cast<int>(heads.size());
  if (programs.empty() && tableNb >= 1 && headNb >= 1) {
    AddDefaultProgram();
  }
  linearAxesNb = 0;
  for (const Element& e : elements) {
    if (e.type == Axis && e.link.type == Linear) {
      ++linearAxesNb;
    }
  }
  if (cycle) {
    lastError = 4;
  } else if (headNb < 1) {
    lastError = 1;
  } else if (tableNb < 1) {
    lastError = 2;
  } else if (linearAxesNb < 3) {
    lastError = 3;
  } else {
    lastError = 0;
  }
  finished = lastError == 0;
  return finished;
}

}  // namespace Reference
