#include "machines/ExampleData.h"

#include <Orvo/Angle.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace Orvo::Testing {
namespace {

using Kin::Entity;
using Kin::Machine;
using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::Register;
using Kin::RotariesSolution;

/// How far an axis travels over a path.
struct Extent {
  int reg = -1;
  double from = 0.0;
  double to = 0.0;
};

/// What an independent program found for a pair: counted in points, extents to one decimal.
///
/// One figure is not its own: half a turn away, as the first point of the turret is, both 180 and
/// -180 will do; the angle between opposite directions is positive here.
struct PairFacts {
  std::string machine;
  std::string programSystem;
  std::string path;
  std::size_t points = 0;
  std::size_t withDirection = 0;      ///< the direction has a rotary solution
  std::size_t withTwo = 0;            ///< it has two
  std::size_t inSomeRange = 0;        ///< one of them is in all ranges
  std::size_t inRangeInSequence = 0;  ///< driven the shortest way from 0
  std::vector<Extent> extents;
};

std::ostream& operator<<(std::ostream& out, const PairFacts& facts) {
  return out << facts.machine << " " << facts.programSystem << " " << facts.path;
}

const std::vector<PairFacts>& AllFacts() {
  static const std::vector<PairFacts> facts = {
      {"trunnion_ac",
       "TableTable_AC",
       "curved_layers_model_1",
       34114,
       34114,
       34114,
       34114,
       34114,
       {{0, -25.7, 25.7},
        {1, -33.5, 33.2},
        {2, 35.7, 58.0},
        {3, -26.7, 26.7},
        {4, -3600.0, 3599.7}}},
      {"trunnion_ac",
       "TableTable_AC",
       "hemisphere_ball_end",
       12000,
       12000,
       12000,
       12000,
       12000,
       {{0, -10.3, 10.3},
        {1, -56.5, 53.4},
        {2, 92.8, 144.6},
        {3, -68.9, 83.4},
        {4, -3600.0, 77.9}}},
      {"head_table_bc",
       "HeadTable_BC",
       "hemisphere_ball_end",
       12000,
       12000,
       12000,
       11294,
       11294,
       {{0, 64.0, 358.8}, {1, -10.3, 0.0}, {2, -31.4, 285.3}, {3, 11.8, 83.4}, {4, 12.1, 21798.2}}},
      {"nutating_head_bc",
       "Nutating_BC",
       "hemisphere_ball_end",
       12000,
       12000,
       12000,
       12000,
       12000,
       {{0, 19.2, 106.3},
        {1, -4.6, 120.4},
        {2, 313.2, 439.9},
        {3, 16.7, 140.3},
        {4, -50.9, 21791.8}}},
      {"gantry_head_head_ca",
       "HeadHead_CA",
       "hemisphere_ball_end",
       12000,
       12000,
       12000,
       12000,
       12000,
       {{0, -227.9, 627.2},
        {1, -527.5, 328.2},
        {2, -153.3, 223.8},
        {3, -83.4, 81.6},
        {4, -77.9, 360.0}}},
      {"millturn_2h2t",
       "Mill_Main",
       "cam_groove_radial",
       2888,
       2888,
       2888,
       2888,
       2888,
       {{0, -183.0, -165.0}, {1, 0.0, 0.0}, {2, 86.0, 114.0}, {3, 0.0, 0.0}, {5, -1440.0, 0.0}}},
      {"millturn_2h2t",
       "Mill_Main",
       "cam_groove_tilted",
       3608,
       3608,
       3608,
       3608,
       3608,
       {{0, -203.5, -165.0},
        {1, 0.0, 0.0},
        {2, -17.2, 217.2},
        {3, -20.0, 20.0},
        {5, -1440.0, 0.0}}},
      {"millturn_2h2t",
       "Mill_Counter",
       "cam_groove_radial",
       2888,
       2888,
       2888,
       2888,
       2888,
       {{0, -183.0, -165.0}, {1, 0.0, 0.0}, {2, 786.0, 814.0}, {3, 0.0, 0.0}, {7, 0.0, 1440.0}}},
      {"millturn_2h2t",
       "Mill_Counter",
       "cam_groove_tilted",
       3608,
       3608,
       3608,
       3608,
       3608,
       {{0, -203.5, -165.0}, {1, 0.0, 0.0}, {2, 682.8, 917.2}, {3, -20.0, 20.0}, {7, 0.0, 1440.0}}},
      {"millturn_2h2t",
       "Mill_Main",
       "hemisphere_ball_end",
       12000,
       12000,
       12000,
       12000,
       12000,
       {{0, -491.9, -181.3},
        {1, -10.3, 0.0},
        {2, 160.9, 494.9},
        {3, -78.2, -6.6},
        {5, -21798.2, -12.1}}},
      {"millturn_2h2t",
       "Turret_Main",
       "cam_groove_radial",
       2888,
       2888,
       0,
       2888,
       2888,
       {{5, -1260.0, 180.0}, {8, 7.0, 25.0}, {9, 0.0, 0.0}, {10, -264.0, -236.0}}},
      {"millturn_2h2t",
       "Turret_Counter",
       "cam_groove_radial",
       2888,
       2888,
       0,
       2888,
       2888,
       {{7, 180.0, 1620.0}, {8, 7.0, 25.0}, {9, 0.0, 0.0}, {10, 436.0, 464.0}}},
  };
  return facts;
}

/// The extents are known to one decimal.
constexpr double HalfDecimal = 0.0500001;

/// Lengths of some hundreds in double precision, through a dozen frame products.
constexpr double ExactSolution = 1e-9;

class Pairs : public testing::TestWithParam<PairFacts> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(machine_.ReadXML(WideName(ExampleMachineFile(GetParam().machine))));
    bool isSystemFound = false;
    for (const ProgramSystem& system : machine_.GetListProgramSystem()) {
      if (system.GetProgramSystemName() == WideName(GetParam().programSystem)) {
        system_ = system;
        isSystemFound = true;
      }
    }
    ASSERT_TRUE(isSystemFound);
    bool isPairFound = false;
    for (const ExamplePair& pair : ReadPairs()) {
      if (pair.machine == GetParam().machine && pair.programSystem == GetParam().programSystem &&
          pair.path == GetParam().path) {
        pair_ = pair;
        isPairFound = true;
      }
    }
    ASSERT_TRUE(isPairFound);
    for (const std::vector<double>& row : ReadNumbers(ExamplePathFile(pair_.path))) {
      Vector3D point(row.at(0), row.at(1), row.at(2));
      point += pair_.shift;
      points_.push_back(point);
      Vector3D direction(row.at(3), row.at(4), row.at(5));
      ASSERT_TRUE(direction.MakeUnit(0.001));
      directions_.push_back(direction);
    }
    ASSERT_EQ(points_.size(), GetParam().points);
  }

  bool IsInRange(const MachinePosition& position) const {
    for (const Entity& entity : machine_.GetKinematic().GetListEntity()) {
      if (!entity.GetRegister().IsDefined() || !entity.GetCheckRangeAxis() ||
          !IsOfSystem(entity.GetRegister())) {
        continue;
      }
      const double value = position[entity.GetRegister()];
      if (value < entity.GetRangeMin() - 1e-9 || value > entity.GetRangeMax() + 1e-9) {
        return false;
      }
    }
    return true;
  }

  bool IsOfSystem(const Register& reg) const {
    for (int i = 0; i < 3; ++i) {
      if (system_.GetMainLinear(i).GetVal() == reg.GetVal()) {
        return true;
      }
    }
    return system_.GetMainRotary(0).GetVal() == reg.GetVal() ||
           system_.GetMainRotary(1).GetVal() == reg.GetVal();
  }

  /// Returns the equivalent of an angle that lies nearest above the lower end of its axis's range.
  double TurnIntoRange(const Register& reg, double deg) const {
    const Entity* entity = machine_.GetKinematic().GetEntity(reg);
    const double turned = deg + 360.0 * std::ceil((entity->GetRangeMin() - 1e-9 - deg) / 360.0);
    return turned;
  }

  void SetRotaries(const Angle& alpha, const Angle& beta, bool areTurned,
                   MachinePosition* position) const {
    const Register& r0 = system_.GetMainRotary(0);
    const Register& r1 = system_.GetMainRotary(1);
    if (r0.IsDefined()) {
      (*position)[r0] = areTurned ? TurnIntoRange(r0, alpha.GetDegre()) : alpha.GetDegre();
    }
    if (r1.IsDefined()) {
      (*position)[r1] = areTurned ? TurnIntoRange(r1, beta.GetDegre()) : beta.GetDegre();
    }
  }

  bool SetLinears(Kin::ProgramSystemCompute* solver, const Vector3D& point,
                  MachinePosition* position) const {
    Vector3D xyz;
    if (!solver->ComputeToolTcsToMcsXyz(*position, pair_.offset, point, &xyz)) {
      return false;
    }
    for (int i = 0; i < 3; ++i) {
      (*position)[system_.GetMainLinear(i)] = xyz[i];
    }
    return true;
  }

  /// Returns the larger of the distances of tip and direction from what was asked for.
  double Residual(Kin::MachineCompute* compute, const MachinePosition& position,
                  std::size_t i) const {
    Matrix43 tableFromTip;
    EXPECT_TRUE(compute->ComputeMcsToToolTcs(position, system_.GetHeadIndex(),
                                             system_.GetTableIndex(), pair_.offset, &tableFromTip));
    return std::max(tableFromTip.GetTrans().Distance(points_[i]),
                    tableFromTip.GetW().Distance(directions_[i]));
  }

  Machine machine_;
  ProgramSystem system_;
  ExamplePair pair_;
  std::vector<Vector3D> points_;
  std::vector<Vector3D> directions_;
};

