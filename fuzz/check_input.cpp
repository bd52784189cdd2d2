// Passes the input to the parts of corvane-check that read files and the network: images,
// SNMP responses, logs, firewall rules. Each must accept any bytes, and the JSON texts
// must stay valid.

#include <string>

#include "check/FirewallRules.h"
#include "check/Image.h"
#include "check/LogReader.h"
#include "check/Report.h"
#include "check/SnmpGet.h"
#include "fuzz/FuzzInput.h"

namespace {

void ReadImage(const std::string& bytes) {
  const Check::Image image = Check::ReadImage(bytes);
  FUZZ_EXPECT(image.exports.size() <= 4096 && image.imports.size() <= 4096);
  FUZZ_EXPECT(image.kind != Check::Image::Kind::kUnread);
}

void ReadResponse(const std::string& bytes) {
  const auto response = Check::DecodeResponse(bytes);
  if (!response) return;
  // A binding takes at least seven bytes: its own head, a name and a value.
  FUZZ_EXPECT(response->bindings.size() * 7 <= bytes.size());
  for (const Check::SnmpBinding& binding : response->bindings) {
    FUZZ_EXPECT(binding.text.size() <= bytes.size());
  }
}

void ReadLog(const std::string& bytes) {
  Check::LogReader reader;
  reader.Feed("2026-11-21", bytes);
  FUZZ_EXPECT(reader.Findings().lastLines.size() <= 3);
  FUZZ_EXPECT(!Check::MeaningOf(reader.Findings().lastError.Message()).empty());
}

void ReadRule(const std::string& bytes) {
  Check::FirewallFacts firewall;
  firewall.rules = {bytes};
  firewall.policyRules = {bytes};
  std::string limits;
  const auto passage =
      Check::PassageOf(firewall, Check::FirewallProfile{"Public", true, false, true, {}}, limits);
  FUZZ_EXPECT((passage == Check::Passage::kLimited || passage == Check::Passage::kLocalSubnet) ==
              !limits.empty());
}

void Quote(const std::string& bytes) {
  const std::string json = Check::QuotedJson(bytes);
  FUZZ_EXPECT(json.size() >= 2 && json.front() == '"' && json.back() == '"');
  for (const char c : json) FUZZ_EXPECT(static_cast<unsigned char>(c) >= 0x20);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Vask::Fuzz::Input input(data, size);
  constexpr unsigned kReaders = 5;
  const unsigned reader = input.Byte() % kReaders;
  const std::string bytes = input.Rest();
  if (reader == 0) ReadImage(bytes);
  if (reader == 1) ReadResponse(bytes);
  if (reader == 2) ReadLog(bytes);
  if (reader == 3) ReadRule(bytes);
  if (reader == 4) Quote(bytes);
  return 0;
}
