#include "MachineGrammar.h"

#include <algorithm>
#include <iterator>

namespace Orvo::Fuzz {

namespace {

/// An element of machine files. Of equal names, the one with the fitting parent counts.
struct Rule {
  std::string_view name;
  std::string_view parent;  ///< empty: any
  ValueKind text;
  ValueKind attribute;
  std::vector<std::string_view> attributes;
  std::vector<std::string_view> children;
};

const std::vector<Rule>& Rules() {
  using enum ValueKind;
  static const std::vector<std::string_view> xyz = {"X", "Y", "Z"};
  static const std::vector<Rule> rules = {
      {"Machine", "", None, Id, {"Version"}, {"Entities", "ProgramSystems", "CollisionCheck"}},
      {"Entities", "", None, None, {}, {"Entity", "Entity", "Entity"}},
      {"Entity",
       "",
       None,
       None,
       {},
       {"Name", "Type", "ParallelType", "Id", "ParentId", "Register", "Motor", "RangeAxis",
        "Mounting", "EntityLink", "Meshes"}},
      {"Name", "", Text, None, {}, {}},
      {"Type", "EntityLink", Word, None, {}, {}},
      {"Type", "", Word, None, {}, {}},
      {"ParallelType", "", Word, None, {}, {}},
      {"Id", "", Id, None, {}, {}},
      {"ParentId", "", Id, None, {}, {}},
      {"Register", "", Register, None, {}, {}},
      {"Motor", "", Bool, None, {}, {}},
      {"RangeAxis", "", Bool, None, {}, {}},
      {"Mounting", "", Bool, None, {}, {}},
      {"EntityLink",
       "",
       None,
       None,
       {},
       {"Type", "Center", "Dir", "Position", "ZeroRef", "RangeMin", "RangeMax"}},
      {"Center", "", None, Number, xyz, {}},
      {"Dir", "", None, Number, xyz, {}},
      {"Position", "", None, None, {}, {"U", "V", "W", "T"}},
      {"U", "", None, Number, xyz, {}},
      {"V", "", None, Number, xyz, {}},
      {"W", "", None, Number, xyz, {}},
      {"T", "", None, Number, xyz, {}},
      {"ZeroRef", "", Number, None, {}, {}},
      {"RangeMin", "", Number, None, {}, {}},
      {"RangeMax", "", Number, None, {}, {}},
      {"Meshes", "", None, None, {}, {"Mesh", "Mesh"}},
      {"Mesh", "", None, None, {}, {"RGB"}},
      {"RGB", "", Color, None, {}, {}},
      {"ProgramSystems", "", None, None, {}, {"ProgramSystem", "ProgramSystem"}},
      {"ProgramSystem",
       "",
       None,
       None,
       {},
       {"ProgramSystemName", "TableIndex", "HeadIndex", "MainLinear", "MainRotary",
        "RotariesCompute"}},
      {"ProgramSystemName", "", Text, None, {}, {}},
      {"ProgramminSystemName", "", Text, None, {}, {}},
      {"TableIndex", "", Index, None, {}, {}},
      {"HeadIndex", "", Index, None, {}, {}},
      {"MainLinear", "", None, Register, {"RegX", "RegY", "RegZ"}, {}},
      {"MainRotary", "", None, Register, {"RegR0", "RegR1"}, {}},
      {"RotariesCompute", "", Word, None, {}, {}},
      {"CollisionCheck",
       "",
       None,
       None,
       {},
       {"MachineMachines", "MachineStock", "MachinePart", "MachineFixture", "MachineTool"}},
      {"MachineMachines", "", None, None, {}, {"MachineMachine", "MachineMachine"}},
      {"MachineMachine", "", None, None, {}, {"EntityId", "EntityIds"}},
      {"EntityId", "", Id, None, {}, {}},
      {"MachineStock", "", None, None, {}, {"EntityIds"}},
      {"MachinePart", "", None, None, {}, {"EntityIds"}},
      {"MachineFixture", "", None, None, {}, {"EntityIds"}},
      {"MachineTool", "", None, None, {}, {"EntityIds"}},
      {"EntityIds", "", Ids, None, {}, {}}};
  return rules;
}

const Rule* FindRule(std::string_view element, std::string_view parent) {
  const std::vector<Rule>& rules = Rules();
  const auto found = std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) {
    return rule.name == element && (rule.parent.empty() || rule.parent == parent);
  });
  return found == rules.end() ? nullptr : &*found;
}

