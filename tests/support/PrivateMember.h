#pragma once

namespace Orvo::Testing {

/// Hands tests a pointer to a private member: access is not checked in an explicit instantiation.
/// Instantiate and use it in the same source.
///
/// @code
/// struct UpdateTypeOf {
///   using Type = void (Matrix43::*)(const Matrix43::Type&);
///   friend Type MemberOf(UpdateTypeOf);
/// };
/// template struct PrivateMember<UpdateTypeOf, &Matrix43::UpdateType>;
/// ... (frame.*MemberOf(UpdateTypeOf{}))(Matrix43::Rotation);
/// @endcode
template <typename Tag, typename Tag::Type Member>
struct PrivateMember {
  friend typename Tag::Type MemberOf(Tag) { return Member; }
};

}  // namespace Orvo::Testing
