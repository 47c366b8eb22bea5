#include "MachineTemplate.h"

#include <array>
#include <cmath>

namespace OrvoTool {
namespace {

using Frame = MachineFileText::Frame;
using Range = MachineFileText::Range;
using Triple = MachineFileText::Triple;

constexpr double Pi = 3.141592653589793;

constexpr int NoParent = -1;
constexpr int NoRegister = -1;

// The registers: X, Y, Z, then the rotary axes.
constexpr std::array<int, 3> Linear = {0, 1, 2};
constexpr int FirstRotary = 3;
constexpr int SecondRotary = 4;

// An axis that carries the workpiece moves it against the sense in which the tool would move, so
// that a positive value always means the same motion of the tool against the workpiece.
constexpr Triple X = {1.0, 0.0, 0.0};
constexpr Triple Y = {0.0, 1.0, 0.0};
constexpr Triple Z = {0.0, 0.0, 1.0};
constexpr Triple MinusX = {-1.0, 0.0, 0.0};
constexpr Triple MinusY = {0.0, -1.0, 0.0};
constexpr Triple MinusZ = {0.0, 0.0, -1.0};

constexpr Triple Origin = {};

/// An axis that turns all around without an end.
constexpr Range Endless = {0.0, 0.0, false};

double Pivot(const TemplateValues& values) { return values.dimensions.at("pivot"); }

/// The direction that leans from Z towards Y by the nutating angle. A quarter and half of it are
/// exact, as the two components of 45 degrees are the same number.
Triple Nutated(const TemplateValues& values, double sign) {
  const double angleDeg = values.dimensions.at("angle");
  const double angleRad = angleDeg * Pi / 180.0;
  const double sine = angleDeg == 45.0 ? std::sqrt(0.5) : std::sin(angleRad);
  const double cosine = angleDeg == 45.0   ? std::sqrt(0.5)
                        : angleDeg == 90.0 ? 0.0
                                           : std::cos(angleRad);
  return {0.0, sign * sine, sign * cosine};
}

std::string MakeMill3(const TemplateValues& values) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int z = text.AddLinear("Z", base, 2, Z, values.ranges.at('z'));
  text.AddHead("Spindle", z, Frame());
  const int y = text.AddLinear("Y", base, 1, MinusY, values.ranges.at('y'));
  const int x = text.AddLinear("X", y, 0, MinusX, values.ranges.at('x'));
  text.AddTable("Table", x, Frame());
  return text.Finish("Mill", Linear, {NoRegister, NoRegister});
}

std::string MakeHorizontalB(const TemplateValues& values) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int x = text.AddLinear("X", base, 0, X, values.ranges.at('x'));
  const int y = text.AddLinear("Y", x, 1, Y, values.ranges.at('y'));
  text.AddHead("Spindle", y, Frame());
  const int z = text.AddLinear("Z", base, 2, MinusZ, values.ranges.at('z'));
  const int b = text.AddRotary("B", z, FirstRotary, Origin, MinusY, values.ranges.at('b'));
  text.AddTable("Table", b, Frame());
  return text.Finish("Mill", Linear, {FirstRotary, NoRegister});
}

/// A tilting axis along X or Y that carries a turning one.
std::string MakeTrunnion(const TemplateValues& values, const char* name, char letter,
                         const Triple& direction, const Triple& eccentricity) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int z = text.AddLinear("Z", base, 2, Z, values.ranges.at('z'));
  text.AddHead("Spindle", z, Frame());
  const int y = text.AddLinear("Y", base, 1, MinusY, values.ranges.at('y'));
  const int x = text.AddLinear("X", y, 0, MinusX, values.ranges.at('x'));
  const double eccentric = values.dimensions.at("eccentric");
  const Triple center = {eccentric * eccentricity[0], eccentric * eccentricity[1], Pivot(values)};
  const int tilt =
      text.AddRotary(name, x, FirstRotary, center, direction, values.ranges.at(letter));
  const int c = text.AddRotary("C", tilt, SecondRotary, Origin, MinusZ, values.ranges.at('c'));
  text.AddTable("Table", c, Frame());
  return text.Finish("Trunnion", Linear, {FirstRotary, SecondRotary});
}

std::string MakeTrunnionAc(const TemplateValues& values) {
  return MakeTrunnion(values, "A", 'a', MinusX, Y);
}

std::string MakeTrunnionBc(const TemplateValues& values) {
  return MakeTrunnion(values, "B", 'b', MinusY, X);
}