// The raw rotary solutions: how many there are, that all of them are exact, and whether one of them
// lies in all ranges.
TEST_P(Pairs, RawSolutionsAreExactAndAsManyAsKnown) {
  Kin::ProgramSystemCompute solver(machine_, system_);
  Kin::MachineCompute compute(machine_);
  MachinePosition position;
  machine_.Alloc(&position);
  std::size_t withDirection = 0;
  std::size_t withTwo = 0;
  std::size_t inSomeRange = 0;
  double largestResidual = 0.0;
  for (std::size_t i = 0; i < points_.size(); ++i) {
    RotariesSolution solution;
    ASSERT_TRUE(compute.ComputeToolIjkTcsToMcsAbc(
        position, system_.GetHeadIndex(), system_.GetTableIndex(), directions_[i],
        system_.GetMainRotary(0), system_.GetMainRotary(1), &solution));
    withDirection += solution.Count >= 1 ? 1 : 0;
    withTwo += solution.Count == 2 ? 1 : 0;
    bool isInSomeRange = false;
    for (unsigned int s = 0; s < solution.Count; ++s) {
      MachinePosition solved = position;
      SetRotaries(s == 0 ? solution.Alpha1 : solution.Alpha2,
                  s == 0 ? solution.Beta1 : solution.Beta2, true, &solved);
      ASSERT_TRUE(SetLinears(&solver, points_[i], &solved));
      largestResidual = std::max(largestResidual, Residual(&compute, solved, i));
      isInSomeRange = isInSomeRange || IsInRange(solved);
    }
    inSomeRange += isInSomeRange ? 1 : 0;
  }
  EXPECT_EQ(withDirection, GetParam().withDirection);
  EXPECT_EQ(withTwo, GetParam().withTwo);
  EXPECT_EQ(inSomeRange, GetParam().inSomeRange);
  EXPECT_LT(largestResidual, ExactSolution);
}

