#include "messages/Catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace Messages::Tests {
namespace {

// The protocol's names in matching order, written by hand. An arrow marks the answer
// to the request on the line above.
constexpr const char* kNames[] = {
    "Confirmation",
    "GetLogsList",
    "-> LogsList",
    "GetGlobalOptions",
    "-> GlobalOptions",
    "GetGlobalOptions2",
    "-> GlobalOptions2",
    "UpdateGlobalOptions",
    "UpdateGlobalOptions2",
    "GetProductVersion",
    "-> ProductVersion",
    "GetProcessList",
    "-> ProcessList",
    "GetProcessList2",
    "-> ProcessList2",
    "GetProcessInfo",
    "-> ProcessInfo",
    "GetNetworkAdapters",
    "-> NetworkAdapters",
    "StopInstance",
    "GetAudioDeviceList",
    "-> AudioDevices",
    "GetAudioDeviceList2",
    "-> AudioDevices2",
    "GetAudioOutputDeviceList",
    "-> AudioOutputDevices",
    "GetAudioOutputGuidDeviceList",
    "-> AudioOutputGuidDevices",
    "GetPresetList",
    "-> Presets",
    "GetPresetList2",
    "-> Presets2",
    "GetPreset",
    "UpdatePresetParameters",
    "UpdatePreset",
    "CreatePreset",
    "DeletePreset",
    "GetMetadataFilterList",
    "-> MetadataFilterList",
    "GetMetadataFilterList2",
    "-> MetadataFilterList2",
    "GetMetadataSourceList",
    "-> MetadataSourceList",
    "GetMetadata2SourceList",
    "-> Metadata2SourceList",
    "GetMetadata2RecentEvents",
    "CreateMetadata2Source",
    "DeleteMetadata2Source",
    "GetMetadataSource",
    "DeleteMetadataSource",
    "CreateMetadataSource",
    "UpdateMetadataSource",
    "GetTandemChannelsList",
    "-> TandemChannelsList",
    "GetAudioSourceList",
    "-> AudioSources",
    "GetAudioSourceList2",
    "-> AudioSources2",
    "GetAudioSource",
    "CreateAudioSource",
    "UpdateAudioSource",
    "CreateAudioSource2",
    "UpdateAudioSource2",
    "DeleteAudioSource",
    "GetProgramList",
    "-> ProgramList",
    "GetProgramList2",
    "-> ProgramList2",
    "GetProgram",
    "GetProgramActive",
    "-> ProgramActive",
    "DeleteProgram",
    "CreateProgramAudioProcessor",
    "UpdateProgramAudioProcessor",
    "CreateProgramMP3",
    "UpdateProgramMP3",
    "CreateProgramAAC",
    "UpdateProgramAAC",
    "CreateProgramAACMBR",
    "UpdateProgramAACMBR",
    "CreateProgramAudioProcessor2",
    "UpdateProgramAudioProcessor2",
    "CreateProgramInternalAudioProcessor",
    "UpdateProgramInternalAudioProcessor",
    "GetWatermarkingOptions",
    "-> WatermarkingOptions",
    "GenerateWatermarkingFile",
    "ProcessUploadedFile",
    "CreateProgramAudioPlayer",
    "UpdateProgramAudioPlayer",
    "CreateProgramMP3_2",
    "UpdateProgramMP3_2",
    "CreateProgramAAC2",
    "UpdateProgramAAC2",
    "CreateProgramAACMBR2",
    "UpdateProgramAACMBR2",
    "GetMeters",
    "UpdateMeters",
    "GetAllMeters",
    "UpdateAllMeters",
    "GetProgramStreamsList",
    "-> ProgramStreams",
    "GetProgramParametersList",
    "-> ProgramParameters",
    "GetSchedulesList",
    "-> SchedulesList",
    "DeleteSchedule",
    "CreateSchedule",
    "SNMPupdate",
    "SNMPupdateFinished",
    "SNMPmessage",
    "SNMPsequence",
    "SNMPtrap",
    "SwitchEvents",
    "GetSwitchEvent",
    "CreateSwitchEvent",
    "UpdateSwitchEvent",
    "DeleteSwitchEvent",
    "GetDiagStatusEntries",
    "UpdateDiagStatusEntries",
    "GetNtpConfiguration",
    "-> NtpConfiguration",
    "SetNtpConfiguration",
};

using Names = std::vector<std::string>;

Names NamesOf(const std::vector<CatalogueEntry>& entries) {
  Names names;
  for (const CatalogueEntry& entry : entries) {
    names.push_back((entry.role == MessageRole::ANSWER ? "-> " : "") + std::string(entry.name));
  }
  return names;
}

const std::vector<CatalogueEntry> kEntries(std::begin(kCatalogue), std::end(kCatalogue));
const Names kExpected(std::begin(kNames), std::end(kNames));

TEST(CatalogueTest, HoldsEveryNameInOrderAndEachAnswerAfterItsRequest) {
  EXPECT_EQ(kExpected, NamesOf(kEntries));
}

TEST(CatalogueTest, SwappedNeighboursAreNoticed) {
  for (std::size_t i = 0; i + 1 < kEntries.size(); ++i) {
    std::vector<CatalogueEntry> swapped = kEntries;
    std::swap(swapped[i], swapped[i + 1]);
    EXPECT_NE(kExpected, NamesOf(swapped)) << kEntries[i].name;
  }
}

TEST(CatalogueTest, IndexOfATypeIsThePlaceOfItsName) {
  EXPECT_EQ("Confirmation", kCatalogue[kCatalogueIndex<Confirmation>].name);
  EXPECT_EQ("SNMPmessage", kCatalogue[kCatalogueIndex<SNMPmessage>].name);
  EXPECT_EQ("SetNtpConfiguration", kCatalogue[kCatalogueIndex<SetNtpConfiguration>].name);
  EXPECT_EQ(kCatalogueSize - 1, kCatalogueIndex<SetNtpConfiguration>);
}

TEST(CatalogueTest, EveryNameIsFoundAtItsPlaceInAnyLetterCase) {
  for (std::size_t i = 0; i < kCatalogueSize; ++i) {
    std::string upper(kCatalogue[i].name);
    std::string lower = upper;
    for (char& c : upper) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    for (char& c : lower) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    EXPECT_EQ(i, FindInCatalogue(kCatalogue[i].name)) << upper;
    EXPECT_EQ(i, FindInCatalogue(upper)) << upper;
    EXPECT_EQ(i, FindInCatalogue(lower)) << lower;
  }
}

TEST(CatalogueTest, NamesAreMatchedWhole) {
  EXPECT_EQ(kCatalogueIndex<Presets2>, FindInCatalogue("presets2"));
  EXPECT_EQ(kCatalogueIndex<Presets2>, FindInCatalogue("PRESETS2"));
  EXPECT_EQ(kCatalogueIndex<Presets>, FindInCatalogue("presets"));
  for (const char* name : {"", "Preset", "Presets3", "Presets22", " Presets", "Presets ", "SNMP",
                           "SNMPmessages", "Snmp-message"}) {
    EXPECT_EQ(kCatalogueSize, FindInCatalogue(name)) << name;
  }
}

TEST(CatalogueTest, OnlyAsciiLettersFold) {
  EXPECT_EQ(kCatalogueSize, FindInCatalogue("CreateProgramMP3\x7F"
                                            "2"));  // '_' is 0x5F
  EXPECT_EQ(kCatalogueSize, FindInCatalogue("Pre\xC5\xBF"
                                            "ets"));  // a long s
}

}  // namespace
}  // namespace Messages::Tests
