#pragma once

#include "messages/Codec.h"

namespace Messages {

// Asks for the audio output devices that one process sees.
struct GetAudioOutputDeviceList {
  char m_procName[65] = "";
};

template <>
struct Description<GetAudioOutputDeviceList> {
  static constexpr char kDecoder[] = "DecodeStruct_GetAudioOutputDeviceList";
  static constexpr Field kRows[] = {
      Text<&GetAudioOutputDeviceList::m_procName>("procName"),
  };
};

inline bool DecodeStruct_GetAudioOutputDeviceList(const Vask::JsonObject& object,
                                                  GetAudioOutputDeviceList& record) {
  return Decode(object, record);
}

}  // namespace Messages