// Driven in sequence the shortest way from 0: how many points stay in range, that all of them are
// exact, and how far each axis travels.
TEST_P(Pairs, ShortestWayTravelsAsKnown) {
  Kin::ProgramSystemCompute solver(machine_, system_);
  Kin::MachineCompute compute(machine_);
  MachinePosition position;
  machine_.Alloc(&position);
  std::size_t inRange = 0;
  double largestResidual = 0.0;
  std::vector<Extent> extents = GetParam().extents;
  for (std::size_t i = 0; i < points_.size(); ++i) {
    RotariesSolution solution;
    ASSERT_TRUE(solver.ComputeToolIjkTcsToMcsAbc(position, directions_[i], &solution));
    ASSERT_GE(solution.Count, 1U) << "point " << i;
    SetRotaries(solution.Alpha1, solution.Beta1, false, &position);
    ASSERT_TRUE(SetLinears(&solver, points_[i], &position));
    inRange += IsInRange(position) ? 1U : 0U;
    largestResidual = std::max(largestResidual, Residual(&compute, position, i));
    for (Extent& extent : extents) {
      const double value = position[Register(extent.reg)];
      extent.from = i == 0 ? value : std::min(extent.from, value);
      extent.to = i == 0 ? value : std::max(extent.to, value);
    }
  }
  EXPECT_EQ(inRange, GetParam().inRangeInSequence);
  EXPECT_LT(largestResidual, ExactSolution);
  ASSERT_EQ(extents.size(), GetParam().extents.size());
  for (std::size_t e = 0; e < extents.size(); ++e) {
    EXPECT_NEAR(extents[e].from, GetParam().extents[e].from, HalfDecimal)
        << "register " << extents[e].reg;
    EXPECT_NEAR(extents[e].to, GetParam().extents[e].to, HalfDecimal)
        << "register " << extents[e].reg;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Pairs, testing::ValuesIn(AllFacts()), [](const auto& facts) {
  return facts.param.machine + "_" + facts.param.programSystem + "_" + facts.param.path;
});

// Each pair of the table of examples is among those that are driven above.
TEST(PairsTable, EveryPairIsDriven) {
  const std::vector<ExamplePair> pairs = ReadPairs();
  EXPECT_EQ(pairs.size(), AllFacts().size());
  for (const ExamplePair& pair : pairs) {
    EXPECT_EQ(std::count_if(AllFacts().begin(), AllFacts().end(),
                            [&pair](const PairFacts& facts) {
                              return facts.machine == pair.machine &&
                                     facts.programSystem == pair.programSystem &&
                                     facts.path == pair.path;
                            }),
              1)
        << pair;
  }
}

}  // namespace
}  // namespace Orvo::Testing
