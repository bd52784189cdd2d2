#pragma once

#include "json/StrDict3.h"

namespace Messages {

// A list field: elements by the JSON member name under which they came, folded
// to lower case. The list owns its elements. It belongs to its record's thread.
//
// Members of a record go in reverse order: in one that holds a union too, the
// union is declared first, so that the list goes before it.
template <class E>
class KeyedList : public Vask::StrDict3<E*> {
 public:
  using Element = E;

  KeyedList() = default;
  ~KeyedList() override {
    E* element = nullptr;
    while (this->TakeFirst(element)) delete element;
  }
};

}  // namespace Messages
