#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// The state of one process. All figures but the last travel as texts.
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
  static constexpr char kDecoder[] = "DecodeStruct_ProcessInfo";
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

}  // namespace Messages
