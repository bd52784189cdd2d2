#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// One group of values from the main process: the product, or the counts of
// streams, stream monitors or audio sources. The tag of the only field says which;
// read only the member of that name.
struct SNMPmessage {
  // The sub-records have no initialisers, so that assigning to one makes it the
  // union's value. The decoder sets each to zeros first.
  struct Product {
    char m_Name[129];
    char m_Version[65];
  };
  struct Streams {
    std::int32_t m_Count;
    std::int32_t m_Errors;
  };
  struct StreamMonitors {
    std::int32_t m_Count;
    std::int32_t m_Errors;
    std::int32_t m_Silence;
  };
  // Another type than the message of the same name in the catalogue.
  struct AudioSources {
    std::int32_t m_Count;
    std::int32_t m_Errors;
    std::int32_t m_Silence;
  };

  struct messageType {
    enum Tag : std::uint32_t { kProduct, kStreams, kStreamMonitors, kAudioSources, kEmpty };

    std::uint32_t m_tag = kEmpty;
    union {
      Product m_Product;
      Streams m_Streams;
      StreamMonitors m_StreamMonitors;
      AudioSources m_AudioSources;
    };

    ~messageType();  // DestroyUnion_messageType
  };
  using enum messageType::Tag;

  messageType m_messageType;
};

// The range of every count of the SNMP messages.
inline constexpr Range kSnmpCount = Between(0, 1024);

template <>
struct Description<SNMPmessage::Product> {
  static constexpr Field kRows[] = {
      Text<&SNMPmessage::Product::m_Name>("Name"),
      Text<&SNMPmessage::Product::m_Version>("Version"),
  };
};

template <>
struct Description<SNMPmessage::Streams> {
  static constexpr char kDecoder[] = "DecodeStruct_Streams";
  static constexpr Field kRows[] = {
      Integer<&SNMPmessage::Streams::m_Count>("Count", kSnmpCount),
      Integer<&SNMPmessage::Streams::m_Errors>("Errors", kSnmpCount),
  };
};

template <>
struct Description<SNMPmessage::StreamMonitors> {
  static constexpr char kDecoder[] = "DecodeStruct_StreamMonitors";
  static constexpr Field kRows[] = {
      Integer<&SNMPmessage::StreamMonitors::m_Count>("Count", kSnmpCount),
      Integer<&SNMPmessage::StreamMonitors::m_Errors>("Errors", kSnmpCount),
      Integer<&SNMPmessage::StreamMonitors::m_Silence>("Silence", kSnmpCount),
  };
};

template <>
struct Description<SNMPmessage::AudioSources> {
  static constexpr char kDecoder[] = "DecodeStruct_AudioSources";
  static constexpr Field kRows[] = {
      Integer<&SNMPmessage::AudioSources::m_Count>("Count", kSnmpCount),
      Integer<&SNMPmessage::AudioSources::m_Errors>("Errors", kSnmpCount),
      Integer<&SNMPmessage::AudioSources::m_Silence>("Silence", kSnmpCount),
  };
};

template <>
struct Description<SNMPmessage::messageType> {
  using U = SNMPmessage::messageType;
  static constexpr char kPath[] = "SNMPmessage::messageType";
  static constexpr Alternative kAlternatives[] = {
      MESSAGES_ALTERNATIVE(U, Product),
      MESSAGES_ALTERNATIVE(U, Streams),
      MESSAGES_ALTERNATIVE(U, StreamMonitors),
      MESSAGES_ALTERNATIVE(U, AudioSources),
  };
};

template <>
struct Description<SNMPmessage> {
  static constexpr Field kRows[] = {
      Union<&SNMPmessage::m_messageType>(),
  };
};

inline bool DecodeStruct_Streams(const Vask::JsonObject& object, SNMPmessage::Streams& record) {
  return Decode(object, record);
}
inline bool DecodeStruct_StreamMonitors(const Vask::JsonObject& object,
                                        SNMPmessage::StreamMonitors& record) {
  return Decode(object, record);
}
inline bool DecodeStruct_AudioSources(const Vask::JsonObject& object,
                                      SNMPmessage::AudioSources& record) {
  return Decode(object, record);
}
inline bool DecodeStruct_SNMPmessage(const Vask::JsonObject& object, SNMPmessage& record) {
  return Decode(object, record);
}
inline void DestroyUnion_messageType(SNMPmessage::messageType& choice) {
  DestroyUnion(kUnionTable<SNMPmessage::messageType>, &choice);
}
inline SNMPmessage::messageType::~messageType() {
  DestroyUnion_messageType(*this);
}

// A list of entities with the fault of each. The agent does not interpret it.
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
  static constexpr Field kRows[] = {
      Text<&SNMPsequence::entries::m_friendlyName>("friendlyName"),
      Text<&SNMPsequence::entries::m_errorDescription>("errorDescription"),
  };
};

template <>
struct Description<SNMPsequence> {
  static constexpr Field kRows[] = {
      Text<&SNMPsequence::m_sequenceType>("sequenceType"),
      List<&SNMPsequence::m_entries>("entries"),
  };
};

inline bool DecodeStruct_SNMPsequence(const Vask::JsonObject& object, SNMPsequence& record) {
  return Decode(object, record);
}

}  // namespace Messages
