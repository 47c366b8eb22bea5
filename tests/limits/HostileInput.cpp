#include "HostileInput.h"

#include "support/TestRandom.h"

#include <Orvo/Kin/EntityMesh.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Orvo::Testing {
namespace {

using Ending = HostileInput::Ending;
using Kind = HostileInput::Kind;
using Kin::Machine;

std::string Repeated(std::string_view part, int count) {
  std::string text;
  text.reserve(part.size() * static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    text += part;
  }
  return text;
}

std::string Tag(const std::string& name, const std::string& text) {
  return "<" + name + ">" + text + "</" + name + ">";
}

/// One element as a file has it.
struct Element {
  Element() = default;
  Element(std::string givenType, std::string givenLink, std::string givenId,
          std::string givenParent, std::string givenReg)
      : type(std::move(givenType)),
        link(std::move(givenLink)),
        id(std::move(givenId)),
        parent(std::move(givenParent)),
        reg(std::move(givenReg)) {}

  std::string type = "AXIS";
  std::string link = "POSITION";
  std::string id = "1";
  std::string parent = "-1";
  std::string reg = "-1";
  std::string name = "e";
  std::string dir = "<Dir X=\"1\" Y=\"0\" Z=\"0\"/>";
  std::string more;
};

std::string Text(const Element& e) {
  return "<Entity>" + Tag("Name", e.name) + Tag("Type", e.type) + Tag("ParallelType", "CHAIN") +
         Tag("Id", e.id) + Tag("ParentId", e.parent) + Tag("Register", e.reg) +
         Tag("Motor", "true") + Tag("RangeAxis", "false") + Tag("Mounting", "false") +
         "<EntityLink>" + Tag("Type", e.link) + "<Center X=\"0\" Y=\"0\" Z=\"0\"/>" + e.dir +
         "<Position><U X=\"1\" Y=\"0\" Z=\"0\"/><V X=\"0\" Y=\"1\" Z=\"0\"/>"
         "<W X=\"0\" Y=\"0\" Z=\"1\"/><T X=\"1\" Y=\"0\" Z=\"0\"/></Position>" +
         Tag("ZeroRef", "0") + Tag("RangeMin", "0") + Tag("RangeMax", "0") + "</EntityLink>" +
         e.more + "</Entity>";
}

std::string MachineText(const std::string& entities, const std::string& rest = "") {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Machine Version=\"0\"><Entities>" +
         entities + "</Entities>" + rest + "</Machine>\n";
}

// What a machine needs to be finished: three linear axes, a rotary one, a table and a head on them,
// with the ids behind a number and the registers 0 to 3. The axes and the table stand on an
// element, where there is one.
std::string WholeMachine(int idBefore = 100, const std::string& first = "-1") {
  const auto id = [idBefore](int place) { return std::to_string(idBefore + place); };
  const char* const dirs[3] = {"<Dir X=\"1\" Y=\"0\" Z=\"0\"/>", "<Dir X=\"0\" Y=\"1\" Z=\"0\"/>",
                               "<Dir X=\"0\" Y=\"0\" Z=\"1\"/>"};
  std::string text;
  for (int i = 0; i < 4; ++i) {
    Element axis("AXIS", i < 3 ? "LINEAR" : "ROTARY", id(i + 1), i == 0 ? first : id(i),
                 std::to_string(i));
    axis.dir = dirs[i % 3];
    text += Text(axis);
  }
  return text + Text({"TABLE", "POSITION", id(5), first, "-1"}) +
         Text({"HEAD", "POSITION", id(6), id(4), "-1"});
}

// A chain of elements: each one's parent is the one before it in the order of the chain, and the
// list has the elements in the order of the places.
std::string Chain(const std::vector<int>& places) {
  std::string text;
  for (const int place : places) {
    text += Text({"AXIS", "POSITION", std::to_string(place),
                  place == 1 ? "-1" : std::to_string(place - 1), "-1"});
  }
  return text;
}

std::vector<int> Forward(int count) {
  std::vector<int> places(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    places[static_cast<std::size_t>(i)] = i + 1;
  }
  return places;
}

std::vector<int> Backward(int count) {
  std::vector<int> places = Forward(count);
  std::reverse(places.begin(), places.end());
  return places;
}

std::vector<int> Shuffled(int count) {
  std::vector<int> places = Forward(count);
  TestRandom random(1);
  for (int i = count - 1; i > 0; --i) {
    std::swap(places[static_cast<std::size_t>(i)],
              places[static_cast<std::size_t>(random.Integer(0, i))]);
  }
  return places;
}

// A tree of a random shape: each element's parent is a random one of smaller id.
std::string Tree(const std::vector<int>& places) {
  TestRandom random(2);
  std::string text;
  for (const int place : places) {
    text += Text({"AXIS", "POSITION", std::to_string(place),
                  place == 1 ? "-1" : std::to_string(random.Integer(1, place - 1)), "-1"});
  }
  return text;
}

std::string Collisions(const std::string& text) { return Tag("CollisionCheck", text); }

std::string Ids(int first, int last) {
  std::string text;
  for (int i = first; i <= last; ++i) {
    text += std::to_string(i) + " ";
  }
  return Tag("EntityIds", text);
}

std::string Pairs(int count) {
  const int partners = 100;
  std::string text;
  for (int i = 0; i < count / partners; ++i) {
    const int id = 1000 + i;
    text += Tag("MachineMachine", Tag("EntityId", std::to_string(id)) + Ids(1, partners));
  }
  return Tag("MachineMachines", text);
}

std::string ProgramSystem(const std::string& index, const std::string& reg) {
  return Tag("ProgramSystem", Tag("ProgramSystemName", "p") + Tag("TableIndex", index) +
                                  Tag("HeadIndex", index) + "<MainLinear RegX=\"" + reg +
                                  "\" RegY=\"" + reg + "\" RegZ=\"" + reg +
                                  "\"/><MainRotary RegR0=\"" + reg + "\" RegR1=\"" + reg + "\"/>");
}

std::string Attributes(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += " a" + std::to_string(i) + "=''";
  }
  return text;
}

