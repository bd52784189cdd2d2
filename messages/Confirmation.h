#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// The generic answer to a request: a result code and what there is to say.
struct Confirmation {
  std::int32_t m_result = 0;
  char m_message[257] = "";
};

template <>
struct Description<Confirmation> {
  static constexpr char kDecoder[] = "DecodeStruct_Confirmation";
  static constexpr Field kRows[] = {
      Integer<&Confirmation::m_result>("result"),
      Text<&Confirmation::m_message>("message"),
  };
};

inline bool DecodeStruct_Confirmation(const Vask::JsonObject& object, Confirmation& record) {
  return Decode(object, record);
}

}  // namespace Messages
