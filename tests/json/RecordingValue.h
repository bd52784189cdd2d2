#pragma once

#include <string>
#include <utility>

#include "json/Json.h"

namespace Vask::Tests {

// A value that records its name when it is deleted.
class RecordingValue final : public Json {
 public:
  RecordingValue(std::string name, std::string& deleted)
      : Json(JsonType{7}), m_name(std::move(name)), m_deleted(deleted) {}

  void Write(std::string& out) const override { out = "null"; }
  void WritePretty(std::string& out, std::uint32_t) const override { Write(out); }

 protected:
  ~RecordingValue() override { m_deleted += m_name + " "; }

 private:
  std::string m_name;
  std::string& m_deleted;
};

}  // namespace Vask::Tests
