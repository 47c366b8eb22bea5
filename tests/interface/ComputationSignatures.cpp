// The exported interface of the computation, member by member. Nothing here runs: a file that
// compiles is a test that passes.

#include "Signature.h"

#include <Orvo/Orvo.h>

#include <type_traits>
#include <vector>

namespace Orvo::Kin {
namespace {

using Testing::HasVirtualDestructor;
using Testing::IsCopyable;

// RotariesSolution.
static_assert(IsCopyable<RotariesSolution> && !std::is_polymorphic_v<RotariesSolution>);
static_assert(std::is_default_constructible_v<RotariesSolution>);
ORVO_EXPECT_MEMBER(unsigned int RotariesSolution::*, RotariesSolution::Count);
ORVO_EXPECT_MEMBER(int RotariesSolution::*, RotariesSolution::FreeRegister);
ORVO_EXPECT_MEMBER(Angle RotariesSolution::*, RotariesSolution::Alpha1);
ORVO_EXPECT_MEMBER(Angle RotariesSolution::*, RotariesSolution::Beta1);
ORVO_EXPECT_MEMBER(Angle RotariesSolution::*, RotariesSolution::Alpha2);
ORVO_EXPECT_MEMBER(Angle RotariesSolution::*, RotariesSolution::Beta2);

// MachineCompute.
static_assert(IsCopyable<MachineCompute> && HasVirtualDestructor<MachineCompute>);
static_assert(std::is_convertible_v<const Machine&, MachineCompute>);
static_assert(!std::is_default_constructible_v<MachineCompute>);
ORVO_EXPECT_MEMBER(MachineComputeErrorType (MachineCompute::*)(), MachineCompute::GetLastError);
ORVO_EXPECT_MEMBER(bool (MachineCompute::*)(const EntityLink&, const Register&,
                                            const MachinePosition&, Matrix43*),
                   MachineCompute::ComputeRelativePosition);
ORVO_EXPECT_MEMBER(bool (MachineCompute::*)(const Entity&, const MachinePosition&, Matrix43*),
                   MachineCompute::ComputePositionEntity);
ORVO_EXPECT_MEMBER(bool (MachineCompute::*)(const MachinePosition&, std::vector<Matrix43>*),
                   MachineCompute::ComputePositionMachine);
ORVO_EXPECT_MEMBER(bool (MachineCompute::*)(const MachinePosition&, const HeadIndex&,
                                            const TableIndex&, const Vector3D&, Matrix43*),
                   MachineCompute::ComputeMcsToToolTcs);
ORVO_EXPECT_MEMBER(bool (MachineCompute::*)(const MachinePosition&, const HeadIndex&,
                                            const TableIndex&, const Vector3D&, const Register&,
                                            const Register&, RotariesSolution*),
                   MachineCompute::ComputeToolIjkTcsToMcsAbc);
ORVO_EXPECT_MEMBER(bool (MachineCompute::*)(const MachinePosition&, const HeadIndex&,
                                            const TableIndex&, const Vector3D&, const Register&,
                                            const Register&, const Register&, const Vector3D&,
                                            Vector3D*),
                   MachineCompute::ComputeToolTcsToMcsXyz);

// ProgramSystemCompute.
static_assert(IsCopyable<ProgramSystemCompute> && HasVirtualDestructor<ProgramSystemCompute>);
static_assert(std::is_constructible_v<ProgramSystemCompute, const Machine&, const ProgramSystem&>);
static_assert(!std::is_default_constructible_v<ProgramSystemCompute>);
ORVO_EXPECT_MEMBER(bool (ProgramSystemCompute::*)(const MachinePosition&, const Vector3D&,
                                                  RotariesSolution*),
                   ProgramSystemCompute::ComputeToolIjkTcsToMcsAbc);
ORVO_EXPECT_MEMBER(bool (ProgramSystemCompute::*)(const MachinePosition&, const Vector3D&,
                                                  const Vector3D&, Vector3D*),
                   ProgramSystemCompute::ComputeToolTcsToMcsXyz);
ORVO_EXPECT_MEMBER(bool (ProgramSystemCompute::*)(const MachinePosition&, bool*),
                   ProgramSystemCompute::CheckLinearRange);
ORVO_EXPECT_MEMBER(bool (ProgramSystemCompute::*)(const Vector3D&, bool*),
                   ProgramSystemCompute::CheckLinearRange);

}  // namespace
}  // namespace Orvo::Kin
