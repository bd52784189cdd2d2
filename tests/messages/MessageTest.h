#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Src/ErrReporter.h"
#include "json/Json.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "messages/Fields.h"
#include "messages/Registrar.h"

namespace Messages::Tests {

// One fault as the error sink received it.
struct Fault {
  std::string text;
  std::string message;  // the current message, written compactly; "null" for none
};

// Keeps every fault. Any thread may report while a test reads.
class RecordingSink final : public Vask::IOnError {
 public:
  void OnError(Vask::Json* message, const char* text) override {
    Fault fault{text, "null"};
    if (message != nullptr) message->Write(fault.message);
    const std::lock_guard lock(m_mutex);
    m_faults.push_back(std::move(fault));
  }
  std::vector<Fault> Faults() const {
    const std::lock_guard lock(m_mutex);
    return m_faults;
  }
  void Clear() {
    const std::lock_guard lock(m_mutex);
    m_faults.clear();
  }

 private:
  mutable std::mutex m_mutex;
  std::vector<Fault> m_faults;
};

// Parses a text, which must be a JSON object.
inline Vask::JsonRef<Vask::JsonObject> ParseObject(const std::string& text) {
  Vask::ParseResult result;
  Vask::Json* value = Vask::Parse(result, text.c_str());
  if (value == nullptr || value->Type() != Vask::JsonType::Object) {
    ADD_FAILURE() << "no JSON object: " << text << " (" << result.errorMessage << ")";
    if (value != nullptr) value->Release();
    value = new Vask::JsonObject();
  }
  return Vask::JsonRef<Vask::JsonObject>(static_cast<Vask::JsonObject*>(value));
}

inline std::string Compact(const Vask::Json& value) {
  std::string text;
  value.Write(text);
  return text;
}

// Returns the keys and elements of a list in its order. The list still owns them.
template <class E>
std::vector<std::pair<std::string, const E*>> Elements(const KeyedList<E>& list) {
  std::vector<std::pair<std::string, const E*>> found;
  list.ForEach(
      "",
      [](const char* key, auto element, void* context) {
        static_cast<decltype(found)*>(context)->emplace_back(key, *element);
        return true;
      },
      &found);
  return found;
}

// Starts and ends with the registrar as its constructor leaves it, apart from the
// sink. Checks that every JSON value that a test makes is destroyed.
class MessageTest : public ::testing::Test {
 protected:
  MessageTest() : m_alive(Vask::Json::Constructed() - Vask::Json::Destroyed()) {
    registrar.SetErrorSink(&m_sink);
  }
  ~MessageTest() override {
    registrar.SetErrorSink(nullptr);
    registrar.SetSender(nullptr);
    registrar.SetFrom("");
    EXPECT_EQ(m_alive, Vask::Json::Constructed() - Vask::Json::Destroyed());
  }

  // Returns the texts reported since the last call.
  std::vector<std::string> Reports() {
    std::vector<std::string> texts;
    for (const Fault& fault : m_sink.Faults()) texts.push_back(fault.text);
    m_sink.Clear();
    return texts;
  }
  std::vector<Fault> Faults() { return m_sink.Faults(); }

  Registrar& registrar = Registrar::Instance();

 private:
  RecordingSink m_sink;
  const unsigned m_alive;
};

using Texts = std::vector<std::string>;

}  // namespace Messages::Tests
