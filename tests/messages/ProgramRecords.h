#pragma once

#include <cstdint>
#include <string>

#include "messages/Codec.h"

namespace Messages::Tests {

// A record with everything that rows can describe, like the protocol's program
// messages: a keyed list whose elements hold a record with a union. The union's
// alternatives hold a list and another union.
struct CreateProgramMP3 {
  struct streams {
    struct Stream {
      struct MP3 {
        std::int32_t m_encodebitratekbps = 0;
        std::int32_t m_encodechannels = 0;
      };
      struct AAC {
        struct codecs {
          std::int32_t m_encodebitratekbps = 0;
          std::int32_t m_encodechannels = 0;
        };
        struct options {
          enum : std::uint32_t { kLowDelay, kQuality, kEmpty };

          std::uint32_t m_tag = kEmpty;

          ~options();
        };

        options m_options;  // declared before the list and destroyed after it
        KeyedList<codecs> m_codecs;
      };
      struct instance {
        enum : std::uint32_t { kMP3, kAAC, kEmpty };

        std::uint32_t m_tag = kEmpty;
        union {
          MP3 m_MP3;
          AAC m_AAC;
        };

        instance() {}
        ~instance();
        instance(const instance&) = delete;
        instance& operator=(const instance&) = delete;
      };

      char m_name[9] = "";
      instance m_instance;
    };

    Stream m_Stream;
  };

  double m_inputgainl = 0.0;
  std::int32_t m_fade_duration = 0;
  KeyedList<streams> m_streams;
};

// A record with everything that can be encoded.
struct ProgramSummary {
  struct Level {
    std::int32_t m_peak = 0;
  };
  struct state {
    enum : std::uint32_t { kStopped, kPlaying, kEmpty };

    std::uint32_t m_tag = kEmpty;
    union {
      Level m_Playing{};
    };
  };

  char m_Title[17] = "";
  std::int32_t m_Count = 0;
  Level m_Level;
  state m_state;
};

}  // namespace Messages::Tests

namespace Messages {

using Program = Tests::CreateProgramMP3;
using ProgramStream = Program::streams::Stream;

template <>
struct Description<ProgramStream::MP3> {
  static constexpr char kDecoder[] = "DecodeStruct_MP3";
  static constexpr Field kRows[] = {
      Integer<&ProgramStream::MP3::m_encodebitratekbps>("encodebitratekbps", Between(8, 320)),
      Integer<&ProgramStream::MP3::m_encodechannels>("encodechannels", Between(1, 2)),
  };
};

template <>
struct Description<ProgramStream::AAC::codecs> {
  static constexpr char kDecoder[] = "DecodeDict_codecs";
  static constexpr Field kRows[] = {
      Integer<&ProgramStream::AAC::codecs::m_encodebitratekbps>("encodebitratekbps",
                                                                Between(8, 320)),
      Integer<&ProgramStream::AAC::codecs::m_encodechannels>("encodechannels", Between(1, 2)),
  };
};

template <>
struct Description<ProgramStream::AAC::options> {
  static constexpr char kPath[] = "CreateProgramMP3::streams::Stream::instance::AAC::options";
  static constexpr Alternative kAlternatives[] = {
      MESSAGES_EMPTY_ALTERNATIVE(ProgramStream::AAC::options, LowDelay),
      MESSAGES_EMPTY_ALTERNATIVE(ProgramStream::AAC::options, Quality)};
};

template <>
struct Description<ProgramStream::AAC> {
  static constexpr Field kRows[] = {
      List<&ProgramStream::AAC::m_codecs>("codecs"),
      Union<&ProgramStream::AAC::m_options>(),
  };
};

template <>
struct Description<ProgramStream::instance> {
  static constexpr char kPath[] = "CreateProgramMP3::streams::Stream::instance";
  static constexpr Alternative kAlternatives[] = {
      MESSAGES_ALTERNATIVE(ProgramStream::instance, MP3),
      MESSAGES_ALTERNATIVE(ProgramStream::instance, AAC),
  };
};

template <>
struct Description<ProgramStream> {
  static constexpr Field kRows[] = {
      Text<&ProgramStream::m_name>("name"),
      Union<&ProgramStream::m_instance>(),
  };
};

template <>
struct Description<Program::streams> {
  static constexpr Field kRows[] = {SubRecord<&Program::streams::m_Stream>("Stream")};
};

template <>
struct Description<Program> {
  static constexpr char kDecoder[] = "DecodeStruct_CreateProgramMP3";
  static constexpr Field kRows[] = {
      Real<&Program::m_inputgainl>("inputgainl"),
      Integer<&Program::m_fade_duration>("fade_duration", AtLeast(0)),
      List<&Program::m_streams>("streams"),
  };
};

template <>
struct Description<Tests::ProgramSummary::Level> {
  static constexpr Field kRows[] = {Integer<&Tests::ProgramSummary::Level::m_peak>("Peak")};
};

template <>
struct Description<Tests::ProgramSummary::state> {
  static constexpr char kPath[] = "ProgramSummary::state";
  static constexpr Alternative kAlternatives[] = {
      MESSAGES_EMPTY_ALTERNATIVE(Tests::ProgramSummary::state, Stopped),
      MESSAGES_ALTERNATIVE(Tests::ProgramSummary::state, Playing),
  };
};

template <>
struct Description<Tests::ProgramSummary> {
  static constexpr Field kRows[] = {
      Text<&Tests::ProgramSummary::m_Title>("Title"),
      Integer<&Tests::ProgramSummary::m_Count>("Count"),
      SubRecord<&Tests::ProgramSummary::m_Level>("Level"),
      Union<&Tests::ProgramSummary::m_state>(),
  };
};

inline void DestroyUnion_options(ProgramStream::AAC::options& choice) {
  DestroyUnion(kUnionTable<ProgramStream::AAC::options>, &choice);
}
inline ProgramStream::AAC::options::~options() {
  DestroyUnion_options(*this);
}

inline void DestroyUnion_instance(ProgramStream::instance& choice) {
  DestroyUnion(kUnionTable<ProgramStream::instance>, &choice);
}
inline ProgramStream::instance::~instance() {
  DestroyUnion_instance(*this);
}

}  // namespace Messages
