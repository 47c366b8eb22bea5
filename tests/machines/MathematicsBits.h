#pragma once

namespace Orvo::Testing {

/// Tells whether sin, cos and atan2 of this system give the bits with which the files of
/// tests/data/golden were made, for many thousand arguments. They are those of the GNU C library
/// with fused multiply-add; other libraries, and this one on processors without it, round some of
/// the results to the other neighbor.
bool AreMathematicsTheRecordedOnes();

/// Tells whether this system is one of those on which AreMathematicsTheRecordedOnes() must hold:
/// version 2.36 of the GNU C library on ARM64, or on x86-64 with fused multiply-add.
bool MustMathematicsBeTheRecordedOnes();

}  // namespace Orvo::Testing