std::string Nested(int depth) { return Repeated("<x>", depth) + Repeated("</x>", depth); }

std::string Meshes(int count) {
  return Tag("Meshes", Repeated("<Mesh><RGB>-1</RGB></Mesh>", count));
}

// A mesh file of a count and as many triangles of zeros.
std::string Stl(std::uint32_t count, int triangles) {
  std::string bytes(84, '\0');
  for (std::size_t i = 0; i < 4; ++i) {
    bytes[80 + i] = static_cast<char>(count >> (8 * i));
  }
  return bytes + std::string(50 * static_cast<std::size_t>(triangles), '\0');
}

/// Collects inputs.
class InputList {
 public:
  explicit InputList(double scale) : scale_(scale) {}

  /// Returns a number of things in proportion to the scale.
  int Many(int count) const { return std::max(1, static_cast<int>(count * scale_)); }

  // The text is made when it is asked for: some are large.
  void Add(const std::string& name, std::vector<Ending> endings, bool isFinished,
           std::function<std::string()> text) {
    inputs_.push_back({name, Kind::MachineFile,
                       [text](const TemporaryFolder& folder) { folder.Write("input.xml", text()); },
                       std::move(endings), isFinished});
  }

  void AddRead(const std::string& name, std::function<std::string()> text) {
    Add(name, {Ending::True}, true, std::move(text));
  }

  void AddRefused(const std::string& name, std::function<std::string()> text) {
    Add(name, {Ending::False}, false, std::move(text));
  }

  void AddMesh(const std::string& name, std::vector<Ending> endings, std::uint32_t count,
               int triangles) {
    inputs_.push_back({name, Kind::MeshFile,
                       [count, triangles](const TemporaryFolder& folder) {
                         folder.Write("input.stl", Stl(count, triangles));
                       },
                       std::move(endings), false});
  }

  void AddPackage(const std::string& name, int meshes, std::uint32_t count) {
    inputs_.push_back({name,
                       Kind::Package,
                       [meshes, count](const TemporaryFolder& folder) {
                         Element element;
                         element.more = Meshes(meshes);
                         folder.Write("input.xml", MachineText(WholeMachine() + Text(element)));
                         for (int i = 0; i < meshes; ++i) {
                           folder.Write("input_1_" + std::to_string(i) + ".stl", Stl(count, 1));
                         }
                       },
                       {Ending::True, Ending::BadAlloc},
                       true});
  }

