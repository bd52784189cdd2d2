#pragma once

#include <cstdint>

#include "messages/Codec.h"
#include "messages/KeyedList.h"

namespace Messages {

// The running processes by name, with the ports and switches of each.
struct ProcessList2 {
  struct processes {
    // The catalogue has a message of the same name; that is another type.
    struct ProcessInfo {
      std::int32_t m_streamServerPort = 0;
      std::int32_t m_kelvo9 = 0;
      std::int32_t m_kantar = 0;
    };

    ProcessInfo m_ProcessInfo;
  };

  KeyedList<processes> m_processes;
};

template <>
struct Description<ProcessList2::processes::ProcessInfo> {
  static constexpr char kDecoder[] = "DecodeStruct_ProcessInfo";
  static constexpr Field kRows[] = {
      Integer<&ProcessList2::processes::ProcessInfo::m_streamServerPort>("streamServerPort"),
      Integer<&ProcessList2::processes::ProcessInfo::m_kelvo9>("kelvo9"),
      Integer<&ProcessList2::processes::ProcessInfo::m_kantar>("kantar"),
  };
};

template <>
struct Description<ProcessList2::processes> {
  static constexpr char kDecoder[] = "DecodeDict_processes";
  static constexpr Field kRows[] = {
      SubRecord<&ProcessList2::processes::m_ProcessInfo>("ProcessInfo"),
  };
};

template <>
struct Description<ProcessList2> {
  static constexpr char kDecoder[] = "DecodeStruct_ProcessList2";
  static constexpr Field kRows[] = {
      List<&ProcessList2::m_processes>("processes"),
  };
};

inline bool DecodeStruct_ProcessList2(const Vask::JsonObject& object, ProcessList2& record) {
  return Decode(object, record);
}

}  // namespace Messages