constexpr std::string_view EntityTypes[] = {"AXIS", "TABLE", "HEAD"};
constexpr std::string_view ParallelTypes[] = {"CHAIN", "PARALLEL"};
constexpr std::string_view LinkTypes[] = {"LINEAR",   "ROTARY", "POSITION",      "ABC",  "XYZABC",
                                          "IDENTITY", "XYZIJK", "XYZ_REPSPINDL", "UNDEF"};
constexpr std::string_view Policies[] = {"Default", "ShortestWay", "AlphaPositive"};
constexpr std::string_view WrongWords[] = {"",        "axis",        "AXIS ",    "\nAXIS",
                                           "LINEAR2", "shortestway", "&#65;XIS", "HEADTABLE"};
constexpr std::string_view Bools[] = {"true", "false"};
constexpr std::string_view WrongBools[] = {"True", "1", "", " true", "false\n"};
constexpr std::string_view Texts[] = {"",
                                      "X",
                                      "C axis",
                                      " ",
                                      " \t\n",
                                      "  A  ",
                                      "a\r\nb",
                                      "a\rb",
                                      "&#13;",
                                      "&#xD;&#xA;",
                                      "&lt;&gt;&amp;&quot;&apos;",
                                      "&unknown;",
                                      "&#0;b",
                                      "&#xD800;",
                                      "&#x10FFFF;",
                                      "&#x110000;",
                                      "&#99999999999;",
                                      "&",
                                      "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
                                      "\xC3",
                                      "\xED\xA0\x80",
                                      "\xF8\x88\x80\x80\x80",
                                      "\xEF\xBB\xBF",
                                      "<![CDATA[ a<b ]]>",
                                      "<!-- c -->text",
                                      "text<!-- c -->more",
                                      "<b/>text"};
constexpr std::string_view EdgeIntegers[] = {"0",
                                             "-1",
                                             "-2",
                                             "1023",
                                             "65536",
                                             "2147483647",
                                             "-2147483648",
                                             "2147483648",
                                             "-2147483649",
                                             "16777216",
                                             "99999999999999999999999",
                                             "",
                                             " 3",
                                             "+4",
                                             "5x",
                                             "0x10",
                                             "1e3",
                                             "-",
                                             "- 1",
                                             "007",
                                             "&#51;"};
constexpr std::string_view PlainNumbers[] = {
    "0",        "1",         "-1",       "0.5",      "-0.5", "10",         "-10",    "90",
    "-90",      "180",       "-180",     "360",      "100",  "-100",       "1000",   "-1000",
    "0.707107", "-0.707107", "0.577350", "0.866025", "45",   "123.456789", "-120.5", "720"};
constexpr std::string_view EdgeNumbers[] = {"-0",        "0.0000004",
                                            "0.0000005", "0.001",
                                            "0.0009999", "1e-5",
                                            "1e15",      "4503599627370497.5",
                                            "1e22",      "1e300",
                                            "-1e300",    "1.7976931348623157e308",
                                            "1e309",     "2.2250738585072014e-308",
                                            "1e-310",    "1e-400",
                                            "inf",       "-inf",
                                            "nan",       "-nan",
                                            "NAN(12)",   "infinity",
                                            "0x1.8p3",   "0x",
                                            " 1",        "+1",
                                            "1,5",       "1.",
                                            ".5",        ".",
                                            "e5",        "1e",
                                            "",          "x",
                                            "0.9999995", "3600000000"};

