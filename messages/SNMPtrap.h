#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// A trap that was raised, reported back to the main process. The tag of its only
// field says which; no alternative carries anything else.
struct SNMPtrap {
  enum : std::uint32_t {
    kStreamsOK,
    kStreamsFailed,
    kAudioSourcesOK,
    kAudioSourcesFailed,
    kAudioSilenceDetectPassed,
    kAudioSilenceDetectFailed,
    kStreamsFailedUpdated,
    kAudioSourcesFailedUpdated,
    kAudioSilenceDetectFailedUpdated,
    kStreamMonitorsOK,
    kStreamMonitorsFailed,
    kStreamMonitorsFailedUpdated,
    kStreamMonitorsSilenceDetectPassed,
    kStreamMonitorsSilenceDetectFailed,
    kStreamMonitorsSilenceDetectFailedUpdated,
    kEmpty
  };

  struct trapType {
    static constexpr std::uint32_t kEmpty = SNMPtrap::kEmpty;

    std::uint32_t m_tag = kEmpty;

    ~trapType();  // DestroyUnion_trapType
  };

  trapType m_trapType;
};

template <>
struct Description<SNMPtrap::trapType> {
  static constexpr char kPath[] = "SNMPtrap::trapType";
  static constexpr Alternative kAlternatives[] = {
      FieldLess("StreamsOK"),
      FieldLess("StreamsFailed"),
      FieldLess("AudioSourcesOK"),
      FieldLess("AudioSourcesFailed"),
      FieldLess("AudioSilenceDetectPassed"),
      FieldLess("AudioSilenceDetectFailed"),
      FieldLess("StreamsFailedUpdated"),
      FieldLess("AudioSourcesFailedUpdated"),
      FieldLess("AudioSilenceDetectFailedUpdated"),
      FieldLess("StreamMonitorsOK"),
      FieldLess("StreamMonitorsFailed"),
      FieldLess("StreamMonitorsFailedUpdated"),
      FieldLess("StreamMonitorsSilenceDetectPassed"),
      FieldLess("StreamMonitorsSilenceDetectFailed"),
      FieldLess("StreamMonitorsSilenceDetectFailedUpdated"),
  };
};

template <>
struct Description<SNMPtrap> {
  static constexpr char kDecoder[] = "DecodeStruct_SNMPtrap";
  static constexpr Field kRows[] = {
      Union<&SNMPtrap::m_trapType>(),
  };
};

inline bool DecodeStruct_SNMPtrap(const Vask::JsonObject& object, SNMPtrap& record) {
  return Decode(object, record);
}
// Null, after a report, when the trap has no type. Otherwise the caller's.
[[nodiscard]] inline Vask::JsonObject* EncodeStruct_SNMPtrap(const SNMPtrap& record) {
  return Encode(record);
}
[[nodiscard]] inline Vask::JsonObject* EncodeUnion_trapType(const SNMPtrap::trapType& choice) {
  return EncodeUnion(kUnionTable<SNMPtrap::trapType>, &choice);
}
inline void DestroyUnion_trapType(SNMPtrap::trapType& choice) {
  DestroyUnion(kUnionTable<SNMPtrap::trapType>, &choice);
}
inline SNMPtrap::trapType::~trapType() {
  DestroyUnion_trapType(*this);
}

}  // namespace Messages
