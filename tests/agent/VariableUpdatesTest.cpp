#include "agent/VariableUpdates.h"

#include "Src/ErrReporter.h"
#include "tests/agent/UpdatesFixture.h"

namespace Agent::Tests {

namespace {

using Messages::SNMPmessage;
using Lines = std::vector<std::string>;

class VariableUpdatesTest : public UpdatesTest {
 protected:
  void SendStreams(std::int32_t count, std::int32_t errors) {
    SNMPmessage message;
    message.m_messageType.m_Streams = {count, errors};
    message.m_messageType.m_tag = SNMPmessage::kStreams;
    updates.OnMessage(message);
  }
  void SendAudioSources(std::int32_t count, std::int32_t errors, std::int32_t silence) {
    SNMPmessage message;
    message.m_messageType.m_AudioSources = {count, errors, silence};
    message.m_messageType.m_tag = SNMPmessage::kAudioSources;
    updates.OnMessage(message);
  }
  void SendProduct(const std::string& name, const std::string& version) {
    SNMPmessage message;
    message.m_messageType.m_Product = {};
    name.copy(message.m_messageType.m_Product.m_Name, 128);
    version.copy(message.m_messageType.m_Product.m_Version, 64);
    message.m_messageType.m_tag = SNMPmessage::kProduct;
    updates.OnMessage(message);
  }

  static std::string TrapFrame(const std::string& trapType) {
    const std::string body = R"({"data":{"traptype":{")" + trapType +
                             R"(":{}}},"from":"SNMPd","id":0,"name":"SNMPtrap","op":"broadcast"})";
    return std::to_string(body.size()) + "#" + body;
  }
};

TEST_F(VariableUpdatesTest, ProductIsLoggedAndStored) {
  SendProduct("Corvane Main", "2.1");
  EXPECT_EQ(log.Lines(),
            Lines{"Info: Update product information: name='Corvane Main', version='2.1'\n"});
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING 'Corvane Main'");
  EXPECT_EQ(Get("P.1.1"), "0 P.1.1 = STRING '2.1'");
}

TEST_F(VariableUpdatesTest, ProductNameOverItsCapacityFillsAllOfIt) {
  const std::string name(128, 'n');
  const std::string version(64, 'v');
  SendProduct(name, version);
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING '" + name + "'");
  EXPECT_EQ(Get("P.1.1"), "0 P.1.1 = STRING '" + version + "'");
  const std::string whole(127, 'w');
  SendProduct(whole, "");
  EXPECT_EQ(Get("P.1.0"), "0 P.1.0 = STRING '" + whole + "'");
  EXPECT_EQ(Get("P.1.1"), "0 P.1.1 = STRING ''");
}

TEST_F(VariableUpdatesTest, StreamsAreLoggedAndStored) {
  SendStreams(12, 0);
  EXPECT_EQ(log.Lines(), Lines{"Info: Update streams: count=12, errors=0\n"});
  EXPECT_EQ(Get("P.2.0"), "0 P.2.0 = INT 12");
  EXPECT_EQ(Get("P.2.1"), "0 P.2.1 = INT 0");
  SendStreams(11, 3);
  EXPECT_EQ(Get("P.2.1"), "0 P.2.1 = INT 3");
}

TEST_F(VariableUpdatesTest, AudioSourcesAreLoggedAndStored) {
  SendAudioSources(7, 0, 0);
  EXPECT_EQ(log.Lines(), Lines{"Info: Update audio sources: count=7, errors=0, silence=0\n"});
  SendAudioSources(8, 2, 1);
  EXPECT_EQ(Get("P.2.2"), "0 P.2.2 = INT 8");
  EXPECT_EQ(Get("P.2.3"), "0 P.2.3 = INT 2");
  EXPECT_EQ(Get("P.2.4"), "0 P.2.4 = INT 1");
}

TEST_F(VariableUpdatesTest, OtherGroupsAreIgnored) {
  SNMPmessage monitors;
  monitors.m_messageType.m_StreamMonitors = {1, 2, 3};
  monitors.m_messageType.m_tag = SNMPmessage::kStreamMonitors;
  updates.OnMessage(monitors);
  updates.OnMessage(SNMPmessage{});
  EXPECT_TRUE(log.Lines().empty());
  EXPECT_EQ(agent.Traps().QueuedCount(), 0u);
}

