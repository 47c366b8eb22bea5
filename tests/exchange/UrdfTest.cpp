// URDF read back by a plain XML reader, its joints walked by hand.

#include "exchange/AnyMachine.h"
#include "machines/ExampleData.h"
#include "property/Draw.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Angle.h>
#include <Orvo/Exchange/Exchange.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tinyxml2.h>

#include <charconv>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace Orvo::Testing {
namespace {

using Property::Draw;
using Property::ForCases;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr double Pi = 3.141592653589793;

std::string Written(const Kin::Machine& machine, const Exchange::UrdfOptions& options = {}) {
  std::ostringstream out;
  Exchange::WriteUrdf(machine, out, options);
  return out.str();
}

std::vector<double> NumbersOf(const char* text) {
  std::istringstream words(text);
  std::vector<double> numbers;
  for (std::string word; words >> word;) {
    numbers.push_back(ToNumber(word));
  }
  return numbers;
}

Matrix43 Turned(const Vector3D& axis, double angle) {
  Matrix43 frame;
  frame.SetRotation(axis, Angle(angle));
  return frame;
}

Matrix43 Moved(double x, double y, double z) {
  Matrix43 frame;
  frame.SetTrans(Vector3D(x, y, z));
  return frame;
}

/// What a joint does, with its value in meters or radians.
Matrix43 ParentFromChild(const tinyxml2::XMLElement& joint, double value) {
  const tinyxml2::XMLElement* const origin = joint.FirstChildElement("origin");
  const std::vector<double> xyz = NumbersOf(origin->Attribute("xyz"));
  const std::vector<double> rpy = NumbersOf(origin->Attribute("rpy"));
  Matrix43 yaw = Turned(AxisZ, rpy[2]);
  Matrix43 pitch = Turned(AxisY, rpy[1]);
  Matrix43 roll = Turned(AxisX, rpy[0]);
  Matrix43 frame = Moved(xyz[0], xyz[1], xyz[2]) * yaw * pitch * roll;
  const std::string type = joint.Attribute("type");
  if (type == "fixed") {
    return frame;
  }
  const std::vector<double> axis = NumbersOf(joint.FirstChildElement("axis")->Attribute("xyz"));
  if (type == "prismatic") {
    return frame * Moved(axis[0] * value, axis[1] * value, axis[2] * value);
  }
  return frame * Turned(Vector3D(axis[0], axis[1], axis[2]), value);
}

/// Compares the frames of all links with those of the library.
void ExpectSameFrames(const Kin::Machine& machine, const Kin::MachinePosition& position) {
  const std::vector<Matrix43> expected = NodeFrames(machine, position);
  const std::vector<Exchange::UrdfName> names = Exchange::ListUrdfNames(machine);
  tinyxml2::XMLDocument document;
  ASSERT_EQ(document.Parse(Written(machine).c_str()), tinyxml2::XML_SUCCESS);
  std::map<std::string, const tinyxml2::XMLElement*> jointOfLink;
  const tinyxml2::XMLElement* const robot = document.RootElement();
  for (const auto* joint = robot->FirstChildElement("joint"); joint != nullptr;
       joint = joint->NextSiblingElement("joint")) {
    jointOfLink[joint->FirstChildElement("child")->Attribute("link")] = joint;
  }
  std::map<std::string, double> values;
  std::size_t place = 0;
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const Kin::EntityLinkType kind = entity.GetEntityLink().GetEntityLinkType();
    const bool isRotary = kind == Kin::EntityLinkTypeRotary;
    if (entity.GetRegister().IsDefined() && (isRotary || kind == Kin::EntityLinkTypeLinear)) {
      const double value = position[entity.GetRegister()];
      values[names[place].link] = isRotary ? value / 180.0 * Pi : value * 0.001;
    }
    ++place;
  }
  const double size = SizeOf(expected) * 0.001;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    Matrix43 frame;
    std::string link = names[i].link;
    while (link != "base") {
      const tinyxml2::XMLElement* const joint = jointOfLink.at(link);
      Matrix43 parentFromChild = ParentFromChild(*joint, values[link]);
      frame = parentFromChild * frame;
      link = joint->FirstChildElement("parent")->Attribute("link");
    }
    Matrix43 inMeters = expected[i];
    Vector3D origin = inMeters.GetTrans();
    inMeters.SetTrans(origin * 0.001);
    EXPECT_LT(Difference(frame, inMeters, size), 1e-12) << names[i].link;
  }
}

TEST(Urdf, PlacesTheLinksOfExampleMachinesAsTheLibraryDoes) {
  for (const std::string& name : ExampleMachineNames()) {
    SCOPED_TRACE(name);
    const auto machine = ExampleMachineWithMeshes(name);
    ForCases(40, [&](Draw& draw) { ExpectSameFrames(*machine, DrawPosition(draw, *machine)); });
  }
}

TEST(Urdf, PlacesTheLinksOfRandomMachinesAsTheLibraryDoes) {
  ForCases(800, [](Draw& draw) {
    const auto machine = RigidMachine(draw);
    ExpectSameFrames(*machine, DrawPosition(draw, *machine));
  });
}

