#pragma once

#include "messages/Codec.h"
#include "messages/KeyedList.h"

namespace Messages {

// The names of the running processes: each is the key of an element that holds
// nothing.
struct ProcessList {
  struct processes {};

  KeyedList<processes> m_processes;
};

template <>
struct Description<ProcessList::processes> {
  static constexpr char kDecoder[] = "DecodeDict_processes";
};

template <>
struct Description<ProcessList> {
  static constexpr char kDecoder[] = "DecodeStruct_ProcessList";
  static constexpr Field kRows[] = {
      List<&ProcessList::m_processes>("processes"),
  };
};

inline bool DecodeStruct_ProcessList(const Vask::JsonObject& object, ProcessList& record) {
  return Decode(object, record);
}

}  // namespace Messages