  // Elements of one id, and so with one mesh file.
  void AddSharedMesh(const std::string& name, int elements, int triangles) {
    inputs_.push_back(
        {name,
         Kind::Package,
         [elements, triangles](const TemporaryFolder& folder) {
           Element element;
           element.more = Meshes(1);
           folder.Write("input.xml",
                        MachineText(WholeMachine() + Repeated(Text(element), elements)));
           folder.Write("input_1_0.stl", Stl(static_cast<std::uint32_t>(triangles), triangles));
         },
         {Ending::True},
         true});
  }

  std::vector<HostileInput> Take() { return std::move(inputs_); }

 private:
  double scale_;
  std::vector<HostileInput> inputs_;
};

void AddIdentifiers(InputList* list) {
  const auto withElement = [](const std::string& id, const std::string& parent,
                              const std::string& reg) {
    return [=] { return MachineText(WholeMachine() + Text({"AXIS", "LINEAR", id, parent, reg})); };
  };
  list->AddRead("plain machine", withElement("1", "-1", "4"));
  list->AddRead("largest id", withElement("16777215", "-1", "4"));
  list->AddRead("largest register", withElement("1", "-1", "16777215"));
  list->AddRead("largest id and register", withElement("16777215", "-1", "16777215"));
  list->AddRead("smallest id, parent and register",
                withElement("-2147483648", "-2147483648", "-2147483648"));
  list->AddRead("parent id of 2147483647", withElement("1", "2147483647", "4"));
  for (const char* const number : {"16777216", "2147483647"}) {
    list->Add(std::string("id of ") + number, {Ending::LengthError}, false,
              withElement(number, "-1", "4"));
    list->Add(std::string("register of ") + number, {Ending::LengthError}, false,
              withElement("1", "-1", number));
  }
  list->Add("id of 2147483648", {Ending::OutOfRange}, false, withElement("2147483648", "-1", "4"));
  for (const char* const number : {"2147483647", "-2147483648"}) {
    list->AddRead(std::string("program system of ") + number, [number] {
      return MachineText(WholeMachine(), Tag("ProgramSystems", ProgramSystem(number, number)));
    });
    list->AddRead(std::string("collision ids of ") + number, [number] {
      const std::string ids = Tag("EntityIds", std::string(number) + " 1 0 -1 " + number);
      return MachineText(
          WholeMachine(),
          Collisions(Tag("MachineMachines", Tag("MachineMachine", Tag("EntityId", number) + ids)) +
                     Tag("MachineTool", ids)));
    });
  }
}

void AddMarkup(InputList* list) {
  const auto inside = [](std::function<std::string()> text) {
    return [text] { return MachineText(WholeMachine(), text()); };
  };
  list->AddRefused("empty file", [] { return std::string(); });
  list->AddRefused("a long run of <", [count = list->Many(16000000)] {
    return std::string(static_cast<std::size_t>(count), '<');
  });
  const int size = list->Many(16000000);
  list->AddRefused("only blanks",
                   [size] { return std::string(static_cast<std::size_t>(size), ' '); });
  list->AddRead("90 nested elements", inside([] { return Nested(90); }));
  list->AddRefused("10000 nested elements", inside([] { return Nested(10000); }));
  const int depth = list->Many(2000000);
  list->AddRefused("many nested elements", inside([depth] { return Nested(depth); }));
  list->AddRefused("many elements that never end", [depth] { return Repeated("<x>", depth); });
  list->AddRead("1000 attributes", inside([] { return "<x" + Attributes(1000) + "/>"; }));
  list->AddRefused("1001 attributes", inside([] { return "<x" + Attributes(1001) + "/>"; }));
  const int attributes = list->Many(1000000);
  list->AddRefused("many attributes",
                   inside([attributes] { return "<x" + Attributes(attributes) + "/>"; }));
  const int tags = list->Many(1000);
  list->AddRead("many tags of 1000 attributes",
                inside([tags] { return Repeated("<x" + Attributes(1000) + "/>", tags); }));
  list->AddRead("long attribute value", [size] {
    Element element;
    element.dir = "<Dir X=\"1\" Y=\"0\" Z=\"0\" Note=\"" +
                  std::string(static_cast<std::size_t>(size), 'n') + "\"/>";
    return MachineText(WholeMachine() + Text(element));
  });
  list->AddRead("long name of an element", [size] {
    Element element;
    element.name = std::string(static_cast<std::size_t>(size), 'n');
    return MachineText(WholeMachine() + Text(element));
  });
  list->AddRead("long name of a tag", inside([size] {
                  return "<" + std::string(static_cast<std::size_t>(size), 'n') + "/>";
                }));
  list->AddRead("long comment", inside([size] {
                  return "<!--" + std::string(static_cast<std::size_t>(size), '-') + "x-->";
                }));
  list->AddRead("long CDATA", inside([size] {
                  return "<![CDATA[" + std::string(static_cast<std::size_t>(size), ']') + "x]]>";
                }));
  list->AddRead("many character references", [size] {
    Element element;
    element.name = Repeated("&#x10FFFF;", size / 10);
    return MachineText(WholeMachine() + Text(element));
  });
  list->AddRead("ill-formed UTF-8", [size] {
    Element element;
    element.name = std::string(static_cast<std::size_t>(size), '\xF0');
    return MachineText(WholeMachine() + Text(element));
  });
  list->AddRefused("entities of entities", [] {
    std::string type = "<!DOCTYPE x [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 10; ++i) {
      type += "<!ENTITY a" + std::to_string(i) + " \"" +
              Repeated("&a" + std::to_string(i - 1) + ";", 10) + "\">";
    }
    Element element;
    element.name = "&a9;";
    return type + "]>" + MachineText(WholeMachine() + Text(element));
  });
  list->AddRead("many small elements", inside([size] { return Repeated("<a/>", size / 4); }));
  list->AddRead("many small texts", inside([size] { return Repeated("<a/>b", size / 5); }));
  list->AddRead("many small instructions", inside([size] { return Repeated("<!>b", size / 4); }));
  list->AddRead("many strangers before what is read", [size] {
    return MachineText(WholeMachine() + Repeated("<a/>", size / 8) + Text({}) +
                       Repeated("<a/>", size / 8));
  });
}

