#include "property/reference/Calculator.h"

#include <algorithm>
#include <cstddef>

namespace Reference {

bool Calculator::Fail(int error) {
  lastError_ = error;
  return false;
}

bool Calculator::RelativePosition(const Link& link, int reg, const Position& pos, Frame* frame) {
  if (frame == nullptr) {
    return Fail(2);
  }
  frame->SetIdentity();
  if (link.type == Linear) {
    if (!pos.Holds(reg)) {
      return Fail(5);
    }
    const double s = link.zeroRef[0] + pos[reg];
    frame->SetTrans(Scaled(link.dir, s));
    return true;
  }
  if (link.type == Rotary) {
    if (!pos.Holds(reg)) {
      return Fail(5);
    }
    frame->SetRotation(link.dir, DegreesToRadians(pos[reg]));
    const Vector turned = frame->ApplyToVector(link.center);
    frame->SetTrans(Difference(link.center, turned));
    return true;
  }
  if (link.type == Fixed) {
    *frame = link.position;
    return true;
  }
  if (link.type == Identity) {
    return true;
  }
  return Fail(6);
}

bool Calculator::PositionElement(const Element& element, const Position& pos, Frame* frame) {
  if (frame == nullptr) {
    return Fail(2);
  }
  if (pos.Size() == 0) {
    return Fail(3);
  }
  frame->SetIdentity();
  for (const Element* e = &element; e != nullptr; e = e->parent) {
    Frame relative;
    if (!RelativePosition(e->link, e->reg, pos, &relative)) {
      return false;
    }
    *frame = relative.Times(*frame);
  }
  return true;
}

void Calculator::BuildOrder() {
  if (!order_.empty()) {
    return;
  }
  const auto holds = [this](int id) {
    return std::any_of(order_.begin(), order_.end(),
                       [id](const Element* e) { return e->id == id; });
  };
  bool added = true;
  while (added) {
    added = false;
    for (const Element& e : machine_.elements) {
      if (holds(e.id)) {
        continue;
      }
      if (e.parent == nullptr || holds(e.parent->id)) {
        order_.push_back(&e);
        added = true;
      }
    }
  }
}

bool Calculator::PositionMachine(const Position& pos, std::vector<Frame>* frames) {
  if (!machine_.finished) {
    return Fail(1);
  }
  if (frames == nullptr) {
    return Fail(2);
  }
  if (pos.Size() == 0) {
    return Fail(3);
  }
  BuildOrder();
  const std::size_t size = static_cast<std::size_t>(machine_.idMax + 1);
  frames->resize(size);
  relative_.resize(size);
  for (const Element* e : order_) {
    Frame frame;
    RelativePosition(e->link, e->reg, pos, &frame);
    if (e->id >= 0) {
      relative_[static_cast<std::size_t>(e->id)] = frame;
    }
  }
  for (const Element* e : order_) {
    if (e->id < 0) {
      continue;
    }
    const std::size_t slot = static_cast<std::size_t>(e->id);
    if (e->parent != nullptr) {
      const std::size_t parentSlot = static_cast<std::size_t>(e->parent->id);
      (*frames)[slot] = (*frames)[parentSlot].Times(relative_[slot]);
    } else {
      (*frames)[slot] = relative_[slot];
    }
  }
  return true;
}

bool Calculator::McsToToolTcs(const Position& pos, int head, int table, const Vector& offset,
                              Frame* frame) {
  if (!machine_.finished) {
    return Fail(1);
  }
  if (frame == nullptr) {
    return Fail(2);
  }
  const Element* headElement = machine_.HeadAt(head);
  const Element* tableElement = machine_.TableAt(table);
  if (headElement == nullptr || tableElement == nullptr) {
    return Fail(4);
  }
  Frame worldFromHead;
  Frame worldFromTable;
  if (!PositionElement(*headElement, pos, &worldFromHead)) {
    return false;
  }
  if (!PositionElement(*tableElement, pos, &worldFromTable)) {
    return false;
  }
  Frame shift;
  shift.SetTrans({-offset.x, -offset.y, -offset.z, 0.0});
  *frame = worldFromTable.HInverse().Times(worldFromHead).Times(shift);
  return true;
}

bool Calculator::WorldDirection(const Position& pos, const Element& element, Vector* dir) {
  if (dir == nullptr) {
    return Fail(2);
  }
  if (element.type != Axis) {
    return Fail(7);
  }
  if (element.link.type != Linear && element.link.type != Rotary) {
    return Fail(8);
  }
  *dir = element.link.dir;
  Frame worldFromParent;
  if (element.parent != nullptr) {
    PositionElement(*element.parent, pos, &worldFromParent);
  }
  *dir = worldFromParent.ApplyToVector(*dir);
  return true;
}

void Calculator::BuildChain(int head, int table) {
  const Element* headElement = machine_.HeadAt(head);
  const Element* tableElement = machine_.TableAt(table);
  if (headElement == head_ && tableElement == table_) {
    return;
  }
  chain_.clear();
  head_ = nullptr;
  table_ = nullptr;
  if (headElement == nullptr || tableElement == nullptr) {
    return;
  }
  std::vector<const Element*> tablePath;
  for (const Element* e = tableElement; e != nullptr; e = e->parent) {
    tablePath.push_back(e);
  }
  std::vector<const Element*> headPath;
  for (const Element* e = headElement; e != nullptr; e = e->parent) {
    headPath.push_back(e);
  }
  for (const Element* e : tablePath) {
    chain_.push_back(e);
    const auto common = std::find(headPath.begin(), headPath.end(), e);
    if (common != headPath.end()) {
      for (auto i = common; i != headPath.begin();) {
        --i;
        chain_.push_back(*i);
      }
      head_ = headElement;
      table_ = tableElement;
      return;
    }
  }
  chain_.clear();
}

bool Calculator::SolveLinear(const Position& pos, int head, int table, const Vector& offset,
                             const std::array<int, 3>& registers, const Vector& point,
                             Vector* xyz) {
  if (!machine_.finished) {
    return Fail(1);
  }
  if (xyz == nullptr) {
    return Fail(2);
  }
  for (const int reg : registers) {
    if (reg < 0) {
      return Fail(5);
    }
  }
  if (pos.Size() == 0) {
    return Fail(3);
  }
  for (const int reg : registers) {
    if (reg >= pos.Size()) {
      return Fail(5);
    }
  }
  Frame shift;
  shift.SetTrans({-offset.x, -offset.y, -offset.z, 0.0});
  BuildChain(head, table);
  if (head_ == nullptr || table_ == nullptr) {
    return Fail(4);
  }
  scratch_ = pos;
  for (const int reg : registers) {
    scratch_[reg] = 0.0;
  }
  double signs[3] = {0.0, 0.0, 0.0};
  int count = 0;
  const Element* previous = nullptr;
  for (const Element* e : chain_) {
    const double sign = previous != nullptr && e->level > previous->level ? 1.0 : -1.0;
    if (e->type == Axis && e->link.type == Linear) {
      for (std::size_t i = 0; i < 3; ++i) {
        if (e->reg == registers[i]) {
          signs[i] = sign;
          ++count;
          break;
        }
      }
    }
    previous = e;
  }
  if (count != 3) {
    return Fail(5);
  }
  Frame worldFromTable;
  Frame worldFromHead;
  PositionElement(*table_, scratch_, &worldFromTable);
  PositionElement(*head_, scratch_, &worldFromHead);
  const Frame tableFromWorld = worldFromTable.HInverse();
  const Frame tableFromTool = tableFromWorld.Times(worldFromHead.Times(shift));
  const Vector p = tableFromTool.Column(3);
  Vector directions[3];
  for (std::size_t i = 0; i < 3; ++i) {
    const Element* e = machine_.ByRegister(registers[i]);
    if (e == nullptr || !WorldDirection(scratch_, *e, &directions[i])) {
      return Fail(5);
    }
  }
  for (std::size_t i = 0; i < 3; ++i) {
    directions[i] = tableFromWorld.ApplyToVector(Scaled(directions[i], signs[i]));
  }
  Frame fromAxes;
  fromAxes.SetUVWT(directions[0], directions[1], directions[2], p);
  *xyz = fromAxes.HInverse().ApplyToPoint(point);
  const double components[3] = {xyz->x, xyz->y, xyz->z};
  for (std::size_t i = 0; i < 3; ++i) {
    const double size = components[i] < 0.0 ? -components[i] : components[i];
    if (signs[i] == 0.0 && size > 0.001) {
      return Fail(5);
    }
  }
  return true;
}

}  // namespace Reference