TEST(Urdf, HasOneRootAndNamesOfItsOwn) {
  ForCases(300, [](Draw& draw) {
    const auto machine = RigidMachine(draw);
    const std::string text = Written(*machine);
    tinyxml2::XMLDocument document;
    ASSERT_EQ(document.Parse(text.c_str()), tinyxml2::XML_SUCCESS);
    std::set<std::string> links;
    std::set<std::string> children;
    const tinyxml2::XMLElement* const robot = document.RootElement();
    for (const auto* link = robot->FirstChildElement("link"); link != nullptr;
         link = link->NextSiblingElement("link")) {
      const std::string name = link->Attribute("name");
      EXPECT_TRUE(links.insert(name).second) << name;
      EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                       "0123456789_-."),
                std::string::npos)
          << name;
    }
    for (const auto* joint = robot->FirstChildElement("joint"); joint != nullptr;
         joint = joint->NextSiblingElement("joint")) {
      const std::string child = joint->FirstChildElement("child")->Attribute("link");
      EXPECT_TRUE(children.insert(child).second) << child;
      EXPECT_EQ(joint->Attribute("name"), child + "_joint");
      EXPECT_EQ(links.count(joint->FirstChildElement("parent")->Attribute("link")), 1U);
    }
    links.erase("base");
    EXPECT_EQ(links, children);
  });
}

TEST(Urdf, NamesElementsThatHaveTheSameName) {
  Kin::Machine machine;
  for (const wchar_t* name : {L"a", L"a", L"a_2", L"a", L"", L"\x00e4 b", L"base", L"a"}) {
    machine.AddEntityStatic(name, -1);
  }
  std::vector<std::string> links;
  for (const Exchange::UrdfName& name : Exchange::ListUrdfNames(machine)) {
    links.push_back(name.link);
  }
  EXPECT_THAT(links, ElementsAre("a", "a_2", "a_2_2", "a_3", "element_5", "__b", "base_2", "a_4"));
}

TEST(Urdf, TurnsRangesIntoLimits) {
  Kin::Machine machine;
  MakeSmallMachine(&machine);
  Kin::Entity* const free = machine.AddEntityLinear(L"free", 1, AxisX);
  free->SetRegister(3);
  free->SetCheckRangeAxis(false);
  Kin::Entity* const turn = machine.AddEntityRotary(L"turn", 1, NullVector, AxisZ);
  turn->SetRegister(4);
  turn->SetRange(-90.0, 180.0);
  Kin::Entity* const endless = machine.AddEntityRotary(L"endless", 1, NullVector, AxisZ);
  endless->SetRegister(4);
  endless->SetCheckRangeAxis(false);
  Kin::Entity* const along = machine.AddEntityLinear(L"along", 1, AxisX);
  along->SetRegister(4);
  ASSERT_TRUE(machine.Finish());
  const std::string text = Written(machine);
  for (const char* part :
       {"<joint name=\"X_joint\" type=\"prismatic\">",
        "lower=\"-0.1\" upper=\"0.2\" effort=\"1000\" velocity=\"1\"/>",
        "lower=\"-1000\" upper=\"1000\"", "<joint name=\"turn_joint\" type=\"revolute\">",
        "lower=\"-1.5707963267948966\" upper=\"3.141592653589793\"",
        "<joint name=\"endless_joint\" type=\"continuous\">",
        R"(<limit effort="1000" velocity="1"/>
    <mimic joint="turn_joint" multiplier="1" offset="0"/>)",
        "<mimic joint=\"turn_joint\" multiplier=\"0.0572957795130823"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST(Urdf, WritesMeshesBeside) {
  const TemporaryFolder folder;
  const auto machine = ExampleMachineWithMeshes("trunnion_ac");
  Exchange::WriteUrdfFile(*machine, folder.File("mill.urdf"));
  EXPECT_TRUE(folder.Has("mill_1_0.stl"));
  EXPECT_THAT(folder.Read("mill.urdf"),
              HasSubstr("<mesh filename=\"mill_1_0.stl\" scale=\"0.001 0.001 0.001\"/>"));
}

TEST(Urdf, RefusesWhatItCantHold) {
  Kin::Machine machine;
  std::ostringstream out;
  EXPECT_THROW(Exchange::WriteUrdf(machine, out), Exchange::ExchangeError);
  MakeSmallMachine(&machine);
  Matrix43 frame;
  frame.SetUVW(AxisX, AxisY, Vector3D(0.0, 0.0, 1.0 + 0.9e-5));
  Kin::Entity* const fixed = machine.AddEntityStatic(L"fixed", 1);
  ASSERT_TRUE(machine.Finish());
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  EXPECT_THROW(Exchange::WriteUrdf(machine, out), Exchange::ExchangeError);
  frame.SetUVW(AxisX, AxisY, Vector3D(0.0, 0.0, 1.0 + 0.4e-5));
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  EXPECT_NO_THROW(Exchange::WriteUrdf(machine, out));
  frame.SetUVW(AxisX, AxisY, Vector3D(0.0, 0.0, -1.0));
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  EXPECT_THROW(Exchange::WriteUrdf(machine, out), Exchange::ExchangeError);
  frame.SetIdentity();
  frame.SetTrans(Vector3D(std::nan(""), 0.0, 0.0));
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(frame);
  EXPECT_THROW(Exchange::WriteUrdf(machine, out), Exchange::ExchangeError);
  fixed->GetEntityLinkMod()->SetEntityLinkPosition(Matrix43());
  out.setstate(std::ios::badbit);
  EXPECT_THROW(Exchange::WriteUrdf(machine, out), Exchange::ExchangeError);
}

}  // namespace
}  // namespace Orvo::Testing