void AddNumbers(InputList* list) {
  const int size = list->Many(16000000);
  const auto withReference = [](std::function<std::string()> number) {
    return [number] {
      Element element;
      element.dir = "<Dir X=\"" + number() + "\" Y=\"0\" Z=\"0\"/>";
      return MachineText(WholeMachine() + Text(element));
    };
  };
  const auto digits = [size] { return std::string(static_cast<std::size_t>(size), '7'); };
  list->Add("number of many digits", {Ending::OutOfRange}, false, withReference(digits));
  list->AddRead("number of many decimals", withReference([digits] { return "0." + digits(); }));
  list->AddRead("number of many blanks", withReference([size] {
                  return std::string(static_cast<std::size_t>(size), ' ') + "1";
                }));
  list->Add("number of many zeros", {Ending::OutOfRange}, false, withReference([size] {
              return "0." + std::string(static_cast<std::size_t>(size), '0') + "1";
            }));
  list->Add("number of a large exponent", {Ending::OutOfRange}, false,
            withReference([digits] { return "1e" + digits(); }));
  list->Add("number of a small exponent", {Ending::OutOfRange}, false,
            withReference([digits] { return "1e-" + digits(); }));
  list->Add("NaN with a long text", {Ending::OutOfRange}, false,
            withReference([digits] { return "nan(" + digits() + ")"; }));
  list->Add("id of many digits", {Ending::OutOfRange}, false, [digits] {
    Element element;
    element.id = digits();
    return MachineText(WholeMachine() + Text(element));
  });
  list->AddRead("id of many zeros", [size] {
    Element element;
    element.id = std::string(static_cast<std::size_t>(size), '0') + "1";
    return MachineText(WholeMachine() + Text(element));
  });
}