std::string MakeNutatingTableBc(const TemplateValues& values) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int x = text.AddLinear("X", base, 0, X, values.ranges.at('x'));
  const int z = text.AddLinear("Z", x, 2, Z, values.ranges.at('z'));
  text.AddHead("Spindle", z, Frame());
  const int y = text.AddLinear("Y", base, 1, MinusY, values.ranges.at('y'));
  const int b = text.AddRotary("B", y, FirstRotary, {0.0, 0.0, Pivot(values)},
                               Nutated(values, -1.0), values.ranges.at('b'));
  const int c = text.AddRotary("C", b, SecondRotary, Origin, MinusZ, values.ranges.at('c'));
  text.AddTable("Table", c, Frame());
  return text.Finish("NutatingTable", Linear, {FirstRotary, SecondRotary});
}

std::string MakeHeadTableBc(const TemplateValues& values) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int z = text.AddLinear("Z", base, 2, Z, values.ranges.at('z'));
  const int b =
      text.AddRotary("B", z, FirstRotary, {0.0, 0.0, Pivot(values)}, Y, values.ranges.at('b'));
  text.AddHead("Spindle", b, Frame());
  const int y = text.AddLinear("Y", base, 1, MinusY, values.ranges.at('y'));
  const int x = text.AddLinear("X", y, 0, MinusX, values.ranges.at('x'));
  const int c = text.AddRotary("C", x, SecondRotary, Origin, MinusZ, values.ranges.at('c'));
  text.AddTable("Table", c, Frame());
  return text.Finish("HeadTable", Linear, {FirstRotary, SecondRotary});
}

/// A turning axis that carries a tilting one, on the head; the table, or nothing, moves along X.
std::string MakeHeadHead(const TemplateValues& values, bool isGantry, const char* name, char letter,
                         const Triple& direction, double eccentric) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int carrier = isGantry ? text.AddLinear("X", base, 0, X, values.ranges.at('x')) : base;
  const int y = text.AddLinear("Y", carrier, 1, Y, values.ranges.at('y'));
  const int z = text.AddLinear("Z", y, 2, Z, values.ranges.at('z'));
  const int c = text.AddRotary("C", z, FirstRotary, Origin, Z, values.ranges.at('c'));
  const int tilt = text.AddRotary(name, c, SecondRotary, {0.0, eccentric, Pivot(values)}, direction,
                                  values.ranges.at(letter));
  text.AddHead("Spindle", tilt, Frame());
  const int bed = isGantry ? base : text.AddLinear("X", base, 0, MinusX, values.ranges.at('x'));
  text.AddTable("Table", bed, Frame());
  return text.Finish("HeadHead", Linear, {FirstRotary, SecondRotary});
}

std::string MakeHeadHeadCa(const TemplateValues& values) {
  return MakeHeadHead(values, false, "A", 'a', X, values.dimensions.at("eccentric"));
}

std::string MakeGantryCa(const TemplateValues& values) {
  return MakeHeadHead(values, true, "A", 'a', X, values.dimensions.at("eccentric"));
}

std::string MakeNutatingHeadCb(const TemplateValues& values) {
  return MakeHeadHead(values, true, "B", 'b', Nutated(values, 1.0), 0.0);
}

/// A lathe with a driven tool across the turning axis. It has no Y; the calculator needs one, so
/// there is one that stands still.
std::string MakeMillTurnXzc(const TemplateValues& values) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int z = text.AddLinear("Z", base, 2, Z, values.ranges.at('z'));
  const int x = text.AddLinear("X", z, 0, X, values.ranges.at('x'));
  const int y = text.AddLinear("Y", x, 1, Y, {0.0, 0.0, true});
  Frame radial;
  radial.u = MinusZ;
  radial.w = X;
  text.AddHead("Turret", y, radial);
  const int c = text.AddRotary("C", base, FirstRotary, Origin, MinusZ, values.ranges.at('c'));
  text.AddTable("Spindle", c, Frame());
  return text.Finish("MillTurn", Linear, {FirstRotary, NoRegister});
}

std::string MakeMillTurnXyzbc(const TemplateValues& values) {
  MachineFileText text;
  const int base = text.AddStatic("Base", NoParent);
  const int z = text.AddLinear("Z", base, 2, Z, values.ranges.at('z'));
  const int x = text.AddLinear("X", z, 0, X, values.ranges.at('x'));
  const int y = text.AddLinear("Y", x, 1, Y, values.ranges.at('y'));
  const int b =
      text.AddRotary("B", y, FirstRotary, {0.0, 0.0, Pivot(values)}, Y, values.ranges.at('b'));
  text.AddHead("MillingSpindle", b, Frame());
  const int c = text.AddRotary("C", base, SecondRotary, Origin, MinusZ, values.ranges.at('c'));
  text.AddTable("MainSpindle", c, Frame());
  return text.Finish("MillTurn", Linear, {FirstRotary, SecondRotary});
}

}  // namespace

