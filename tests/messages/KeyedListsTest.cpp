#include "messages/Processes.h"
#include "messages/SNMPmessage.h"
#include "tests/messages/MessageTest.h"

namespace Messages::Tests {
namespace {

// Tests the messages of the protocol that consist of a keyed list.
class KeyedListsTest : public MessageTest {
 protected:
  // These return the result of the decode and the decoded values.
  std::string Sequence(const std::string& body) {
    SNMPsequence sequence;
    std::string text = DecodeStruct_SNMPsequence(*ParseObject(body), sequence) ? "true" : "false";
    text += std::string(" ") + sequence.m_sequenceType;
    for (const auto& [key, entry] : Elements(sequence.m_entries)) {
      text += " " + key + "=" + entry->m_friendlyName + "|" + entry->m_errorDescription;
    }
    return text;
  }
  std::string Processes(const std::string& body) {
    ProcessList list;
    std::string text = DecodeStruct_ProcessList(*ParseObject(body), list) ? "true" : "false";
    for (const auto& element : Elements(list.m_processes)) text += " " + element.first;
    return text;
  }
  std::string Processes2(const std::string& body) {
    ProcessList2 list;
    std::string text = DecodeStruct_ProcessList2(*ParseObject(body), list) ? "true" : "false";
    for (const auto& [key, element] : Elements(list.m_processes)) {
      const auto& info = element->m_ProcessInfo;
      text += " " + key + "=" + std::to_string(info.m_streamServerPort) + "/" +
              std::to_string(info.m_kelvo9) + "/" + std::to_string(info.m_kantar);
    }
    return text;
  }
};

TEST_F(KeyedListsTest, SequenceStartsEmpty) {
  const SNMPsequence sequence;
  EXPECT_STREQ("", sequence.m_sequenceType);
  EXPECT_TRUE(sequence.m_entries.Empty());
}

TEST_F(KeyedListsTest, ProcessesStartWithoutPortsAndSwitches) {
  const ProcessList2::processes process;
  EXPECT_EQ(process.m_ProcessInfo.m_streamServerPort, 0);
  EXPECT_EQ(process.m_ProcessInfo.m_kelvo9, 0);
  EXPECT_EQ(process.m_ProcessInfo.m_kantar, 0);
}

TEST_F(KeyedListsTest, SequenceHoldsItsEntriesByKey) {
  EXPECT_EQ("true streams s1=Main|No input s2=Backup|",
            Sequence(R"({"sequenceType": "streams", "entries": {
                "s1": {"friendlyName": "Main", "errorDescription": "No input"},
                "s2": {"friendlyName": "Backup", "errorDescription": ""}}})"));
  EXPECT_EQ("true  ", Sequence(R"({"sequenceType": "", "entries": {}})") + " ");
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, EntryWithAFaultIsLeftOut) {
  EXPECT_EQ("true t b=x|y", Sequence(R"({"sequenceType": "t", "entries": {
                "a": {"friendlyName": "Main"},
                "b": {"friendlyName": "x", "errorDescription": "y"},
                "c": {"errorDescription": "y"}}})"));
  EXPECT_EQ((Texts{"GetStrProperty: Property 'errorDescription' not found",
                   "GetStrProperty: Property 'friendlyName' not found"}),
            Reports());
}

TEST_F(KeyedListsTest, EntryTextsKeepToTheirCapacities) {
  const auto body = [](std::size_t type, std::size_t name, std::size_t description) {
    return R"({"sequenceType": ")" + std::string(type, 't') +
           R"(", "entries": {"e": {"friendlyName": ")" + std::string(name, 'n') +
           R"(", "errorDescription": ")" + std::string(description, 'd') + R"("}}})";
  };
  const std::string type(32, 't');
  EXPECT_EQ("true " + type + " e=" + std::string(64, 'n') + "|" + std::string(256, 'd'),
            Sequence(body(32, 64, 256)));
  EXPECT_EQ(Texts{}, Reports());
  EXPECT_EQ("true " + type, Sequence(body(32, 65, 256)));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'friendlyName' exceeds the max length of 64. It is "
                  "65 bytes."},
            Reports());
  EXPECT_EQ("true " + type, Sequence(body(32, 64, 257)));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'errorDescription' exceeds the max length of 256. It "
                  "is 257 bytes."},
            Reports());
  EXPECT_EQ("false ", Sequence(body(33, 64, 256)));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'sequenceType' exceeds the max length of 32. It is 33 "
                  "bytes."},
            Reports());
}

