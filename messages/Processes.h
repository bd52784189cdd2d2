#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// The general answer of the main process to a request: a result code and a message.
struct Confirmation {
  std::int32_t m_result = 0;
  char m_message[257] = "";
};

template <>
struct Description<Confirmation> {
  static constexpr Field kRows[] = {
      Integer<&Confirmation::m_result>("result"),
      Text<&Confirmation::m_message>("message"),
  };
};

inline bool DecodeStruct_Confirmation(const Vask::JsonObject& object, Confirmation& record) {
  return Decode(object, record);
}

// The product that the main process is.
struct ProductVersion {
  char m_productname[257] = "";
  char m_productversion[17] = "";
  char m_productbuild[17] = "";
  char m_productcopyright[129] = "";
};

template <>
struct Description<ProductVersion> {
  static constexpr Field kRows[] = {
      Text<&ProductVersion::m_productname>("productname"),
      Text<&ProductVersion::m_productversion>("productversion"),
      Text<&ProductVersion::m_productbuild>("productbuild"),
      Text<&ProductVersion::m_productcopyright>("productcopyright"),
  };
};

inline bool DecodeStruct_ProductVersion(const Vask::JsonObject& object, ProductVersion& record) {
  return Decode(object, record);
}

// Asks for the audio output devices that one process sees.
struct GetAudioOutputDeviceList {
  char m_procName[65] = "";
};

template <>
struct Description<GetAudioOutputDeviceList> {
  static constexpr Field kRows[] = {
      Text<&GetAudioOutputDeviceList::m_procName>("procName"),
  };
};

inline bool DecodeStruct_GetAudioOutputDeviceList(const Vask::JsonObject& object,
                                                  GetAudioOutputDeviceList& record) {
  return Decode(object, record);
}

// The state of one process. All figures but the last are texts.
struct ProcessInfo {
  char m_version[65] = "";
  char m_buildDate[65] = "";
  char m_cpuKernelPercent[65] = "";
  char m_cpuUserPercent[65] = "";
  char m_workingSetBytes[65] = "";
  std::int32_t m_handleCount = 0;
};

template <>
struct Description<ProcessInfo> {
  static constexpr Field kRows[] = {
      Text<&ProcessInfo::m_version>("version"),
      Text<&ProcessInfo::m_buildDate>("buildDate"),
      Text<&ProcessInfo::m_cpuKernelPercent>("cpuKernelPercent"),
      Text<&ProcessInfo::m_cpuUserPercent>("cpuUserPercent"),
      Text<&ProcessInfo::m_workingSetBytes>("workingSetBytes"),
      Integer<&ProcessInfo::m_handleCount>("handleCount"),
  };
};

inline bool DecodeStruct_ProcessInfo(const Vask::JsonObject& object, ProcessInfo& record) {
  return Decode(object, record);
}

// The names of the running processes: the keys of elements without fields.
struct ProcessList {
  struct processes {};

  KeyedList<processes> m_processes;
};

template <>
struct Description<ProcessList::processes> {};

template <>
struct Description<ProcessList> {
  static constexpr Field kRows[] = {
      List<&ProcessList::m_processes>("processes"),
  };
};

inline bool DecodeStruct_ProcessList(const Vask::JsonObject& object, ProcessList& record) {
  return Decode(object, record);
}

// The running processes by name, with the ports and switches of each.
struct ProcessList2 {
  struct processes {
    // Another type than the message of the same name in the catalogue.
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
  static constexpr Field kRows[] = {
      Integer<&ProcessList2::processes::ProcessInfo::m_streamServerPort>("streamServerPort"),
      Integer<&ProcessList2::processes::ProcessInfo::m_kelvo9>("kelvo9"),
      Integer<&ProcessList2::processes::ProcessInfo::m_kantar>("kantar"),
  };
};

template <>
struct Description<ProcessList2::processes> {
  static constexpr Field kRows[] = {
      SubRecord<&ProcessList2::processes::m_ProcessInfo>("ProcessInfo"),
  };
};

template <>
struct Description<ProcessList2> {
  static constexpr Field kRows[] = {
      List<&ProcessList2::m_processes>("processes"),
  };
};

inline bool DecodeStruct_ProcessList2(const Vask::JsonObject& object, ProcessList2& record) {
  return Decode(object, record);
}

}  // namespace Messages