const std::vector<MachineTemplate>& GetMachineTemplates() {
  static const TemplateDimension aboveTable = {
      "pivot", "height of the tilting axis above the face of the table", 50.0};
  static const TemplateDimension aboveNose = {
      "pivot", "distance of the tilting axis from the spindle's gauge point", 150.0};
  static const TemplateDimension eccentric = {
      "eccentric", "how far the tilting axis stands beside the turning one", 0.0};
  static const TemplateDimension angle = {
      "angle", "angle between the nutating axis and the turning one, in degrees", 45.0};
  static const std::vector<MachineTemplate> templates = {
      {"mill-3",
       "vertical mill with three axes; the table moves along X and Y",
       {{'x', {-400, 400}}, {'y', {-250, 250}}, {'z', {0, 500}}},
       {},
       MakeMill3},
      {"horizontal-b",
       "horizontal mill whose table turns (B) and moves along Z",
       {{'x', {-400, 400}}, {'y', {0, 700}}, {'z', {0, 700}}, {'b', Endless}},
       {},
       MakeHorizontalB},
      {"trunnion-ac",
       "table that tilts about X (A) and turns (C)",
       {{'x', {-400, 400}},
        {'y', {-400, 400}},
        {'z', {-100, 500}},
        {'a', {-120, 120}},
        {'c', Endless}},
       {aboveTable, eccentric},
       MakeTrunnionAc},
      {"trunnion-bc",
       "table that tilts about Y (B) and turns (C)",
       {{'x', {-400, 400}},
        {'y', {-400, 400}},
        {'z', {-100, 500}},
        {'b', {-120, 120}},
        {'c', Endless}},
       {aboveTable, eccentric},
       MakeTrunnionBc},
      {"nutating-table-bc",
       "table on a leaning axis (B) that turns (C)",
       {{'x', {-400, 400}},
        {'y', {-400, 400}},
        {'z', {-100, 600}},
        {'b', {-5, 185}},
        {'c', Endless}},
       {aboveTable, angle},
       MakeNutatingTableBc},
      {"head-table-bc",
       "head that tilts about Y (B), table that turns (C)",
       {{'x', {-600, 600}},
        {'y', {-400, 400}},
        {'z', {-200, 700}},
        {'b', {-100, 100}},
        {'c', Endless}},
       {aboveNose},
       MakeHeadTableBc},
      {"head-head-ca",
       "fork head that turns (C) and tilts about X (A); the table moves along X",
       {{'x', {-1000, 1000}},
        {'y', {-500, 500}},
        {'z', {-200, 800}},
        {'c', {-360, 360}},
        {'a', {-110, 110}}},
       {aboveNose, eccentric},
       MakeHeadHeadCa},
      {"nutating-head-cb",
       "gantry with a head that turns (C) and swings about a leaning axis (B)",
       {{'x', {-1000, 1000}},
        {'y', {-700, 700}},
        {'z', {-300, 800}},
        {'c', {-360, 360}},
        {'b', {-180, 180}}},
       {aboveNose, angle},
       MakeNutatingHeadCb},
      {"gantry-ca",
       "gantry with a fork head that turns (C) and tilts about X (A)",
       {{'x', {-2500, 2500}},
        {'y', {-1500, 1500}},
        {'z', {-300, 1000}},
        {'c', {-360, 360}},
        {'a', {-110, 110}}},
       {aboveNose, eccentric},
       MakeGantryCa},
      {"mill-turn-xzc",
       "lathe with a driven tool across the turning axis (C), without Y",
       {{'x', {-20, 300}}, {'z', {0, 800}}, {'c', Endless}},
       {},
       MakeMillTurnXzc},
      {"mill-turn-xyzbc",
       "mill-turn center: milling spindle that tilts (B), turning spindle (C)",
       {{'x', {-150, 600}},
        {'y', {-150, 150}},
        {'z', {-100, 1500}},
        {'b', {-110, 110}},
        {'c', Endless}},
       {aboveNose},
       MakeMillTurnXyzbc},
  };
  return templates;
}

}  // namespace OrvoTool