std::string AnyId(Random& random) {
  // Tables as large as the largest id cost time that is better spent on other inputs.
  if (random.OneIn(2000)) {
    return "16777215";
  }
  if (random.OneIn(25)) {
    return std::string(random.OneOf(EdgeIntegers));
  }
  return std::to_string(random.Between(-1, random.OneIn(4) ? 20 : 8));
}

TextNode Attributed(std::string_view name, const std::vector<std::string_view>& attributes,
                    const std::vector<std::string>& values) {
  TextNode node;
  node.name = name;
  for (std::size_t i = 0; i < attributes.size(); ++i) {
    node.attributes.emplace_back(attributes[i], '"' + values[i] + '"');
  }
  return node;
}

TextNode Vector(std::string_view name, const std::string& x, const std::string& y,
                const std::string& z) {
  return Attributed(name, {"X", "Y", "Z"}, {x, y, z});
}

std::string PlainNumber(Random& random) { return std::string(random.OneOf(PlainNumbers)); }

/// Draws a direction: mostly along an axis, sometimes between.
TextNode AnyDirection(std::string_view name, Random& random) {
  if (random.OneIn(4)) {
    return Vector(name, PlainNumber(random), PlainNumber(random), PlainNumber(random));
  }
  std::string parts[3] = {"0", "0", "0"};
  const std::size_t axis = random.Below(3);
  parts[axis] = random.OneIn(3) ? "-1" : "1";
  if (random.OneIn(4)) {
    parts[(axis + 1) % 3] = "1";
  }
  return Vector(name, parts[0], parts[1], parts[2]);
}

/// Draws a placement: mostly unturned, sometimes turned by quarters or by an angle.
TextNode AnyPlacement(Random& random) {
  constexpr std::string_view rotations[][9] = {
      {"1", "0", "0", "0", "1", "0", "0", "0", "1"},
      {"1", "0", "0", "0", "1", "0", "0", "0", "1"},
      {"0", "1", "0", "0", "0", "1", "1", "0", "0"},
      {"0", "0", "-1", "0", "1", "0", "1", "0", "0"},
      {"1", "0", "0", "0", "-1", "0", "0", "0", "-1"},
      {"0.8", "0.6", "0", "-0.6", "0.8", "0", "0", "0", "1"},
      {"1", "0", "0", "0", "0.866025", "0.5", "0", "-0.5", "0.866025"},
      {"2", "0", "0", "0", "2", "0", "0", "0", "2"},
      {"1", "0.5", "0", "0", "1", "0", "0", "0", "1"},
      {"0", "0", "0", "0", "0", "0", "0", "0", "0"}};
  const auto& r = rotations[random.Below(random.OneIn(8) ? std::size(rotations) : 7)];
  TextNode position;
  position.name = "Position";
  constexpr std::string_view columns[] = {"U", "V", "W"};
  for (std::size_t c = 0; c < 3; ++c) {
    position.children.push_back(Vector(columns[c], std::string(r[3 * c]), std::string(r[3 * c + 1]),
                                       std::string(r[3 * c + 2])));
  }
  const bool isAtOrigin = random.OneIn(2);
  position.children.push_back(
      isAtOrigin ? Vector("T", "0", "0", "0")
                 : Vector("T", PlainNumber(random), PlainNumber(random), PlainNumber(random)));
  return position;
}

/// An element of a whole machine.
struct Plan {
  std::string_view type;
  std::string_view link;
  int id;
  int parent;
  int reg;
};

