#pragma once

#include "json/StrDict3.h"

namespace Messages {

// A list field: elements by the JSON member name under which they came. The
// list owns its elements. It belongs to its record's thread.
//
// Members of a record go in reverse order: in one that holds a union too, the
// union is declared first, so that the list goes before it.
template <class E>
class KeyedList : public Vask::StrDict3<E*> {
 public:
  using Element = E;

  KeyedList();
  ~KeyedList() override;
  KeyedList(const KeyedList&) = delete;
  KeyedList& operator=(const KeyedList&) = delete;
};

}  // namespace Messages
