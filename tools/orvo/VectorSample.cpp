#include "VectorSample.h"

#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace OrvoTool {
namespace {

using Orvo::Matrix43;
using Orvo::Vector3D;
using Orvo::Kin::Register;

/// How far axes without limits go to either side, in degrees and in the machine's unit of length.
constexpr double FreeTurnDeg = 180.0;
constexpr double FreeTravel = 1000.0;

/// Returns the next number of a sequence: Steele, Lea, Flood, "Fast Splittable Pseudorandom Number
/// Generators" (2014).
std::uint64_t NextRandom(std::uint64_t* state) {
  *state += 0x9E3779B97F4A7C15U;
  std::uint64_t z = *state;
  z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
  z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
  return z ^ (z >> 31U);
}

/// Returns a number from 0 to 1, 1 excluded.
double NextShare(std::uint64_t* state) {
  return static_cast<double>(NextRandom(state) >> 11U) / 9007199254740992.0;
}

std::vector<double> NumbersOf(Matrix43 frame) {
  std::vector<double> numbers;
  for (const Vector3D& column : {frame.GetU(), frame.GetV(), frame.GetW(), frame.GetTrans()}) {
    for (int i = 0; i < 3; ++i) {
      numbers.push_back(column[i]);
    }
  }
  return numbers;
}

std::vector<double> AnglesOf(const Orvo::Kin::RotariesSolution& solution) {
  std::vector<double> angles;
  if (solution.Count > 0) {
    angles = {solution.Alpha1.GetDegre(), solution.Beta1.GetDegre()};
  }
  if (solution.Count > 1) {
    angles.push_back(solution.Alpha2.GetDegre());
    angles.push_back(solution.Beta2.GetDegre());
  }
  return angles;
}

}  // namespace

VectorSampler::VectorSampler(const Orvo::Kin::Machine& machine, const Vector3D& offset)
    : machine_(machine), offset_(offset), compute_(machine) {
  for (const Orvo::Kin::ProgramSystem& system : machine.GetListProgramSystem()) {
    solvers_.emplace_back(machine, system);
  }
  machine.Alloc(&position_);
}

std::string VectorSampler::GetShape() const {
  return "elements " + std::to_string(machine_.GetKinematic().GetListEntity().size()) +
         " registers " + std::to_string(machine_.GetRegisterNb().GetVal()) + " systems " +
         std::to_string(solvers_.size());
}

std::vector<double> VectorSampler::MakeAxes(int sample, std::uint64_t seed) const {
  std::uint64_t state = seed ^ (static_cast<std::uint64_t>(sample) << 32U);
  std::vector<double> axes(static_cast<std::size_t>(machine_.GetRegisterNb().GetVal()));
  // The first samples are not drawn: all axes at 0, at their lower and at their upper limits.
  for (std::size_t r = 0; r < axes.size(); ++r) {
    const double share = NextShare(&state);
    const Orvo::Kin::Entity* const entity =
        machine_.GetKinematic().GetEntity(Register(static_cast<int>(r)));
    if (entity == nullptr || sample == 0) {
      continue;
    }
    double min = entity->GetRangeMin();
    double max = entity->GetRangeMax();
    if (!entity->GetCheckRangeAxis() || !std::isfinite(max - min)) {
      const bool isRotary =
          entity->GetEntityLink().GetEntityLinkType() == Orvo::Kin::EntityLinkTypeRotary;
      max = isRotary ? FreeTurnDeg : FreeTravel;
      min = -max;
    }
    axes[r] = sample == 1 ? min : sample == 2 ? max : min + (max - min) * share;
  }
  return axes;
}

std::vector<VectorRecord> VectorSampler::Compute(const std::vector<double>& axes) {
  for (std::size_t r = 0; r < axes.size(); ++r) {
    position_[Register(static_cast<int>(r))] = axes[r];
  }
  std::vector<VectorRecord> records;
  for (const Orvo::Kin::Entity& entity : machine_.GetKinematic().GetListEntity()) {
    Matrix43 worldFromElement;
    const bool isGood = compute_.ComputePositionEntity(entity, position_, &worldFromElement);
    VectorRecord record;
    record.head = "frame " + std::to_string(entity.GetEntityId().GetVal()) + " code " +
                  std::to_string(isGood ? 0 : static_cast<int>(compute_.GetLastError()));
    record.values = NumbersOf(worldFromElement);
    records.push_back(record);
  }
  for (std::size_t s = 0; s < solvers_.size(); ++s) {
    AddProgramSystem(static_cast<int>(s), &records);
  }
  return records;
}

void VectorSampler::AddProgramSystem(int number, std::vector<VectorRecord>* records) {
  const Orvo::Kin::ProgramSystem& system =
      *std::next(machine_.GetListProgramSystem().begin(), number);
  Orvo::Kin::ProgramSystemCompute& solver = solvers_[static_cast<std::size_t>(number)];
  const auto start = [number](const char* what, int code) {
    VectorRecord record;
    record.head = what + (" " + std::to_string(number)) + " code " + std::to_string(code);
    return record;
  };
  const auto code = [this](bool isGood) {
    return isGood ? 0 : static_cast<int>(compute_.GetLastError());
  };

  Matrix43 tableFromTip;
  bool isGood = compute_.ComputeMcsToToolTcs(position_, system.GetHeadIndex(),
                                             system.GetTableIndex(), offset_, &tableFromTip);
  records->push_back(start("tool", code(isGood)));
  if (!isGood) {
    return;
  }
  records->back().values = NumbersOf(tableFromTip);
  const Vector3D direction = tableFromTip.GetW();

  Orvo::Kin::RotariesSolution solution;
  isGood = compute_.ComputeToolIjkTcsToMcsAbc(
      position_, system.GetHeadIndex(), system.GetTableIndex(), direction, system.GetMainRotary(0),
      system.GetMainRotary(1), &solution);
  const auto addSolution = [&](const char* what, int error) {
    records->push_back(start(what, error));
    VectorRecord& record = records->back();
    record.head += " count " + std::to_string(solution.Count) + " free " +
                   std::to_string(solution.FreeRegister);
    record.values = AnglesOf(solution);
    return &record;
  };
  addSolution("rotary", code(isGood))->isModuloTurn = true;
  if (isGood && solver.ComputeToolIjkTcsToMcsAbc(position_, direction, &solution)) {
    addSolution("chosen", 0);
  }

  Vector3D xyz;
  isGood = compute_.ComputeToolTcsToMcsXyz(
      position_, system.GetHeadIndex(), system.GetTableIndex(), offset_, system.GetMainLinear(0),
      system.GetMainLinear(1), system.GetMainLinear(2), tableFromTip.GetTrans(), &xyz);
  records->push_back(start("linear", code(isGood)));
  if (isGood) {
    records->back().values = {xyz[0], xyz[1], xyz[2]};
  }
}

}  // namespace OrvoTool