TEST_F(KeyedListsTest, SequenceNeedsItsTypeBeforeItsEntries) {
  EXPECT_EQ("false ", Sequence("{}"));
  EXPECT_EQ(Texts{"GetStrProperty: Property 'sequenceType' not found"}, Reports());
  EXPECT_EQ("false t", Sequence(R"({"sequenceType": "t"})"));
  EXPECT_EQ(Texts{"GetObjProperty: Property 'entries' not found"}, Reports());
  EXPECT_EQ("false t", Sequence(R"({"sequenceType": "t", "entries": "none"})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, EntryThatIsNoObjectFailsTheSequence) {
  EXPECT_EQ("false t a=x|y", Sequence(R"({"sequenceType": "t", "entries": {
                "a": {"friendlyName": "x", "errorDescription": "y"},
                "b": 7,
                "c": {"friendlyName": "x", "errorDescription": "y"}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, ProcessListIsASetOfNames) {
  EXPECT_EQ("true encoder monitor", Processes(R"({"processes": {"monitor": {}, "encoder": {}}})"));
  EXPECT_EQ("true encoder", Processes(R"({"processes": {"encoder": {"not": ["read", 1]}}})"));
  EXPECT_EQ("true", Processes(R"({"processes": {}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, ProcessThatIsNoObjectFailsTheList) {
  EXPECT_EQ("false a", Processes(R"({"processes": {"b": "running", "a": {}, "c": {}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, MissingProcessesAreReported) {
  EXPECT_EQ("false", Processes("{}"));
  EXPECT_EQ(Texts{"GetObjProperty: Property 'processes' not found"}, Reports());
  EXPECT_EQ("false", Processes2("{}"));
  EXPECT_EQ(Texts{"GetObjProperty: Property 'processes' not found"}, Reports());
  EXPECT_EQ("false", Processes(R"({"processes": []})"));
  EXPECT_EQ("false", Processes2(R"({"processes": 1})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, ExtendedProcessListHoldsPortsAndSwitches) {
  EXPECT_EQ("true encoder=8000/1/0 monitor=-1/2/3", Processes2(R"({"processes": {
                "encoder": {"ProcessInfo": {"streamServerPort": 8000, "kelvo9": 1, "kantar": 0}},
                "Monitor": {"ProcessInfo": {"streamServerPort": -1, "kelvo9": 2, "kantar": 3}}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, ProcessWithAFaultIsLeftOutOfTheExtendedList) {
  struct Row {
    const char* name;
    const char* element;
    Texts reports;
  };
  const Row rows[] = {
      {"no info", "{}", {"GetObjProperty: Property 'ProcessInfo' not found"}},
      {"info that is no object", R"({"ProcessInfo": "x"})", {}},
      {"no port",
       R"({"ProcessInfo": {"kelvo9": 1, "kantar": 0}})",
       {"GetIntProperty: Property 'streamServerPort' not found"}},
      {"no kelvo9",
       R"({"ProcessInfo": {"streamServerPort": 1, "kantar": 0}})",
       {"GetIntProperty: Property 'kelvo9' not found"}},
      {"no kantar",
       R"({"ProcessInfo": {"streamServerPort": 1, "kelvo9": 1}})",
       {"GetIntProperty: Property 'kantar' not found"}},
      {"port that is a text",
       R"({"ProcessInfo": {"streamServerPort": "1", "kelvo9": null}})",
       {"GetIntProperty: Property 'streamServerPort' was expected to be an int (but it is not)"}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ("true z=1/2/3", Processes2(std::string(R"({"processes": {"a": )") + row.element +
                                         R"(, "z": {"ProcessInfo":
                         {"streamServerPort": 1, "kelvo9": 2, "kantar": 3}}}})"))
        << row.name;
    EXPECT_EQ(row.reports, Reports()) << row.name;
  }
}

TEST_F(KeyedListsTest, ExtendedProcessThatIsNoObjectFailsTheList) {
  EXPECT_EQ("false", Processes2(R"({"processes": {"a": []}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(KeyedListsTest, KeyOf128CharactersIsKept) {
  const std::string key(128, 'k');
  EXPECT_EQ("true " + key, Processes(R"({"processes": {")" + key + R"(": {}}})"));
}

using KeyedListsDeathTest = KeyedListsTest;

TEST_F(KeyedListsDeathTest, KeyThatCannotBeEnumeratedEndsTheProcessAndSaysWhy) {
  const std::string body = R"({"processes": {")" + std::string(129, 'k') + R"(": {}}})";
  EXPECT_DEATH(Processes(body), "a key of more than 128 characters cannot be enumerated");
}

}  // namespace
}  // namespace Messages::Tests
