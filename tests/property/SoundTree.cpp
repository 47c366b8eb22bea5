#include "property/SoundTree.h"

#include "property/RandomGeometry.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace Orvo::Property {
namespace {

using Reference::Frame;
using Reference::Vector;

void SetRange(ElementPlan* e, double min, double max) {
  e->slots.push_back({1, 0, min});
  e->slots.push_back({2, 0, max});
}

// A plan whose parents are places in the list, from 0, until Number() makes ids of them.
class TreeBuilder {
 public:
  explicit TreeBuilder(Draw& draw) : draw_(draw) {
    const bool principal = draw.Chance(0.8);
    const Frame basis = principal ? Frame() : RigidFrame(draw);
    std::vector<int> order = {0, 1, 2};
    for (const int column : order) {
      Vector dir = draw.Chance(0.04) ? UnitDirection(draw) : basis.Column(column);
      if (draw.Chance(0.25)) {
        dir = Reference::Negated(dir);
      }
      ElementPlan axis = Named(L"XYZ", Reference::Axis, -1);
      axis.name = std::wstring(1, static_cast<wchar_t>(static_cast<int>(L'X') + column));
      axis.links.push_back(LinearStep(dir));
      SetRange(&axis, draw.Uniform(-900.0, 0.0), draw.Uniform(0.0, 900.0));
      AddZero(&axis);
      axes_.push_back(axis);
    }
    static const int counts[] = {0, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 3};
    const int rotaries = draw.Of(counts);
    for (int i = 0; i < rotaries; ++i) {
      ElementPlan axis = Named(L"R", Reference::Axis, -1);
      axis.name += std::to_wstring(i);
      const Vector center = draw.Chance(0.4) ? Vector() : Point(draw);
      axis.links.push_back(RotaryStep(center, UnitDirection(draw)));
      RotaryRange(draw, &axis);
      AddZero(&axis);
      axes_.push_back(axis);
    }
    if (draw.Chance(0.25)) {
      draw.Shuffle(&axes_);
    } else {
      std::vector<ElementPlan> linear(axes_.begin(), axes_.begin() + 3);
      draw.Shuffle(&linear);
      std::copy(linear.begin(), linear.end(), axes_.begin());
    }
    std::vector<int> registers;
    for (std::size_t i = 0; i < axes_.size(); ++i) {
      registers.push_back(static_cast<int>(i) + (draw.Chance(0.05) ? 6 : 0));
    }
    if (draw.Chance(0.4)) {
      draw.Shuffle(&registers);
    }
    for (std::size_t i = 0; i < axes_.size(); ++i) {
      axes_[i].reg = registers[i];
    }
  }

  MachinePlan Build() {
    int headEnd = -1;
    int tableEnd = -1;
    if (draw_.Chance(0.93)) {
      headEnd = tableEnd = Add(Fixture(-1));
    }
    std::vector<ElementPlan> tableSide;
    for (const ElementPlan& axis : axes_) {
      if (draw_.Chance(0.45)) {
        tableSide.push_back(axis);
      } else {
        headEnd = AddBehind(axis, headEnd);
      }
    }
    for (const ElementPlan& axis : tableSide) {
      tableEnd = AddBehind(axis, tableEnd);
    }
    AddEnd(L"Table", Reference::Table, tableEnd);
    if (headEnd < 0 && draw_.Chance(0.5)) {
      headEnd = static_cast<int>(plan_.elements.size()) - 1;
    }
    AddEnd(L"Head", Reference::Head, headEnd);
    while (draw_.Chance(0.25)) {
      const int behind = draw_.Int(0, static_cast<int>(plan_.elements.size()) - 1);
      AddEnd(L"More", draw_.Int(0, 2), behind);
    }
    return plan_;
  }

 private:
  void AddZero(ElementPlan* axis) {
    if (draw_.Chance(0.3)) {
      axis->slots.push_back({0, 0, Coordinate(draw_)});
    }
  }

  ElementPlan Fixture(int parent) {
    ElementPlan e = Named(L"Base", Reference::Axis, parent);
    e.links.push_back(FixedStep(FixedFrame(draw_)));
    e.setsCheck = true;
    e.check = false;
    return e;
  }

  int Add(const ElementPlan& e) {
    plan_.elements.push_back(e);
    return static_cast<int>(plan_.elements.size()) - 1;
  }

  int AddBehind(ElementPlan axis, int parent) {
    if (draw_.Chance(0.15)) {
      parent = Add(Fixture(parent));
    }
    axis.parentId = parent;
    return Add(axis);
  }

  void AddEnd(const wchar_t* name, int type, int parent) {
    ElementPlan e = Named(name, type, parent);
    e.links.push_back(FixedStep(FixedFrame(draw_)));
    e.setsCheck = true;
    e.check = false;
    Add(e);
  }

  Draw& draw_;
  std::vector<ElementPlan> axes_;
  MachinePlan plan_;
};

}  // namespace

LinkStep LinearStep(const Vector& dir) {
  LinkStep step;
  step.kind = Reference::Linear;
  step.dir = dir;
  return step;
}

LinkStep RotaryStep(const Vector& center, const Vector& dir) {
  LinkStep step;
  step.kind = Reference::Rotary;
  step.center = center;
  step.dir = dir;
  return step;
}

LinkStep FixedStep(const Frame& frame) {
  LinkStep step;
  step.kind = Reference::Fixed;
  step.frame = frame;
  return step;
}

void RotaryRange(Draw& draw, ElementPlan* e) {
  const double low = draw.Uniform(-400.0, 400.0);
  switch (draw.Int(0, 11)) {
    case 10:
    case 11: {
      // Round limits, moved by less or more than the 0.0001 and 0.01 radian that are forgiven.
      static const double moves[] = {0.0, 0.00005, 0.0001, 0.001, 0.01, 0.02};
      const auto move = [&draw]() {
        const double radians = draw.Of(moves) * draw.Uniform(0.9999, 1.0001);
        return Reference::RadiansToDegrees(draw.Chance(0.5) ? radians : -radians);
      };
      const double min = draw.Int(-12, 12) * 15.0;
      SetRange(e, min + move(), min + draw.Int(0, 48) * 15.0 + move());
      break;
    }
    case 0:
    case 1:
    case 2:
      e->setsCheck = true;
      e->check = false;
      break;
    case 3:
      SetRange(e, -120, 120);
      break;
    case 4:
      SetRange(e, 0, 360);
      break;
    case 5:
      SetRange(e, -99999, 99999);
      break;
    case 6:
      SetRange(e, -90, draw.Chance(0.5) ? 90 : 0);
      break;
    case 7:
      SetRange(e, low, low + draw.Uniform(-5.0, 5.0));
      break;
    case 8:
      SetRange(e, low, low + draw.Uniform(-100.0, 1000.0));
      break;
    default:
      SetRange(e, draw.Int(-4, 4) * 90.0, draw.Int(-4, 4) * 90.0);
      break;
  }
}

Frame FixedFrame(Draw& draw) {
  Frame out;
  switch (draw.Int(0, 4)) {
    case 0:
    case 1:
      return out;
    case 2:
      out.SetTrans(Point(draw));
      return out;
    default:
      return draw.Chance(0.03) ? MadeFrame(draw) : RigidFrame(draw);
  }
}

ElementPlan Named(const wchar_t* name, int type, int parent) {
  ElementPlan e;
  e.name = name;
  e.type = type;
  e.parentId = parent;
  return e;
}

MachinePlan SoundTree(Draw& draw) { return TreeBuilder(draw).Build(); }

}  // namespace Orvo::Property