TEST_F(VariableUpdatesTest, EveryFinishedUpdateIsLoggedAndTrapped) {
  updates.OnUpdateFinished();
  EXPECT_EQ(LinesBesideTraps(), Lines{"Info: SNMP variables successfully updated\n"});
  EXPECT_EQ(TakeTraps(), Traps{10});
  updates.OnUpdateFinished();
  EXPECT_EQ(TakeTraps(), Traps{10});
}

TEST_F(VariableUpdatesTest, FinishedUpdateEndsTheRequests) {
  connectNotify.OnConnected();
  updates.OnUpdateFinished();
  Pass(15'000);
  EXPECT_TRUE(link.frames.empty());
}

TEST_F(VariableUpdatesTest, LinkTrapsAreNotReportedBack) {
  connectNotify.OnConnected();
  updates.OnUpdateFinished();
  connectNotify.OnDisconnected();
  EXPECT_EQ(TakeTraps(), (Traps{10, 11}));
  EXPECT_TRUE(link.frames.empty());
}

// Each row holds successive counts and the trap that each of them raises; 0 means
// none.
TEST_F(VariableUpdatesTest, ChangeRuleHoldsForEverySequenceOfCounts) {
  struct Row {
    const char* what;
    std::vector<std::int32_t> counts;
    std::vector<int> traps;  // 1 OK, 2 Failed, 3 FailedUpdated
  };
  const Row rows[] = {
      {"nothing ever wrong", {0, 0, 0}, {0, 0, 0}},
      {"rise and fall", {3, 0}, {2, 1}},
      {"rise, change, stay, fall", {3, 5, 5, 0}, {2, 3, 0, 1}},
      {"changes downwards", {5, 3, 1, 0}, {2, 3, 3, 1}},
      {"again and again", {1, 0, 1, 0}, {2, 1, 2, 1}},
      {"largest value", {1024, 1, 1024}, {2, 3, 3}},
  };
  const AsnInteger streams[] = {0, 12, 13, 18};
  const AsnInteger errors[] = {0, 14, 15, 19};
  const AsnInteger silence[] = {0, 16, 17, 20};
  for (const Row& row : rows) {
    VariableUpdates fresh(agent, connectNotify, Messages::Registrar::Instance());
    for (std::size_t i = 0; i < row.counts.size(); ++i) {
      const auto expected = [&](const AsnInteger(&numbers)[4]) {
        const int trap = row.traps[i];
        return trap == 0 ? Traps{} : Traps{numbers[trap]};
      };
      const auto at = std::string(row.what) + ", value " + std::to_string(i);
      SNMPmessage message;
      message.m_messageType.m_Streams = {0, row.counts[i]};
      message.m_messageType.m_tag = SNMPmessage::kStreams;
      fresh.OnMessage(message);
      EXPECT_EQ(TakeTraps(), expected(streams)) << "streams: " << at;
      message.m_messageType.m_AudioSources = {0, row.counts[i], 0};
      message.m_messageType.m_tag = SNMPmessage::kAudioSources;
      fresh.OnMessage(message);
      EXPECT_EQ(TakeTraps(), expected(errors)) << "audio sources: " << at;
    }
    VariableUpdates other(agent, connectNotify, Messages::Registrar::Instance());
    for (std::size_t i = 0; i < row.counts.size(); ++i) {
      SNMPmessage message;
      message.m_messageType.m_AudioSources = {0, 0, row.counts[i]};
      message.m_messageType.m_tag = SNMPmessage::kAudioSources;
      other.OnMessage(message);
      const int trap = row.traps[i];
      EXPECT_EQ(TakeTraps(), trap == 0 ? Traps{} : Traps{silence[trap]})
          << "silence: " << row.what << ", value " << i;
    }
  }
}

TEST_F(VariableUpdatesTest, CountsAreComparedWithTheLastOnesAfterALostLink) {
  connectNotify.OnConnected();
  SendStreams(4, 2);
  connectNotify.OnDisconnected();
  TakeTraps();
  connectNotify.OnConnected();
  SendStreams(4, 2);
  EXPECT_EQ(TakeTraps(), Traps{});
  SendStreams(4, 0);
  EXPECT_EQ(TakeTraps(), Traps{12});
}

TEST_F(VariableUpdatesTest, ErrorsTrapComesBeforeTheSilenceTrap) {
  SendAudioSources(9, 1, 1);
  EXPECT_EQ(TakeTraps(), (Traps{15, 17}));
  EXPECT_EQ(link.frames,
            (Lines{TrapFrame("audiosourcesfailed"), TrapFrame("audiosilencedetectfailed")}));
}

// Records the values of the counts at the moment at which a trap is queued.
class CountsAtEachTrap final : public Vask::Tests::LinesOnlyLog {
 public:
  explicit CountsAtEachTrap(MibTable& variables) : m_variables(variables) {
    Vask::LogPrinter::Instance().SetTarget(this);
  }
  ~CountsAtEachTrap() override { Vask::LogPrinter::Instance().SetTarget(nullptr); }

  void Info(const char* text) override {
    if (std::string(text).find("Added trap") == std::string::npos) return;
    std::string note;
    for (const char* const name :
         {"StreamsErrors", "AudioSourcesCount", "AudioSourcesErrors", "AudioSourcesSilence"})
      note += std::to_string(m_variables.Find(name)->m_number->load()) + " ";
    notes.push_back(note);
  }
  void Warning(const char*) override {}
  void Error(const char*) override {}
  void Trace(const char*) override {}

  Lines notes;

 private:
  MibTable& m_variables;
};

// A manager reads the values when it receives the trap.
TEST_F(VariableUpdatesTest, ValuesAreStoredBeforeTheirTrapIsQueued) {
  const CountsAtEachTrap counts(agent.Variables());
  SendStreams(9, 3);
  SendAudioSources(8, 2, 1);
  EXPECT_EQ(counts.notes, (Lines{"3 0 0 0 ", "3 8 2 1 ", "3 8 2 1 "}));
}

TEST_F(VariableUpdatesTest, EveryChangeIsReportedBackWithItsExactBytes) {
  SendStreams(4, 1);
  SendStreams(4, 2);
  SendStreams(4, 0);
  SendAudioSources(4, 1, 0);
  SendAudioSources(4, 2, 0);
  SendAudioSources(4, 0, 0);
  SendAudioSources(4, 0, 1);
  SendAudioSources(4, 0, 2);
  SendAudioSources(4, 0, 0);
  const Lines expected{
      TrapFrame("streamsfailed"),
      TrapFrame("streamsfailedupdated"),
      TrapFrame("streamsok"),
      TrapFrame("audiosourcesfailed"),
      TrapFrame("audiosourcesfailedupdated"),
      TrapFrame("audiosourcesok"),
      TrapFrame("audiosilencedetectfailed"),
      TrapFrame("audiosilencedetectfailedupdated"),
      TrapFrame("audiosilencedetectpassed"),
  };
  EXPECT_EQ(link.frames, expected);
  EXPECT_EQ(link.frames.at(0),
            R"(99#{"data":{"traptype":{"streamsfailed":{}}},"from":"SNMPd","id":0,)"
            R"("name":"SNMPtrap","op":"broadcast"})");
  EXPECT_EQ(TakeTraps(), (Traps{13, 18, 12, 15, 19, 14, 17, 20, 16}));
}

TEST_F(VariableUpdatesTest, GroupsReportTheTagsOfTheMessage) {
  struct Row {
    const char* what;
    const ChangeGroup& group;
    std::uint32_t tags[3];
  };
  for (const Row& row : {Row{"streams errors", kStreamsErrors, {0, 1, 6}},
                         Row{"audio source errors", kAudioSourcesErrors, {2, 3, 7}},
                         Row{"silence", kAudioSourcesSilence, {4, 5, 8}}}) {
    EXPECT_EQ(row.group.ok.trapType, row.tags[0]) << row.what;
    EXPECT_EQ(row.group.failed.trapType, row.tags[1]) << row.what;
    EXPECT_EQ(row.group.failedUpdated.trapType, row.tags[2]) << row.what;
  }
}

TEST_F(VariableUpdatesTest, MissingVariablesAreSkipped) {
  SNMPExtensionAgent bare(clock, Vask::Platform::SystemThreading());
  VariableUpdates bareUpdates(bare, connectNotify, Messages::Registrar::Instance());
  SNMPmessage message;
  message.m_messageType.m_Streams = {4, 1};
  message.m_messageType.m_tag = SNMPmessage::kStreams;
  bareUpdates.OnMessage(message);
  bareUpdates.OnUpdateFinished();
  EXPECT_EQ(bare.Traps().QueuedCount(), 0u);
  EXPECT_EQ(log.Lines(), (Lines{"Info: Update streams: count=4, errors=1\n",
                                "Info: SNMP variables successfully updated\n"}));
}

}  // namespace

}  // namespace Agent::Tests
