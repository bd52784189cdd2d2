#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

// The catalogue: every message of the protocol, in matching order, one line per
// message. This is the only list of messages: types, names, handler lists,
// dispatch and the table of docs/wire-protocol.md follow it.
//
//   X(name, body, role)
//     body  RECORD: a header of this folder defines the record and its decoder.
//           FIELDLESS: nothing is read and any object is accepted.
//     role  ANSWER: the response to the request on the line above. MESSAGE: any other.
//
// Names are matched whole and without regard to case. A released message keeps its
// place. A trailing 2 marks an extended version; both versions stay.
#define MESSAGES_CATALOGUE(X)                                \
  /* General */                                              \
  X(Confirmation, RECORD, MESSAGE)                           \
  X(GetLogsList, FIELDLESS, MESSAGE)                         \
  X(LogsList, FIELDLESS, ANSWER)                             \
  /* Global options */                                       \
  X(GetGlobalOptions, FIELDLESS, MESSAGE)                    \
  X(GlobalOptions, RECORD, ANSWER)                           \
  X(GetGlobalOptions2, FIELDLESS, MESSAGE)                   \
  X(GlobalOptions2, RECORD, ANSWER)                          \
  X(UpdateGlobalOptions, RECORD, MESSAGE)                    \
  X(UpdateGlobalOptions2, RECORD, MESSAGE)                   \
  /* Product and processes */                                \
  X(GetProductVersion, FIELDLESS, MESSAGE)                   \
  X(ProductVersion, RECORD, ANSWER)                          \
  X(GetProcessList, FIELDLESS, MESSAGE)                      \
  X(ProcessList, RECORD, ANSWER)                             \
  X(GetProcessList2, FIELDLESS, MESSAGE)                     \
  X(ProcessList2, RECORD, ANSWER)                            \
  X(GetProcessInfo, FIELDLESS, MESSAGE)                      \
  X(ProcessInfo, RECORD, ANSWER)                             \
  X(GetNetworkAdapters, FIELDLESS, MESSAGE)                  \
  X(NetworkAdapters, FIELDLESS, ANSWER)                      \
  X(StopInstance, FIELDLESS, MESSAGE)                        \
  /* Audio devices */                                        \
  X(GetAudioDeviceList, FIELDLESS, MESSAGE)                  \
  X(AudioDevices, FIELDLESS, ANSWER)                         \
  X(GetAudioDeviceList2, FIELDLESS, MESSAGE)                 \
  X(AudioDevices2, FIELDLESS, ANSWER)                        \
  X(GetAudioOutputDeviceList, RECORD, MESSAGE)               \
  X(AudioOutputDevices, FIELDLESS, ANSWER)                   \
  X(GetAudioOutputGuidDeviceList, FIELDLESS, MESSAGE)        \
  X(AudioOutputGuidDevices, FIELDLESS, ANSWER)               \
  /* Presets */                                              \
  X(GetPresetList, FIELDLESS, MESSAGE)                       \
  X(Presets, FIELDLESS, ANSWER)                              \
  X(GetPresetList2, FIELDLESS, MESSAGE)                      \
  X(Presets2, FIELDLESS, ANSWER)                             \
  X(GetPreset, FIELDLESS, MESSAGE)                           \
  X(UpdatePresetParameters, FIELDLESS, MESSAGE)              \
  X(UpdatePreset, FIELDLESS, MESSAGE)                        \
  X(CreatePreset, FIELDLESS, MESSAGE)                        \
  X(DeletePreset, FIELDLESS, MESSAGE)                        \
  /* Metadata */                                             \
  X(GetMetadataFilterList, FIELDLESS, MESSAGE)               \
  X(MetadataFilterList, FIELDLESS, ANSWER)                   \
  X(GetMetadataFilterList2, FIELDLESS, MESSAGE)              \
  X(MetadataFilterList2, FIELDLESS, ANSWER)                  \
  X(GetMetadataSourceList, FIELDLESS, MESSAGE)               \
  X(MetadataSourceList, FIELDLESS, ANSWER)                   \
  X(GetMetadata2SourceList, FIELDLESS, MESSAGE)              \
  X(Metadata2SourceList, FIELDLESS, ANSWER)                  \
  X(GetMetadata2RecentEvents, FIELDLESS, MESSAGE)            \
  X(CreateMetadata2Source, FIELDLESS, MESSAGE)               \
  X(DeleteMetadata2Source, FIELDLESS, MESSAGE)               \
  X(GetMetadataSource, FIELDLESS, MESSAGE)                   \
  X(DeleteMetadataSource, FIELDLESS, MESSAGE)                \
  X(CreateMetadataSource, FIELDLESS, MESSAGE)                \
  X(UpdateMetadataSource, FIELDLESS, MESSAGE)                \
  /* Audio-over-IP channels */                               \
  X(GetTandemChannelsList, FIELDLESS, MESSAGE)               \
  X(TandemChannelsList, FIELDLESS, ANSWER)                   \
  /* Audio sources */                                        \
  X(GetAudioSourceList, FIELDLESS, MESSAGE)                  \
  X(AudioSources, FIELDLESS, ANSWER)                         \
  X(GetAudioSourceList2, FIELDLESS, MESSAGE)                 \
  X(AudioSources2, FIELDLESS, ANSWER)                        \
  X(GetAudioSource, FIELDLESS, MESSAGE)                      \
  X(CreateAudioSource, FIELDLESS, MESSAGE)                   \
  X(UpdateAudioSource, FIELDLESS, MESSAGE)                   \
  X(CreateAudioSource2, FIELDLESS, MESSAGE)                  \
  X(UpdateAudioSource2, FIELDLESS, MESSAGE)                  \
  X(DeleteAudioSource, FIELDLESS, MESSAGE)                   \
  /* Programs */                                             \
  X(GetProgramList, FIELDLESS, MESSAGE)                      \
  X(ProgramList, FIELDLESS, ANSWER)                          \
  X(GetProgramList2, FIELDLESS, MESSAGE)                     \
  X(ProgramList2, FIELDLESS, ANSWER)                         \
  X(GetProgram, FIELDLESS, MESSAGE)                          \
  X(GetProgramActive, FIELDLESS, MESSAGE)                    \
  X(ProgramActive, FIELDLESS, ANSWER)                        \
  X(DeleteProgram, FIELDLESS, MESSAGE)                       \
  X(CreateProgramAudioProcessor, FIELDLESS, MESSAGE)         \
  X(UpdateProgramAudioProcessor, FIELDLESS, MESSAGE)         \
  X(CreateProgramMP3, FIELDLESS, MESSAGE)                    \
  X(UpdateProgramMP3, FIELDLESS, MESSAGE)                    \
  X(CreateProgramAAC, FIELDLESS, MESSAGE)                    \
  X(UpdateProgramAAC, FIELDLESS, MESSAGE)                    \
  X(CreateProgramAACMBR, FIELDLESS, MESSAGE)                 \
  X(UpdateProgramAACMBR, FIELDLESS, MESSAGE)                 \
  X(CreateProgramAudioProcessor2, FIELDLESS, MESSAGE)        \
  X(UpdateProgramAudioProcessor2, FIELDLESS, MESSAGE)        \
  X(CreateProgramInternalAudioProcessor, FIELDLESS, MESSAGE) \
  X(UpdateProgramInternalAudioProcessor, FIELDLESS, MESSAGE) \
  /* Watermarking and uploads */                             \
  X(GetWatermarkingOptions, FIELDLESS, MESSAGE)              \
  X(WatermarkingOptions, FIELDLESS, ANSWER)                  \
  X(GenerateWatermarkingFile, FIELDLESS, MESSAGE)            \
  X(ProcessUploadedFile, FIELDLESS, MESSAGE)                 \
  /* More programs */                                        \
  X(CreateProgramAudioPlayer, FIELDLESS, MESSAGE)            \
  X(UpdateProgramAudioPlayer, FIELDLESS, MESSAGE)            \
  X(CreateProgramMP3_2, FIELDLESS, MESSAGE)                  \
  X(UpdateProgramMP3_2, FIELDLESS, MESSAGE)                  \
  X(CreateProgramAAC2, FIELDLESS, MESSAGE)                   \
  X(UpdateProgramAAC2, FIELDLESS, MESSAGE)                   \
  X(CreateProgramAACMBR2, FIELDLESS, MESSAGE)                \
  X(UpdateProgramAACMBR2, FIELDLESS, MESSAGE)                \
  /* Meters */                                               \
  X(GetMeters, FIELDLESS, MESSAGE)                           \
  X(UpdateMeters, FIELDLESS, MESSAGE)                        \
  X(GetAllMeters, FIELDLESS, MESSAGE)                        \
  X(UpdateAllMeters, FIELDLESS, MESSAGE)                     \
  /* Streams and parameters of a program */                  \
  X(GetProgramStreamsList, FIELDLESS, MESSAGE)               \
  X(ProgramStreams, FIELDLESS, ANSWER)                       \
  X(GetProgramParametersList, FIELDLESS, MESSAGE)            \
  X(ProgramParameters, FIELDLESS, ANSWER)                    \
  /* Schedules */                                            \
  X(GetSchedulesList, FIELDLESS, MESSAGE)                    \
  X(SchedulesList, FIELDLESS, ANSWER)                        \
  X(DeleteSchedule, FIELDLESS, MESSAGE)                      \
  X(CreateSchedule, FIELDLESS, MESSAGE)                      \
  /* SNMP */                                                 \
  X(SNMPupdate, FIELDLESS, MESSAGE)                          \
  X(SNMPupdateFinished, FIELDLESS, MESSAGE)                  \
  X(SNMPmessage, RECORD, MESSAGE)                            \
  X(SNMPsequence, RECORD, MESSAGE)                           \
  X(SNMPtrap, RECORD, MESSAGE)                               \
  /* Switch events */                                        \
  X(SwitchEvents, FIELDLESS, MESSAGE)                        \
  X(GetSwitchEvent, FIELDLESS, MESSAGE)                      \
  X(CreateSwitchEvent, FIELDLESS, MESSAGE)                   \
  X(UpdateSwitchEvent, FIELDLESS, MESSAGE)                   \
  X(DeleteSwitchEvent, FIELDLESS, MESSAGE)                   \
  /* Diagnostics */                                          \
  X(GetDiagStatusEntries, FIELDLESS, MESSAGE)                \
  X(UpdateDiagStatusEntries, FIELDLESS, MESSAGE)             \
  /* Time synchronisation */                                 \
  X(GetNtpConfiguration, FIELDLESS, MESSAGE)                 \
  X(NtpConfiguration, FIELDLESS, ANSWER)                     \
  X(SetNtpConfiguration, FIELDLESS, MESSAGE)

