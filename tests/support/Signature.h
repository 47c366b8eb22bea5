#pragma once

namespace Orvo::Testing {

/// Compiles only where the member, or one of its overloads, has exactly this type:
/// `static_assert(HasSignature<double (Angle::*)() const>(&Angle::Sin))`.
template <typename Signature>
constexpr bool HasSignature(Signature) {
  return true;
}

}  // namespace Orvo::Testing
