#pragma once

#include "messages/Codec.h"
#include "messages/KeyedList.h"

namespace Messages {

// A list of entities with what is wrong with each. The agent does not interpret
// it.
struct SNMPsequence {
  struct entries {
    char m_friendlyName[65] = "";
    char m_errorDescription[257] = "";
  };

  char m_sequenceType[33] = "";
  KeyedList<entries> m_entries;
};

template <>
struct Description<SNMPsequence::entries> {
  static constexpr char kDecoder[] = "DecodeDict_entries";
  static constexpr Field kRows[] = {
      Text<&SNMPsequence::entries::m_friendlyName>("friendlyName"),
      Text<&SNMPsequence::entries::m_errorDescription>("errorDescription"),
  };
};

template <>
struct Description<SNMPsequence> {
  static constexpr char kDecoder[] = "DecodeStruct_SNMPsequence";
  static constexpr Field kRows[] = {
      Text<&SNMPsequence::m_sequenceType>("sequenceType"),
      List<&SNMPsequence::m_entries>("entries"),
  };
};

inline bool DecodeStruct_SNMPsequence(const Vask::JsonObject& object, SNMPsequence& record) {
  return Decode(object, record);
}

}  // namespace Messages