TextNode MakeEntity(const Plan& plan, const TextNode& dir, Random& random) {
  TextNode link;
  link.name = "EntityLink";
  link.children.push_back(Leaf("Type", plan.link));
  link.children.push_back(random.OneIn(2) ? Vector("Center", "0", "0", "0")
                                          : Vector("Center", PlainNumber(random),
                                                   PlainNumber(random), PlainNumber(random)));
  link.children.push_back(dir);
  link.children.push_back(AnyPlacement(random));
  link.children.push_back(Leaf("ZeroRef", random.OneIn(3) ? PlainNumber(random) : "0"));
  const bool isWide = random.OneIn(2);
  link.children.push_back(Leaf("RangeMin", isWide ? "-1000" : PlainNumber(random)));
  link.children.push_back(Leaf("RangeMax", isWide ? "1000" : PlainNumber(random)));

  TextNode entity;
  entity.name = "Entity";
  entity.children.push_back(Leaf("Name", std::string(plan.link) + std::to_string(plan.id)));
  entity.children.push_back(Leaf("Type", plan.type));
  entity.children.push_back(Leaf("ParallelType", random.OneIn(8) ? "PARALLEL" : "CHAIN"));
  entity.children.push_back(Leaf("Id", std::to_string(plan.id)));
  entity.children.push_back(Leaf("ParentId", std::to_string(plan.parent)));
  entity.children.push_back(Leaf("Register", std::to_string(plan.reg)));
  entity.children.push_back(Leaf("Motor", plan.reg >= 0 ? "true" : "false"));
  entity.children.push_back(Leaf("RangeAxis", random.OneIn(2) ? "true" : "false"));
  entity.children.push_back(Leaf("Mounting", random.OneIn(8) ? "true" : "false"));
  entity.children.push_back(link);
  if (random.OneIn(4)) {
    entity.children.push_back(AnyElement("Meshes", "Entity", random));
  }
  return entity;
}

}  // namespace

ValueKind KindOfText(std::string_view element) {
  const Rule* const rule = FindRule(element, "");
  return rule == nullptr ? ValueKind::None : rule->text;
}

ValueKind KindOfAttribute(std::string_view element) {
  const Rule* const rule = FindRule(element, "");
  return rule == nullptr ? ValueKind::None : rule->attribute;
}

std::string AnyValue(ValueKind kind, std::string_view element, std::string_view parent,
                     Random& random) {
  switch (kind) {
    case ValueKind::Text:
      return std::string(random.OneOf(Texts));
    case ValueKind::Bool:
      return std::string(random.OneIn(20) ? random.OneOf(WrongBools) : random.OneOf(Bools));
    case ValueKind::Id:
    case ValueKind::Register:
      return AnyId(random);
    case ValueKind::Index:
      return random.OneIn(20) ? std::string(random.OneOf(EdgeIntegers))
                              : std::to_string(random.Between(-1, 2));
    case ValueKind::Color:
      return random.OneIn(20) ? std::string(random.OneOf(EdgeIntegers))
                              : std::to_string(random.Between(-16777216, 16777215));
    case ValueKind::Number:
      return random.OneIn(10) ? std::string(random.OneOf(EdgeNumbers)) : PlainNumber(random);
    case ValueKind::Ids: {
      std::string text;
      for (std::size_t nb = random.Below(6); nb > 0; --nb) {
        text += AnyId(random) + (random.OneIn(8) ? "\t" : " ");
      }
      return text;
    }
    case ValueKind::Word:
      if (random.OneIn(20)) {
        return std::string(random.OneOf(WrongWords));
      }
      if (element == "ParallelType") {
        return std::string(random.OneOf(ParallelTypes));
      }
      if (element == "RotariesCompute") {
        return std::string(random.OneOf(Policies));
      }
      return std::string(parent == "EntityLink" ? random.OneOf(LinkTypes)
                                                : random.OneOf(EntityTypes));
    case ValueKind::None:
      break;
  }
  return "";
}

std::vector<std::string_view> ChildrenOf(std::string_view element, std::string_view parent) {
  const Rule* const rule = FindRule(element, parent);
  return rule == nullptr ? std::vector<std::string_view>() : rule->children;
}

std::vector<std::string_view> AttributesOf(std::string_view element) {
  const Rule* const rule = FindRule(element, "");
  return rule == nullptr ? std::vector<std::string_view>() : rule->attributes;
}

