#pragma once

#include <type_traits>

namespace Orvo::Testing {

/// Takes any pointer to a member. Naming it proves at compile time that the member exists with
/// exactly the type of the pointer.
template <auto member>
constexpr bool IsMember = true;

/// Tells whether an enumeration is unscoped and has `int` as its underlying type.
template <class Enumeration>
constexpr bool IsPlainIntEnumeration = std::is_convertible_v<Enumeration, int>&&
    std::is_same_v<std::underlying_type_t<Enumeration>, int>;

/// Tells whether objects can be copied in both ways and destroyed.
template <class Class>
constexpr bool IsCopyable = std::is_copy_constructible_v<Class>&& std::is_copy_assignable_v<Class>&&
    std::is_same_v<decltype(std::declval<Class&>() = std::declval<const Class&>()), Class&>;

/// Tells whether a class can be derived from and destroyed through a pointer to it.
template <class Class>
constexpr bool HasVirtualDestructor =
    std::is_polymorphic_v<Class>&& std::has_virtual_destructor_v<Class>;

}  // namespace Orvo::Testing

/// Asserts that a member has exactly this type, const-ness, parameters and result included.
// NOLINTBEGIN(bugprone-macro-parentheses): a type and a name, which take no parentheses.
#define ORVO_EXPECT_MEMBER(type, member) \
  static_assert(::Orvo::Testing::IsMember<static_cast<type>(&member)>)
// NOLINTEND(bugprone-macro-parentheses)
