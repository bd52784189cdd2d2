#pragma once

#include <string>
#include <utility>
#include <vector>

#include "messages/KeyedList.h"

namespace Messages::Tests {

// The keys and elements of a list in its order. The elements stay the list's.
template <class E>
std::vector<std::pair<std::string, const E*>> Elements(const KeyedList<E>& list) {
  std::vector<std::pair<std::string, const E*>> found;
  list.ForEach(
      "",
      [](const char* key, E* const* element, void* context) {
        static_cast<decltype(found)*>(context)->emplace_back(key, *element);
        return true;
      },
      &found);
  return found;
}

}  // namespace Messages::Tests
