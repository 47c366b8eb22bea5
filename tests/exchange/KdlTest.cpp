// URDF as the readers of the robot world have it: parsed by urdfdom, its frames computed by KDL.

#include "exchange/AnyMachine.h"
#include "machines/ExampleData.h"
#include "property/Draw.h"

#include <Orvo/Exchange/Exchange.h>

#include <gtest/gtest.h>
#include <kdl/frames.hpp>
#include <kdl/tree.hpp>
#include <kdl_parser/kdl_parser.hpp>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>

namespace Orvo::Testing {
namespace {

using Property::Draw;
using Property::ForCases;

constexpr double Pi = 3.141592653589793;

Matrix43 FromKdl(const KDL::Frame& from) {
  Vector3D columns[3];
  for (int column = 0; column < 3; ++column) {
    columns[column].Set(from.M(0, column), from.M(1, column), from.M(2, column));
  }
  Matrix43 frame;
  frame.SetUVWT(columns[0], columns[1], columns[2], Vector3D(from.p.x(), from.p.y(), from.p.z()));
  return frame;
}

/// Returns the largest difference between KDL's frames of the links and the library's.
double LargestDifference(const Kin::Machine& machine, const Kin::MachinePosition& position) {
  std::ostringstream out;
  Exchange::WriteUrdf(machine, out);
  KDL::Tree tree;
  if (!kdl_parser::treeFromString(out.str(), tree)) {
    ADD_FAILURE() << "KDL can't read the file";
    return 1e300;
  }
  const std::vector<Exchange::UrdfName> names = Exchange::ListUrdfNames(machine);
  EXPECT_EQ(tree.getNrOfSegments(), names.size());
  std::map<std::string, double> values;
  std::size_t place = 0;
  for (const Kin::Entity& entity : machine.GetKinematic().GetListEntity()) {
    const bool isRotary = entity.GetEntityLink().GetEntityLinkType() == Kin::EntityLinkTypeRotary;
    if (entity.GetRegister().IsDefined()) {
      const double value = position[entity.GetRegister()];
      values[names[place].link] = isRotary ? value / 180.0 * Pi : value * 0.001;
    }
    ++place;
  }
  const std::vector<Matrix43> expected = NodeFrames(machine, position);
  const double size = std::max(SizeOf(expected) * 0.001, 1e-3);
  double largest = 0.0;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    KDL::Frame frame = KDL::Frame::Identity();
    auto segment = tree.getSegment(names[i].link);
    while (segment != tree.getRootSegment()) {
      const KDL::TreeElement& element = segment->second;
      frame = element.segment.pose(values[segment->first]) * frame;
      segment = element.parent;
    }
    Matrix43 inMeters = expected[i];
    Vector3D origin = inMeters.GetTrans();
    inMeters.SetTrans(origin * 0.001);
    largest = std::max(largest, Difference(FromKdl(frame), inMeters, size));
  }
  return largest;
}

TEST(UrdfInKdl, PlacesTheExampleMachinesAsTheLibraryDoes) {
  for (const std::string& name : ExampleMachineNames()) {
    Kin::Machine machine;
    ASSERT_TRUE(machine.ReadXML(WideName(ExampleMachineFile(name))));
    double largest = 0.0;
    ForCases(50, [&](Draw& draw) {
      largest = std::max(largest, LargestDifference(machine, DrawPosition(draw, machine)));
      ASSERT_LT(largest, 1e-9);
    });
    std::printf("%s: largest difference %.3g\n", name.c_str(), largest);
  }
}

TEST(UrdfInKdl, PlacesRandomMachinesAsTheLibraryDoes) {
  double largest = 0.0;
  ForCases(800, [&](Draw& draw) {
    const auto machine = RigidMachine(draw);
    largest = std::max(largest, LargestDifference(*machine, DrawPosition(draw, *machine)));
    ASSERT_LT(largest, 1e-9);
  });
  std::printf("random machines: largest difference %.3g\n", largest);
}

}  // namespace
}  // namespace Orvo::Testing
