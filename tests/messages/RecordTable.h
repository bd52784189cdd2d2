#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "json/JsonObject.h"

namespace Messages::Tests {

// One field as the tests expect it, written by hand and not taken from the record's
// own rows.
struct ExpectedField {
  std::string name;
  unsigned capacity;  // 0: an integer
  std::string (*value)(const void* record);
  bool limited = false;  // an integer of 0 to 1024
};

// One record: its fields in order, whether it is a partial update, every field's value in
// a new record, and a function that decodes it and returns the result and every field's
// value.
struct ExpectedRecord {
  struct Outcome {
    bool decoded;
    std::vector<std::string> values;
  };

  std::string name;
  bool partial;
  std::vector<ExpectedField> fields;
  std::vector<std::string> initial;
  std::function<Outcome(const Vask::JsonObject& body)> decode;
};

inline std::ostream& operator<<(std::ostream& out, const ExpectedRecord& record) {
  return out << record.name;
}

// Makes an ExpectedRecord of record type R for a decoder of it.
template <class R>
ExpectedRecord Expect(const char* name, bool (*decoder)(const Vask::JsonObject&, R&),
                      std::vector<ExpectedField> fields, bool partial = false) {
  const auto values = [fields](const R& record) {
    std::vector<std::string> texts;
    for (const ExpectedField& field : fields) texts.push_back(field.value(&record));
    return texts;
  };
  const auto decode = [values, decoder](const Vask::JsonObject& body) {
    R record{};
    const bool decoded = decoder(body, record);
    return ExpectedRecord::Outcome{decoded, values(record)};
  };
  return {name, partial, fields, values(R{}), decode};
}

// The rows, for record type R.
#define EXPECT_TEXT(R, field, capacity)                                                          \
  ExpectedField {                                                                                \
#field, capacity,                                                                            \
        [](const void* record) { return std::string(static_cast<const R*>(record)->m_##field); } \
  }
#define EXPECT_INTEGER(R, field)                                                            \
  ExpectedField {                                                                           \
#field, 0,                                                                              \
        [](const void*                                                                      \
               record) { return std::to_string(static_cast<const R*>(record)->m_##field); } \
  }
#define EXPECT_COUNT(R, field)                                                                    \
  ExpectedField {                                                                                 \
#field, 0,                                                                                    \
        [](const void*                                                                            \
               record) { return std::to_string(static_cast<const R*>(record)->m_##field); }, true \
  }

// Every record of the protocol that has texts and integers only.
const std::vector<ExpectedRecord>& FlatRecords();

}  // namespace Messages::Tests
