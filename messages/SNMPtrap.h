#pragma once

#include <cstdint>

#include "messages/Codec.h"

namespace Messages {

// Reports to the main process that the agent has raised a trap. The tag of the only
// field says which; no alternative carries fields.
struct SNMPtrap {
  struct trapType {
    enum Tag : std::uint32_t {
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

    std::uint32_t m_tag = kEmpty;

    ~trapType();  // DestroyUnion_trapType
  };
  using enum trapType::Tag;

  trapType m_trapType;
};

template <>
struct Description<SNMPtrap::trapType> {
  using U = SNMPtrap::trapType;
  static constexpr char kPath[] = "SNMPtrap::trapType";
  static constexpr Alternative kAlternatives[] = {
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamsOK),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamsFailed),
      MESSAGES_EMPTY_ALTERNATIVE(U, AudioSourcesOK),
      MESSAGES_EMPTY_ALTERNATIVE(U, AudioSourcesFailed),
      MESSAGES_EMPTY_ALTERNATIVE(U, AudioSilenceDetectPassed),
      MESSAGES_EMPTY_ALTERNATIVE(U, AudioSilenceDetectFailed),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamsFailedUpdated),
      MESSAGES_EMPTY_ALTERNATIVE(U, AudioSourcesFailedUpdated),
      MESSAGES_EMPTY_ALTERNATIVE(U, AudioSilenceDetectFailedUpdated),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamMonitorsOK),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamMonitorsFailed),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamMonitorsFailedUpdated),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamMonitorsSilenceDetectPassed),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamMonitorsSilenceDetectFailed),
      MESSAGES_EMPTY_ALTERNATIVE(U, StreamMonitorsSilenceDetectFailedUpdated),
  };
};

template <>
struct Description<SNMPtrap> {
  static constexpr Field kRows[] = {
      Union<&SNMPtrap::m_trapType>(),
  };
};

inline bool DecodeStruct_SNMPtrap(const Vask::JsonObject& object, SNMPtrap& record) {
  return Decode(object, record);
}
// Null, after a report, if the trap has no type. The caller owns the object.
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