void AddLargeMachines(InputList* list) {
  const int elements = list->Many(200000);
  using Order = std::vector<int> (*)(int);
  const std::pair<const char*, Order> orders[] = {
      {"forward", Forward}, {"backward", Backward}, {"shuffled", Shuffled}};
  for (const auto& [word, order] : orders) {
    const Order makeOrder = order;
    list->AddRead(std::string("200000 elements, ") + word, [elements, makeOrder] {
      return MachineText(Tree(makeOrder(elements)) + WholeMachine(elements, "1"));
    });
    const int depth = list->Many(100000);
    list->AddRead(std::string("chain of 100000, ") + word, [depth, makeOrder] {
      return MachineText(Chain(makeOrder(depth)) + WholeMachine(depth, std::to_string(depth)));
    });
  }
  list->AddRead("100000 children of one element", [children = list->Many(100000)] {
    return MachineText(Repeated(Text({"AXIS", "POSITION", "7", "1", "-1"}), children) + Text({}) +
                       WholeMachine(100, "1"));
  });
  list->AddRead("300000 ids of one set", [ids = list->Many(300000)] {
    return MachineText(WholeMachine(), Collisions(Tag("MachineTool", Ids(1, ids))));
  });
  list->AddRead("300000 times one id", [ids = list->Many(300000)] {
    return MachineText(WholeMachine(),
                       Collisions(Tag("MachineTool", Tag("EntityIds", Repeated("7\t", ids)))));
  });
  list->AddRead("300000 partners of one element", [ids = list->Many(300000)] {
    return MachineText(
        WholeMachine(),
        Collisions(
            Tag("MachineMachines", Tag("MachineMachine", Tag("EntityId", "101") + Ids(1, ids)))));
  });
  list->AddRead("100000 pairs", [pairs = list->Many(100000)] {
    return MachineText(WholeMachine(), Collisions(Pairs(pairs)));
  });
  list->AddRead("100000 program systems", [systems = list->Many(100000)] {
    return MachineText(WholeMachine(),
                       Tag("ProgramSystems", Repeated(ProgramSystem("0", "0"), systems)));
  });
  list->AddRead("300000 meshes of one element", [meshes = list->Many(300000)] {
    Element element;
    element.more = Meshes(meshes);
    return MachineText(WholeMachine() + Text(element));
  });
}

void AddMeshes(InputList* list) {
  constexpr std::uint32_t LargestCount = 1431655765;
  list->AddMesh("mesh of no triangle", {Ending::False}, 0, 0);
  list->AddMesh("mesh of 1000000 triangles, one there", {Ending::True}, 1000000, 1);
  list->AddMesh("mesh of 40000000 triangles, none there", {Ending::True, Ending::BadAlloc},
                40000000, 0);
  list->AddMesh("mesh of 400000000 triangles, one there", {Ending::True, Ending::BadAlloc},
                400000000, 1);
  list->AddMesh("mesh of 1431655765 triangles, one there", {Ending::True, Ending::BadAlloc},
                LargestCount, 1);
  list->AddMesh("mesh of 1431655766 triangles", {Ending::False}, LargestCount + 1, 1);
  list->AddMesh("mesh of 4294967295 triangles", {Ending::False}, 4294967295U, 1);
  const int triangles = list->Many(1000000);
  list->AddMesh("mesh of 1000000 triangles, all there", {Ending::True},
                static_cast<std::uint32_t>(triangles), triangles);
  list->AddPackage("1000 meshes of 1000000 triangles, one there", list->Many(1000), 1000000);
  list->AddSharedMesh("1000 elements of one mesh file", 1000, list->Many(1000000));
}

}  // namespace

std::vector<HostileInput> HostileInputs(double scale) {
  InputList list(scale);
  AddIdentifiers(&list);
  AddMarkup(&list);
  AddNumbers(&list);
  AddLargeMachines(&list);
  AddMeshes(&list);
  return list.Take();
}

const char* Word(Ending ending) {
  constexpr const char* words[] = {
      "true", "false", "length_error", "out_of_range", "invalid_argument", "bad_alloc"};
  return words[static_cast<int>(ending)];
}

Ending Read(const HostileInput& input, const TemporaryFolder& folder,
            const std::function<void(Machine&)>& use) {
  try {
    if (input.kind == Kind::MeshFile) {
      Kin::EntityMesh mesh;
      return mesh.AddCadStlBin(folder.Wide("input.stl"), 1) ? Ending::True : Ending::False;
    }
    Machine machine;
    const std::wstring path = folder.Wide("input.xml");
    const bool isRead =
        input.kind == Kind::Package ? machine.ReadMachineWithMeshStl(path) : machine.ReadXML(path);
    use(machine);
    return isRead ? Ending::True : Ending::False;
  } catch (const std::length_error&) {
    return Ending::LengthError;
  } catch (const std::out_of_range&) {
    return Ending::OutOfRange;
  } catch (const std::invalid_argument&) {
    return Ending::InvalidArgument;
  } catch (const std::bad_alloc&) {
    return Ending::BadAlloc;
  }
}

}  // namespace Orvo::Testing
