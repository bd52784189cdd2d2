#include <benchmark/benchmark.h>

#include "benchmarks/messages/PeerDecoders.h"
#include "messages/Registrar.h"
#include "tests/support/UpdateFrames.h"

// Decodes the four frames of one update: parse, envelope, record, dispatch to the
// handler, release. One iteration processes all four. The other decoders pass their
// records to the handler in the same way.
namespace Messages::Benchmarks {
namespace {

using Vask::Tests::kUpdateFrames;

// The sum of the decoded values, so that the compiler cannot remove work.
std::int64_t s_sum = 0;

void Take(const SNMPmessage& message, std::int32_t id, void*) {
  const auto& choice = message.m_messageType;
  s_sum += std::int64_t{id} + choice.m_tag;
  s_sum += choice.m_tag == SNMPmessage::kProduct ? choice.m_Product.m_Name[0]
                                                 : choice.m_AudioSources.m_Count;
}

void DecodeOurs(benchmark::State& state) {
  Registrar& registrar = Registrar::Instance();
  registrar.Subscribe<SNMPmessage>(Take);
  for ([[maybe_unused]] const auto& iteration : state) {
    for (const char* frame : kUpdateFrames) {
      if (!registrar.OnJsonMessageText(frame)) state.SkipWithError("a frame was refused");
    }
  }
  benchmark::DoNotOptimize(s_sum);
  registrar.Unsubscribe<SNMPmessage>(Take);
}
BENCHMARK(DecodeOurs);

void DecodePeer(benchmark::State& state, bool (*decode)(const char*, SNMPmessage&, std::int32_t&)) {
  Registrar& registrar = Registrar::Instance();
  registrar.Subscribe<SNMPmessage>(Take);
  for ([[maybe_unused]] const auto& iteration : state) {
    for (const char* frame : kUpdateFrames) {
      SNMPmessage message;
      std::int32_t id = 0;
      if (!decode(frame, message, id)) state.SkipWithError("a frame was refused");
      registrar.Dispatch(message, id);
    }
  }
  benchmark::DoNotOptimize(s_sum);
  registrar.Unsubscribe<SNMPmessage>(Take);
}
BENCHMARK_CAPTURE(DecodePeer, nlohmann, DecodeWithNlohmann);
BENCHMARK_CAPTURE(DecodePeer, rapidjson, DecodeWithRapidJson);

// A message without a subscriber, the last one of the catalogue: parse and match.
void SkipLastName(benchmark::State& state) {
  Registrar& registrar = Registrar::Instance();
  for ([[maybe_unused]] const auto& iteration : state) {
    benchmark::DoNotOptimize(
        registrar.OnJsonMessageText(R"({"name":"SetNtpConfiguration","data":{},"id":0})"));
  }
}
BENCHMARK(SkipLastName);

// Only the comparisons with the names of the catalogue.
void MatchLastName(benchmark::State& state) {
  for ([[maybe_unused]] const auto& iteration : state) {
    benchmark::DoNotOptimize(FindInCatalogue("SetNtpConfiguration"));
  }
}
BENCHMARK(MatchLastName);

}  // namespace
}  // namespace Messages::Benchmarks