TextNode AnyElement(std::string_view element, std::string_view parent, Random& random) {
  TextNode node;
  node.name = element;
  const Rule* const rule = FindRule(element, parent);
  if (rule == nullptr) {
    return node;
  }
  for (const std::string_view attribute : rule->attributes) {
    node.attributes.emplace_back(attribute,
                                 '"' + AnyValue(rule->attribute, element, parent, random) + '"');
  }
  if (rule->text != ValueKind::None) {
    node.children.emplace_back();
    node.children.back().text = AnyValue(rule->text, element, parent, random);
  }
  for (const std::string_view child : rule->children) {
    if (child == "Dir") {
      node.children.push_back(AnyDirection(child, random));
    } else if (child == "Position" && !random.OneIn(4)) {
      node.children.push_back(AnyPlacement(random));
    } else {
      node.children.push_back(AnyElement(child, element, random));
    }
  }
  return node;
}

TextNode AnyMachine(Random& random) {
  const TextNode axes[3] = {Vector("Dir", "1", "0", "0"), Vector("Dir", "0", "1", "0"),
                            Vector("Dir", "0", "0", "1")};
  TextNode entities;
  entities.name = "Entities";
  const auto add = [&](const Plan& plan, const TextNode& dir) {
    entities.children.push_back(MakeEntity(plan, dir, random));
  };
  // Each side starts at the base; the linear and rotary axes are shared out among the sides.
  int id = 1;
  add({"AXIS", random.OneIn(2) ? "IDENTITY" : "POSITION", id, -1, -1}, axes[2]);
  int ends[2] = {1, 1};
  int reg = 0;
  const auto addAxis = [&](std::string_view link, const TextNode& dir) {
    int& end = ends[random.Below(2)];
    ++id;
    add({"AXIS", link, id, end, reg++}, dir);
    end = id;
  };
  for (const TextNode& axis : axes) {
    addAxis("LINEAR", random.OneIn(8) ? AnyDirection("Dir", random) : axis);
  }
  for (std::size_t rotaryNb = random.Below(4); rotaryNb > 0; --rotaryNb) {
    addAxis("ROTARY", AnyDirection("Dir", random));
  }
  const std::size_t headNb = 1 + (random.OneIn(4) ? 1U : 0U);
  for (std::size_t i = 0; i < headNb; ++i) {
    add({"HEAD", "POSITION", ++id, ends[0], -1}, axes[2]);
  }
  add({"TABLE", "POSITION", ++id, ends[1], -1}, axes[2]);
  if (random.OneIn(4)) {
    const std::size_t place = random.Below(entities.children.size());
    std::swap(entities.children[place], entities.children.back());
  }

  TextNode machine = Attributed("Machine", {"Version"}, {"0"});
  machine.children.push_back(entities);
  if (!random.OneIn(3)) {
    TextNode programSystem;
    programSystem.name = "ProgramSystem";
    programSystem.children.push_back(Leaf("ProgramSystemName", "Main"));
    programSystem.children.push_back(Leaf("TableIndex", "0"));
    programSystem.children.push_back(Leaf("HeadIndex", std::to_string(random.Below(headNb))));
    programSystem.children.push_back(
        Attributed("MainLinear", {"RegX", "RegY", "RegZ"}, {"0", "1", "2"}));
    programSystem.children.push_back(Attributed("MainRotary", {"RegR0", "RegR1"},
                                                {std::to_string(random.Between(-1, reg - 1)),
                                                 std::to_string(random.Between(-1, reg - 1))}));
    programSystem.children.push_back(AnyElement("RotariesCompute", "ProgramSystem", random));
    machine.children.emplace_back();
    machine.children.back().name = "ProgramSystems";
    machine.children.back().children.push_back(programSystem);
  }
  if (random.OneIn(3)) {
    machine.children.push_back(AnyElement("CollisionCheck", "Machine", random));
  }
  TextNode root;
  root.children.push_back(machine);
  return root;
}

std::string_view AnyName(Random& random) {
  const std::vector<Rule>& rules = Rules();
  const Rule& rule = rules[random.Below(rules.size())];
  return rule.attributes.empty() || random.OneIn(2)
             ? rule.name
             : rule.attributes[random.Below(rule.attributes.size())];
}

}  // namespace Orvo::Fuzz
