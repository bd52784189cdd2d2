#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// One group of values from the main process: the product, or the counts of
// streams, stream monitors or audio sources. Which one it is stands in the tag
// of its only field; only the member of that name may be read then.
struct SNMPmessage {
  // The sub-records have no initialisers of their own, so that assigning to one
  // makes it the union's value; the decoder starts each from zeros.
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
  // The catalogue has a message of the same name; that is another type.
  struct AudioSources {
    std::int32_t m_Count;
    std::int32_t m_Errors;
    std::int32_t m_Silence;
  };

  enum : std::uint32_t { kProduct, kStreams, kStreamMonitors, kAudioSources, kEmpty };

  struct messageType {
    static constexpr std::uint32_t kEmpty = SNMPmessage::kEmpty;

    std::uint32_t m_tag = kEmpty;
    union {
      Product m_Product;
      Streams m_Streams;
      StreamMonitors m_StreamMonitors;
      AudioSources m_AudioSources;
    };

    ~messageType();  // DestroyUnion_messageType
  };

  messageType m_messageType;
};

// What all counts of the SNMP messages keep to.
inline constexpr Range kSnmpCount = Between(0, 1024);

template <>
struct Description<SNMPmessage::Product> {
  static constexpr char kDecoder[] = "DecodeStruct_Product";
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
  static constexpr char kPath[] = "SNMPmessage::messageType";
  static constexpr Alternative kAlternatives[] = {
      Carrying<&SNMPmessage::messageType::m_Product>("Product"),
      Carrying<&SNMPmessage::messageType::m_Streams>("Streams"),
      Carrying<&SNMPmessage::messageType::m_StreamMonitors>("StreamMonitors"),
      Carrying<&SNMPmessage::messageType::m_AudioSources>("AudioSources"),
  };
};

template <>
struct Description<SNMPmessage> {
  static constexpr char kDecoder[] = "DecodeStruct_SNMPmessage";
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

}  // namespace Messages
