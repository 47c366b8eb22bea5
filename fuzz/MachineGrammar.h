#pragma once

#include "MachineText.h"
#include "Random.h"

#include <string>
#include <string_view>
#include <vector>

namespace Orvo::Fuzz {

/// What kind of value stands in an element or an attribute of a machine file.
enum class ValueKind { None, Text, Bool, Id, Register, Index, Color, Number, Ids, Word };

/// Tells what stands as text in an element.
ValueKind KindOfText(std::string_view element);

/// Tells what stands in an attribute of an element.
ValueKind KindOfAttribute(std::string_view element);

/// Draws a value: mostly a plain one, now and then one at an edge or one that is none.
/// @param parent  the element around it, for words
std::string AnyValue(ValueKind kind, std::string_view element, std::string_view parent,
                     Random& random);

/// The names of the elements that an element may hold, empty where it holds a value or none.
std::vector<std::string_view> ChildrenOf(std::string_view element, std::string_view parent);

/// The names of the attributes that an element has.
std::vector<std::string_view> AttributesOf(std::string_view element);

/// Draws an element with all that belongs into it.
TextNode AnyElement(std::string_view element, std::string_view parent, Random& random);

/// Draws a whole machine that can be finished and solved, as the root of a text.
TextNode AnyMachine(Random& random);

/// Draws the name of an element or of an attribute that machine files know.
std::string_view AnyName(Random& random);

}  // namespace Orvo::Fuzz
