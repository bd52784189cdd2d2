#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <array>
#include <nlohmann/json.hpp>
#include <string>

#include "json/JsonParser.h"
#include "json/JsonRef.h"

// Reads and releases the texts of the four messages that carry values, and compares this
// with two common parsers. messages_benchmark measures the decoding.

namespace {

constexpr std::array<const char*, 4> kFrames = {
    R"({"name":"SNMPmessage","from":"Corvane","id":0,"op":"broadcast","data":{"messageType":)"
    R"({"Product":{"Name":"Corvane","Version":"4.2.1"}}}})",
    R"({"name":"SNMPmessage","from":"Corvane","id":0,"op":"broadcast","data":{"messageType":)"
    R"({"Streams":{"Count":12,"Errors":1}}}})",
    R"({"name":"SNMPmessage","from":"Corvane","id":0,"op":"broadcast","data":{"messageType":)"
    R"({"StreamMonitors":{"Count":12,"Errors":1,"Silence":0}}}})",
    R"({"name":"SNMPmessage","from":"Corvane","id":0,"op":"broadcast","data":{"messageType":)"
    R"({"AudioSources":{"Count":12,"Errors":1,"Silence":0}}}})"};

void ParseCorvane(benchmark::State& state) {
  for ([[maybe_unused]] const auto& iteration : state) {
    for (const char* frame : kFrames) {
      Vask::ParseResult result;
      Vask::JsonRef<Vask::Json> root(Vask::Parse(result, frame));
      benchmark::DoNotOptimize(root.Get());
    }
  }
}
BENCHMARK(ParseCorvane);

void ParseNlohmann(benchmark::State& state) {
  for ([[maybe_unused]] const auto& iteration : state) {
    for (const char* frame : kFrames) {
      auto root = nlohmann::json::parse(frame, nullptr, false);
      benchmark::DoNotOptimize(&root);
    }
  }
}
BENCHMARK(ParseNlohmann);

void ParseRapidJson(benchmark::State& state) {
  for ([[maybe_unused]] const auto& iteration : state) {
    for (const char* frame : kFrames) {
      rapidjson::Document root;
      root.Parse(frame);
      benchmark::DoNotOptimize(&root);
    }
  }
}
BENCHMARK(ParseRapidJson);

}  // namespace
