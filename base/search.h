#pragma once

#include <algorithm>
#include <iterator>

namespace kelvora {

// Searches of whole ranges, since the browser build's library lacks those of std::ranges.

/// The first element that meets the condition. Null if there is none.
template <class Range, class Condition>
auto findIf(Range& range, Condition condition) -> decltype(&*std::begin(range)) {
  const auto found = std::find_if(std::begin(range), std::end(range), condition);
  return found == std::end(range) ? nullptr : &*found;
}

/// The first element whose member has the value. Null if there is none.
template <class Range, class Element, class Value>
auto findBy(Range& range, Value Element::*member, const Value& value) {
  return findIf(range, [&](const Element& element) { return element.*member == value; });
}

/// True if an element meets the condition.
template <class Range, class Condition>
bool anyOf(const Range& range, Condition condition) {
  return std::any_of(std::begin(range), std::end(range), condition);
}

}  // namespace kelvora
