#include "exchange/AnyMachine.h"

#include <Orvo/Exchange/Exchange.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;

std::string Written(const Kin::Machine& machine) {
  std::ostringstream out;
  Exchange::WriteDot(machine, out);
  return out.str();
}

TEST(Dot, ShowsElementsAndProgramSystems) {
  const std::string text = Written(*ExampleMachineWithMeshes("millturn_2h2t"));
  for (const char* part :
       {"digraph machine {\n", "shape=house, label=\"", "shape=invhouse, label=\"",
        "shape=ellipse, label=\"", "AXIS ROTARY\\nregister ", "[style=dashed, constraint=false, ",
        "label=\"head\"", "label=\"table\"", "ShortestWay", "e0 -> e"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST(Dot, EscapesNames) {
  Kin::Machine machine;
  machine.AddEntityStatic(L"a \"b\" \\n \n c", -1);
  EXPECT_THAT(Written(machine), HasSubstr("1 a \\\"b\\\" \\\\n   c\\n"));
}

// What no other format takes is there to be seen.
TEST(Dot, ShowsCyclesAndMissingParents) {
  Kin::Machine machine;
  machine.AddEntityStatic(L"a", 2);
  machine.AddEntityStatic(L"b", 1);
  machine.AddEntityStatic(L"c", 99);
  const std::string text = Written(machine);
  EXPECT_THAT(text, HasSubstr("  e1 -> e0;\n  e0 -> e1;\n}"));
}

}  // namespace
}  // namespace Orvo::Testing
