#include "tests/hostile/Inputs.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "net/Framing.h"
#include "simulator/CorvaneServer.h"

namespace Hostile {

using Inputs = std::vector<Input>;

namespace {

constexpr char kProduct[] = R"({"messageType":{"Product":{"Name":"N","Version":"V"}}})";

// A number or an array takes two bytes of text, an empty text or object three. Each is
// a value on the heap, and an object with members also has a dictionary.
constexpr std::size_t kMemoryPerByteOfTinyValues = 64;

std::string Frame(std::string_view body) {
  std::string frame;
  Vask::AppendFrame(frame, body);
  return frame;
}

std::string Message(std::string_view name, std::string_view data) {
  return Simulator::CorvaneServer::FrameOfMessage(name, data);
}

std::string Repeated(std::string_view part, std::size_t times) {
  std::string text;
  text.reserve(part.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += part;
  return text;
}

// The first bytes of other programs that find the port open.
void AddStrangers(Inputs& inputs) {
  const std::string tls(
      "\x16\x03\x01\x00\x2f\x01\x00\x00\x2b\x03\x03"
      "0123456789abcdef0123456789abcdef\x00\x00\x04\x13\x01\x13\x02\x01\x00",
      52);
  inputs.push_back(
      {"HTTP request", "GET / HTTP/1.1\r\nHost: localhost:16969\r\n\r\n", Then::AgentDrops});
  inputs.push_back(
      {"HTTP answer", "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK", Then::AgentDrops});
  inputs.push_back({"TLS greeting", tls, Then::AgentDrops});
  inputs.push_back({"SSH greeting", "SSH-2.0-x\r\n", Then::AgentDrops});
  inputs.push_back({"SMTP greeting", "220 mail ESMTP\r\n", Then::AgentDrops});
}

// The agent reads a size in 32 bits without a check: 4294967296 more is the same size.
void AddSizes(Inputs& inputs) {
  const std::string body = "{\"name\":\"x\",\"id\":0,\"data\":{}}";
  inputs.push_back({"size 0", "0#", Then::AgentDrops});
  inputs.push_back({"no size", "#", Then::AgentDrops});
  inputs.push_back({"size 1", "1#x", Then::InStep});
  inputs.push_back({"leading zeros", "000000" + Frame(body), Then::InStep});
  inputs.push_back(
      {"size of 30 digits", std::string(30, '9') + "#" + std::string(1000, 'x'), Then::PeerDrops});
  inputs.push_back({"size of 1,000 digits", std::string(1000, '1') + "#x", Then::PeerDrops});
  inputs.push_back({"digits without end", std::string(100'000, '7'), Then::PeerDrops});
  inputs.push_back({"size 2147483647", "2147483647#" + std::string(1000, 'x'), Then::PeerDrops});
  inputs.push_back({"size 2147483648", "2147483648#x", Then::AgentDrops});
  inputs.push_back({"size 4294967295", "4294967295#x", Then::AgentDrops});
  inputs.push_back({"size 4294967296", "4294967296#", Then::AgentDrops});
  inputs.push_back({"size 4294967296 and the body's",
                    std::to_string(std::uint64_t{4294967296} + body.size()) + "#" + body,
                    Then::InStep});
  inputs.push_back({"negative size", "-5#hello", Then::AgentDrops});
  inputs.push_back({"size with a blank", " 5#hello", Then::AgentDrops});
}

void AddCutFrames(Inputs& inputs) {
  const std::string frame = StreamsFrame(1, 0);
  for (std::size_t length = 1; length < frame.size(); ++length) {
    inputs.push_back({"frame cut after byte " + std::to_string(length), frame.substr(0, length),
                      Then::PeerDrops});
  }
}

// Keys of additional members at each level of a message, and of members that it reads.
void AddKeys(Inputs& inputs, std::size_t longest) {
  for (const std::size_t length : {std::size_t{127}, std::size_t{128}, std::size_t{129}, longest}) {
    const std::string key(length, 'k');
    const std::string name = "key of " + std::to_string(length) + " in ";
    const std::string member = "\"" + key + "\":1";
    inputs.push_back(
        {name + "a skipped message", Message("ProcessList", "{" + member + "}"), Then::InStep});
    inputs.push_back(
        {name + "an unknown message", Message("NoSuchMessage", "{" + member + "}"), Then::InStep});
    inputs.push_back(
        {name + "a handled message", Message("SNMPmessage", "{" + member + "}"), Then::InStep});
    inputs.push_back({name + "a handled message's choice",
                      Message("SNMPmessage", "{\"messageType\":{" + member + "}}"), Then::InStep});
    inputs.push_back({name + "a handled message's record",
                      Message("SNMPmessage", "{\"messageType\":{\"Product\":{" + member +
                                                 ",\"Name\":\"N\",\"Version\":\"V\"}}}"),
                      Then::InStep});
    inputs.push_back(
        {name + "the envelope",
         Frame("{" + member + ",\"name\":\"SNMPmessage\",\"id\":0,\"data\":" + kProduct + "}"),
         Then::InStep});
  }
}

void AddTexts(Inputs& inputs, std::size_t longest) {
  const std::string text(longest, 't');
  inputs.push_back({"long name of a message", Message(text, "{}"), Then::InStep});
  inputs.push_back({"long text in a record",
                    Message("SNMPmessage", R"({"messageType":{"Product":{"Name":")" + text +
                                               R"(","Version":"V"}}})"),
                    Then::InStep});
  inputs.push_back({"long number",
                    Frame("{\"name\":\"x\",\"data\":{},\"id\":" + std::string(longest, '9') + "}"),
                    Then::InStep});
  inputs.push_back({"no JSON, long", Frame(std::string(longest, 'x')), Then::InStep});
  inputs.push_back({"blanks, long", Frame(std::string(longest, ' ')), Then::InStep});
}

void AddNesting(Inputs& inputs, std::size_t depth) {
  struct Row {
    const char* name;
    const char* open;
    const char* value;
    const char* close;
  };
  const Row rows[] = {
      {"arrays", "[", "1", "]"},
      {"objects", "{\"a\":", "1", "}"},
      {"arrays and objects", "[{\"a\":", "1", "}]"},
  };
  for (const Row& row : rows) {
    const std::string open = Repeated(row.open, depth);
    const std::string whole = open + row.value + Repeated(row.close, depth);
    const std::string name = row.name + std::string(" nested ") + std::to_string(depth);
    const auto add = [&](const std::string& what, const std::string& bytes) {
      inputs.push_back({name + what, bytes, Then::InStep, kMemoryPerByteOfTinyValues});
    };
    add("", Frame(whole));
    add(", cut", Frame(open));
    add(" in a handled message", Message("SNMPmessage", "{\"a\":" + whole + "}"));
  }
}

// Messages that consist of the smallest possible values.
void AddManyValues(Inputs& inputs, std::size_t length) {
  for (const char* const value : {"1", "null", "\"\"", "[]", "{}", "\"a\"", "{\"a\":1}"}) {
    const std::string values = Repeated(std::string(value) + ",", length / 4) + "0";
    inputs.push_back({"many of " + std::string(value), Frame("[" + values + "]"), Then::InStep,
                      kMemoryPerByteOfTinyValues});
  }
  std::string members;
  for (std::size_t i = 0; i < length / 8; ++i) members += "\"" + std::to_string(i) + "\":1,";
  inputs.push_back({"many members", Message("SNMPmessage", "{" + members + "\"a\":1}"),
                    Then::InStep, kMemoryPerByteOfTinyValues});
}

// All kinds of bytes that are not UTF-8, and escapes without a character. They are in
// texts and in keys, of messages that the agent handles and of others that it skips.
void AddMalformedTexts(Inputs& inputs) {
  struct Row {
    const char* name;
    const char* bytes;
  };
  const Row rows[] = {
      {"first continuation byte alone", "\x80"},
      {"last continuation byte alone", "\xBF"},
      {"a run of continuation bytes", "\x80\x81\x82\x83\x84\x85"},
      {"two-byte lead alone", "\xC3"},
      {"two-byte lead before a letter", "\xC3("},
      {"overlong slash in two bytes", "\xC0\xAF"},
      {"overlong zero in two bytes", "\xC0\x80"},
      {"highest overlong in two bytes", "\xC1\xBF"},
      {"three-byte lead alone", "\xE2"},
      {"three bytes, one missing", "\xE2\x82"},
      {"three bytes, letter in the middle", "\xE2(\xA1"},
      {"overlong in three bytes", "\xE0\x80\xAF"},
      {"highest overlong in three bytes", "\xE0\x9F\xBF"},
      {"first surrogate", "\xED\xA0\x80"},
      {"last surrogate", "\xED\xBF\xBF"},
      {"pair of surrogates", "\xED\xA0\x81\xED\xB0\x80"},
      {"four-byte lead alone", "\xF0"},
      {"four bytes, one missing", "\xF0\x9F\x98"},
      {"four bytes, two missing", "\xF0\x9F"},
      {"overlong in four bytes", "\xF0\x80\x80\xAF"},
      {"highest overlong in four bytes", "\xF0\x8F\xBF\xBF"},
      {"over the last character", "\xF4\x90\x80\x80"},
      {"lead of nothing, F5", "\xF5\x80\x80\x80"},
      {"lead of five bytes", "\xF8\x88\x80\x80\x80"},
      {"lead of six bytes", "\xFC\x84\x80\x80\x80\x80"},
      {"byte FE", "\xFE"},
      {"byte FF", "\xFF"},
      {"control character", "\x01"},
      {"escaped first surrogate alone", "\\uD800"},
      {"escaped second surrogate alone", "\\uDC00"},
      {"escaped surrogates the wrong way round", "\\uDC00\\uD800"},
      {"escaped surrogate before a letter", "\\uD800\\u0041"},
      {"escape that ends early", "\\uD8"},
      {"escape of a zero", "\\u0000"},
      {"escape of nothing", "\\q"},
      {"backslash before the quote", "\\"},
  };
  for (const Row& row : rows) {
    const std::string text = std::string("\"a") + row.bytes + "\"";
    const std::string product =
        R"({"messageType":{"Product":{"Name":)" + text + R"(,"Version":"V"}}})";
    const std::string name = row.name;
    inputs.push_back({name + " in a value", Message("SNMPmessage", product), Then::InStep});
    inputs.push_back(
        {name + " in a key", Message("SNMPmessage", "{" + text + ":1}"), Then::InStep});
    inputs.push_back(
        {name + " in a skipped message", Message("ProcessList", "[" + text + "]"), Then::InStep});
    inputs.push_back({name + " as a message's name",
                      Frame("{\"name\":" + text + ",\"id\":0,\"data\":{}}"), Then::InStep});
  }
}

void AddZeros(Inputs& inputs) {
  const std::string zero(1, '\0');
  inputs.push_back({"zero for a size", zero, Then::AgentDrops});
  inputs.push_back({"zero within a size", "1" + zero + "#x", Then::AgentDrops});
  inputs.push_back({"body of one zero", "1#" + zero, Then::InStep});
  inputs.push_back({"body of zeros", "1000#" + std::string(1000, '\0'), Then::InStep});
  inputs.push_back(
      {"zero within a text", Message("SNMPmessage", "{\"a\":\"b" + zero + "c\"}"), Then::InStep});
  inputs.push_back(
      {"zero within a key", Message("SNMPmessage", "{\"b" + zero + "c\":1}"), Then::InStep});
  inputs.push_back({"zero behind the message", Frame("{}" + zero + "{}"), Then::InStep});
}

std::size_t Below(std::mt19937& random, std::size_t bound) {
  return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

}  // namespace

Scale UsualScale() {
  const char* const wish = std::getenv("CORVANE_HOSTILE");
  const bool full = wish != nullptr && std::string_view(wish) == "full";
#if defined(_WIN32)
  return full ? Scale{400, 400, 2'000, 1'000, false, 20'000}
              : Scale{100, 100, 200, 100, false, 1'000};
#else
  if (kSanitized) return {50, 1'000, 2'000, 2'000, false, 10'000};
  return full ? Scale{20'000, 1'000'000, 1'000'000, 400'000, true, 1'000'000}
              : Scale{200, 10'000, 10'000, 400'000, true, 50'000};
#endif
}

std::string StreamsFrame(int count, int errors) {
  return Message("SNMPmessage",
                 "{\"messageType\":{\"Streams\":{\"Count\":" + std::to_string(count) +
                     ",\"Errors\":" + std::to_string(errors) + "}}}");
}

std::vector<std::string> EmptyKeyFrames() {
  std::vector<std::string> frames;
  for (const std::string key : {"\"\":", "\"\\u0000\":"}) {
    for (const std::string& body : {
             "{" + key + "1}",
             "{" + key + "\"x\"}",
             "{" + key + "{}}",
             "{" + key + "[1]}",
             "{" + key + "{\"a\":1}}",
             "{\"a\":1," + key + "2}",
             "{" + key + "1," + key + "2}",
             "{\"a\":{" + key + "{" + key + "[]}}}",
         }) {
      frames.push_back(Frame(body));
    }
  }
  return frames;
}

std::string ReportedFrame(int errors) {
  const std::string number = std::to_string(errors);
  return Frame(
      "{\"name\":\"SNMPmessage\",\"id\":0,\"data\":{\"messageType\":{\"AudioSources\":{"
      "\"Count\":1,\"Errors\":" +
      number + ",\"Silence\":" + number + "}}}}");
}

Inputs ListedInputs(std::size_t longest) {
  Inputs inputs;
  AddStrangers(inputs);
  AddSizes(inputs);
  AddCutFrames(inputs);
  AddKeys(inputs, longest);
  AddTexts(inputs, longest);
  AddNesting(inputs, longest);
  AddManyValues(inputs, longest);
  AddMalformedTexts(inputs);
  AddZeros(inputs);
  return inputs;
}

// Half of them begin with a size, so that the agent reads the rest as a body.
Input RandomStream(std::mt19937& random) {
  std::string bytes;
  if (Below(random, 2) == 0) bytes = std::to_string(Below(random, 300)) + "#";
  for (std::size_t i = Below(random, 200) + 1; i > 0; --i)
    bytes += static_cast<char>(Below(random, 256));
  return {"random bytes", bytes, Then::PeerDrops};
}

Input DamagedFrame(std::mt19937& random) {
  std::string body =
      "{\"data\":" + std::string(kProduct) +
      ",\"from\":\"Corvane\",\"id\":0,\"name\":\"SNMPmessage\",\"op\":\"broadcast\"}";
  constexpr std::string_view kLikely = "{}[]\",:\\u0123456789eE+-.truefalsn \t\x80\xFF";
  for (std::size_t i = Below(random, 4) + 1; i > 0; --i) {
    const std::size_t at = Below(random, body.size());
    switch (Below(random, 3)) {
      case 0:
        body[at] = kLikely[Below(random, kLikely.size())];
        break;
      case 1:
        body.insert(at, 1, kLikely[Below(random, kLikely.size())]);
        break;
      default:
        body.erase(at, Below(random, 10) + 1);
    }
  }
  return {"damaged frame", Frame(body.empty() ? "x" : body), Then::InStep};
}

}  // namespace Hostile
