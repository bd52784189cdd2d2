// Makes frames for the target "envelope". Bytes that change by chance seldom give a message
// that is decoded: its name must be known, and its fields must be complete. So this mutator
// also writes messages from the tables of the codec, with few faults, and puts other values
// into a text.

#include <algorithm>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "messages/Catalogue.h"
#include "messages/Fields.h"
#include "messages/GlobalOptions.h"
#include "messages/GlobalOptions2.h"
#include "messages/Processes.h"
#include "messages/SNMPmessage.h"
#include "messages/SNMPtrap.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);

namespace {

using Messages::Field;
using Messages::FieldKind;
using Messages::RecordTable;

struct Message {
  const char* name;
  const RecordTable* record;
};
constexpr Message kMessages[] = {
#define FUZZ_MESSAGE(name, body, role) {#name, &Messages::kRecordTable<Messages::name>},
    MESSAGES_CATALOGUE(FUZZ_MESSAGE)
#undef FUZZ_MESSAGE
};

class Generator {
 public:
  explicit Generator(unsigned seed) : m_random(seed) {}

  // 0 to count - 1.
  std::size_t Below(std::size_t count) { return m_random() % count; }
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  std::string Frame() {
    const Message* message = &kMessages[Below(std::size(kMessages))];
    while (message->record->count == 0 && !OneIn(64))
      message = &kMessages[Below(std::size(kMessages))];
    const std::string id = OneIn(2) ? ",\"id\":" + Value() : "";
    return std::string("{\"name\":\"") + message->name + "\"" + id +
           ",\"data\":" + Record(*message->record) + "}";
  }

  // A value of any kind.
  std::string Value() {
    static constexpr const char* kValues[] = {
        "0",    "1",    "-1",    "1024", "1025", "2147483647", "-2147483649", "1.5",  "1e400",
        "true", "null", "false", "\"\"", "{}",   "[]",         "{\"\":{}}",   "[[]]", "\"7\""};
    return OneIn(8) ? Text(257) : kValues[Below(std::size(kValues))];
  }

 private:
  std::string Record(const RecordTable& table) {
    std::string members;
    for (std::size_t i = 0; i < table.count; ++i) {
      if (OneIn(20)) continue;  // a missing field
      members += (members.empty() ? "\"" : ",\"") + std::string(table.fields[i].name.Text()) +
                 "\":" + (OneIn(20) ? Value() : FieldValue(table.fields[i]));
    }
    return "{" + members + "}";
  }

  std::string FieldValue(const Field& field) {
    switch (field.kind) {
      case FieldKind::Text:
        return Text(field.capacity);
      case FieldKind::Integer:
        return OneIn(8) ? Value() : std::to_string(Below(1024));
      case FieldKind::Real:
        return std::to_string(Below(9)) + ".5";
      case FieldKind::Record:
        return Record(*field.record);
      case FieldKind::List:
        return List(*field.record);
      case FieldKind::Union:
        return Choice(*field.choice);
    }
    return Value();
  }

  // Short, or about as long as allowed.
  std::string Text(std::size_t capacity) {
    const std::size_t length = OneIn(16) ? capacity - 1 + Below(3) : Below(4);
    return "\"" + std::string(length, 'x') + "\"";
  }

  std::string List(const RecordTable& element) {
    std::string members;
    for (std::size_t i = Below(4); i > 0; --i) {
      const std::string key(OneIn(8) ? 127 + Below(2) : i, 'k');
      members += (members.empty() ? "\"" : ",\"") + key + "\":" + Record(element);
    }
    return "{" + members + "}";
  }

  std::string Choice(const Messages::UnionTable& table) {
    const Messages::Alternative& alternative = table.alternatives[Below(table.count)];
    const std::string record = alternative.record != nullptr ? Record(*alternative.record) : "{}";
    return std::string("{\"") + alternative.name.Text() + "\":" + record + "}";
  }

  std::minstd_rand m_random;
};

// Replaces one text, number or word by another value, so that the brackets around it stay
// complete.
void ReplaceValue(std::string& text, Generator& generator) {
  std::vector<std::pair<std::size_t, std::size_t>> values;  // begin, end
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    if (text[at] == '"') {
      at = std::min(text.find('"', at + 1), text.size() - 1) + 1;
    } else {
      while (at < text.size() && std::strchr("{}[]:,\" \n", text[at]) == nullptr) ++at;
    }
    if (at > begin) values.emplace_back(begin, at);
    if (at == begin) ++at;
  }
  if (values.empty()) return;
  const auto [begin, end] = values[generator.Below(values.size())];
  text.replace(begin, end - begin, generator.Value());
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed) {
  Generator generator(seed);
  if (!generator.OneIn(4)) return LLVMFuzzerMutate(data, size, capacity);
  std::string text(data, data + size);
  if (generator.OneIn(4)) {
    text = generator.Frame();
  } else {
    ReplaceValue(text, generator);
  }
  const std::size_t length = std::min(text.size(), capacity);
  std::copy_n(text.begin(), length, data);
  return length;
}
