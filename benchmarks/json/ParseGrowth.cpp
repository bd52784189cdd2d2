// What it costs to read a text and to release its values, by the size of the text.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "json/JsonParser.h"
#include "json/JsonRef.h"

namespace {

void ParseAndRelease(benchmark::State& state, const std::string& text) {
  for ([[maybe_unused]] const auto& iteration : state) {
    Vask::ParseResult result;
    const Vask::JsonRef<Vask::Json> root(Vask::Parse(result, text.c_str()));
    if (root.Get() == nullptr) state.SkipWithError("the text was refused");
  }
}

// An array of about that many bytes: numbers, texts and small objects.
void ParseArray(benchmark::State& state) {
  const auto bytes = static_cast<std::size_t>(state.range(0));
  std::string text = "[0";
  while (text.size() + 1 < bytes) text += R"(,1234,"stream17",{"count":5})";
  ParseAndRelease(state, text + ']');
}
BENCHMARK(ParseArray)->RangeMultiplier(2)->Range(100, 10'000'000);

using Keys = std::vector<std::string>;

Keys Numbered(std::int64_t count) {
  Keys keys;
  for (std::int64_t i = 0; i < count; ++i) keys.push_back("stream" + std::to_string(i));
  return keys;
}

Keys Shuffled(Keys keys) {
  std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
  return keys;
}

void ParseKeys(benchmark::State& state, const Keys& keys) {
  std::string text = "{";
  for (const std::string& key : keys) text += (text.size() == 1 ? "\"" : ",\"") + key + "\":1";
  ParseAndRelease(state, text + '}');
}

// In ascending order, as every writer of the protocol sends keys.
void ParseObject(benchmark::State& state) {
  Keys keys = Numbered(state.range(0));
  std::sort(keys.begin(), keys.end());
  ParseKeys(state, keys);
}
BENCHMARK(ParseObject)->RangeMultiplier(2)->Range(10, 100'000);

// The search for the place of a key touches memory that was not used for a long time.
void ParseShuffledKeys(benchmark::State& state) {
  ParseKeys(state, Shuffled(Numbered(state.range(0))));
}
BENCHMARK(ParseShuffledKeys)->RangeMultiplier(2)->Range(10, 100'000);

// The worst keys: each of the first characters may be followed by nearly every byte.
void ParseRandomKeys(benchmark::State& state) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> anyByte(0x5D, 0xFF);
  Keys keys;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    std::string& key = keys.emplace_back();
    while (key.size() < 8) key += static_cast<char>(anyByte(random));
  }
  ParseKeys(state, keys);
}
BENCHMARK(ParseRandomKeys)->RangeMultiplier(2)->Range(10, 100'000);

void ParseNested(benchmark::State& state, const std::string& open, const std::string& close) {
  std::string text;
  for (std::int64_t i = 0; i < state.range(0); ++i) text += open;
  text += '1';
  for (std::int64_t i = 0; i < state.range(0); ++i) text += close;
  ParseAndRelease(state, text);
}

void ParseNestedArrays(benchmark::State& state) {
  ParseNested(state, "[", "]");
}
BENCHMARK(ParseNestedArrays)->RangeMultiplier(2)->Range(1, 1'000'000);

void ParseNestedObjects(benchmark::State& state) {
  ParseNested(state, R"({"a":)", "}");
}
BENCHMARK(ParseNestedObjects)->RangeMultiplier(2)->Range(1, 1'000'000);

}  // namespace
