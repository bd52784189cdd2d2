#include "messages/Codec.h"

#include <cstdio>

#include "tests/messages/MessageTest.h"
#include "tests/messages/ProgramRecords.h"
#include "tests/support/AllocationCounter.h"

namespace Messages::Tests {
namespace {

std::string Dump(const ProgramStream::AAC& aac) {
  std::string text = "AAC(";
  for (const auto& [key, codec] : Elements(aac.m_codecs)) {
    text += key + ":" + std::to_string(codec->m_encodebitratekbps) + "/" +
            std::to_string(codec->m_encodechannels) + " ";
  }
  return text + "options " + std::to_string(aac.m_options.m_tag) + ")";
}

std::string Dump(const ProgramStream::instance& instance) {
  switch (instance.m_tag) {
    case ProgramStream::instance::kMP3:
      return "MP3(" + std::to_string(instance.m_MP3.m_encodebitratekbps) + "/" +
             std::to_string(instance.m_MP3.m_encodechannels) + ")";
    case ProgramStream::instance::kAAC:
      return Dump(instance.m_AAC);
    default:
      return "tag " + std::to_string(instance.m_tag);
  }
}

// A decoded program on one line.
std::string Dump(const CreateProgramMP3& program) {
  std::string text = "gain " + std::to_string(program.m_inputgainl) + " fade " +
                     std::to_string(program.m_fade_duration);
  for (const auto& [key, element] : Elements(program.m_streams)) {
    text += " " + key + "=" + element->m_Stream.m_name + " " + Dump(element->m_Stream.m_instance);
  }
  return text;
}

// Tests the rules of rows on a record that has every kind of row.
class CodecTest : public MessageTest {
 protected:
  // Returns the result of the decode and what the record then holds.
  std::string DecodeProgram(const std::string& body) {
    CreateProgramMP3 program;
    const bool decoded = Decode(*ParseObject(body), program);
    return (decoded ? "true: " : "false: ") + Dump(program);
  }
  // The same for a program with one stream of the given instance.
  std::string DecodeInstance(const std::string& instance) {
    return DecodeProgram(R"({"inputgainl":0,"fade_duration":0,"streams":{"S":{"Stream":)"
                         R"({"name":"n","instance":)" +
                         instance + "}}}}");
  }
};

TEST_F(CodecTest, WholeRecordIsFilled) {
  EXPECT_EQ("true: gain -1.500000 fade 20 a=left MP3(128/2) b=right AAC(x:64/1 y:320/2 options 1)",
            DecodeProgram(R"({
        "inputgainl": -1.5, "fade_duration": 20,
        "streams": {
          "B": {"Stream": {"name": "right", "instance": {"AAC": {
              "codecs": {"y": {"encodebitratekbps": 320, "encodechannels": 2},
                         "x": {"encodebitratekbps": 64, "encodechannels": 1}},
              "options": {"Quality": {}}}}}},
          "a": {"Stream": {"name": "left", "instance": {"MP3": {
              "encodebitratekbps": 128, "encodechannels": 2}}}}
        }})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(CodecTest, FieldsAreReadInOrderUpToTheFirstFault) {
  EXPECT_EQ("false: gain 0.000000 fade 0", DecodeProgram("{}"));
  EXPECT_EQ(Texts{"GetFloatProperty: Property 'inputgainl' not found"}, Reports());
  EXPECT_EQ("false: gain 2.000000 fade 0",
            DecodeProgram(R"({"inputgainl":2,"fade_duration":"x"})"));
  EXPECT_EQ(
      Texts{"GetIntProperty: Property 'fade_duration' was expected to be an int (but it is not)"},
      Reports());
}

TEST_F(CodecTest, RealTakesIntegralNumbersAndNothingElse) {
  EXPECT_EQ("false: gain 0.000000 fade 0", DecodeProgram(R"({"inputgainl":"2"})"));
  EXPECT_EQ(
      Texts{"GetFloatProperty: Property 'inputgainl' was expected to be a double (but it is not)"},
      Reports());
}

TEST_F(CodecTest, LowerBoundAloneAllowsTheBoundAndEverythingAbove) {
  for (const char* value : {"0", "2147483647"}) {
    EXPECT_EQ("true: gain 0.000000 fade " + std::string(value),
              DecodeProgram(R"({"inputgainl":0,"streams":{},"fade_duration":)" +
                            std::string(value) + "}"));
  }
  EXPECT_EQ("false: gain 0.000000 fade -1",
            DecodeProgram(R"({"inputgainl":0,"streams":{},"fade_duration":-1})"));
  EXPECT_EQ(Texts{"DecodeStruct_CreateProgramMP3: m_fade_duration expected to be greater than 0. "
                  "It is -1."},
            Reports());
}

TEST_F(CodecTest, AlternativeReportsRangesUnderItsOwnName) {
  struct Row {
    const char* bitrate;
    const char* channels;
    const char* report;
  };
  const Row rows[] = {
      {"8", "1", ""},
      {"320", "2", ""},
      {"7", "1", "DecodeStruct_MP3: m_encodebitratekbps expected to be greater than 8. It is 7."},
      {"321", "1",
       "DecodeStruct_MP3: m_encodebitratekbps expected to be less than 320. It is 321."},
      {"8", "0", "DecodeStruct_MP3: m_encodechannels expected to be greater than 1. It is 0."},
      {"8", "3", "DecodeStruct_MP3: m_encodechannels expected to be less than 2. It is 3."},
  };
  for (const Row& row : rows) {
    const std::string instance = std::string(R"({"MP3":{"encodebitratekbps":)") + row.bitrate +
                                 R"(,"encodechannels":)" + row.channels + "}}";
    const bool good = *row.report == '\0';
    EXPECT_EQ(good ? std::string("true: gain 0.000000 fade 0 s=n MP3(") + row.bitrate + "/" +
                         row.channels + ")"
                   : "true: gain 0.000000 fade 0",
              DecodeInstance(instance))
        << instance;
    EXPECT_EQ(good ? Texts{} : Texts{row.report}, Reports()) << instance;
  }
}

TEST_F(CodecTest, ElementDecoderReportsUnderItsOwnName) {
  struct Row {
    const char* element;
    const char* report;
  };
  const Row rows[] = {
      {R"({"encodebitratekbps":64,"encodechannels":3})",
       "DecodeDict_codecs: m_encodechannels expected to be less than 2. It is 3."},
      {R"({"encodebitratekbps":64,"encodechannels":0})",
       "DecodeDict_codecs: m_encodechannels expected to be greater than 1. It is 0."},
      {R"({"encodebitratekbps":321,"encodechannels":1})",
       "DecodeDict_codecs: m_encodebitratekbps expected to be less than 320. It is 321."},
      {R"({"encodebitratekbps":7,"encodechannels":1})",
       "DecodeDict_codecs: m_encodebitratekbps expected to be greater than 8. It is 7."},
      {R"({"encodebitratekbps":64})", "GetIntProperty: Property 'encodechannels' not found"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ("true: gain 0.000000 fade 0 s=n AAC(good:8/2 options 0)",
              DecodeInstance(std::string(R"({"AAC":{"codecs":{"bad":)") + row.element +
                             R"(,"good":{"encodebitratekbps":8,"encodechannels":2}},)"
                             R"("options":{"LowDelay":{}}}})"))
        << row.element;
    EXPECT_EQ(Texts{row.report}, Reports()) << row.element;
  }
}

TEST_F(CodecTest, MissingListIsReported) {
  EXPECT_EQ("false: gain 0.000000 fade 0", DecodeProgram(R"({"inputgainl":0,"fade_duration":0})"));
  EXPECT_EQ(Texts{"GetObjProperty: Property 'streams' not found"}, Reports());
}

TEST_F(CodecTest, ListThatIsNoObjectFailsWithoutAReport) {
  EXPECT_EQ("false: gain 0.000000 fade 0",
            DecodeProgram(R"({"inputgainl":0,"fade_duration":0,"streams":[]})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(CodecTest, ListMemberThatIsNoObjectEndsTheDecode) {
  EXPECT_EQ("false: gain 0.000000 fade 0 a=n MP3(8/1)",
            DecodeProgram(R"({"inputgainl":0,"fade_duration":0,"streams":{
                "c":{"Stream":{"name":"n","instance":{"MP3":{"encodebitratekbps":8,"encodechannels":1}}}},
                "b":"text",
                "a":{"Stream":{"name":"n","instance":{"MP3":{"encodebitratekbps":8,"encodechannels":1}}}}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(CodecTest, ElementWithAFaultDeepInsideIsDropped) {
  struct Row {
    const char* name;
    const char* element;
    Texts reports;
  };
  const Row rows[] = {
      {"no sub-record", "{}", {"GetObjProperty: Property 'Stream' not found"}},
      {"sub-record that is no object", R"({"Stream":1})", {}},
      {"text too long",
       R"({"Stream":{"name":"123456789"}})",
       {"GetStrProperty: Property 'name' exceeds the max length of 8. It is 9 bytes."}},
      {"no union", R"({"Stream":{"name":"n"}})", {"GetObjProperty: Property 'instance' not found"}},
      {"union that is no object", R"({"Stream":{"name":"n","instance":7}})", {}},
      {"no alternative", R"({"Stream":{"name":"n","instance":{"WAV":{}}}})", {}},
      {"nested union without alternative",
       R"({"Stream":{"name":"n","instance":{"AAC":{"codecs":{},"options":{}}}}})",
       {}},
      {"nested union missing",
       R"({"Stream":{"name":"n","instance":{"AAC":{"codecs":{}}}}})",
       {"GetObjProperty: Property 'options' not found"}},
      {"nested list member no object",
       R"({"Stream":{"name":"n","instance":{"AAC":{"codecs":{"c":1},"options":{"Quality":{}}}}}})",
       {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ("true: gain 0.000000 fade 0 z=n MP3(8/1)",
              DecodeProgram(std::string(R"({"inputgainl":0,"fade_duration":0,"streams":{"a":)") +
                            row.element +
                            R"(,"z":{"Stream":{"name":"n","instance":{"MP3":
                            {"encodebitratekbps":8,"encodechannels":1}}}}}})"))
        << row.name;
    EXPECT_EQ(row.reports, Reports()) << row.name;
  }
}

TEST_F(CodecTest, DroppedElementIsFreed) {
  const auto body =
      ParseObject(R"({"inputgainl":0,"fade_duration":0,"streams":{"a":{},"b":{"Stream":1}}})");
  const auto decode = [&] {
    CreateProgramMP3 program;
    EXPECT_TRUE(Decode(*body, program));
    EXPECT_EQ(Texts{"GetObjProperty: Property 'Stream' not found"}, Reports());
  };
  decode();  // The sink keeps the memory of its list.
  const auto before = Vask::Tests::HeldBlocks();
  decode();
  EXPECT_EQ(before, Vask::Tests::HeldBlocks());
}

TEST_F(CodecTest, FirstAlternativeInTagOrderDecidesAloneEvenIfItFails) {
  EXPECT_EQ("true: gain 0.000000 fade 0",
            DecodeInstance(R"({"AAC":{"codecs":{},"options":{"Quality":{}}},"MP3":{}})"));
  EXPECT_EQ(Texts{"GetIntProperty: Property 'encodebitratekbps' not found"}, Reports());
}

TEST_F(CodecTest, AlternativeThatIsNoObjectIsPassedOver) {
  EXPECT_EQ(
      "true: gain 0.000000 fade 0 s=n AAC(options 0)",
      DecodeInstance(R"({"MP3":null,"aac":{"codecs":{},"options":{"LowDelay":{},"Quality":{}}}})"));
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(CodecTest, AlternativeBehindTheCountOfTheTableIsNoneOfTheUnion) {
  static constexpr Alternative kAlternatives[] = {{.tag = 0, .name = "First"},
                                                  {.tag = 1, .name = "Second"}};
  static constexpr UnionTable kTable = {"Choice", "Choice", kAlternatives, 1, [](void* choice) {
                                          return static_cast<std::uint32_t*>(choice);
                                        }};
  static constexpr Field kRows[] = {{.name = "choice",
                                     .kind = FieldKind::Union,
                                     .member = [](void* record) { return record; },
                                     .choice = &kTable}};
  constexpr RecordTable kRecord = {nullptr, kRows, 1, Presence::Required};
  std::uint32_t tag = 77;
  EXPECT_FALSE(DecodeRecord(*ParseObject(R"({"choice":{"second":{}}})"), kRecord, &tag));
  EXPECT_EQ(77u, tag);
  EXPECT_TRUE(DecodeRecord(*ParseObject(R"({"choice":{"first":{}}})"), kRecord, &tag));
  EXPECT_EQ(0u, tag);
}

TEST_F(CodecTest, FailedAlternativeLeavesTheTagEmpty) {
  ProgramStream::instance choice;
  ProgramStream stream;
  EXPECT_FALSE(Decode(
      *ParseObject(R"({"name":"n","instance":{"AAC":{"codecs":{"c":{}},"options":[]}}})"), stream));
  EXPECT_EQ(ProgramStream::instance::kEmpty, stream.m_instance.m_tag);
  EXPECT_EQ(Texts{"GetIntProperty: Property 'encodebitratekbps' not found"}, Reports());
}

TEST_F(CodecTest, KeysOfElementsAreFoldedAndInDictionaryOrder) {
  CreateProgramMP3 program;
  const std::string stream =
      R"({"Stream":{"name":"n","instance":{"MP3":{"encodebitratekbps":8,"encodechannels":1}}}})";
  ASSERT_TRUE(Decode(
      *ParseObject(R"({"inputgainl":0,"fade_duration":0,"streams":{"b":)" + stream + R"(,"A":)" +
                   stream + R"(,"\u00e9":)" + stream + R"(,"ab":)" + stream + "}}"),
      program));
  Texts keys;
  for (const auto& element : Elements(program.m_streams)) keys.push_back(element.first);
  EXPECT_EQ((Texts{"\xC3\xA9", "a", "ab", "b"}), keys);
}

TEST_F(CodecTest, DestroyingAUnionDestroysWhatItsAlternativeOwns) {
  ProgramStream stream;
  ASSERT_TRUE(
      Decode(*ParseObject(R"({"name":"n","instance":{"AAC":{"options":{"Quality":{}},"codecs":{
          "c":{"encodebitratekbps":8,"encodechannels":1}}}}})"),
             stream));
  DestroyUnion_instance(stream.m_instance);  // the address sanitizer sees a leak
  EXPECT_EQ(ProgramStream::instance::kEmpty, stream.m_instance.m_tag);
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(CodecTest, DestroyingAnEmptyUnionIsSilent) {
  ProgramStream::instance choice;
  DestroyUnion_instance(choice);
  EXPECT_EQ(ProgramStream::instance::kEmpty, choice.m_tag);
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(CodecTest, NestedUnionsNameTheirWholePath) {
  ProgramStream::instance choice;
  choice.m_tag = 77;
  DestroyUnion_instance(choice);
  EXPECT_EQ(Texts{"DestroyUnion_instance: Union tag not understood for "
                  "'CreateProgramMP3::streams::Stream::instance' (tag=77)"},
            Reports());
  EXPECT_EQ(ProgramStream::instance::kEmpty, choice.m_tag);

  ProgramStream::AAC::options options;
  options.m_tag = 0xFFFFFFFF;
  DestroyUnion_options(options);
  EXPECT_EQ(Texts{"DestroyUnion_options: Union tag not understood for "
                  "'CreateProgramMP3::streams::Stream::instance::AAC::options' (tag=-1)"},
            Reports());
}

TEST_F(CodecTest, RecordsDestructorReportsAndResetsItsUnions) {
  {
    CreateProgramMP3 program;
    auto* element = new CreateProgramMP3::streams();
    element->m_Stream.m_instance.m_tag = 3;
    program.m_streams.Insert("s", element);
  }
  EXPECT_EQ(Texts{"DestroyUnion_instance: Union tag not understood for "
                  "'CreateProgramMP3::streams::Stream::instance' (tag=3)"},
            Reports());
}

TEST_F(CodecTest, ListDeclaredAfterAUnionIsDestroyedFirst) {
  struct Mixed {
    ProgramStream::AAC::options m_options;
    KeyedList<ProgramStream> m_list;
  };
  {
    Mixed mixed;
    mixed.m_options.m_tag = 9;
    auto* element = new ProgramStream();
    element->m_instance.m_tag = 3;
    mixed.m_list.Insert("e", element);
  }
  EXPECT_EQ((Texts{"DestroyUnion_instance: Union tag not understood for "
                   "'CreateProgramMP3::streams::Stream::instance' (tag=3)",
                   "DestroyUnion_options: Union tag not understood for "
                   "'CreateProgramMP3::streams::Stream::instance::AAC::options' (tag=9)"}),
            Reports());
}

TEST_F(CodecTest, RecordIsEncodedMemberByMember) {
  ProgramSummary summary;
  std::snprintf(summary.m_Title, sizeof summary.m_Title, "Morning");
  summary.m_Count = -3;
  summary.m_Level.m_peak = 7;
  summary.m_state.m_tag = ProgramSummary::state::kPlaying;
  summary.m_state.m_Playing.m_peak = 9;
  const Vask::JsonRef<Vask::JsonObject> object(Encode(summary));
  ASSERT_TRUE(object);
  EXPECT_EQ(R"({"count":-3,"level":{"peak":7},"state":{"playing":{"peak":9}},"title":"Morning"})",
            Compact(*object));
  EXPECT_EQ(1, object->RefCount());
}

TEST_F(CodecTest, EncodedRecordDecodesToTheSame) {
  ProgramSummary summary;
  summary.m_Count = 12;
  summary.m_state.m_tag = ProgramSummary::state::kStopped;
  const Vask::JsonRef<Vask::JsonObject> object(Encode(summary));
  ASSERT_TRUE(object);
  ProgramSummary again;
  EXPECT_TRUE(Decode(*object, again));
  EXPECT_EQ(12, again.m_Count);
  EXPECT_EQ(ProgramSummary::state::kStopped, again.m_state.m_tag);
}

TEST_F(CodecTest, RecordWithAnEmptyUnionCannotBeEncoded) {
  const ProgramSummary summary;
  EXPECT_EQ(nullptr, Encode(summary));
  EXPECT_EQ(
      Texts{"EncodeUnion_state: Union tag not understood for 'ProgramSummary::state' (tag=2)"},
      Reports());
}

TEST_F(CodecTest, AlternativeWhoseOwnUnionIsEmptyCannotBeEncoded) {
  struct Choice {
    std::uint32_t tag = 0;
    ProgramSummary summary;
  };
  static constexpr Alternative kAlternatives[] = {
      {.tag = 0,
       .name = "Summary",
       .record = &kRecordTable<ProgramSummary>,
       .member = [](void* choice) -> void* { return &static_cast<Choice*>(choice)->summary; }}};
  constexpr UnionTable kTable = {"Choice", "Choice", kAlternatives, 1,
                                 [](void* choice) { return &static_cast<Choice*>(choice)->tag; }};
  Choice choice;
  EXPECT_EQ(nullptr, EncodeUnion(kTable, &choice));
  EXPECT_EQ(
      Texts{"EncodeUnion_state: Union tag not understood for 'ProgramSummary::state' (tag=2)"},
      Reports());
  choice.summary.m_state.m_tag = ProgramSummary::state::kStopped;
  const Vask::JsonRef<Vask::JsonObject> object(EncodeUnion(kTable, &choice));
  EXPECT_TRUE(object);
}

}  // namespace
}  // namespace Messages::Tests