namespace Messages {

// The record types of all messages. Those without fields are complete here; for the
// others include the header that defines the record.
#define MESSAGES_DECLARE_RECORD(name) struct name;
#define MESSAGES_DECLARE_FIELDLESS(name) \
  struct name {};
#define MESSAGES_DECLARE(name, body, role) MESSAGES_DECLARE_##body(name)
MESSAGES_CATALOGUE(MESSAGES_DECLARE)
#undef MESSAGES_DECLARE
#undef MESSAGES_DECLARE_FIELDLESS
#undef MESSAGES_DECLARE_RECORD

enum class MessageBody { RECORD, FIELDLESS };
enum class MessageRole { MESSAGE, ANSWER };

struct CatalogueEntry {
  std::string_view name;
  MessageBody body;
  MessageRole role;
};

inline constexpr CatalogueEntry kCatalogue[] = {
#define MESSAGES_ENTRY(name, body, role) {#name, MessageBody::body, MessageRole::role},
    MESSAGES_CATALOGUE(MESSAGES_ENTRY)
#undef MESSAGES_ENTRY
};

inline constexpr std::size_t kCatalogueSize = std::size(kCatalogue);

namespace Internal {
enum class Position : std::size_t {
#define MESSAGES_POSITION(name, body, role) name,
  MESSAGES_CATALOGUE(MESSAGES_POSITION)
#undef MESSAGES_POSITION
};
}  // namespace Internal

// The place of message type M in the catalogue, from 0. Other types do not compile.
template <class M>
inline constexpr std::size_t kCatalogueIndex = [] {
  static_assert(sizeof(M) == 0, "not a message of the catalogue");
  return kCatalogueSize;
}();
#define MESSAGES_INDEX(name, body, role)               \
  template <>                                          \
  inline constexpr std::size_t kCatalogueIndex<name> = \
      static_cast<std::size_t>(Internal::Position::name);
MESSAGES_CATALOGUE(MESSAGES_INDEX)
#undef MESSAGES_INDEX

// Compares the name with every entry in order, and returns the place of the first
// match, or kCatalogueSize if there is none. Any thread; allocates nothing.
[[nodiscard]] std::size_t FindInCatalogue(std::string_view name) noexcept;

}  // namespace Messages
