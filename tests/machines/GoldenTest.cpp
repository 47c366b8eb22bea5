#include "machines/ExampleData.h"
#include "machines/MathematicsBits.h"
#include "support/BitsHash.h"

#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/ProgramSystemIndex.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// tests/data/golden holds, for each path on its machine, what every system must compute: some
// points in full, as hexadecimal doubles, and a hash over the bits of all points. To write the
// files anew, run this program with ORVO_TEST_WRITE_GOLDEN=1 and look at the difference.

namespace Orvo::Testing {
namespace {

using Kin::MachinePosition;
using Kin::ProgramSystem;
using Kin::RotariesSolution;

constexpr std::size_t RowNb = 24;

/// What is left of bits where the system's mathematics round otherwise: lengths of some hundreds
/// and angles of many turns, through a dozen frame products.
constexpr double OtherMathematicsTolerance = 1e-9;

/// One path on one machine, driven the shortest way from 0.
struct Results {
  std::size_t pointNb = 0;
  std::uint64_t hash = 0;
  std::vector<std::vector<double>> rows;
};

std::string GoldenFile(const ExamplePair& pair) {
  return std::string(ORVO_TEST_DATA_DIR) + "/golden/" + pair.machine + "." + pair.programSystem +
         "." + pair.path + ".txt";
}

void Append(const Vector3D& vector, std::vector<double>* row) {
  for (int i = 0; i < 3; ++i) {
    row->push_back(vector[i]);
  }
}

const ProgramSystem& SystemOf(const Kin::Machine& machine, const ExamplePair& pair) {
  for (const ProgramSystem& system : machine.GetListProgramSystem()) {
    if (system.GetProgramSystemName() == WideName(pair.programSystem)) {
      return system;
    }
  }
  throw std::runtime_error("no program system " + pair.programSystem);
}

/// Solves one point, drives there, and returns all that was computed: the count of solutions and
/// their angles in radians, the linear values, the frame of the tool seen from the table, and the
/// world frames of all elements.
std::vector<double> SolvePoint(const ProgramSystem& system, const ExamplePair& pair,
                               const Vector3D& point, const Vector3D& direction,
                               Kin::ProgramSystemCompute* solver, Kin::MachineCompute* compute,
                               MachinePosition* position) {
  std::vector<double> row;
  RotariesSolution solution;
  EXPECT_TRUE(solver->ComputeToolIjkTcsToMcsAbc(*position, direction, &solution));
  row.push_back(solution.Count);
  if (solution.Count >= 1) {
    row.push_back(solution.Alpha1.GetRadian());
    row.push_back(solution.Beta1.GetRadian());
    (*position)[system.GetMainRotary(0)] = solution.Alpha1.GetDegre();
    if (system.GetMainRotary(1).IsDefined()) {
      (*position)[system.GetMainRotary(1)] = solution.Beta1.GetDegre();
    }
  }
  if (solution.Count == 2) {
    row.push_back(solution.Alpha2.GetRadian());
    row.push_back(solution.Beta2.GetRadian());
  }
  Vector3D xyz;
  EXPECT_TRUE(solver->ComputeToolTcsToMcsXyz(*position, pair.offset, point, &xyz));
  Append(xyz, &row);
  for (int i = 0; i < 3; ++i) {
    (*position)[system.GetMainLinear(i)] = xyz[i];
  }
  std::vector<Matrix43> frames(1);
  EXPECT_TRUE(compute->ComputeMcsToToolTcs(*position, system.GetHeadIndex(), system.GetTableIndex(),
                                           pair.offset, &frames[0]));
  std::vector<Matrix43> worldFrames;
  EXPECT_TRUE(compute->ComputePositionMachine(*position, &worldFrames));
  frames.insert(frames.end(), worldFrames.begin(), worldFrames.end());
  for (Matrix43& frame : frames) {
    Append(frame.GetU(), &row);
    Append(frame.GetV(), &row);
    Append(frame.GetW(), &row);
    Append(frame.GetTrans(), &row);
  }
  return row;
}

Results Compute(const ExamplePair& pair) {
  Results results;
  Kin::Machine machine;
  if (!machine.ReadXML(WideName(ExampleMachineFile(pair.machine)))) {
    throw std::runtime_error("can't read the machine " + pair.machine);
  }
  const ProgramSystem& system = SystemOf(machine, pair);
  Kin::ProgramSystemCompute solver(machine, system);
  Kin::MachineCompute compute(machine);
  MachinePosition position;
  machine.Alloc(&position);

  const std::vector<std::vector<double>> path = ReadNumbers(ExamplePathFile(pair.path));
  const std::size_t stride = path.size() / RowNb;
  BitsHash hash;
  for (std::size_t i = 0; i < path.size(); ++i) {
    Vector3D point(path[i].at(0), path[i].at(1), path[i].at(2));
    point += pair.shift;
    const Vector3D direction(path[i].at(3), path[i].at(4), path[i].at(5));
    std::vector<double> row =
        SolvePoint(system, pair, point, direction, &solver, &compute, &position);
    for (const double value : row) {
      hash.Add(value);
    }
    if (i % stride == 0 && results.rows.size() < RowNb) {
      // The world frames of these rows are in the hash alone, to keep the files small.
      const std::size_t rotaryNb = 1 + 2 * static_cast<std::size_t>(row[0]);
      row.resize(rotaryNb + 3 + 12);
      results.rows.push_back(row);
    }
  }
  results.pointNb = path.size();
  results.hash = hash.Value();
  return results;
}

std::string HexDouble(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%a", value);
  return text;
}

double FromHexDouble(std::string_view text) {
  const bool isNegative = !text.empty() && text[0] == '-';
  text.remove_prefix(isNegative ? 1 : 0);
  double value = 0.0;
  if (text.substr(0, 2) != "0x") {
    throw std::runtime_error("no hexadecimal number: " + std::string(text));
  }
  text.remove_prefix(2);
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::hex);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw std::runtime_error("no hexadecimal number: " + std::string(text));
  }
  return isNegative ? -value : value;
}

