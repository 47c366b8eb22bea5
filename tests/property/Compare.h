#pragma once

#include "property/reference/Calculator.h"
#include "property/reference/Frame.h"
#include "property/reference/Model.h"
#include "property/reference/Vector.h"

#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Vector3D.h>

#include <gtest/gtest.h>

#include <string>

namespace Orvo::Property {

/// Makes the library's value with the same bits, kind included.
Vector3D ToOrvo(const Reference::Vector& v);
Matrix43 ToOrvo(const Reference::Frame& f);
Kin::MachinePosition ToOrvo(const Reference::Position& p);

/// Finds out the cached kind of a frame by what a copy of it does with other values.
Reference::Kind KindOf(const Matrix43& frame);

/// Compares bit for bit; any NaN equals any other.
::testing::AssertionResult SameBits(double actual, double expected);

/// Compares all four components bit for bit.
::testing::AssertionResult SameBits(const Vector3D& actual, const Reference::Vector& expected);

/// Compares all 16 doubles bit for bit, and the kinds.
::testing::AssertionResult SameBits(const Matrix43& actual, const Reference::Frame& expected);

::testing::AssertionResult SameBits(const Kin::MachinePosition& actual,
                                    const Reference::Position& expected);

/// Compares counts, free registers and all four angles bit for bit.
::testing::AssertionResult SameBits(const Kin::RotariesSolution& actual,
                                    const Reference::Rotaries& expected);

/// The text of a value with all its digits, for messages.
std::string Text(double value);
std::string Text(const Reference::Vector& v);
std::string Text(const Reference::Frame& f);
std::string Text(const Reference::Position& p);

}  // namespace Orvo::Property