void Write(const std::string& file, const Results& results) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << "points " << results.pointNb << "\nhash " << std::hex << results.hash << "\n";
  for (const std::vector<double>& row : results.rows) {
    const char* separator = "";
    for (const double value : row) {
      stream << separator << HexDouble(value);
      separator = " ";
    }
    stream << "\n";
  }
}

Results Read(const std::string& file) {
  Results results;
  std::istringstream stream(ReadBytes(file));
  std::string word;
  stream >> word >> results.pointNb >> word >> std::hex >> results.hash;
  std::string line;
  std::getline(stream, line);
  while (std::getline(stream, line)) {
    std::vector<double> row;
    std::istringstream fields(line);
    while (fields >> word) {
      row.push_back(FromHexDouble(word));
    }
    results.rows.push_back(row);
  }
  return results;
}

class Golden : public testing::TestWithParam<ExamplePair> {};

// Bit for bit where the system's sin, cos and atan2 are the recorded ones; elsewhere within a
// billionth, so that no other cause of a difference can hide behind them.
TEST_P(Golden, ResultsAreTheRecordedOnes) {
  const std::string file = GoldenFile(GetParam());
  const Results found = Compute(GetParam());
  if (std::getenv("ORVO_TEST_WRITE_GOLDEN") != nullptr) {
    Write(file, found);
    FAIL() << file << " was written anew";
  }
  const Results wanted = Read(file);
  ASSERT_EQ(found.pointNb, wanted.pointNb);
  ASSERT_EQ(found.rows.size(), RowNb);
  ASSERT_EQ(wanted.rows.size(), RowNb);
  const bool isExact = AreMathematicsTheRecordedOnes();
  for (std::size_t i = 0; i < RowNb; ++i) {
    const std::vector<double>& row = found.rows[i];
    ASSERT_EQ(row.size(), wanted.rows[i].size()) << "row " << i;
    if (isExact) {
      EXPECT_TRUE(SameBits(row.data(), wanted.rows[i].data(), row.size(), "the row's"))
          << "row " << i;
      continue;
    }
    for (std::size_t k = 0; k < row.size(); ++k) {
      EXPECT_NEAR(row[k], wanted.rows[i][k], OtherMathematicsTolerance) << "row " << i;
    }
  }
  if (isExact) {
    EXPECT_EQ(found.hash, wanted.hash);
  }
}

INSTANTIATE_TEST_SUITE_P(All, Golden, testing::ValuesIn(ReadPairs()), [](const auto& facts) {
  return facts.param.machine + "_" + facts.param.programSystem + "_" + facts.param.path;
});

// On the systems that promise the same bits, nothing is compared with a tolerance.
TEST(GoldenMathematics, AreTheRecordedOnesWherePromised) {
  EXPECT_TRUE(AreMathematicsTheRecordedOnes() || !MustMathematicsBeTheRecordedOnes());
}

}  // namespace
}  // namespace Orvo::Testing
